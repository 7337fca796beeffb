// ECWithTimeChild: an event with children, a time and a voice/track word.
//
// The base of measures, notes, chords, groups, envelopes and the
// performance. It behaves as ECWithChild for its children and as ECWithTime
// for its time, with the same copy rule: operator= (and so Copy) copies the
// voice/track word and not the time; the copy constructor copies both.
//
// Archive record: that of ECWithChild (so the children stand before the
// time), then the time and the voice/track word as in ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithChild.h>

class SCOREMODEL_API ECWithTimeChild : public ECWithChild
{
    DECLARE_SERIAL(ECWithTimeChild)

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
    ECWithTimeChild &operator=(const ECWithTimeChild &other);
    int operator==(const ECWithTimeChild &other) const;
    int operator!=(const ECWithTimeChild &other) const { return !(*this == other); }

protected:
    ECWithTimeChild();
    // Copies the voice/track word and the time; no children.
    ECWithTimeChild(const ECWithTimeChild &other);
    ~ECWithTimeChild() override;

    // The voice/track word sits in the time's tail padding.
    [[no_unique_address]] MCTime m_time;
    MCVoiceTrack m_voiceTrack;
};
