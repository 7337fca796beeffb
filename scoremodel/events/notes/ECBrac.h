// ECBrac: a bracket or brace that joins staves, placed at a conductor
// measure.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECBrac : public ECBase
{
    DECLARE_SERIAL(ECBrac)

public:
    CObject *Copy(CObject *src) override;
    // 8.
    int GetEventId() const override;
    // ECConductorMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    ECBrac &operator=(const ECBrac &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECBrac &other) const { return ECBase::operator==(other); }
    int operator!=(const ECBrac &other) const { return !(*this == other); }

protected:
    ~ECBrac() override;
};
