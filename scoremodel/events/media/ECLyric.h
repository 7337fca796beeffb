// ECLyric: a lyric syllable in a measure.
//
// A new one lasts MCTime::TimeZero(); operator= copies the duration.
//
// Archive record (schema 3, the text fields of ECText): that of ECText, then
// the duration (MCTime record).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/media/ECText.h>

class SCOREMODEL_API ECLyric : public ECText
{
    DECLARE_SERIAL(ECLyric)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 30.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECLyric &operator=(const ECLyric &other);
    int operator==(const ECLyric &other) const;
    int operator!=(const ECLyric &other) const { return !(*this == other); }

protected:
    ~ECLyric() override;

    MCTime m_duration = MCTime::TimeZero();
};
