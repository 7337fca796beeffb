// ECGraceNote: a grace note, hung under the note it ornaments.
//
// A note in every field, its duration included: the grace note's own
// duration is the note's stored value, which the host reads as the written
// length of the small note.
//
// Archive record: that of ECNote. Documents below version 3 hold a second
// duration after it, which a load reads past.
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
    void Serialize(CArchive &ar) override;

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
