// ECTie: a tie between notes, hung under the staff.
//
// Archive record: that of ECGroup.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECGroup.h>

class SCOREMODEL_API ECTie : public ECGroup
{
    DECLARE_SERIAL(ECTie)

public:
    CObject *Copy(CObject *src) override;
    // 60.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECTie &operator=(const ECTie &other)
    {
        ECGroup::operator=(other);
        return *this;
    }
    int operator==(const ECTie &other) const { return ECGroup::operator==(other); }
    int operator!=(const ECTie &other) const { return !(*this == other); }

protected:
    ~ECTie() override;
};
