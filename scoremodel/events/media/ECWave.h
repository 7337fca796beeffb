// ECWave: an audio clip on a wave track.
//
// The clip plays a stretch of an audio file (MCMediaFile). A new one lasts
// MCTime::TimeZero() and names no file; operator= copies the duration and
// the file.
//
// Archive record (schema 3): that of ECWithTimeChild, the duration (MCTime
// record), then the file (MCMediaFile record). Records of schema 2 end after
// the duration, and the clip names no file.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/media/MCMediaFile.h>
#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECWave : public ECWithTimeChild
{
    DECLARE_SERIAL(ECWave)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 71.
    int GetEventId() const override;
    // ECWaveTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    const MCMediaFile &GetMediaFile() const { return m_file; }
    void SetMediaFile(const MCMediaFile &file) { m_file = file; }

    // Copies the duration, the file and the base part.
    ECWave &operator=(const ECWave &other);
    int operator==(const ECWave &other) const;
    int operator!=(const ECWave &other) const { return !(*this == other); }

protected:
    ~ECWave() override;

    MCTime m_duration = MCTime::TimeZero();
    MCMediaFile m_file;
};
