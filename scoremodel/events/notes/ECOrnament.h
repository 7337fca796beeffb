// ECOrnament: an ornament on a note.
//
// Archive record: that of ECWithChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECOrnament : public ECWithChild
{
    DECLARE_SERIAL(ECOrnament)

public:
    CObject *Copy(CObject *src) override;
    // 40.
    int GetEventId() const override;
    // ECNote.
    int GetParentTypes(CArray<int, int> &types) override;

    ECOrnament &operator=(const ECOrnament &other)
    {
        ECWithChild::operator=(other);
        return *this;
    }
    int operator==(const ECOrnament &other) const { return ECWithChild::operator==(other); }
    int operator!=(const ECOrnament &other) const { return !(*this == other); }

protected:
    ~ECOrnament() override;
};
