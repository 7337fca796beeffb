// ECRest: a rest in a measure, beam or tuplet.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECRest : public ECWithTimeChild
{
    DECLARE_SERIAL(ECRest)

public:
    CObject *Copy(CObject *src) override;
    // 51.
    int GetEventId() const override;
    // ECMeasure, ECBeam, ECTuplet.
    int GetParentTypes(CArray<int, int> &types) override;

    ECRest &operator=(const ECRest &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECRest &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECRest &other) const { return !(*this == other); }

protected:
    ~ECRest() override;
};
