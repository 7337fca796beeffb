// ECTremolo: a tremolo on a note or chord.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it beside the base part.
//
// Archive record: that of ECWithTimeChild, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECTremolo : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTremolo)

public:
    CObject *Copy(CObject *src) override;
    // 64.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the tremolo; what each value looks like is the host's.
    BYTE GetTremoloType() const { return GetSpareByte(); }
    void SetTremoloType(BYTE type) { SetSpareByte(type); }

    ECTremolo &operator=(const ECTremolo &other)
    {
        ECWithTimeChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECTremolo &other) const
    {
        return ECWithTimeChild::operator==(other) && GetSpareByte() == other.GetSpareByte();
    }
    int operator!=(const ECTremolo &other) const { return !(*this == other); }

protected:
    ~ECTremolo() override;
};
