// ECPedal: a pedal mark, a point of a controller envelope.
//
// A new one lasts MCTime::TimeZero(); operator= copies the duration.
//
// Archive record: that of ECControlChange, then the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECControllerPoints.h>

class SCOREMODEL_API ECPedal : public ECControlChange
{
    DECLARE_SERIAL(ECPedal)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 43.
    int GetEventId() const override;
    // ECEnvelope, ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECPedal &operator=(const ECPedal &other);
    int operator==(const ECPedal &other) const;
    int operator!=(const ECPedal &other) const { return !(*this == other); }

protected:
    ~ECPedal() override;

    MCTime m_duration = MCTime::TimeZero();
};
