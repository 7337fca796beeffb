#include <scoremodel/commands/CCAddClef.h>

#include <scoremodel/commands/CCRemoveClef.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>

IMPLEMENT_DYNCREATE(CCAddClef, CCAdd)

CCAddClef::CCAddClef() = default;

CCAddClef::CCAddClef(ECBase *event, ECBase *parent)
{
    FCMidi none = FCMidi::MidiNull();
    Add(event, parent, none);
}

CCAddClef::~CCAddClef() = default;

int CCAddClef::GetCommandId()
{
    return COMMAND_ID_ADD_CLEF;
}

CCAddItem *CCAddClef::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    if (!child || !(child->GetEventId() == EVENT_ID_CLEF))
        return nullptr;
    return CCAdd::Add(child, parent, midi);
}

int CCAddClef::Prepare()
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

int CCAddClef::Process()
{
    if (!CCAdd::Process())
        return 0;
    RefreshOwnersOf(m_addList);
    return 1;
}

void CCAddClef::Undo()
{
    if (m_addList.IsEmpty())
        return;
    _CashParentChildRelation();
    ApplyRemoveOf<CCRemoveClef>(m_addList, IsSynchronous(), GetTarget());
    m_bRelationPending = 1;
}
