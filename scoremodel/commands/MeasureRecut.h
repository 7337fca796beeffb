// What the meter and measure commands share when they re-cut bars.
// Internal to the library.
#pragma once

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>

#include <initializer_list>

class CCBase;
class ECConductor;
class ECConductorStaff;
class ECMeter;
class ECPerformance;

namespace measure_recut
{
// The conductor staff, made when missing (GetTrack(0, 0, 1)); null without
// a conductor.
ECConductorStaff *ConductorStaffOf(ECConductor *conductor);

// Moves every event of the document at or after `from` by `delta` (never
// below zero), looking through the event types given: their own times
// stay, their children's move.
void ShiftFrom(ECPerformance *document, const MCTime &delta, const MCTime &from, std::initializer_list<int> bypass);

// Flow-control marks (repeats, codas; children of the conductor staff) keep
// their place in the bars: one in
// the scope from `start` to `end` is scaled by `ratio` from `start`, one
// behind it moves by `shift`.
void ScaleFlowControl(ECPerformance *document, const MCTime &start, const MCTime &end, float ratio,
                      const MCTime &shift);

// Sorts the child lists of the conductor staff, the staves and the wave
// tracks by time, after times changed in place.
void SortTracks(ECConductor *conductor);

// Gives the columns of the list (conductor measures, in order) the times
// from `start` on, `length` apart, and returns the time after the last.
MCTime Retime(ECBase::EventList &columns, MCTime start, float length);

// Brings every envelope's derived values (clock times, bar/pulse/tick
// positions) up to date after times changed in place.
void RefreshEnvelopes(ECPerformance *document);

// Runs a command synchronously inside the caller's own run, outside any
// undo step: the caller's record covers what it does, so that undo and
// redo replay the caller alone. Returns the Apply result; the command is
// the caller's to Unref (it holds one reference on return).
int ApplyNested(CCBase *command, ECPerformance *document);

// Bar length of a meter in quarter notes; 4.0 without one, or for one whose
// length wraps to zero.
float BarLength(ECMeter *meter);
} // namespace measure_recut
