// ECRepeat: a repeat sign in a measure.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECRepeat : public ECWithTimeChild
{
    DECLARE_SERIAL(ECRepeat)

public:
    CObject *Copy(CObject *src) override;
    // 50.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    ECRepeat &operator=(const ECRepeat &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECRepeat &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECRepeat &other) const { return !(*this == other); }

protected:
    ~ECRepeat() override;
};
