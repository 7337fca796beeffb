// ACDeltaTime: moves the events of a time range by a delta.
//
// Each visited event whose time lies in the range (by the range mode, see
// ACTimeRange.h) gets time + delta, never less than zero: a move to the left
// stops at the start of the score. The first event past the end gives result
// 3, so the rest of its (time-ordered) list is left alone.
//
// The events stay where they are in their lists: a caller that moves only
// part of a list sorts it afterwards (ACSortChildren).
//
//     ACDeltaTime shift(MCTime(-1.0f), MCTime(4.0f), MCTime::TimeMax());
//     shift.Apply(pMeasure);      // everything from beat 4 one beat earlier
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/actions/ACTimeRange.h>
#include <scoremodel/core/MCTime.h>

class SCOREMODEL_API ACDeltaTime : public ACBase
{
public:
    // Delta 0, range from zero to TimeMax(), closed.
    ACDeltaTime();
    // A mode outside 0..3 gives mode 0.
    ACDeltaTime(const MCTime &delta, const MCTime &start, const MCTime &end, int mode = ACRangeClosed);
    ~ACDeltaTime() override;

    // -1 for null; 0 for an event without a time; 3 for one past the end;
    // moves an event in range; 0.
    int DoAction(ECBase *e) override;

    void SetTimeDelta(const MCTime &delta) { m_delta = delta; }
    const MCTime &GetTimeDelta() const { return m_delta; }
    void SetTimeRange(const MCTime &start, const MCTime &end);
    // A mode outside 0..3 changes nothing.
    void SetTimeRange(const MCTime &start, const MCTime &end, int mode);
    void SetRangeMode(int mode);
    int GetRangeMode() const { return m_nRangeMode; }
    const MCTime &GetStartTime() const { return m_start; }
    const MCTime &GetEndTime() const { return m_end; }

protected:
    MCTime m_delta;
    MCTime m_start;
    MCTime m_end;
    int m_nRangeMode = ACRangeClosed;
};
