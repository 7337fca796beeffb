// ECTempoEnv: the tempo map of a performance, under the conductor staff.
//
// Archive record: that of ECEnvelope.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvelope.h>

class SCOREMODEL_API ECTempoEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECTempoEnv)

public:
    CObject *Copy(CObject *src) override;
    // 58.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECTempoEnv &operator=(const ECTempoEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECTempoEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECTempoEnv &other) const { return !(*this == other); }

protected:
    ~ECTempoEnv() override;
};
