#include <scoremodel/actions/ACFindEvents.h>

#include <scoremodel/events/base/ECBase.h>

ACFindEvents::ACFindEvents(int n) : ACEventTypes(n)
{
}

ACFindEvents::~ACFindEvents() = default;

int ACFindEvents::BeginAction()
{
    int result = ACOffsetBase::BeginAction();
    m_events.RemoveAll();
    m_nEventCount = 0;
    return result;
}

int ACFindEvents::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (!MatchesType(e->GetEventId()))
        return ResultContinue;
    AddFound(e);
    return m_nEventCount >= m_nMaxCount ? ResultStop : ResultContinue;
}

void ACFindEvents::AddFound(ECBase *e)
{
    m_events.AddTail(e);
    ++m_nEventCount;
}
