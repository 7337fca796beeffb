// ECBeam: a beam joining notes, chords and rests of a measure.
//
// Archive record: that of ECGroup.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECGroup.h>

class SCOREMODEL_API ECBeam : public ECGroup
{
    DECLARE_SERIAL(ECBeam)

public:
    CObject *Copy(CObject *src) override;
    // 7.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    // The group's removal, its result made 1 or 0.
    int RemoveChild(ECBase *child, int deep) override;

    ECBeam &operator=(const ECBeam &other)
    {
        ECGroup::operator=(other);
        return *this;
    }
    int operator==(const ECBeam &other) const { return ECGroup::operator==(other); }
    int operator!=(const ECBeam &other) const { return !(*this == other); }

protected:
    ~ECBeam() override;
};
