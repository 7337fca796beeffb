// ECTrill: a trill on a note or chord.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it beside the base part.
//
// Archive record: that of ECWithTimeChild, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECTrill : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTrill)

public:
    CObject *Copy(CObject *src) override;
    // 65.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the trill; what each value looks like is the host's.
    BYTE GetTrillType() const { return GetSpareByte(); }
    void SetTrillType(BYTE type) { SetSpareByte(type); }

    ECTrill &operator=(const ECTrill &other)
    {
        ECWithTimeChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECTrill &other) const
    {
        return ECWithTimeChild::operator==(other) && GetSpareByte() == other.GetSpareByte();
    }
    int operator!=(const ECTrill &other) const { return !(*this == other); }

protected:
    ~ECTrill() override;
};
