// ECVideo: a video on the conductor staff.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECVideo : public ECBase
{
    DECLARE_SERIAL(ECVideo)

public:
    CObject *Copy(CObject *src) override;
    // 70.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECVideo &operator=(const ECVideo &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECVideo &other) const { return ECBase::operator==(other); }
    int operator!=(const ECVideo &other) const { return !(*this == other); }

protected:
    ~ECVideo() override;
};
