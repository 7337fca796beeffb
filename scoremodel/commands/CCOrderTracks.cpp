#include <scoremodel/commands/CCOrderTracks.h>

#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECTrack.h>

IMPLEMENT_DYNCREATE(CCOrderTracks, CCBase)

CCOrderTracks::CCOrderTracks() = default;

CCOrderTracks::CCOrderTracks(const CArray<int, int> &order)
{
    for (INT_PTR i = 0; i < order.GetSize(); ++i)
        m_order.push_back(order[i]);
}

CCOrderTracks::~CCOrderTracks()
{
    ReleaseStaves();
}

void CCOrderTracks::ReleaseStaves()
{
    for (ECTrack *staff : m_before)
        staff->ReleaseHold();
    m_before.clear();
}

int CCOrderTracks::GetCommandId()
{
    return COMMAND_ID_ORDER_TRACKS;
}

int CCOrderTracks::Prepare()
{
    return CCBase::Prepare() && !m_order.empty() ? 1 : 0;
}

int CCOrderTracks::Process()
{
    ECConductor *conductor = GetConductor();
    const int count = conductor->GetMaxTrackNumber(ECConductor::TrackStaff);
    if (count != static_cast<int>(m_order.size()))
        return 0;
    std::vector<bool> named(static_cast<size_t>(count) + 1, false);
    for (int number : m_order)
    {
        if (number < 1 || number > count || named[static_cast<size_t>(number)])
            return 0;
        named[static_cast<size_t>(number)] = true;
    }
    std::vector<ECTrack *> before;
    for (int number = 1; number <= count; ++number)
    {
        ECTrack *staff = conductor->GetTrack(ECConductor::TrackStaff, number, 0);
        if (!staff)
            return 0;
        before.push_back(staff);
    }
    // A redo finds the order it made undone: hold the staves once, by the
    // latest lookup, for as long as the command may undo.
    for (ECTrack *staff : before)
        staff->Ref();
    ReleaseStaves();
    m_before = before;

    std::vector<ECTrack *> after;
    for (int number : m_order)
        after.push_back(m_before[static_cast<size_t>(number - 1)]);
    Place(after);
    return CCBase::Process();
}

void CCOrderTracks::Undo()
{
    if (GetConductor() && !m_before.empty())
        Place(m_before);
}

void CCOrderTracks::Place(const std::vector<ECTrack *> &staves)
{
    ECConductor *conductor = GetConductor();
    for (auto it = staves.rbegin(); it != staves.rend(); ++it)
        conductor->RemoveTrack(*it);
    for (size_t i = 0; i < staves.size(); ++i)
        conductor->InsertTrack(staves[i], static_cast<int>(i) + 1);
}
