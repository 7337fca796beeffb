// ECDynamic: a dynamic mark, a point of a controller envelope.
//
// A new one lasts MCTime::TimeZero(); operator= copies the duration.
//
// Archive record: that of ECControlChange, then the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECControllerPoints.h>

class SCOREMODEL_API ECDynamic : public ECControlChange
{
    DECLARE_SERIAL(ECDynamic)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 21.
    int GetEventId() const override;
    // ECEnvelope, ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECDynamic &operator=(const ECDynamic &other);
    int operator==(const ECDynamic &other) const;
    int operator!=(const ECDynamic &other) const { return !(*this == other); }

protected:
    ~ECDynamic() override;

    MCTime m_duration = MCTime::TimeZero();
};
