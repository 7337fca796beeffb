#include <scoremodel/commands/MeasureRecut.h>

#include <scoremodel/actions/ACDeltaTime.h>
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACSortChildren.h>
#include <scoremodel/commands/CCAdjustMeasureChildren.h>
#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/CCRemoveMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <vector>

namespace measure_recut
{
ECConductorStaff *ConductorStaffOf(ECConductor *conductor)
{
    return conductor ? static_cast<ECConductorStaff *>(conductor->GetTrack(ECConductor::TrackConductorStaff, 0, 1))
                     : nullptr;
}

void ShiftFrom(ECPerformance *document, const MCTime &delta, const MCTime &from, std::initializer_list<int> bypass)
{
    ACDeltaTime shift(delta, from, MCTime::TimeMax(), ACRangeOpenEnd);
    for (int id : bypass)
        shift.BypassEvtType(id);
    shift.Apply(document);
}

void ScaleFlowControl(ECPerformance *document, const MCTime &start, const MCTime &end, float ratio,
                      const MCTime &shift)
{
    // The marks are children of the conductor staff, the only parent their
    // class accepts: the search stays out of the staves.
    ECConductor *conductor = document->GetConductor();
    ECBase *score = conductor ? conductor->GetDescendant(EVENT_ID_CONDUCTOR_STAFF, 1) : nullptr;
    if (!score)
        return;
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_FLOW_CONTROL);
    find.SetDepth(1);
    find.Apply(score);
    for (POSITION pos = find.GetEvents().GetHeadPosition(); pos;)
    {
        MCTime *time = find.GetEvents().GetNext(pos)->GetTime();
        if (!time || *time < start)
            continue;
        if (*time <= end)
        {
            MCTime scaled(*time);
            scaled -= start;
            scaled *= ratio;
            scaled += start;
            *time = scaled;
        }
        else
            *time += shift;
    }
}

void SortTracks(ECConductor *conductor)
{
    ACSortChildren sort(3);
    sort.SetDepth(1);
    for (int id : {EVENT_ID_CONDUCTOR_STAFF, EVENT_ID_STAFF, EVENT_ID_WAVE_TRACK})
        sort.AddEvtType(id);
    sort.Apply(conductor);
}

MCTime Retime(ECBase::EventList &columns, MCTime start, float length)
{
    MCTime cursor = start;
    for (POSITION pos = columns.GetHeadPosition(); pos;)
    {
        static_cast<ECConductorMeasure *>(columns.GetNext(pos))->SetMeasureTime(&cursor);
        cursor += MCTime(length);
    }
    return cursor;
}

void RefreshEnvelopes(ECPerformance *document)
{
    std::vector<ECBase *> stack{document};
    while (!stack.empty())
    {
        ECBase *event = stack.back();
        stack.pop_back();
        if (event->IsKindOf(RUNTIME_CLASS(ECEnvelope)))
        {
            static_cast<ECEnvelope *>(event)->UpdateChildren();
            continue; // points hold no envelopes
        }
        // Envelopes hang under tracks and the conductor staff, never under
        // measures: the walk stays out of the measures' many events.
        if (event->GetEventId() == EVENT_ID_MEASURE || event->GetEventId() == EVENT_ID_CONDUCTOR_MEASURE)
            continue;
        if (ECBase::EventList *children = event->GetChildren())
            for (POSITION pos = children->GetHeadPosition(); pos;)
                if (ECBase *child = children->GetNext(pos))
                    stack.push_back(child);
        for (int i = 0; ECBase *member = event->GetMemberEvent(i); ++i)
            stack.push_back(member);
    }
}

int ApplyNested(CCBase *command, ECPerformance *document)
{
    command->Ref();
    command->SetSynchronous(1);
    command->SetCanUndo(0);
    return command->Apply(document);
}

ECMeter *NextMeter(ECConductorStaff *score, ECMeter *meter)
{
    ECMeterEnv *env = score ? score->FindMeterEnv() : nullptr;
    POSITION pos = env ? env->GetChildren()->Find(meter) : nullptr;
    if (pos)
        env->GetChildren()->GetNext(pos);
    return pos ? static_cast<ECMeter *>(env->GetChildren()->GetAt(pos)) : nullptr;
}

void AdjustChildren(ECPerformance *document, const MCTime &start, const MCTime &end, bool reverse, int &location,
                    int &count)
{
    auto *adjust = new CCAdjustMeasureChildren;
    adjust->SetTimeRange(start, end);
    adjust->SetReverse(reverse);
    ApplyNested(adjust, document);
    location = adjust->GetMeasureInsertLocation();
    count = adjust->GetMeasureInsertCount();
    adjust->Unref(1);
}

void RemoveRedundantMeter(ECMeter *meter, ECPerformance *document)
{
    if (!meter || meter->GetParents()->IsEmpty())
        return;
    auto *remove = new CCRemoveMeter(meter);
    ApplyNested(remove, document);
    remove->Unref(1);
}

float BarLength(ECMeter *meter)
{
    // As the score appends bars: a meter whose length wraps to zero (64/1)
    // counts as 4/4, so that bars always advance.
    const float length = meter ? meter->GetMeasureLength() : 0.0f;
    return length > 0.0f ? length : 4.0f;
}
} // namespace measure_recut
