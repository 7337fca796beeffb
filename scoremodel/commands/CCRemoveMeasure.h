// CCRemoveMeasure: takes bars out of the score (command id 42).
//
// `count` columns from the one at `index` (from 0) leave every staff with
// what they hold, and everything behind them moves forward by their
// length. A score that starts with a pickup bar counts from the bar after
// it. The count is cut to the bars there are, and a score always keeps one
// bar. An index past the last bar takes nothing.
//
//     CCRemoveMeasure *remove = new CCRemoveMeasure(2, 4);   // bars 5 and 6
//     remove->Apply(document);
//
// What stands at the edges:
//   - a meter change inside the removed bars goes with them, and the bars
//     behind take the meter in force before the region: they are re-cut to
//     it first (a copy of that meter added at the region's end), and that
//     copy, which repeats what is in force once the region is gone, is
//     removed again at the end;
//   - the points of every envelope inside the region go with it (tempi,
//     meters, controllers), except those at zero that nothing replaces;
//   - at time zero, the clefs and keys of a removed first bar stay in the
//     new first bar unless another one stands at the region's end;
//   - a clef at the end of the last removed bar (a change for the bar
//     after) moves to the end of the bar before the region; the clefs and
//     keys of the bar behind the region stay where they are.
//
// Undo and redo give back exactly the tree before and after (see
// CCAddMeter), when the command ran as a step of its own. Run inside
// another command it has no undo of its own: that command's record covers
// it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/core/MCTime.h>

#include <memory>

class ECConductorStaff;
class ECMeter;
class MCStructureJournal;

class SCOREMODEL_API CCRemoveMeasure : public CCRemove
{
    DECLARE_DYNCREATE(CCRemoveMeasure)

public:
    CCRemoveMeasure();
    CCRemoveMeasure(int count, int index);

    // Do nothing: the command lists what it removes itself.
    CCRemoveItem *Remove(ECBase *event) override;
    int Remove(EventList *events) override;

    int GetRemoveCount() const { return m_nRemoveCount; }
    void SetRemoveCount(int count) { m_nRemoveCount = count; }
    int GetRemoveIndex() const { return m_nRemoveIndex; }
    void SetRemoveIndex(int index) { m_nRemoveIndex = index; }
    void GetRemoveRegion(MCTime &start, MCTime &end) const
    {
        start = m_start;
        end = m_end;
    }

    // 42.
    int GetCommandId() override;
    // The clamps. What goes is found when Process starts, on the tree as
    // the commands before it in the batch left it.
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCRemoveMeasure() override;

    void CheckMeterAdd();
    void PrepareRemoveMeasure();
    // 1 when the event may go with the bars (see the class comment).
    int CheckTimeZeroEvent(ECBase *event);
    void DoRemoveMeasure();
    void CheckMeterRemove();

    int m_nRemoveCount = 0;
    int m_nRemoveIndex = 0;
    int m_nLastMeasure = -1;
    MCTime m_start = MCTime::TimeZero();
    MCTime m_end = MCTime::TimeZero();
    ECConductorStaff *m_pConductorStaff = nullptr;
    ECMeter *m_pAddedMeter = nullptr;
    EventList m_keepList;
    std::unique_ptr<MCStructureJournal> m_journal;
};
