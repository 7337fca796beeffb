// ECFlowControl: a flow-control mark on the conductor staff.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECFlowControl : public ECWithTimeChild
{
    DECLARE_SERIAL(ECFlowControl)

public:
    CObject *Copy(CObject *src) override;
    // 24.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECFlowControl &operator=(const ECFlowControl &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECFlowControl &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECFlowControl &other) const { return !(*this == other); }

protected:
    ~ECFlowControl() override;
};
