#include <scoremodel/commands/CCRemoveClef.h>

#include <scoremodel/commands/CCAddClef.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/base/EventIds.h>

IMPLEMENT_DYNCREATE(CCRemoveClef, CCRemove)

CCRemoveClef::CCRemoveClef() = default;

CCRemoveClef::CCRemoveClef(ECBase *event)
{
    Remove(event);
}

CCRemoveClef::~CCRemoveClef() = default;

int CCRemoveClef::GetCommandId()
{
    return COMMAND_ID_REMOVE_CLEF;
}

CCRemoveItem *CCRemoveClef::Remove(ECBase *event)
{
    if (!event || !(event->GetEventId() == EVENT_ID_CLEF))
        return nullptr;
    return CCRemove::Remove(event);
}

int CCRemoveClef::Process()
{
    if (!CCRemove::Process())
        return 0;
    RefreshOwnersOf(m_removeList);
    return 1;
}

void CCRemoveClef::Undo()
{
    if (m_removeList.IsEmpty())
        return;
    _RestoreParentChildRelation();
    ApplyAddOf<CCAddClef>(m_removeList, m_direct, m_order, IsSynchronous(), GetTarget());
    m_bRelationPending = 0;
}
