// ECMeasure: the container of the events of one staff in one bar.
//
// Every staff has one measure per column of the score, all measures of a
// column share its time, and the conductor staff's measure of the column is
// an ECConductorMeasure. Structural: voice 14; the track is set by whoever
// places the measure on a staff.
//
// Archive record: that of ECWithTimeChild; a measure adds no field.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECMeasure : public ECWithTimeChild
{
    DECLARE_SERIAL(ECMeasure)

public:
    // Voice 14, track 0x7FF.
    ECMeasure();

    CObject *Copy(CObject *src) override;
    // 32.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECMeasure &operator=(const ECMeasure &other);
    int operator==(const ECMeasure &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECMeasure &other) const { return !(*this == other); }

protected:
    ECMeasure(const ECMeasure &other);
    ~ECMeasure() override;
};
