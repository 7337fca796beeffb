// ECNote: a note, held by its measure and at the same time by its chord,
// beam and tuplet.
//
// A new note stands at time 0.0 (not at TimeNull) and lasts 1.0. operator=
// (and so Copy) copies neither the time nor the duration; the copy
// constructor copies both. operator== compares the time, the voice/track
// word and the duration.
//
// Archive record: that of ECWithTimeChild, then the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECNote : public ECWithTimeChild
{
    DECLARE_SERIAL(ECNote)

public:
    ECNote();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 37.
    int GetEventId() const override;
    // ECMeasure, ECChord, ECBeam, ECTuplet.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the base part; the duration stays, as the time does.
    ECNote &operator=(const ECNote &other);
    int operator==(const ECNote &other) const;
    int operator!=(const ECNote &other) const { return !(*this == other); }

protected:
    ~ECNote() override;

    MCTime m_duration = MCTime(1.0f);
};
