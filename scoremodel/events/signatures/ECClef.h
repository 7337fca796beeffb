// ECClef: a clef in a measure.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECClef : public ECWithTime
{
    DECLARE_SERIAL(ECClef)

public:
    CObject *Copy(CObject *src) override;
    // 14.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    ECClef &operator=(const ECClef &other)
    {
        ECWithTime::operator=(other);
        return *this;
    }
    int operator==(const ECClef &other) const { return ECWithTime::operator==(other); }
    int operator!=(const ECClef &other) const { return !(*this == other); }

protected:
    ~ECClef() override;
};
