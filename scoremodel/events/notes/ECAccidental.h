// ECAccidental: the accidental written before a note.
//
// Archive record: that of ECBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECAccidental : public ECBase
{
    DECLARE_SERIAL(ECAccidental)

public:
    CObject *Copy(CObject *src) override;
    // 1.
    int GetEventId() const override;
    // ECNote, ECGraceNote.
    int GetParentTypes(CArray<int, int> &types) override;

    ECAccidental &operator=(const ECAccidental &other)
    {
        ECBase::operator=(other);
        return *this;
    }
    int operator==(const ECAccidental &other) const { return ECBase::operator==(other); }
    int operator!=(const ECAccidental &other) const { return !(*this == other); }

protected:
    ~ECAccidental() override;
};
