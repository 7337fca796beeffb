// ECChord: notes struck together: a chord is the list of its notes and
// their modifiers.
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
