#include <scoremodel/actions/ACSortChildren.h>

#include <scoremodel/events/base/ECBase.h>

ACSortChildren::ACSortChildren(int n) : ACEventTypes(n)
{
}

ACSortChildren::~ACSortChildren() = default;

int ACSortChildren::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (MatchesType(e->GetEventId()))
        if (EventList *children = e->GetChildren())
            children->Sort();
    return ResultContinue;
}
