// CCAdjustMeasureChildren: hands each event to the measure that covers its
// time (command id 14), after the bar structure changed under it.
//
// Over a range of staves and a range of time, every event in a measure
// (mirrors aside) is looked up by its time; when another measure now covers
// that time, the event moves there. Measures are made at the end of the
// score where an event's time or its end runs past it. Events keep their
// times and durations: only their parent measure changes. The walk runs
// backwards with the reverse flag, which a command that lengthens bars sets,
// so that an event is never moved onto one that is still to be looked at.
//
// Undo moves each event back into the measure it left, the last move first,
// and takes away the measures Process made at the end.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/core/MCTime.h>

#include <vector>

class SCOREMODEL_API CCAdjustMeasureChildren : public CCBase
{
    DECLARE_DYNCREATE(CCAdjustMeasureChildren)

public:
    CCAdjustMeasureChildren();

    void SetReverse(int reverse) { m_bReverse = reverse ? 1 : 0; }
    int GetReverse() const { return m_bReverse; }
    void SetTimeRange(const MCTime &start, const MCTime &end)
    {
        m_start = start;
        m_end = end;
    }
    void GetTimeRange(MCTime &start, MCTime &end) const
    {
        start = m_start;
        end = m_end;
    }
    void SetTrackRange(int first, int last)
    {
        m_nFirstTrack = first;
        m_nLastTrack = last;
    }
    void GetTrackRange(int &first, int &last) const
    {
        first = m_nFirstTrack;
        last = m_nLastTrack;
    }
    // The number (from 1) of the first measure Process appended, and how
    // many; -1 and 0 for none.
    int GetMeasureInsertLocation() const { return m_nMeasureInsertLocation; }
    int GetMeasureInsertCount() const { return m_nMeasureInsertCount; }

    // 14.
    int GetCommandId() override;
    // The base's; then the track range is clamped to the staves and the
    // time range to the score, each pair put in order.
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCAdjustMeasureChildren() override;

private:
    struct Move
    {
        ECBase *event; // held while the command lives
        ECBase *from;
        ECBase *to;
    };
    void ReleaseMoves();

    unsigned m_bReverse : 1;
    int m_nFirstTrack = 0;
    int m_nLastTrack = 0x7FFFFFFF;
    int m_nMeasureInsertLocation = -1;
    int m_nMeasureInsertCount = 0;
    MCTime m_start = MCTime::TimeZero();
    MCTime m_end = MCTime::TimeMax();
    std::vector<Move> m_moves;
};
