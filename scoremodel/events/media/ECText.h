// ECText: a text on a staff or on the conductor staff.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECText : public ECWithTime
{
    DECLARE_SERIAL(ECText)

public:
    CObject *Copy(CObject *src) override;
    // 59.
    int GetEventId() const override;
    // ECStaff, ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECText &operator=(const ECText &other)
    {
        ECWithTime::operator=(other);
        return *this;
    }
    int operator==(const ECText &other) const { return ECWithTime::operator==(other); }
    int operator!=(const ECText &other) const { return !(*this == other); }

protected:
    ~ECText() override;
};
