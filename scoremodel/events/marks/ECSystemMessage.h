// ECSystemMessage: a MIDI system message on the conductor staff.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECSystemMessage : public ECWithTime
{
    DECLARE_SERIAL(ECSystemMessage)

public:
    CObject *Copy(CObject *src) override;
    // 56.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECSystemMessage &operator=(const ECSystemMessage &other)
    {
        ECWithTime::operator=(other);
        return *this;
    }
    int operator==(const ECSystemMessage &other) const { return ECWithTime::operator==(other); }
    int operator!=(const ECSystemMessage &other) const { return !(*this == other); }

protected:
    ~ECSystemMessage() override;
};
