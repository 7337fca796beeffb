// ECBarline: a bar line of a conductor measure.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECBarline : public ECBase
{
    DECLARE_SERIAL(ECBarline)

public:
    CObject *Copy(CObject *src) override;
    // 5.
    int GetEventId() const override;
    // ECConductorMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    ECBarline &operator=(const ECBarline &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECBarline &other) const { return ECBase::operator==(other); }
    int operator!=(const ECBarline &other) const { return !(*this == other); }

protected:
    ~ECBarline() override;
};
