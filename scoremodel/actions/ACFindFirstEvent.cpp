#include <scoremodel/actions/ACFindFirstEvent.h>

#include <scoremodel/events/base/ECBase.h>

ACFindFirstEvent::ACFindFirstEvent(int n) : ACEventTypes(n)
{
}

ACFindFirstEvent::~ACFindFirstEvent() = default;

int ACFindFirstEvent::BeginAction()
{
    int result = ACBase::BeginAction();
    m_pEvent = nullptr;
    return result;
}

int ACFindFirstEvent::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (!MatchesType(e->GetEventId()))
        return ResultContinue;
    m_pEvent = e;
    return ResultStop;
}
