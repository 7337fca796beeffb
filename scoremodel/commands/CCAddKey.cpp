#include <scoremodel/commands/CCAddKey.h>

#include <scoremodel/commands/CCRemoveKey.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>

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
    for (POSITION pos = m_addList.GetHeadPosition(); pos;)
    {
        CCAddItem *item = m_addList.GetNext(pos);
        ECBase *child = item->GetChild();
        if (item->GetParent() || !child->GetTime())
            continue;
        // Only a measure that stands already: making one would run a
        // command of its own in the middle of this one.
        if (ECMeasure *measure = GetConductor()->GetMeasure(child->GetTrack(), *child->GetTime(), 0, 0))
            item->SetParent(measure);
    }
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
