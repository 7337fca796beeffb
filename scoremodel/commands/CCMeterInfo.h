// CCMeterInfo: a snapshot of one meter for the meter commands: the meter,
// the time it stands at, its bar length, and whether the command is to
// remove it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>

class ECMeter;

class SCOREMODEL_API CCMeterInfo
{
public:
    // Holds a reference on `meter` (null allowed) for its own life.
    CCMeterInfo(ECMeter *meter, const MCTime &time, const MCTime &duration);
    CCMeterInfo(const CCMeterInfo &) = delete;
    CCMeterInfo &operator=(const CCMeterInfo &) = delete;
    ~CCMeterInfo();

    ECMeter *GetMeter() const { return m_pMeter; }
    MCTime &GetTime() { return m_time; }
    MCTime &GetDuration() { return m_duration; }
    int ShouldRemove() const { return m_bRemove; }
    void SetRemove(int remove) { m_bRemove = remove; }

    // The same through a pointer that may be null: null and TimeNull then.
    static ECMeter *MeterOf(const CCMeterInfo *info) { return info ? info->m_pMeter : nullptr; }
    static MCTime TimeOf(const CCMeterInfo *info) { return info ? info->m_time : MCTime::TimeNull(); }
    static MCTime DurationOf(const CCMeterInfo *info) { return info ? info->m_duration : MCTime::TimeNull(); }

private:
    ECMeter *m_pMeter;
    MCTime m_time;
    MCTime m_duration;
    int m_bRemove = 0;
};
