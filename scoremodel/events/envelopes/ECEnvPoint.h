// ECEnvPoint: one value of an envelope at a time.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECEnvPoint : public ECWithTime
{
    DECLARE_SERIAL(ECEnvPoint)

public:
    CObject *Copy(CObject *src) override;
    // 23.
    int GetEventId() const override;
    // ECEnvelope.
    int GetParentTypes(CArray<int, int> &types) override;

    ECEnvPoint &operator=(const ECEnvPoint &other)
    {
        ECWithTime::operator=(other);
        return *this;
    }
    int operator==(const ECEnvPoint &other) const { return ECWithTime::operator==(other); }
    int operator!=(const ECEnvPoint &other) const { return !(*this == other); }

protected:
    ~ECEnvPoint() override;
};
