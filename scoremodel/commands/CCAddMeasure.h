// CCAddMeasure: inserts bars into the score (command id 5).
//
// `count` columns go in before the measure at `index` (from 0; a negative
// index or one past the last bar appends), each as long as the meter in
// force there says, on every staff at once; everything from their time on
// moves behind them. Measures the host built itself can be given with Add
// (conductor measures and measures, as a removal took them out): then they
// are what goes in, and their number of columns is the count.
//
//     CCAddMeasure *add = new CCAddMeasure(2, 4);   // two bars before bar 5
//     add->Apply(document);
//
// A score that starts with a pickup bar gets nothing in front of it: index
// 0 inserts behind the pickup.
//
// Inserting at time zero keeps what sets the score up where it is: the
// tracks, and every envelope's points at zero (the first meter and tempo,
// the opening controller and program values) stay at zero, and the clefs
// and keys at zero move into the new first bar of their staff. Only the
// music moves behind the new bars.
//
// Undo and redo give back exactly the tree before and after, the same
// objects (see CCAddMeter): a recorded step.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/core/MCTime.h>

#include <memory>

class ECConductorStaff;
class ECMeter;
class MCStructureJournal;

class SCOREMODEL_API CCAddMeasure : public CCAdd
{
    DECLARE_DYNCREATE(CCAddMeasure)

public:
    CCAddMeasure();
    CCAddMeasure(int count, int index);

    int GetInsertCount() const { return m_nInsertCount; }
    void SetInsertCount(int count) { m_nInsertCount = count; }
    int GetInsertIndex() const { return m_nInsertIndex; }
    void SetInsertIndex(int index) { m_nInsertIndex = index; }
    ECMeter *GetAddMeter() const { return m_pAddMeter; }
    void SetAddMeter(ECMeter *meter) { m_pAddMeter = meter; }

    // 5.
    int GetCommandId() override;
    // The clamps, the pickup bar, the meter in force (0 when there is
    // none), and what moves.
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCAddMeasure() override;

    int CheckMeter();
    void PrepareAdd();
    void DoAdd();

    int m_nInsertCount = 1;
    int m_nInsertIndex = -1;
    MCTime m_time = MCTime::TimeNull();
    ECMeter *m_pMeter = nullptr;
    ECMeter *m_pAddMeter = nullptr;
    ECConductorStaff *m_pConductorStaff = nullptr;
    EventList m_moveList;
    EventList m_insertList;
    std::unique_ptr<MCStructureJournal> m_journal;
};
