#include <scoremodel/commands/CCAddKey.h>

#include <scoremodel/commands/CCRemoveKey.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/base/EventIds.h>

IMPLEMENT_DYNCREATE(CCAddKey, CCAdd)

CCAddKey::CCAddKey() = default;

CCAddKey::CCAddKey(ECBase *event, ECBase *parent)
{
    FCMidi none = FCMidi::MidiNull();
    Add(event, parent, none);
}

CCAddKey::~CCAddKey() = default;

int CCAddKey::GetCommandId()
{
    return COMMAND_ID_ADD_KEY;
}

CCAddItem *CCAddKey::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    if (!child || !(child->GetEventId() == EVENT_ID_KEY))
        return nullptr;
    return CCAdd::Add(child, parent, midi);
}

int CCAddKey::Prepare()
{
    if (!CCAdd::Prepare())
        return 0;
    PlaceInMeasures(m_addList, GetConductor());
    return 1;
}

int CCAddKey::Process()
{
    if (!CCAdd::Process())
        return 0;
    RefreshOwnersOf(m_addList);
    return 1;
}

void CCAddKey::Undo()
{
    if (m_addList.IsEmpty())
        return;
    _CashParentChildRelation();
    ApplyRemoveOf<CCRemoveKey>(m_addList, IsSynchronous(), GetTarget());
    m_bRelationPending = 1;
}
