#include <scoremodel/actions/ACFindTime.h>

#include <scoremodel/events/base/ECBase.h>

ACFindTime::ACFindTime(const MCTime &start, const MCTime &end, int mode) : ACFindEvents(1), m_start(start), m_end(end)
{
    SetRangeMode(mode);
}

ACFindTime::~ACFindTime() = default;

int ACFindTime::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    MCTime *time = e->GetTime();
    if (!time)
        return ResultContinue;
    if (*time > m_end)
        return ResultLeave;
    if (ACTimeInRange(*time, m_start, m_end, m_nRangeMode) && MatchesType(e->GetEventId()))
        m_events.AddTail(e);
    return ResultContinue;
}

void ACFindTime::SetTimeRange(const MCTime &start, const MCTime &end)
{
    m_start = start;
    m_end = end;
}

void ACFindTime::SetTimeRange(const MCTime &start, const MCTime &end, int mode)
{
    SetTimeRange(start, end);
    SetRangeMode(mode);
}

void ACFindTime::SetRangeMode(int mode)
{
    if (ACIsRangeMode(mode))
        m_nRangeMode = mode;
}
