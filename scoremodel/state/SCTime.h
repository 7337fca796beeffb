// SCTime: the current time moved (the cursor, playback), with the lead-in
// the host counts before it.
//
// s_actionCount is the host's count of time changes in progress, so it can
// tell its own echo from a move made elsewhere.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCTime : public SCBase
{
public:
    explicit SCTime(unsigned int code = 0) : SCBase(code), m_time(MCTime::TimeNull()) {}

    const MCTime &GetTime() const { return m_time; }
    void SetTime(const MCTime &time) { m_time = time; }
    // The lead-in: whole measures, then pulses.
    void SetLeadIn(int measures, int pulses)
    {
        m_nLeadInMeasure = measures;
        m_nLeadInPulse = pulses;
    }
    int GetLeadInPulse() const { return m_nLeadInPulse; }
    int GetLeadInMeasure() const { return m_nLeadInMeasure; }

    static int s_actionCount;

private:
    MCTime m_time;
    int m_nLeadInMeasure = 0;
    int m_nLeadInPulse = 0;
};
