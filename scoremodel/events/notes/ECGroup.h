// ECGroup: binds events that are not neighbours in the tree (the notes of a
// beam, slur or tie).
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECGroup : public ECWithTimeChild
{
    DECLARE_SERIAL(ECGroup)

public:
    CObject *Copy(CObject *src) override;
    // 28.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECGroup &operator=(const ECGroup &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECGroup &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECGroup &other) const { return !(*this == other); }

protected:
    ~ECGroup() override;
};
