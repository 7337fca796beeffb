// ECRepeat: a repeat sign in a measure.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it beside the base part.
//
// Archive record: that of ECWithTimeChild, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECRepeat : public ECWithTimeChild
{
    DECLARE_SERIAL(ECRepeat)

public:
    CObject *Copy(CObject *src) override;
    // 50.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the repeat; what each value looks like is the host's.
    BYTE GetRepeatType() const { return GetSpareByte(); }
    void SetRepeatType(BYTE type) { SetSpareByte(type); }

    ECRepeat &operator=(const ECRepeat &other)
    {
        ECWithTimeChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECRepeat &other) const
    {
        return ECWithTimeChild::operator==(other) && GetSpareByte() == other.GetSpareByte();
    }
    int operator!=(const ECRepeat &other) const { return !(*this == other); }

protected:
    ~ECRepeat() override;
};
