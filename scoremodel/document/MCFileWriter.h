// MCFileWriter: the base of an export filter.
//
// A plug-in derives from MCFileWriter to write the host's document in a
// foreign format; the writer is handed the CArchive the host has opened. The
// base writes nothing: both save operations return 0 (nothing written). The
// status message is a text the host may show while a long export runs.
//
// MCOpusDoc is the host's document class, passed through as an opaque
// pointer.
//
// Archive: serialisable with schema 1 and no fields.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CString.h>

class CArchive;
class MCOpusDoc;

class SCOREMODEL_API MCFileWriter : public CObject
{
    DECLARE_SERIAL(MCFileWriter)

public:
    MCFileWriter() = default;
    ~MCFileWriter() override = default;

    // Writes `document` to the open archive. 1 on success; 0 here.
    virtual int SaveFile(CArchive &ar, MCOpusDoc *document);
    // Stores `message` as the writer's status text.
    virtual void SetStatusMsg(CString message);
    // Writes `document` as readable XML for debugging. 1 on success; 0 here.
    virtual int SaveFileInDebugXML(CArchive &ar, MCOpusDoc *document);

    const CString &GetStatusMsg() const { return m_strStatus; }

protected:
    CString m_strStatus;
};
