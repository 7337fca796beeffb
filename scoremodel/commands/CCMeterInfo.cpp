#include <scoremodel/commands/CCMeterInfo.h>

#include <scoremodel/events/signatures/ECMeter.h>

CCMeterInfo::CCMeterInfo(ECMeter *meter, const MCTime &time, const MCTime &duration)
    : m_pMeter(meter), m_time(time), m_duration(duration)
{
    if (m_pMeter)
        m_pMeter->Ref();
}

CCMeterInfo::~CCMeterInfo()
{
    if (m_pMeter)
        m_pMeter->Unref(1);
}
