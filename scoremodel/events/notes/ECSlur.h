// ECSlur: a slur over notes, hung under the staff.
//
// Archive record: that of ECGroup.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECGroup.h>

class SCOREMODEL_API ECSlur : public ECGroup
{
    DECLARE_SERIAL(ECSlur)

public:
    CObject *Copy(CObject *src) override;
    // 54.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECSlur &operator=(const ECSlur &other)
    {
        ECGroup::operator=(other);
        return *this;
    }
    int operator==(const ECSlur &other) const { return ECGroup::operator==(other); }
    int operator!=(const ECSlur &other) const { return !(*this == other); }

protected:
    ~ECSlur() override;
};
