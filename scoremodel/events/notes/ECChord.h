// ECChord: notes struck together: a chord is the list of its notes and
// their modifiers.
//
// A chord lives only while it has notes. When its last note goes, the
// modifiers go with it and the chord leaves its parents; and a chord that
// leaves its parents first hands every note that its measure does not hold
// yet to that measure, so that dissolving a chord never loses a note. Either
// way the call can release the chord's last holder: a caller that goes on
// using the chord holds a reference of its own.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECChord : public ECWithTimeChild
{
    DECLARE_SERIAL(ECChord)

public:
    CObject *Copy(CObject *src) override;
    // 12.
    int GetEventId() const override;
    // ECMeasure, ECBeam, ECTuplet.
    int GetParentTypes(CArray<int, int> &types) override;

    // The child list's removal; when no note is left, the modifiers go too
    // and the chord leaves its parents. 0 when `child` was not a child.
    int RemoveChild(ECBase *child, int deep) override;
    // Every child, then the chord leaves its parents.
    int RemoveChildren(int deep) override;
    // Hands the notes to the measure above (those it does not hold yet),
    // lets go of every child, and leaves the parents.
    int RemoveFromParents() override;

    ECChord &operator=(const ECChord &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECChord &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECChord &other) const { return !(*this == other); }

protected:
    ~ECChord() override;
};
