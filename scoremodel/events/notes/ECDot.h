// ECDot: a duration dot of a note, chord or rest.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECDot : public ECBase
{
    DECLARE_SERIAL(ECDot)

public:
    CObject *Copy(CObject *src) override;
    // 20.
    int GetEventId() const override;
    // ECNote, ECChord, ECRest.
    int GetParentTypes(CArray<int, int> &types) override;

    ECDot &operator=(const ECDot &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECDot &other) const { return ECBase::operator==(other); }
    int operator!=(const ECDot &other) const { return !(*this == other); }

protected:
    ~ECDot() override;
};
