// ACTimeRange: the range modes of the time-range actions (ACFindTime,
// ACDeltaTime, ACSelect).
//
// For start S, end E and event time T:
//
//   ACRangeClosed    (0)  S <= T and T <= E
//   ACRangeOpen      (1)  S <  T and T <  E
//   ACRangeOpenStart (2)  S <  T and T <= E
//   ACRangeOpenEnd   (3)  S <= T and T <  E
//
// The comparisons are MCTime's own, so they share its rules across modes.
#pragma once

#include <scoremodel/core/MCTime.h>

enum ACRangeMode : int
{
    ACRangeClosed = 0,
    ACRangeOpen = 1,
    ACRangeOpenStart = 2,
    ACRangeOpenEnd = 3,
    ACRangeModeCount = 4
};

// True when `time` lies in the range by `mode`; false for a mode outside 0..3.
inline bool ACTimeInRange(const MCTime &time, const MCTime &start, const MCTime &end, int mode)
{
    switch (mode)
    {
    case ACRangeClosed:
        return start <= time && time <= end;
    case ACRangeOpen:
        return start < time && time < end;
    case ACRangeOpenStart:
        return start < time && time <= end;
    case ACRangeOpenEnd:
        return start <= time && time < end;
    default:
        return false;
    }
}

// True for a valid range mode.
inline bool ACIsRangeMode(int mode)
{
    return mode >= ACRangeClosed && mode < ACRangeModeCount;
}
