// ECTremolo: a tremolo on a note or chord.
//
// Archive record: that of ECWithTimeChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECTremolo : public ECWithTimeChild
{
    DECLARE_SERIAL(ECTremolo)

public:
    CObject *Copy(CObject *src) override;
    // 64.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;

    ECTremolo &operator=(const ECTremolo &other)
    {
        ECWithTimeChild::operator=(other);
        return *this;
    }
    int operator==(const ECTremolo &other) const { return ECWithTimeChild::operator==(other); }
    int operator!=(const ECTremolo &other) const { return !(*this == other); }

protected:
    ~ECTremolo() override;
};
