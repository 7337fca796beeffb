#include <scoremodel/commands/CCAddEnvPoint.h>

#include <scoremodel/commands/CCRemoveEnvPoint.h>
#include <scoremodel/commands/DerivedOwners.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>

IMPLEMENT_DYNCREATE(CCAddEnvPoint, CCAdd)

CCAddEnvPoint::CCAddEnvPoint() = default;

CCAddEnvPoint::CCAddEnvPoint(ECBase *event, ECBase *parent)
{
    FCMidi none = FCMidi::MidiNull();
    Add(event, parent, none);
}

CCAddEnvPoint::~CCAddEnvPoint() = default;

int CCAddEnvPoint::GetCommandId()
{
    return COMMAND_ID_ADD_ENV_POINT;
}

CCAddItem *CCAddEnvPoint::Add(ECBase *child, ECBase *parent, FCMidi &midi)
{
    if (!child || !(child->IsKindOf(RUNTIME_CLASS(ECEnvPoint))))
        return nullptr;
    return CCAdd::Add(child, parent, midi);
}

int CCAddEnvPoint::Process()
{
    if (!CCAdd::Process())
        return 0;
    RefreshOwnersOf(m_addList);
    return 1;
}

void CCAddEnvPoint::Undo()
{
    if (m_addList.IsEmpty())
        return;
    _CashParentChildRelation();
    ApplyRemoveOf<CCRemoveEnvPoint>(m_addList, IsSynchronous(), GetTarget());
    m_bRelationPending = 1;
}
