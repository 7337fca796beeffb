#include <scoremodel/commands/CCRemoveKey.h>

#include <scoremodel/commands/CCAddKey.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/base/EventIds.h>

IMPLEMENT_DYNCREATE(CCRemoveKey, CCRemove)

CCRemoveKey::CCRemoveKey() = default;

CCRemoveKey::CCRemoveKey(ECBase *event)
{
    Remove(event);
}

CCRemoveKey::~CCRemoveKey() = default;

int CCRemoveKey::GetCommandId()
{
    return COMMAND_ID_REMOVE_KEY;
}

CCRemoveItem *CCRemoveKey::Remove(ECBase *event)
{
    if (!event || !(event->GetEventId() == EVENT_ID_KEY))
        return nullptr;
    return CCRemove::Remove(event);
}

int CCRemoveKey::Process()
{
    if (!CCRemove::Process())
        return 0;
    RefreshOwnersOf(m_removeList);
    return 1;
}

void CCRemoveKey::Undo()
{
    if (m_removeList.IsEmpty())
        return;
    _RestoreParentChildRelation();
    ApplyAddOf<CCAddKey>(m_removeList, m_direct, m_order, IsSynchronous(), GetTarget());
    m_bRelationPending = 0;
}
