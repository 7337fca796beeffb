#include <scoremodel/actions/ACDeltaTime.h>

#include <scoremodel/events/base/ECBase.h>

ACDeltaTime::ACDeltaTime() : m_start(MCTime::TimeZero()), m_end(MCTime::TimeMax())
{
}

ACDeltaTime::ACDeltaTime(const MCTime &delta, const MCTime &start, const MCTime &end, int mode)
    : m_delta(delta), m_start(start), m_end(end)
{
    SetRangeMode(mode);
}

ACDeltaTime::~ACDeltaTime() = default;

int ACDeltaTime::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    MCTime *time = e->GetTime();
    if (!time)
        return ResultContinue;
    if (*time > m_end)
        return ResultLeave;
    if (ACTimeInRange(*time, m_start, m_end, m_nRangeMode))
    {
        MCTime moved(*time);
        moved += m_delta;
        if (moved < MCTime::TimeZero())
            moved = MCTime::TimeZero();
        e->SetTime(&moved);
    }
    return ResultContinue;
}

void ACDeltaTime::SetTimeRange(const MCTime &start, const MCTime &end)
{
    m_start = start;
    m_end = end;
}

void ACDeltaTime::SetTimeRange(const MCTime &start, const MCTime &end, int mode)
{
    SetTimeRange(start, end);
    SetRangeMode(mode);
}

void ACDeltaTime::SetRangeMode(int mode)
{
    if (ACIsRangeMode(mode))
        m_nRangeMode = mode;
}
