#include <scoremodel/actions/ACOffsetBase.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>

ACOffsetBase::ACOffsetBase(int bReverse) : ACBase(bReverse)
{
}

ACOffsetBase::~ACOffsetBase() = default;

int ACOffsetBase::Apply(EventList *list, int bContinue)
{
    return ACBase::Apply(list, bContinue);
}

int ACOffsetBase::Apply(ECBase *e)
{
    // The field holds the pair of the event being visited; the outer event's
    // value comes back when this one is done.
    const MCJianpu::Pair outerSaved = m_savedPair;
    m_savedPair = m_jianpu.GetPair();
    const int savedMode = m_jianpu.GetMode();

    int result;
    if (savedMode == MCJianpu::ModeBoth && IsCheckOffsetObj(e))
    {
        m_jianpu.SetMode(MCJianpu::ModeFirst);
        ACBase::Apply(e);
        m_jianpu.SetPair(m_savedPair);
        m_jianpu.SetMode(MCJianpu::ModeSecond);
        result = ACBase::Apply(e);
    }
    else
    {
        result = ACBase::Apply(e);
    }

    m_jianpu.SetPair(m_savedPair);
    m_jianpu.SetMode(savedMode);
    m_savedPair = outerSaved;
    return result;
}

void ACOffsetBase::SetJianpuInfo(MCJianpu &info)
{
    m_jianpu = info;
}

MCJianpu &ACOffsetBase::GetJianpuInfo()
{
    return m_jianpu;
}

int ACOffsetBase::IsCheckOffsetObj(ECBase *e)
{
    if (!e)
        return 0;
    switch (e->GetEventId())
    {
    case EVENT_ID_CONDUCTOR_MEASURE:
    case EVENT_ID_MEASURE:
    case EVENT_ID_SLUR:
    case EVENT_ID_TEMPO:
    case EVENT_ID_TEXT:
    case EVENT_ID_TIE:
        return 1;
    default:
        return 0;
    }
}
