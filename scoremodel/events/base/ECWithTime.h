// ECWithTime: an event with a time and a voice/track word, and no children.
//
// A new one stands at MCTime::TimeNull() (no time yet), voice 15, track 0x7FF.
//
// Copying: operator= copies the voice/track word and deliberately not the
// time, so Copy (which goes through operator=) leaves the destination's time
// as it was; whoever clones an event through Copy sets the time separately.
// The copy constructor does copy the time, after operator=. Keep that
// difference: commands that copy a selection rely on it.
//
// operator== compares the time (MCTime ==) and the raw voice/track word.
// Archive record: that of ECBase, the time (MCTime record, read at the
// document's version), then the voice/track word as a WORD.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECWithTime : public ECBase
{
    DECLARE_SERIAL(ECWithTime)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    int GetEventId() const override;
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetTime() override { return &m_time; }
    // Takes a copy of `*time`; nothing for null.
    void SetTime(MCTime *time) override;
    MCVoiceTrack *GetVoiceTrack() override { return &m_voiceTrack; }
    // Stores both fields (unconverted).
    void SetVoiceTrack(int voice, int track) override;
    // Takes a copy of `*voiceTrack`; nothing for null.
    void SetVoiceTrack(MCVoiceTrack *voiceTrack) override;

    // Copies the voice/track word, not the time.
    ECWithTime &operator=(const ECWithTime &other);
    int operator==(const ECWithTime &other) const;
    int operator!=(const ECWithTime &other) const { return !(*this == other); }

protected:
    ECWithTime();
    // Copies the voice/track word and the time.
    ECWithTime(const ECWithTime &other);
    ~ECWithTime() override;

    // The voice/track word sits in the time's tail padding.
    [[no_unique_address]] MCTime m_time;
    MCVoiceTrack m_voiceTrack;
};
