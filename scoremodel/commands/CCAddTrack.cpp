#include <scoremodel/commands/CCAddTrack.h>

#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECTrack.h>

IMPLEMENT_DYNCREATE(CCAddTrack, CCBase)

CCAddTrack::CCAddTrack() = default;

CCAddTrack::CCAddTrack(ECTrack *track, int index, const FCMidi &instrument)
    : m_pTrack(track), m_nIndex(index), m_instrument(instrument)
{
    if (m_pTrack)
        m_pTrack->Ref();
}

CCAddTrack::~CCAddTrack()
{
    if (m_pTrack)
        m_pTrack->ReleaseHold();
}

int CCAddTrack::GetCommandId()
{
    return COMMAND_ID_ADD_TRACK;
}

int CCAddTrack::Prepare()
{
    return CCBase::Prepare() && m_pTrack ? 1 : 0;
}

int CCAddTrack::Process()
{
    m_nNumber = GetConductor()->InsertTrack(m_pTrack, m_nIndex);
    if (m_nNumber < 0)
        return 0;
    return CCBase::Process();
}

void CCAddTrack::Undo()
{
    if (GetConductor())
        GetConductor()->RemoveTrack(m_pTrack);
    m_nNumber = -1;
}

ECTrack *CCAddTrack::AddNow(ECPerformance *document, ECTrack *track, int index, const FCMidi &instrument)
{
    if (!track)
        return nullptr;
    // Our own holds, so that neither the command nor the track dies under
    // us whatever the manager does with the command.
    track->Ref();
    CCAddTrack *add = new CCAddTrack(track, index, instrument);
    add->Ref();
    add->SetSynchronous(1);
    add->Apply(document);
    const bool placed = add->GetTrackNumber() >= 0;
    add->Unref(1);
    if (!placed)
    {
        track->ReleaseHold();
        return nullptr;
    }
    return track->Unref(1) > 0 ? track : nullptr;
}
