// ECTurn: a turn on a note or chord.
//
// Archive record: that of ECWithChild.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECTurn : public ECWithChild
{
    DECLARE_SERIAL(ECTurn)

public:
    CObject *Copy(CObject *src) override;
    // 67.
    int GetEventId() const override;
    // ECNote, ECChord.
    int GetParentTypes(CArray<int, int> &types) override;

    ECTurn &operator=(const ECTurn &other)
    {
        ECWithChild::operator=(other);
        return *this;
    }
    int operator==(const ECTurn &other) const { return ECWithChild::operator==(other); }
    int operator!=(const ECTurn &other) const { return !(*this == other); }

protected:
    ~ECTurn() override;
};
