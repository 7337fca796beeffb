#include <scoremodel/commands/CCAddClef.h>

#include <scoremodel/commands/CCRemoveClef.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/base/EventIds.h>

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
    PlaceInMeasures(m_addList, GetConductor());
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
