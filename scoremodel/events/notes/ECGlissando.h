// ECGlissando: a glissando between notes, hung under the staff.
//
// A tie, slur or glissando keeps no child once its last note goes.
//
// Archive record: that of ECGroup.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECGroup.h>

class SCOREMODEL_API ECGlissando : public ECGroup
{
    DECLARE_SERIAL(ECGlissando)

public:
    CObject *Copy(CObject *src) override;
    // 26.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // The group's removal; when no note is left, the other children go too.
    int RemoveChild(ECBase *child, int deep) override;

    ECGlissando &operator=(const ECGlissando &other)
    {
        ECGroup::operator=(other);
        return *this;
    }
    int operator==(const ECGlissando &other) const { return ECGroup::operator==(other); }
    int operator!=(const ECGlissando &other) const { return !(*this == other); }

protected:
    ~ECGlissando() override;
};
