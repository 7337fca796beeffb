// SCEdit: tells the host which pitch an edit played or chose.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCEdit : public SCBase
{
public:
    explicit SCEdit(unsigned int code = 0) : SCBase(code) {}

    void SetPitch(unsigned char pitch) { m_nPitch = pitch; }
    unsigned char GetPitch() const { return m_nPitch; }

private:
    unsigned char m_nPitch = 0;
};
