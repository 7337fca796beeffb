// ECMeter: a time signature on the conductor staff, a point of the meter
// envelope.
//
// Archive record: that of ECEnvPoint.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvPoint.h>

class SCOREMODEL_API ECMeter : public ECEnvPoint
{
    DECLARE_SERIAL(ECMeter)

public:
    CObject *Copy(CObject *src) override;
    // 33.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECMeter &operator=(const ECMeter &other)
    {
        ECEnvPoint::operator=(other);
        return *this;
    }
    int operator==(const ECMeter &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECMeter &other) const { return !(*this == other); }

protected:
    ~ECMeter() override;
};
