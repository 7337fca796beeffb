// ECAccent: an accent, articulation or fingering mark on a note or chord.
//
// Its one value is the accent type, a byte kept in the spare byte of ECBase,
// 0 for a new accent. What the types look like is the host's business; the
// model knows only the three ranges that are finger numbers:
//
//   0x5A-0x5F   plain finger numbers         IsFingerTypeGigit
//   0x60-0x65   cycled finger numbers        IsFingerTypeCycledGigit
//   0x66-0x69   the p, i, m, a fingers       IsFingerTypePima
//
// A finger mark belongs to one note, so for a finger type GetParentTypes
// leaves ECChord out.
//
// operator= copies the type; operator== compares the type alone (the
// identity test of ECBase would make no two accents equal).
//
// Archive record: that of ECBase, then the type as one raw byte.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECAccent : public ECBase
{
    DECLARE_SERIAL(ECAccent)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 0.
    int GetEventId() const override;
    // ECNote, ECChord (not for a finger type), ECGraceNote.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Type ----

    BYTE GetAccentType() const { return GetSpareByte(); }
    void SetAccentType(BYTE type) { SetSpareByte(type); }

    // True when the type is a finger number of any of the three ranges.
    int IsFingerType() const;
    int IsFingerTypeGigit() const;
    int IsFingerTypeCycledGigit() const;
    int IsFingerTypePima() const;
    // True when this accent's type and `other` lie in the same finger range,
    // so that one finger mark may replace the other.
    int IsReplaceableFinger(BYTE other) const;

    ECAccent &operator=(const ECAccent &other);
    int operator==(const ECAccent &other) const { return GetAccentType() == other.GetAccentType(); }
    int operator!=(const ECAccent &other) const { return !(*this == other); }

protected:
    ~ECAccent() override;
};
