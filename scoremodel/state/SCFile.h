// SCFile: tells the host about a file operation on a document object.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/state/SCBase.h>

class CObject;

class SCOREMODEL_API SCFile : public SCBase
{
public:
    explicit SCFile(unsigned int code = 0) : SCBase(code) {}

    // The object concerned; the record does not own it.
    void SetDocument(CObject *document) { m_pDocument = document; }
    CObject *GetDocument() const { return m_pDocument; }

private:
    CObject *m_pDocument = nullptr;
};
