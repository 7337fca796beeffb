// ECTrill: a trill on a note or chord.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECTrill : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTrill)

public:
    CObject *Copy(CObject *src) override;
    // 65.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;

    ECTrill &operator=(const ECTrill &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECTrill &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECTrill &other) const { return !(*this == other); }

protected:
    ~ECTrill() override;
};
