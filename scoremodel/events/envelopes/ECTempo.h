// ECTempo: a tempo point of the tempo map.
//
// Its duration is the span of a relative tempo, TimeZero for a new point.
// operator= (and so Copy) leaves the duration as it leaves the time; the
// copy constructor copies both.
//
// Archive record: that of ECEnvPoint.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>

class SCOREMODEL_API ECTempo : public ECEnvPoint
{
    DECLARE_SERIAL(ECTempo)

public:
    CObject *Copy(CObject *src) override;
    // 57.
    int GetEventId() const override;
    // ECTempoEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the base part; the duration stays, as the time does.
    ECTempo &operator=(const ECTempo &other);
    int operator==(const ECTempo &other) const;
    int operator!=(const ECTempo &other) const { return !(*this == other); }

protected:
    ~ECTempo() override;

    MCTime m_duration = MCTime::TimeZero();
};
