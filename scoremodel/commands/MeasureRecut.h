// What the meter and measure commands share when they re-cut bars.
// Internal to the library.
#pragma once

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCStructureJournal.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>

#include <initializer_list>
#include <memory>

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

// The meter after `meter` in the score's meter envelope; null for none.
ECMeter *NextMeter(ECConductorStaff *score, ECMeter *meter);

// Hands every event from `start` to `end` to the bar that covers it
// (CCAdjustMeasureChildren, nested), and returns where bars were appended
// and how many (-1 and 0 for none).
void AdjustChildren(ECPerformance *document, const MCTime &start, const MCTime &end, bool reverse, int &location,
                    int &count);

// Removes a meter that repeats the one before it (CCRemoveMeter, nested),
// when it still stands in the score.
void RemoveRedundantMeter(ECMeter *meter, ECPerformance *document);

// The road of a bar-structure command's Process after the base's: a redo
// (the record undone) puts the tree after back; otherwise `work` runs,
// recorded when the command is a step of its own.
template <class Work>
void RunRecorded(CCBase *command, std::unique_ptr<MCStructureJournal> &journal, Work &&work)
{
    if (journal && journal->IsUndone())
    {
        journal->RestoreAfter();
        return;
    }
    const bool record = command->IsRecordUndo();
    if (record)
    {
        if (!journal)
            journal = std::make_unique<MCStructureJournal>();
        journal->Begin(command->GetTarget());
    }
    work();
    if (record)
        journal->End();
}

// 1 when the command's next run is a redo.
inline int IsRedo(const std::unique_ptr<MCStructureJournal> &journal)
{
    return journal && journal->IsUndone();
}

// The undo of a recorded command: the tree before it.
inline void UndoRecorded(const std::unique_ptr<MCStructureJournal> &journal)
{
    if (journal && journal->IsComplete())
        journal->RestoreBefore();
}

// Bar length of a meter in quarter notes; 4.0 without one, or for one whose
// length wraps to zero.
float BarLength(ECMeter *meter);
} // namespace measure_recut
