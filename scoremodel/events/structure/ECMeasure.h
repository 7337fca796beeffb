// ECMeasure: the container of the events of one staff in one bar.
//
// Every staff has one measure per column of the score, all measures of a
// column share its time, and the conductor staff's measure of the column is
// an ECConductorMeasure. Structural: voice 14; the track is set by whoever
// places the measure on a staff.
//
// A measure keeps its staff's clef and key cache current: a clef or key
// added to it is cached on the ECStaff above it, and one that leaves is
// uncached first, while it is still alive and in place.
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

    // The number (from 1) of the column at the measure's time, through the
    // ECConductor above it; 0 outside a score.
    int GetMeasureNumber();
    // Empties the list, then adds every note and grace note beneath the
    // measure.
    void GetChildrenForSelection(EventList &events);

    // After the base's call, a clef or key is cached on the staff above.
    int AddChild(ECBase *child, int sorted) override;
    // A clef or key is uncached before the base's call.
    int RemoveChild(ECBase *child, int deep) override;
    // Uncaches each clef and key among the children, then the base's call.
    int RemoveChildren(int deep) override;

    ECMeasure &operator=(const ECMeasure &other);
    int operator==(const ECMeasure &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECMeasure &other) const { return !(*this == other); }

protected:
    ECMeasure(const ECMeasure &other);
    ~ECMeasure() override;
};
