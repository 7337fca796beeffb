#include <scoremodel/commands/CCRemoveTrack.h>

#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECTrack.h>

IMPLEMENT_DYNCREATE(CCRemoveTrack, CCBase)

CCRemoveTrack::CCRemoveTrack() = default;

CCRemoveTrack::CCRemoveTrack(ECTrack *track) : m_pTrack(track)
{
    if (m_pTrack)
        m_pTrack->Ref();
}

CCRemoveTrack::~CCRemoveTrack()
{
    if (m_pTrack)
        m_pTrack->ReleaseHold();
}

int CCRemoveTrack::GetCommandId()
{
    return COMMAND_ID_REMOVE_TRACK;
}

int CCRemoveTrack::Prepare()
{
    return CCBase::Prepare() && m_pTrack ? 1 : 0;
}

int CCRemoveTrack::Process()
{
    m_nIndex = GetConductor()->GetPlace(m_pTrack);
    if (m_nIndex < 0)
        return 0;
    GetConductor()->RemoveTrack(m_pTrack);
    return CCBase::Process();
}

void CCRemoveTrack::Undo()
{
    if (GetConductor() && m_nIndex >= 0)
        GetConductor()->InsertTrack(m_pTrack, m_nIndex);
}
