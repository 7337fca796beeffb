// ECMeterEnv: the meter map of a performance, under the conductor staff; an
// envelope whose points are the document's meters (ECMeter) in time order.
//
// Besides holding the meters, the map converts between normalized time
// (quarter notes, mode 0) and bar, pulse and tick (mode 2):
//
//     MCTime t(10.0f);
//     meterMap->GetBarPulseTick(t, 480);   // bar 2, pulse 2, tick 0 in 4/4
//     meterMap->GetNormalizedTime(t);      // 10.0 again
//
// Each meter keeps its own start position, rebuilt by RecalculateBPTTimes
// after every add, remove, clear and load (from the first meter, which must
// stand at time 0: otherwise the walk leaves every position as it was).
// Whoever changes a meter's numerator or time in place runs it afterwards.
//
// Kept rules, wanted as they are:
// - A position is found from the meter at or before the time with one carry
//   each from tick to pulse and from pulse to bar, never a loop. At a
//   meter's exact time the meter's stored position is given whole, with its
//   own resolution, not the asked one.
// - GetNormalizedTime takes the last meter whose stored bar, pulse and tick
//   are each at most the asked ones, component by component (bar 3, pulse 2
//   does not match bar 5, pulse 1), or the first meter when none does. A
//   pulse past the numerator is not normalised.
// - A meter of length, pulse or numerator 0 gives no meaningful position;
//   its integer parts come out as the platform's indefinite value
//   (0x80000000) and wrap, rather than being undefined.
//
// Cost. GetBarPulseTick goes through the envelope's cursor (O(1) for
// sequential times). GetNormalizedTime keeps a cursor of its own: while the
// stored bars do not fall along the list (as RecalculateBPTTimes leaves
// them), only meters near the cursor are looked at, so sequential calls cost
// O(1); after a meter's position was set by hand (SetBarPulseTick) it walks
// from the last meter, O(n), until the next recalculation. Writing a
// position through the reference GetBarPulseTick gives is not seen: run
// RecalculateBPTTimes after doing so. RecalculateBPTTimes is O(n).
//
// Threads: the conversions and the recalculation take the envelope's lock.
//
// Only ECMeter points are accepted as children: the conversions read every
// point as a meter. A loaded map holding another point is a corrupt file
// (CArchiveException).
//
// Archive record: that of ECEnvelope; loading recalculates the positions.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvelope.h>

class ECMeter;

class SCOREMODEL_API ECMeterEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECMeterEnv)

public:
    ECMeterEnv();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 34.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // ECEnvelope::AddChild for an ECMeter (0 for anything else); on success
    // the meter takes the map's voice/track word, the positions are
    // recalculated and the result is 1.
    int AddChild(ECBase *child, int sorted) override;
    // The envelope's operation; the positions are recalculated after it.
    int RemoveChild(ECBase *child, int deep) override;
    int RemoveChildren(int deep) override;
    // The envelope runs it after every add, remove and clear: here it also
    // resets the position cursor and runs RecalculateBPTTimes.
    void UpdateChildren() override;

    // Normalized (mode 0) to bar, pulse and tick at `resolution`, in place;
    // any other mode is left alone. Before the first meter: 0, 0, 0.
    void GetBarPulseTick(MCTime &time, int resolution);
    // Bar, pulse and tick (mode 2) to normalized, in place; any other mode,
    // an empty map or a time whose resolution is not positive is left alone.
    void GetNormalizedTime(MCTime &time);
    // The start position of every meter, from the first (which must stand
    // at time 0, and gets 0, 0, 0 at GlobalPPQ) onward at GlobalPPQ.
    void RecalculateBPTTimes();

    ECMeterEnv &operator=(const ECMeterEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECMeterEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECMeterEnv &other) const { return !(*this == other); }

protected:
    ~ECMeterEnv() override;

    // The position of `time` counted from `meter`'s start position.
    void _GetBPTFromMeter(ECMeter *meter, MCTime &time, int &bar, int &pulse, int &tick, int resolution);
    // The normalized time of a position counted from `meter`'s start.
    void _GetTimeFromMeter(ECMeter *meter, MCTime &time, int bar, int pulse, int tick, int resolution);

private:
    friend class ECMeter;

    // The last meter GetNormalizedTime answered with; reset with the list.
    POSITION m_bptPos = nullptr;
    // Stored bars do not fall along the list and no position was set by
    // hand since the last recalculation: the cursor may be used.
    bool m_bptOrdered = false;
};
