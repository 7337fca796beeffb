#include <scoremodel/commands/CCAddMeter.h>

#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/MeasureRecut.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>

using namespace measure_recut;

IMPLEMENT_DYNCREATE(CCAddMeter, CCAdd)

CCAddMeter::CCAddMeter() = default;

CCAddMeter::CCAddMeter(ECBase *meter, ECBase *parent)
{
    FCMidi none = FCMidi::MidiNull();
    Add(meter, parent, none);
}

CCAddMeter::~CCAddMeter()
{
    delete m_pNewInfo;
    DeleteInfos();
}

void CCAddMeter::DeleteInfos()
{
    delete m_pOldInfo;
    delete m_pNextInfo;
    m_pOldInfo = nullptr;
    m_pNextInfo = nullptr;
}

int CCAddMeter::GetCommandId()
{
    return COMMAND_ID_ADD_METER;
}

CCAddItem *CCAddMeter::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    if (m_pNewInfo || !child || child->GetEventId() != EVENT_ID_METER)
        return nullptr;
    auto *meter = static_cast<ECMeter *>(child);
    m_pNewInfo = new CCMeterInfo(meter, *meter->GetTime(), MCTime(BarLength(meter)));
    return CCAdd::Add(child, parent, midi);
}

CCMeterInfo *CCAddMeter::GetMeterInfo(int i)
{
    return i == 0 ? m_pNewInfo : i == 1 ? m_pOldInfo : i == 2 ? m_pNextInfo : nullptr;
}

ECMeter *CCAddMeter::GetMeter(int i)
{
    return CCMeterInfo::MeterOf(GetMeterInfo(i));
}

MCTime CCAddMeter::GetMeterTime(int i)
{
    return CCMeterInfo::TimeOf(GetMeterInfo(i));
}

MCTime CCAddMeter::GetMeterDuration(int i)
{
    return CCMeterInfo::DurationOf(GetMeterInfo(i));
}

int CCAddMeter::Prepare()
{
    if (!CCAdd::Prepare())
        return 0;
    if (IsRedo(m_journal))
        return 1; // a redo replays the record
    m_pConductorStaff = ConductorStaffOf(GetConductor());
    if (!m_pNewInfo || !m_pConductorStaff)
        return 1;
    // The meter's time as it stands now: a host may set it after Add.
    ECMeter *meter = m_pNewInfo->GetMeter();
    m_pNewInfo->GetTime() = *meter->GetTime();
    m_pNewInfo->GetDuration() = MCTime(BarLength(meter));
    DeleteInfos();
    ECMeter *old = GetConductor()->GetMeterAtTime(m_pNewInfo->GetTime());
    if (!old)
        return 1;
    m_pOldInfo = new CCMeterInfo(old, *old->GetTime(), MCTime(BarLength(old)));
    if (ECMeter *next = NextMeter(m_pConductorStaff, old); next && next != meter)
    {
        m_pNextInfo = new CCMeterInfo(next, *next->GetTime(), MCTime(BarLength(next)));
        m_pNextInfo->SetRemove(ShouldCheckRedundance() && *next == *meter);
    }
    if (m_pNewInfo->GetTime() == m_pOldInfo->GetTime())
        m_pOldInfo->SetRemove(1);
    return 1;
}

int CCAddMeter::Process()
{
    if (!CCBase::Process())
        return 0;
    RunRecorded(this, m_journal, [this] {
        DoAddMeter();
        if (m_pNextInfo && m_pNextInfo->ShouldRemove())
            RemoveRedundantMeter(m_pNextInfo->GetMeter(), GetTarget());
    });
    return 1;
}

void CCAddMeter::DoAddMeter()
{
    if (!m_pNewInfo || !m_pConductorStaff)
        return;
    ECConductor *conductor = GetConductor();
    ECMeterEnv *env = m_pConductorStaff->GetMeterEnv();
    ECMeter *meter = m_pNewInfo->GetMeter();
    if (!m_pOldInfo || *meter == *m_pOldInfo->GetMeter())
    {
        // No bar changes: only the meter goes in. A refused one (its time
        // taken) leaves nothing behind to undo.
        if (!env || !env->AddChild(meter, 1))
        {
            while (!m_addList.IsEmpty())
                delete m_addList.RemoveHead();
            delete m_pNewInfo;
            m_pNewInfo = nullptr;
            DeleteInfos();
        }
        return;
    }
    ECMeter *old = m_pOldInfo->GetMeter();
    const float oldLength = m_pOldInfo->GetDuration().GetSeconds();
    const float newLength = m_pNewInfo->GetDuration().GetSeconds();
    MCTime scopeStart, end;
    conductor->GetMeterScope(old, scopeStart, end);
    const MCTime start = m_pNewInfo->GetTime();
    if (meter->GetPickupRole() == 3 && end == MCTime::TimeNull() && conductor->GetMeterByPickupRole(2))
        end = conductor->GetMaxMeasureEndTime();

    ECBase::EventList columns;
    conductor->GetMeasures(0, start, end, columns);
    const MCTime shift((newLength - oldLength) * static_cast<float>(columns.GetCount()));
    ECPerformance *document = GetTarget();

    if (newLength != oldLength && !m_bIgnoreTimeShift)
        ScaleFlowControl(document, start, end, newLength / oldLength, shift);
    if (shift != MCTime::TimeZero() && !m_bIgnoreTimeShift)
    {
        ShiftFrom(document, shift, end, {EVENT_ID_FLOW_CONTROL});
        SortTracks(conductor);
        m_pConductorStaff->GetMaxMeasureEndTime() += shift;
    }
    Retime(columns, start, newLength);
    if (shift > MCTime::TimeZero())
        end += shift;
    SortTracks(conductor);
    if (m_pOldInfo->ShouldRemove())
        old->RemoveFromParents();
    env->AddChild(meter, 1);
    // Tempo points behind the scope moved: their clock times follow.
    RefreshEnvelopes(document);

    AdjustChildren(document, start, end, newLength > oldLength, m_nMeasureInsertLocation, m_nMeasureInsertCount);
}

void CCAddMeter::Undo()
{
    UndoRecorded(m_journal);
    // A redo replays the record; a fresh run takes the infos afresh.
    DeleteInfos();
}
