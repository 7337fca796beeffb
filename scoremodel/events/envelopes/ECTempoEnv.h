// ECTempoEnv: the tempo map of a performance, under the conductor staff.
//
// Besides being an envelope of ECTempo points, the map converts between the
// two time scales: normalized time (beats, mode 0), on which every event
// stands, and clock time (seconds, mode 3), what a listener hears. Each point
// keeps its own clock time, rebuilt by RecalculateClockTimes after every add,
// remove, clear, duration change and load; whoever changes a point's tempo
// directly runs it afterwards.
//
//     MCTime t(4.0f);               // beat 4
//     tempoMap->GetClockTime(t);    // now seconds, mode 3
//     tempoMap->GetNormalizedTime(t); // beat 4 again, mode 0
//
// Between a point q and the next c the clock runs linearly for style 0 (hold)
// and, for a ramp (style 1), with the rate growing by a = (r(c) - r(q)) /
// (time(c) - time(q)) per unit: x beats after q lie at (sqrt(2 a x + r^2) -
// r) / a seconds, and the inverse is x = y r + y^2 a / 2. The slope takes
// its span from beats while it is applied per second; that is the map's rule
// and both directions use it, so a conversion there and back returns the
// start. A ramp between equal rates (a = 0) is taken as a hold here instead
// of dividing zero by zero. The rule has a domain: a ramp down steep enough
// that 2 a d + r^2 falls below zero within it (possible only below 30 bpm,
// as after a pause) has no clock time there, and the conversion gives NaN;
// such a ramp is the editor's to refuse.
//
// Pauses (types 24 to 26 and 29), first pass of the recalculation: an anchor
// head plays at the tempo before it divided by 2^(percent / 100); a pause
// point that is not an anchor head restores the tempo that stood before the
// head of its anchor group (or the default value, 100).
//
// The first point always stands at time zero: a recalculation moves it there.
//
// Threads: GetClockTime goes through the locked lookups of ECEnvelope and
// holds the lock for the whole conversion. GetNormalizedTime leaves the
// search cursor alone (it keeps a cursor of its own, so sequential calls
// cost O(1)) and also takes the lock. RecalculateClockTimes runs on the
// editing thread under the lock.
//
// Construction: default value 100, limits 20 and 400, float valued. Only
// ECTempo points are accepted as children.
//
// Archive record: that of ECEnvelope; loading recalculates the clock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvelope.h>

class ECTempo;

class SCOREMODEL_API ECTempoEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECTempoEnv)

public:
    ECTempoEnv();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 58.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // ECEnvelope::AddChild for an ECTempo; on success the point takes the
    // map's voice/track word.
    int AddChild(ECBase *child, int sorted) override;
    // The envelope runs it after every add, remove and clear: here it also
    // puts the clock-side cursor on the head and recalculates the clock.
    void UpdateChildren() override;

    // Normalized (mode 0) to clock (mode 3), in place; any other mode is left
    // as it is. Before the first point only the mode changes.
    void GetClockTime(MCTime &time);
    // Clock (mode 3) to normalized (mode 0), in place; any other mode is left
    // as it is. Before the first point only the mode changes.
    void GetNormalizedTime(MCTime &time);
    // The pause pass, then the clock time of every point.
    void RecalculateClockTimes();

    ECTempoEnv &operator=(const ECTempoEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECTempoEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECTempoEnv &other) const { return !(*this == other); }

protected:
    ~ECTempoEnv() override;

private:
    // The clock-side cursor of GetNormalizedTime; reset with the list.
    POSITION m_clockPos = nullptr;
    // Clock times never fall from one point to the next (all speeds
    // positive): the clock-side cursor may then be used.
    bool m_clockMonotonic = true;
};
