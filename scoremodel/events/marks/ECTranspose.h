// ECTranspose: a transposition mark, a point of an envelope.
//
// A new one lasts MCTime::TimeZero(); operator= copies the duration.
//
// Archive record: that of ECEnvPoint, then the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>

class SCOREMODEL_API ECTranspose : public ECEnvPoint
{
    DECLARE_SERIAL(ECTranspose)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 62.
    int GetEventId() const override;
    // ECEnvelope, ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECTranspose &operator=(const ECTranspose &other);
    int operator==(const ECTranspose &other) const;
    int operator!=(const ECTranspose &other) const { return !(*this == other); }

protected:
    ~ECTranspose() override;

    MCTime m_duration = MCTime::TimeZero();
};
