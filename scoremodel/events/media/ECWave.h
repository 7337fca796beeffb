// ECWave: an audio clip on a wave track.
//
// A new one lasts MCTime::TimeZero(); operator= copies the duration.
//
// Archive record: that of ECWithTimeChild, then the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECWave : public ECWithTimeChild
{
    DECLARE_SERIAL(ECWave)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 71.
    int GetEventId() const override;
    // ECWaveTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECWave &operator=(const ECWave &other);
    int operator==(const ECWave &other) const;
    int operator!=(const ECWave &other) const { return !(*this == other); }

protected:
    ~ECWave() override;

    MCTime m_duration = MCTime::TimeZero();
};
