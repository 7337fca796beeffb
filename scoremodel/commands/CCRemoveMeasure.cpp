#include <scoremodel/commands/CCRemoveMeasure.h>

#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/commands/CCAddMeter.h>
#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/MeasureRecut.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <algorithm>
#include <utility>
#include <vector>

using namespace measure_recut;

IMPLEMENT_DYNCREATE(CCRemoveMeasure, CCRemove)

namespace
{
ECBase *MeasureOf(ECBase *event)
{
    for (POSITION pos = event->GetParents()->GetHeadPosition(); pos;)
        if (ECBase *parent = event->GetParents()->GetNext(pos))
            if (parent->GetEventId() == EVENT_ID_MEASURE)
                return parent;
    return nullptr;
}

std::vector<ECBase *> Members(ECBase::EventList *list)
{
    std::vector<ECBase *> out;
    for (POSITION pos = list->GetHeadPosition(); pos;)
        if (ECBase *e = list->GetNext(pos))
            out.push_back(e);
    return out;
}

ECStaff *StaffOf(ECBase *event)
{
    if (ECBase *measure = MeasureOf(event))
        for (POSITION pos = measure->GetParents()->GetHeadPosition(); pos;)
            if (ECBase *parent = measure->GetParents()->GetNext(pos))
                if (parent->IsKindOf(RUNTIME_CLASS(ECStaff)))
                    return static_cast<ECStaff *>(parent);
    return nullptr;
}
} // namespace

CCRemoveMeasure::CCRemoveMeasure() = default;

CCRemoveMeasure::CCRemoveMeasure(int count, int index) : m_nRemoveCount(count), m_nRemoveIndex(index)
{
}

CCRemoveMeasure::~CCRemoveMeasure()
{
    if (m_pAddedMeter)
        m_pAddedMeter->Unref(1);
}

CCRemoveItem *CCRemoveMeasure::Remove(ECBase *)
{
    return nullptr;
}

int CCRemoveMeasure::Remove(EventList *)
{
    return 0;
}

int CCRemoveMeasure::GetCommandId()
{
    return COMMAND_ID_REMOVE_MEASURE;
}

int CCRemoveMeasure::Prepare()
{
    if (!CCRemove::Prepare())
        return 0;
    if (IsRedo(m_journal))
        return 1;
    m_pConductorStaff = ConductorStaffOf(GetConductor());
    if (!m_pConductorStaff)
        return 0;
    if (GetConductor()->GetMeterByPickupRole(2))
        ++m_nRemoveIndex;
    // The last measure number is the highest index: an index behind it
    // names no bar, and takes nothing.
    m_nLastMeasure = m_pConductorStaff->GetMaxMeasureNumber();
    m_nRemoveIndex = std::max(m_nRemoveIndex, 0);
    if (m_nRemoveIndex > m_nLastMeasure)
        m_nRemoveCount = 0;
    m_nRemoveCount = std::clamp(m_nRemoveCount, 0, std::max(m_nLastMeasure - m_nRemoveIndex + 1, 0));
    if (m_nRemoveCount > 0 && m_nRemoveCount == m_nLastMeasure + 1)
        --m_nRemoveCount; // a score keeps one bar
    return 1;
}

int CCRemoveMeasure::Process()
{
    if (!CCBase::Process())
        return 0;
    RunRecorded(this, m_journal, [this] {
        if (m_nRemoveCount <= 0)
            return;
        CheckMeterAdd();
        PrepareRemoveMeasure();
        DoRemoveMeasure();
        CheckMeterRemove();
    });
    return 1;
}

void CCRemoveMeasure::CheckMeterAdd()
{
    const int behind = m_nRemoveIndex + m_nRemoveCount;
    if (behind > m_nLastMeasure)
        return;
    ECConductor *conductor = GetConductor();
    ECConductorStaff::MeasureArray &columns = m_pConductorStaff->GetConductorMeasures();
    MCTime first = *columns.GetAt(m_nRemoveIndex)->GetTime();
    MCTime next = *columns.GetAt(behind)->GetTime();
    ECMeter *before =
        first == MCTime::TimeZero() ? conductor->GetMeterAtTime(first) : conductor->GetMeterBeforeTime(first);
    ECMeter *at = conductor->GetMeterAtTime(next);
    if (!before || !at || *before == *at || !(*at->GetTime() < next))
        return;
    // The bars behind the region are re-cut to the meter that will be in
    // force there once the region is gone.
    auto *copy = new ECMeter(*before);
    copy->Ref();
    *copy->GetTime() = next;
    auto *add = new CCAddMeter(copy, nullptr);
    ApplyNested(add, GetTarget());
    add->Unref(1);
    if (!copy->GetParents()->IsEmpty())
        m_pAddedMeter = copy; // keeps the reference
    else
        copy->Unref(1);
    m_nLastMeasure = m_pConductorStaff->GetMaxMeasureNumber();
}

void CCRemoveMeasure::PrepareRemoveMeasure()
{
    ECConductor *conductor = GetConductor();
    ECConductorStaff::MeasureArray &columns = m_pConductorStaff->GetConductorMeasures();
    const int last = m_nRemoveIndex + m_nRemoveCount - 1;
    m_start = *columns.GetAt(m_nRemoveIndex)->GetTime();
    m_end = last + 1 <= m_nLastMeasure ? *columns.GetAt(last + 1)->GetTime()
                                       : MCTime(m_pConductorStaff->GetMaxMeasureEndTime());
    m_keepList.RemoveAll();

    EventList measures;
    m_pConductorStaff->GetMeasures(ECConductorStaff::kAllTracks, m_nRemoveIndex + 1, last + 1, measures);
    for (POSITION pos = measures.GetHeadPosition(); pos;)
        CCRemove::Remove(measures.GetNext(pos));

    // What hangs beside the measures (groups under the staves), and the
    // points of every envelope: they go with the region.
    ACFindTime find(m_start, m_end, ACRangeOpenEnd);
    find.SetDepth(2);
    find.Apply(conductor);
    std::vector<ECBase *> found;
    for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
        found.push_back(find.GetEvents().GetNext(pos));
    for (POSITION pos = conductor->GetChildren()->GetHeadPosition(); pos;)
        if (ECBase *track = conductor->GetChildren()->GetNext(pos); track && track->IsKindOf(RUNTIME_CLASS(ECStaff)))
            for (ECBase *child : Members(track->GetChildren()))
                if (child->IsKindOf(RUNTIME_CLASS(ECEnvelope)))
                    for (ECBase *point : Members(child->GetChildren()))
                        if (MCTime *time = point->GetTime(); time && *time >= m_start && *time < m_end)
                            found.push_back(point);
    for (ECBase *event : found)
        if (CheckTimeZeroEvent(event))
            CCRemove::Remove(event);

    ACFindTime marks(m_start, m_end, ACRangeClosed);
    marks.SetDepth(3);
    marks.AddEvtType(EVENT_ID_CLEF);
    marks.AddEvtType(EVENT_ID_KEY);
    marks.Apply(conductor);
    for (POSITION pos = marks.GetEvents().GetHeadPosition(); pos;)
    {
        ECBase *mark = marks.GetEvents().GetNext(pos);
        const MCTime &time = *mark->GetTime();
        ECBase *measure = MeasureOf(mark);
        const bool inEarlierBar = measure && *measure->GetTime() < time;
        if (mark->GetEventId() == EVENT_ID_KEY)
        {
            if (time < m_end)
                CCRemove::Remove(mark);
        }
        else if (time == m_end)
        {
            // A change for the bar behind the region, written at the end of
            // the last removed one, stays; the bar behind keeps its own.
            if (inEarlierBar && !m_keepList.Find(mark))
                m_keepList.AddTail(mark);
        }
        else
            CCRemove::Remove(mark);
    }
}

int CCRemoveMeasure::CheckTimeZeroEvent(ECBase *event)
{
    MCTime *time = event->GetTime();
    if (!time || *time != MCTime::TimeZero())
        return 1;
    ECConductor *conductor = GetConductor();
    switch (event->GetEventId())
    {
    case EVENT_ID_BANK_LSB:
    case EVENT_ID_BANK_MSB:
    case EVENT_ID_CONDUCTOR_STAFF:
    case EVENT_ID_DYNAMIC:
    case EVENT_ID_FLOW_CONTROL:
    case EVENT_ID_PERFORMANCE:
    case EVENT_ID_PROGRAM_CHANGE:
    case EVENT_ID_STAFF:
    case EVENT_ID_TEXT:
    case EVENT_ID_WAVE_TRACK:
    case EVENT_ID_DRAWING:
        return 0;
    case EVENT_ID_CLEF:
    case EVENT_ID_KEY: {
        ECStaff *staff = StaffOf(event);
        if (!staff)
            return 0;
        const BYTE hand = ECStaff::GetCacheHand(event);
        ECBase *other = event->GetEventId() == EVENT_ID_CLEF ? static_cast<ECBase *>(staff->GetClefAtTime(m_end, hand))
                                                             : staff->GetKeyAtTime(m_end, hand);
        return other && other != event && *other->GetTime() == m_end;
    }
    case EVENT_ID_METER:
    case EVENT_ID_TEMPO: {
        ECBase *other = event->GetEventId() == EVENT_ID_METER ? static_cast<ECBase *>(conductor->GetMeterAtTime(m_end))
                                                              : conductor->GetTempoAtTime(m_end);
        return other && other != event && *other->GetTime() == m_end;
    }
    case EVENT_ID_MEASURE:
        for (POSITION pos = event->GetChildren()->GetHeadPosition(); pos;)
        {
            ECBase *child = event->GetChildren()->GetNext(pos);
            if (!child || (child->GetEventId() != EVENT_ID_CLEF && child->GetEventId() != EVENT_ID_KEY))
                continue;
            if ((*child->GetTime() == m_end || !CheckTimeZeroEvent(child)) && !m_keepList.Find(child))
                m_keepList.AddTail(child);
        }
        return 1;
    default:
        return 1;
    }
}

void CCRemoveMeasure::DoRemoveMeasure()
{
    ECConductor *conductor = GetConductor();
    ECPerformance *document = GetTarget();
    std::vector<std::pair<ECBase *, int>> kept;
    for (POSITION pos = m_keepList.GetHeadPosition(); pos;)
    {
        ECBase *event = m_keepList.GetNext(pos);
        ECBase *measure = MeasureOf(event);
        kept.emplace_back(event, measure ? measure->GetTrack() : -1);
        event->RemoveFromParents(); // the keep list holds it
    }
    m_pConductorStaff->RemoveMeasures(m_nRemoveIndex, m_nRemoveCount);
    DoRemove();
    m_pConductorStaff->RebuildStaffCaches();

    MCTime shift(m_start);
    shift -= m_end;
    ShiftFrom(document, shift, m_end, {});
    SortTracks(conductor);
    RefreshEnvelopes(document);

    for (auto &[event, track] : kept)
    {
        MCTime &time = *event->GetTime();
        ECMeasure *measure = nullptr;
        if (time == MCTime::TimeZero())
            measure = conductor->GetMeasure(track, MCTime::TimeZero(), 0, 1);
        else
        {
            if (time >= m_end)
                time += shift;
            else if (time > m_start)
                time = m_start;
            measure = conductor->GetMeasure(track, conductor->GetMeasureNumberBeforeTime(time));
            if (!measure) // nothing before the region: the new first bar
                measure = conductor->GetMeasure(track, MCTime::TimeZero(), 0, 1);
        }
        if (!measure)
            continue;
        if (time == MCTime::TimeZero())
            time = *measure->GetTime();
        measure->AddChild(event, 1);
    }
    m_keepList.RemoveAll();
    m_pConductorStaff->RebuildStaffCaches();
}

void CCRemoveMeasure::CheckMeterRemove()
{
    if (!m_pAddedMeter)
        return;
    RemoveRedundantMeter(m_pAddedMeter, GetTarget());
    m_pAddedMeter->Unref(1);
    m_pAddedMeter = nullptr;
}

void CCRemoveMeasure::Undo()
{
    UndoRecorded(m_journal);
}
