// ECMordent: a mordent on a note or chord.
//
// Archive record: that of ECWithChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECMordent : public ECWithChild
{
    DECLARE_SERIAL(ECMordent)

public:
    CObject *Copy(CObject *src) override;
    // 36.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;

    ECMordent &operator=(const ECMordent &other)
    {
        ECWithChild::operator=(other);
        return *this;
    }
    int operator==(const ECMordent &other) const { return ECWithChild::operator==(other); }
    int operator!=(const ECMordent &other) const { return !(*this == other); }

protected:
    ~ECMordent() override;
};
