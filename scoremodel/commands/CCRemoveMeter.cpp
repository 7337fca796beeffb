#include <scoremodel/commands/CCRemoveMeter.h>

#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/MeasureRecut.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>

using namespace measure_recut;

IMPLEMENT_DYNCREATE(CCRemoveMeter, CCRemove)

CCRemoveMeter::CCRemoveMeter() = default;

CCRemoveMeter::CCRemoveMeter(ECBase *meter)
{
    Remove(meter);
}

CCRemoveMeter::~CCRemoveMeter()
{
    delete m_pRemovedInfo;
    DeleteInfos();
}

void CCRemoveMeter::DeleteInfos()
{
    delete m_pPreviousInfo;
    delete m_pNextInfo;
    m_pPreviousInfo = nullptr;
    m_pNextInfo = nullptr;
}

int CCRemoveMeter::GetCommandId()
{
    return COMMAND_ID_REMOVE_METER;
}

CCRemoveItem *CCRemoveMeter::Remove(ECBase *event)
{
    if (m_pRemovedInfo || !event || event->GetEventId() != EVENT_ID_METER)
        return nullptr;
    auto *meter = static_cast<ECMeter *>(event);
    m_pRemovedInfo = new CCMeterInfo(meter, *meter->GetTime(), MCTime(BarLength(meter)));
    m_pRemovedInfo->SetRemove(1);
    for (POSITION pos = meter->GetMirrors().GetHeadPosition(); pos;)
        if (ECBase *mirror = meter->GetMirrors().GetNext(pos))
            CCRemove::Remove(mirror);
    return CCRemove::Remove(event);
}

CCMeterInfo *CCRemoveMeter::GetMeterInfo(int i)
{
    return i == 0 ? m_pRemovedInfo : i == 1 ? m_pPreviousInfo : i == 2 ? m_pNextInfo : nullptr;
}

ECMeter *CCRemoveMeter::GetMeter(int i)
{
    return CCMeterInfo::MeterOf(GetMeterInfo(i));
}

MCTime CCRemoveMeter::GetMeterTime(int i)
{
    return CCMeterInfo::TimeOf(GetMeterInfo(i));
}

MCTime CCRemoveMeter::GetMeterDuration(int i)
{
    return CCMeterInfo::DurationOf(GetMeterInfo(i));
}

int CCRemoveMeter::Prepare()
{
    if (!CCRemove::Prepare())
        return 0;
    if (IsRedo(m_journal))
        return 1;
    m_pConductorStaff = ConductorStaffOf(GetConductor());
    if (!m_pRemovedInfo || !m_pConductorStaff)
        return 0;
    ECMeter *removed = m_pRemovedInfo->GetMeter();
    m_pRemovedInfo->GetTime() = *removed->GetTime();
    DeleteInfos();
    ECMeter *previous = GetConductor()->GetMeterBeforeTime(m_pRemovedInfo->GetTime());
    if (!previous || previous == removed)
        return 0; // the first meter stays
    m_pPreviousInfo = new CCMeterInfo(previous, *previous->GetTime(), MCTime(BarLength(previous)));
    if (ECMeter *next = NextMeter(m_pConductorStaff, removed))
    {
        m_pNextInfo = new CCMeterInfo(next, *next->GetTime(), MCTime(BarLength(next)));
        m_pNextInfo->SetRemove(ShouldCheckRedundance() && *next == *previous);
    }
    return 1;
}

int CCRemoveMeter::Process()
{
    if (!CCBase::Process())
        return 0;
    RunRecorded(this, m_journal, [this] {
        DoRemoveMeter();
        DoRemove(); // the mirrors; the meter is out already
        if (m_pNextInfo && m_pNextInfo->ShouldRemove())
            RemoveRedundantMeter(m_pNextInfo->GetMeter(), GetTarget());
    });
    return 1;
}

void CCRemoveMeter::DoRemoveMeter()
{
    if (!m_pRemovedInfo || !m_pPreviousInfo)
        return;
    ECConductor *conductor = GetConductor();
    ECMeter *removed = m_pRemovedInfo->GetMeter();
    const float oldLength = m_pRemovedInfo->GetDuration().GetSeconds();
    const float newLength = m_pPreviousInfo->GetDuration().GetSeconds();
    MCTime start, end;
    conductor->GetMeterScope(removed, start, end);
    if (start == MCTime::TimeNull())
        return; // not in the meter envelope
    ECBase::EventList columns;
    conductor->GetMeasures(0, start, end, columns);
    const MCTime shift((newLength - oldLength) * static_cast<float>(columns.GetCount()));
    ECPerformance *document = GetTarget();

    if (newLength != oldLength)
        ScaleFlowControl(document, start, end, newLength / oldLength, shift);
    if (shift != MCTime::TimeZero())
    {
        ShiftFrom(document, shift, end, {EVENT_ID_FLOW_CONTROL, EVENT_ID_REST, EVENT_ID_BARLINE, EVENT_ID_MIRROR});
        m_pConductorStaff->GetMaxMeasureEndTime() += shift;
    }
    end = Retime(columns, start, newLength);
    if (shift > MCTime::TimeZero())
        end += shift;
    if (m_pRemovedInfo->ShouldRemove())
        removed->RemoveFromParents();
    SortTracks(conductor);
    RefreshEnvelopes(document);

    AdjustChildren(document, start, end, newLength > oldLength, m_nMeasureInsertLocation, m_nMeasureInsertCount);
}

void CCRemoveMeter::Undo()
{
    UndoRecorded(m_journal);
    DeleteInfos();
}
