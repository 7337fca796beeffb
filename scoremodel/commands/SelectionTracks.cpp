#include <scoremodel/commands/SelectionTracks.h>

#include <scoremodel/events/envelopes/ECTempo.h>

int IgnoreEvents(ECBase *event)
{
    return event && event->IsKindOf(RUNTIME_CLASS(ECTempo)) && static_cast<ECTempo *>(event)->GetTempoType() == 24;
}

int GetLowestTrack(CTypedPtrList<MCEventList, ECBase *> *events)
{
    int lowest = 0;
    if (!events)
        return 0;
    for (POSITION pos = events->GetHeadPosition(); pos;)
    {
        ECBase *event = events->GetNext(pos);
        if (!event || IgnoreEvents(event))
            continue;
        const int track = event->GetTrack();
        if (lowest == 0 || track < lowest)
            lowest = track;
    }
    return lowest;
}

void SetRelativeTracks(CTypedPtrList<MCEventList, ECBase *> *events, int base)
{
    if (!events)
        return;
    for (POSITION pos = events->GetHeadPosition(); pos;)
        if (ECBase *event = events->GetNext(pos))
            event->SetTrack(event->GetTrack() - base);
}
