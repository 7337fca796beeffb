#include <scoremodel/commands/CCGroupStaves.h>

#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>

IMPLEMENT_DYNCREATE(CCGroupStaves, CCBase)

CCGroupStaves::CCGroupStaves() = default;

CCGroupStaves::CCGroupStaves(int first, int last, int kind)
    : m_action(MakeGroup), m_first(first), m_last(last), m_kind(kind)
{
}

CCGroupStaves::~CCGroupStaves() = default;

CCGroupStaves *CCGroupStaves::Ungroup(int id)
{
    auto *command = new CCGroupStaves;
    command->m_action = TakeGroupAway;
    command->m_id = id;
    return command;
}

int CCGroupStaves::GetCommandId()
{
    return COMMAND_ID_GROUP_STAVES;
}

int CCGroupStaves::Prepare()
{
    return CCBase::Prepare() && m_action != NoRequest && GetConductor()->GetConductorStaff() ? 1 : 0;
}

int CCGroupStaves::Process()
{
    MCGroup &groups = GetConductor()->GetConductorStaff()->GetGroup();
    m_primaryBefore.Copy(groups.GetPrimaryGroup());
    m_secondaryBefore.Copy(groups.GetSecondaryGroup());
    if (m_action == MakeGroup)
    {
        int id = -1;
        if (!GetConductor()->GetConductorStaff()->GroupStaves(m_first, m_last, m_kind, id))
            return 0;
        m_id = id;
    }
    else
    {
        int first = 0, last = 0, kind = 0;
        if (!groups.GetGroupInfo(m_id, first, last, kind))
            return 0;
        groups.RemoveGroup(m_id);
    }
    return CCBase::Process();
}

void CCGroupStaves::Undo()
{
    ECConductorStaff *staff = GetConductor() ? GetConductor()->GetConductorStaff() : nullptr;
    if (!staff)
        return;
    staff->GetGroup().GetPrimaryGroup().Copy(m_primaryBefore);
    staff->GetGroup().GetSecondaryGroup().Copy(m_secondaryBefore);
}
