// ECDot: a duration dot of a note, chord or rest.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it.
//
// Archive record: that of ECBase, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECDot : public ECBase
{
    DECLARE_SERIAL(ECDot)

public:
    CObject *Copy(CObject *src) override;
    // 20.
    int GetEventId() const override;
    // ECNote, ECChord, ECRest.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the dot; what each value looks like is the host's.
    virtual BYTE GetDotType() const { return GetSpareByte(); }
    virtual void SetDotType(BYTE type) { SetSpareByte(type); }

    ECDot &operator=(const ECDot &other)
    {
        ECBase::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECDot &other) const { return GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECDot &other) const { return !(*this == other); }

protected:
    ~ECDot() override;
};
