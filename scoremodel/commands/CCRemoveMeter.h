// CCRemoveMeter: removes a time signature and re-cuts its bars in the
// meter before it (command id 43).
//
// The removed meter's scope takes the previous meter's bar length, as
// CCAddMeter re-cuts a scope, with these differences: the shift behind the
// scope also looks through rests, bar lines and mirrors (their own times
// stay), there is no sort between the shift and the new bar times, and the
// first meter of a score cannot be removed (Prepare fails: a score always
// has a meter at its start).
//
// The meter's mirrors join the remove list and go with it. When the meter
// after the removed one says again what the previous one says, this command
// removes it too, at the end of its Process (a nested CCRemoveMeter): no
// one else would, and a score must not keep a change that changes nothing.
// The previous meter is never removed, so its info's remove flag stays 0.
//
// Undo and redo give back exactly the tree before and after, as for
// CCAddMeter (see there): a recorded step, not the inverse commands.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCMeterInfo.h>
#include <scoremodel/commands/CCRemove.h>

#include <memory>

class ECConductorStaff;
class ECMeter;
class MCStructureJournal;

class SCOREMODEL_API CCRemoveMeter : public CCRemove
{
    DECLARE_DYNCREATE(CCRemoveMeter)

public:
    CCRemoveMeter();
    explicit CCRemoveMeter(ECBase *meter);

    using CCRemove::Remove;
    // The first meter (ECMeter) given only: null for anything else. Its
    // mirrors are listed with it.
    CCRemoveItem *Remove(ECBase *event) override;

    // 0: the removed meter, 1: the one before it, 2: the one after it.
    CCMeterInfo *GetMeterInfo(int i);
    ECMeter *GetMeter(int i);
    MCTime GetMeterTime(int i);
    MCTime GetMeterDuration(int i);

    int ShouldCheckRedundance() const { return m_bRedundanceCheck && !IsUndoing(); }
    void SetRedundanceCheck(int check) { m_bRedundanceCheck = check; }
    int GetRedundanceCheck() const { return m_bRedundanceCheck; }
    int GetMeasureInsertLocation() const { return m_nMeasureInsertLocation; }
    int GetMeasureInsertCount() const { return m_nMeasureInsertCount; }

    // 43.
    int GetCommandId() override;
    // 0 for a meter with none before it.
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCRemoveMeter() override;

    void DoRemoveMeter();
    void DeleteInfos();

    int m_nMeasureInsertLocation = -1;
    int m_nMeasureInsertCount = 0;
    int m_bRedundanceCheck = 1;
    CCMeterInfo *m_pRemovedInfo = nullptr;
    CCMeterInfo *m_pPreviousInfo = nullptr;
    CCMeterInfo *m_pNextInfo = nullptr;
    ECConductorStaff *m_pConductorStaff = nullptr;
    std::unique_ptr<MCStructureJournal> m_journal;
};
