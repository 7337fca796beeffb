// ECMeterEnv: the envelope that holds all meters of a document in time
// order.
//
// Archive record: that of ECEnvelope.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvelope.h>

class SCOREMODEL_API ECMeterEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECMeterEnv)

public:
    CObject *Copy(CObject *src) override;
    // 34.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECMeterEnv &operator=(const ECMeterEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECMeterEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECMeterEnv &other) const { return !(*this == other); }

protected:
    ~ECMeterEnv() override;
};
