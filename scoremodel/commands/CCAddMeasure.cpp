#include <scoremodel/commands/CCAddMeasure.h>

#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/MeasureRecut.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <utility>
#include <vector>

using namespace measure_recut;

IMPLEMENT_DYNCREATE(CCAddMeasure, CCAdd)

CCAddMeasure::CCAddMeasure() = default;

CCAddMeasure::CCAddMeasure(int count, int index) : m_nInsertCount(count), m_nInsertIndex(index)
{
}

CCAddMeasure::~CCAddMeasure() = default;

int CCAddMeasure::GetCommandId()
{
    return COMMAND_ID_ADD_MEASURE;
}

int CCAddMeasure::Prepare()
{
    if (!CCAdd::Prepare())
        return 0;
    if (IsRedo(m_journal))
        return 1;
    m_pConductorStaff = ConductorStaffOf(GetConductor());
    if (!m_pConductorStaff || m_nInsertCount < 0)
        return 0;
    const int last = m_pConductorStaff->GetMaxMeasureNumber();
    if (m_nInsertIndex > last || m_nInsertIndex < 0)
        m_nInsertIndex = last + 1;
    if (m_nInsertIndex == 0)
    {
        MCTime zero = MCTime::TimeZero();
        ECMeter *first = GetConductor()->GetMeterAtTime(zero);
        if (first && first->GetPickupRole() == 2)
            m_nInsertIndex = 1;
    }
    if (!CheckMeter())
        return 0;
    PrepareAdd();
    return 1;
}

int CCAddMeasure::CheckMeter()
{
    const int last = m_pConductorStaff->GetMaxMeasureNumber();
    if (m_nInsertIndex > last)
        m_time = m_pConductorStaff->GetMaxMeasureEndTime();
    else
        m_time = *m_pConductorStaff->GetConductorMeasures().GetAt(m_nInsertIndex)->GetTime();
    ECConductor *conductor = GetConductor();
    // New bars before a meter change are bars of the meter before it.
    m_pMeter = m_time == MCTime::TimeZero() ? conductor->GetMeterAtTime(m_time) : conductor->GetMeterBeforeTime(m_time);
    if (m_pMeter && m_pMeter->GetPickupRole() == 2)
        m_pMeter = conductor->GetDocMeter();
    return m_pMeter ? 1 : 0;
}

void CCAddMeasure::PrepareAdd()
{
    m_moveList.RemoveAll();
    m_insertList.RemoveAll();
    if (m_time == MCTime::TimeZero())
    {
        ACFindTime find(m_time, m_time, ACRangeClosed);
        find.SetDepth(3);
        find.AddEvtType(EVENT_ID_CLEF);
        find.AddEvtType(EVENT_ID_KEY);
        find.Apply(GetConductor());
        for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
            m_moveList.AddTail(find.GetEvents().GetNext(pos));
    }
    int columns = 0;
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
        if (ECBase *child = m_addList.GetNext(pos)->GetChild())
            if (child->GetEventId() == EVENT_ID_CONDUCTOR_MEASURE || child->GetEventId() == EVENT_ID_MEASURE)
            {
                m_insertList.AddTail(child);
                columns += child->GetEventId() == EVENT_ID_CONDUCTOR_MEASURE ? 1 : 0;
            }
    if (columns > 0)
        m_nInsertCount = columns;
}

int CCAddMeasure::Process()
{
    if (!CCBase::Process())
        return 0;
    // DoAdd ends by rebuilding the staff caches.
    RunRecorded(this, m_journal, [this] { DoAdd(); });
    return 1;
}

namespace
{
// The track number of the measure that holds a clef or key.
int TrackOfMeasure(ECBase *event)
{
    for (POSITION pos = event->GetParents()->GetHeadPosition(); pos;)
        if (ECBase *parent = event->GetParents()->GetNext(pos))
            if (parent->GetEventId() == EVENT_ID_MEASURE)
                return parent->GetTrack();
    return -1;
}
} // namespace

void CCAddMeasure::DoAdd()
{
    if (m_nInsertCount <= 0)
        return;
    ECConductor *conductor = GetConductor();
    ECPerformance *document = GetTarget();
    const MCTime shift(BarLength(m_pMeter) * static_cast<float>(m_nInsertCount));

    std::vector<std::pair<ECBase *, int>> moved;
    for (POSITION pos = m_moveList.GetHeadPosition(); pos;)
    {
        ECBase *event = m_moveList.GetNext(pos);
        moved.emplace_back(event, TrackOfMeasure(event));
        event->RemoveFromParents(); // the list holds it
    }
    // At time zero the tracks and every envelope's opening points stay.
    std::vector<ECBase *> stay;
    if (m_time == MCTime::TimeZero())
    {
        ACFindTime find(m_time, m_time, ACRangeClosed);
        find.Apply(document);
        for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
        {
            ECBase *event = find.GetEvents().GetNext(pos);
            const int id = event->GetEventId();
            if (id == EVENT_ID_STAFF || id == EVENT_ID_CONDUCTOR_STAFF || id == EVENT_ID_WAVE_TRACK ||
                event->IsKindOf(RUNTIME_CLASS(ECEnvPoint)))
                stay.push_back(event);
        }
    }
    ShiftFrom(document, shift, m_time, {});
    for (ECBase *event : stay)
        *event->GetTime() = MCTime::TimeZero();
    SortTracks(conductor);
    RefreshEnvelopes(document);
    m_pConductorStaff->RebuildStaffCaches();

    if (!m_insertList.IsEmpty())
        m_pConductorStaff->InsertMeasures(m_nInsertIndex, m_insertList, m_time, m_pMeter);
    else
        m_pConductorStaff->InsertMeasures(m_nInsertIndex, m_nInsertCount, m_time, m_pMeter);

    for (auto &[event, track] : moved)
    {
        MCTime *time = event->GetTime();
        ECMeasure *measure = nullptr;
        if (*time == MCTime::TimeZero())
        {
            measure = conductor->GetMeasure(track, MCTime::TimeZero(), 0, 1);
            if (measure)
                *time = *measure->GetTime();
        }
        else
        {
            const int number = event->GetEventId() == EVENT_ID_CLEF ? conductor->GetMeasureNumberBeforeTime(*time)
                                                                    : conductor->GetMeasureNumberAtTime(*time);
            measure = conductor->GetMeasure(track, number);
        }
        if (measure)
            measure->AddChild(event, 1);
    }
    m_moveList.RemoveAll();
    m_pConductorStaff->RebuildStaffCaches();
}

void CCAddMeasure::Undo()
{
    UndoRecorded(m_journal);
}
