// ECBarline: a bar line of a conductor measure.
//
// One byte holds the bar line: its type in the low 6 bits and its position
// in the top 2, kept in the spare byte of ECBase. operator= copies it and
// operator== compares it.
//
// Archive record: that of ECBase, then the byte raw. Documents below version
// 3 hold the type and the position as two bytes, which a load packs.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECBarline : public ECBase
{
    DECLARE_SERIAL(ECBarline)

public:
    CObject *Copy(CObject *src) override;
    // 5.
    int GetEventId() const override;
    // ECConductorMeasure.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // 0 to 63; higher bits are dropped.
    virtual BYTE GetBarlineType() const { return GetSpareByte() & 0x3F; }
    virtual void SetBarlineType(BYTE type) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0xC0) | (type & 0x3F))); }
    // 0 to 3; higher bits are dropped.
    virtual BYTE GetBarlinePos() const { return GetSpareByte() >> 6; }
    virtual void SetBarlinePos(BYTE pos) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x3F) | (pos << 6))); }

    ECBarline &operator=(const ECBarline &other)
    {
        ECBase::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECBarline &other) const { return GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECBarline &other) const { return !(*this == other); }

protected:
    ~ECBarline() override;
};
