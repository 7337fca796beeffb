// ECKey: a key signature in a measure.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECKey : public ECWithTime
{
    DECLARE_SERIAL(ECKey)

public:
    CObject *Copy(CObject *src) override;
    // 29.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    ECKey &operator=(const ECKey &other)
    {
        ECWithTime::operator=(other);
        return *this;
    }
    int operator==(const ECKey &other) const { return ECWithTime::operator==(other); }
    int operator!=(const ECKey &other) const { return !(*this == other); }

protected:
    ~ECKey() override;
};
