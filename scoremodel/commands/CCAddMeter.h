// CCAddMeter: adds a time signature and re-cuts the bars it governs
// (command id 6).
//
// The new meter's bar length N replaces the length O of the meter in force
// over its scope (from its time to the next meter, or the end of the
// score). The columns of that scope get new times N apart, everything
// behind the scope moves by D = (N - O) times their number, flow-control
// marks inside the scope are scaled by N / O, and CCAdjustMeasureChildren
// then hands each event to the measure that now covers its time (making
// bars at the end as needed). Events keep their times and durations.
//
//     CCAddMeter *add = new CCAddMeter(new ECMeter(3, 4, 255), nullptr);
//     add->GetMeter(0)->SetTime(MCTime(16.0f));
//     add->Apply(document);
//
// A meter at the time of the one in force replaces it. A meter equal to the
// one in force changes no bar. When the next meter says again what the new
// one says, it goes too (with the redundance check on, and not while
// undoing).
//
// Undo and redo. Undo gives back exactly the tree before, and redo exactly
// the tree after, the same objects in the same order: the command records
// what it changed (see MCStructureJournal) when it runs as a step of its
// own, instead of running the inverse commands, which cannot give back an
// event that kept its time while its bar moved, the bars made at the end,
// or the order of events of one time. For the same reason the commands it
// runs inside its own run (CCAdjustMeasureChildren, the removal of a
// redundant next meter) join no undo step: its record covers them, and a
// redo replays the record instead of running them again. The removal of a
// redundant next meter runs at the end of Process rather than in Finish, so
// that the record covers it and nothing that later commands of the same
// batch do.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCMeterInfo.h>

#include <memory>

class ECConductorStaff;
class ECMeter;
class MCStructureJournal;

class SCOREMODEL_API CCAddMeter : public CCAdd
{
    DECLARE_DYNCREATE(CCAddMeter)

public:
    CCAddMeter();
    // Add(meter, parent, FCMidi::MidiNull()); the parent may be null (the
    // meter envelope is found).
    CCAddMeter(ECBase *meter, ECBase *parent);

    // One meter (ECMeter) only: null for anything else and once a meter is
    // given. Takes the meter's time and bar length as the new info.
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;

    // 0: the new meter, 1: the one in force at its time, 2: the one after
    // that. Null (TimeNull for the times) when there is none.
    CCMeterInfo *GetMeterInfo(int i);
    ECMeter *GetMeter(int i);
    MCTime GetMeterTime(int i);
    MCTime GetMeterDuration(int i);

    // The redundance check, while the command is not undoing.
    int ShouldCheckRedundance() const { return m_bRedundanceCheck && !IsUndoing(); }
    void SetRedundanceCheck(int check) { m_bRedundanceCheck = check; }
    int GetRedundanceCheck() const { return m_bRedundanceCheck; }
    // With it set, nothing behind the scope moves and no flow-control mark
    // is scaled.
    void SetIgnoreTimeShift(int ignore) { m_bIgnoreTimeShift = ignore; }
    int GetIgnoreTimeShift() const { return m_bIgnoreTimeShift; }
    // The bars CCAdjustMeasureChildren made at the end: the number (from 1)
    // of the first and their count; -1 and 0 for none.
    int GetMeasureInsertLocation() const { return m_nMeasureInsertLocation; }
    int GetMeasureInsertCount() const { return m_nMeasureInsertCount; }

    // 6.
    int GetCommandId() override;
    // Finds the meter in force and the next one, and which of them go.
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCAddMeter() override;

    void DoAddMeter();
    void DeleteInfos();

    int m_nMeasureInsertLocation = -1;
    int m_nMeasureInsertCount = 0;
    int m_bRedundanceCheck = 1;
    int m_bIgnoreTimeShift = 0;
    CCMeterInfo *m_pNewInfo = nullptr;
    CCMeterInfo *m_pOldInfo = nullptr;
    CCMeterInfo *m_pNextInfo = nullptr;
    ECConductorStaff *m_pConductorStaff = nullptr;
    std::unique_ptr<MCStructureJournal> m_journal;
};
