// ECGraceNote: a grace note, hung under the note it ornaments.
//
// A note in every field, its duration included.
//
// Archive record: that of ECNote.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECNote.h>

class SCOREMODEL_API ECGraceNote : public ECNote
{
    DECLARE_SERIAL(ECGraceNote)

public:
    CObject *Copy(CObject *src) override;
    // 27.
    int GetEventId() const override;
    // ECNote.
    int GetParentTypes(CArray<int, int> &types) override;

    ECGraceNote &operator=(const ECGraceNote &other)
    {
        ECNote::operator=(other);
        return *this;
    }
    int operator==(const ECGraceNote &other) const { return ECNote::operator==(other); }
    int operator!=(const ECGraceNote &other) const { return !(*this == other); }

protected:
    ~ECGraceNote() override;
};
