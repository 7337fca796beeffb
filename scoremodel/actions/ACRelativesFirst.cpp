#include <scoremodel/actions/ACRelativesFirst.h>

#include <scoremodel/events/base/ECBase.h>

ACRelativesFirst::ACRelativesFirst(int bReverse) : ACBase(bReverse)
{
}

ACRelativesFirst::~ACRelativesFirst() = default;

int ACRelativesFirst::Apply(ECBase *e)
{
    if (!EnsureBegun())
        return ResultFailed;
    if (!e)
        return ResultFailed;

    const bool bypassed = ShouldBypass(e) != 0;
    int result = ResultContinue;

    EventList *list = GetFollowList(e);
    if (list && !list->IsEmpty() && EnterLevel(bypassed))
    {
        if (!EnterNesting())
        {
            LeaveLevel(bypassed);
            return ResultFailed;
        }
        for (POSITION pos = list->GetHeadPosition(); pos;)
        {
            ECBase *relative = list->GetNext(pos);
            result = Apply(relative);
            if (result == ResultFailed || result == ResultStop || result == ResultLeave)
                break;
        }
        LeaveNesting();
        LeaveLevel(bypassed);
    }

    if (result != ResultFailed && result != ResultStop)
    {
        result = DoAction(e);
        if (result == ResultContinue && ShouldClip(e))
            result = ResultSkip;
    }

    if (!m_bInList)
        EndAction();
    return result;
}
