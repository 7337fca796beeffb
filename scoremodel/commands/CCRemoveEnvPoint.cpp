#include <scoremodel/commands/CCRemoveEnvPoint.h>

#include <scoremodel/commands/CCAddEnvPoint.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>

IMPLEMENT_DYNCREATE(CCRemoveEnvPoint, CCRemove)

CCRemoveEnvPoint::CCRemoveEnvPoint() = default;

CCRemoveEnvPoint::CCRemoveEnvPoint(ECBase *event)
{
    Remove(event);
}

CCRemoveEnvPoint::~CCRemoveEnvPoint() = default;

int CCRemoveEnvPoint::GetCommandId()
{
    return COMMAND_ID_REMOVE_ENV_POINT;
}

CCRemoveItem *CCRemoveEnvPoint::Remove(ECBase *event)
{
    if (!event || !(event->IsKindOf(RUNTIME_CLASS(ECEnvPoint))))
        return nullptr;
    return CCRemove::Remove(event);
}

int CCRemoveEnvPoint::Process()
{
    if (!CCRemove::Process())
        return 0;
    RefreshOwnersOf(m_removeList);
    return 1;
}

void CCRemoveEnvPoint::Undo()
{
    if (m_removeList.IsEmpty())
        return;
    _RestoreParentChildRelation();
    ApplyAddOf<CCAddEnvPoint>(m_removeList, m_direct, m_order, IsSynchronous(), GetTarget());
    m_bRelationPending = 0;
}
