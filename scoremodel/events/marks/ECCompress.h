// ECCompress: a compression mark, a point of an envelope.
//
// A new one lasts MCTime::TimeZero(); operator= copies the duration.
//
// Archive record: that of ECEnvPoint, then the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>

class SCOREMODEL_API ECCompress : public ECEnvPoint
{
    DECLARE_SERIAL(ECCompress)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 78.
    int GetEventId() const override;
    // ECEnvelope, ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECCompress &operator=(const ECCompress &other);
    int operator==(const ECCompress &other) const;
    int operator!=(const ECCompress &other) const { return !(*this == other); }

protected:
    ~ECCompress() override;

    MCTime m_duration = MCTime::TimeZero();
};
