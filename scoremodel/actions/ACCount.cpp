#include <scoremodel/actions/ACCount.h>

#include <scoremodel/events/base/ECBase.h>

ACCount::ACCount(int n) : ACEventTypes(n)
{
}

ACCount::~ACCount() = default;

int ACCount::BeginAction()
{
    int result = ACBase::BeginAction();
    m_nEventCount = 0;
    return result;
}

int ACCount::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (MatchesType(e->GetEventId()))
        ++m_nEventCount;
    return ResultContinue;
}
