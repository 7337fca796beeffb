// ECEnvelope: a time-ordered curve of values; its children are the points
// (ECEnvPoint).
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECEnvelope : public ECWithTimeChild
{
    DECLARE_SERIAL(ECEnvelope)

public:
    CObject *Copy(CObject *src) override;
    // 22.
    int GetEventId() const override;
    // ECConductorStaff, ECStaff, ECTrack, ECWaveTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    ECEnvelope &operator=(const ECEnvelope &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECEnvelope &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECEnvelope &other) const { return !(*this == other); }

protected:
    ~ECEnvelope() override;
};
