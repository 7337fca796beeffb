// ECOrnament: an ornament on a note.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it beside the base part.
//
// Archive record: that of ECWithChild, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECOrnament : public ECWithChild
{
    DECLARE_SERIAL(ECOrnament)

public:
    CObject *Copy(CObject *src) override;
    // 40.
    int GetEventId() const override;
    // ECNote.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the ornament; what each value looks like is the host's.
    BYTE GetOrnamentType() const { return GetSpareByte(); }
    void SetOrnamentType(BYTE type) { SetSpareByte(type); }

    ECOrnament &operator=(const ECOrnament &other)
    {
        ECWithChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECOrnament &other) const
    {
        return ECWithChild::operator==(other) && GetSpareByte() == other.GetSpareByte();
    }
    int operator!=(const ECOrnament &other) const { return !(*this == other); }

protected:
    ~ECOrnament() override;
};
