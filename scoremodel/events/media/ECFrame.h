// ECFrame: a frame on the page, beside the conductor.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECFrame : public ECWithTime
{
    DECLARE_SERIAL(ECFrame)

public:
    CObject *Copy(CObject *src) override;
    // 25.
    int GetEventId() const override;
    // ECPerformance.
    int GetParentTypes(CArray<int, int> &types) override;

    ECFrame &operator=(const ECFrame &other)
    {
        ECWithTime::operator=(other);
        return *this;
    }
    int operator==(const ECFrame &other) const { return ECWithTime::operator==(other); }
    int operator!=(const ECFrame &other) const { return !(*this == other); }

protected:
    ~ECFrame() override;
};
