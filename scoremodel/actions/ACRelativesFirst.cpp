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
    if (list && !list->IsEmpty())
    {
        LevelScope level(*this, bypassed);
        if (level.GetState() == LevelScope::TooDeep)
            return ResultFailed;
        // Past the depth limit the list is skipped and the event still runs.
        if (level.GetState() == LevelScope::Entered)
        {
            for (POSITION pos = list->GetHeadPosition(); pos;)
            {
                result = Apply(list->GetNext(pos));
                if (result == ResultFailed || result == ResultStop || result == ResultLeave)
                    break;
            }
        }
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
