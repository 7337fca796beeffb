// ECAccidental: the accidental written before a note.
//
// Its one value is a type byte (0 for a new one), kept in the spare byte of
// ECBase. operator= copies it, and operator== compares it.
//
// Archive record: that of ECBase, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECAccidental : public ECBase
{
    DECLARE_SERIAL(ECAccidental)

public:
    CObject *Copy(CObject *src) override;
    // 1.
    int GetEventId() const override;
    // ECNote, ECGraceNote.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // The kind of the accidental; what each value looks like is the host's.
    BYTE GetAccidentalType() const { return GetSpareByte(); }
    void SetAccidentalType(BYTE type) { SetSpareByte(type); }

    ECAccidental &operator=(const ECAccidental &other)
    {
        ECBase::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECAccidental &other) const { return GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECAccidental &other) const { return !(*this == other); }

protected:
    ~ECAccidental() override;
};
