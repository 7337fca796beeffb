// ECTuplet: a tuplet: a group in a measure that rescales the time of its
// notes.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECTuplet : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTuplet)

public:
    CObject *Copy(CObject *src) override;
    // 66.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    ECTuplet &operator=(const ECTuplet &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECTuplet &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECTuplet &other) const { return !(*this == other); }

protected:
    ~ECTuplet() override;
};
