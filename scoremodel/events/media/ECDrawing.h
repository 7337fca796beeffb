// ECDrawing: a drawing on the conductor staff.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECDrawing : public ECBase
{
    DECLARE_SERIAL(ECDrawing)

public:
    CObject *Copy(CObject *src) override;
    // 77.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECDrawing &operator=(const ECDrawing &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECDrawing &other) const { return ECBase::operator==(other); }
    int operator!=(const ECDrawing &other) const { return !(*this == other); }

protected:
    ~ECDrawing() override;
};
