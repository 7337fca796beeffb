// ECMordent: a mordent on a note or chord.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it beside the base part.
//
// Archive record: that of ECWithChild, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECMordent : public ECWithChild
{
    DECLARE_SERIAL(ECMordent)

public:
    CObject *Copy(CObject *src) override;
    // 36.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the mordent; what each value looks like is the host's.
    BYTE GetMordentType() const { return GetSpareByte(); }
    void SetMordentType(BYTE type) { SetSpareByte(type); }

    ECMordent &operator=(const ECMordent &other)
    {
        ECWithChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECMordent &other) const
    {
        return ECWithChild::operator==(other) && GetSpareByte() == other.GetSpareByte();
    }
    int operator!=(const ECMordent &other) const { return !(*this == other); }

protected:
    ~ECMordent() override;
};
