// ACFindVoiceTrack: finds the events of one voice and/or one track.
//
// Voice 14 or 15 in the filter matches any voice, track 0x7FF any track; an
// event without a voice/track word is passed over. Notes and grace notes
// count only when they carry the attachment of type 0 (their playback data):
// a bare note is passed over.
//
//     ACFindVoiceTrack find(1);
//     find.SetTrack(3);            // every event of track 3
//     find.Apply(pPerformance);
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACFindEvents.h>

class SCOREMODEL_API ACFindVoiceTrack : public ACFindEvents
{
public:
    // Voice 15, track 0x7FF: every event with a voice/track word.
    explicit ACFindVoiceTrack(int n = 0);
    ~ACFindVoiceTrack() override;

    // -1 for null; 0 for a note or grace note without attachment 0, for an
    // event without a voice/track word and for one of another voice or
    // track; otherwise ACFindEvents::DoAction.
    int DoAction(ECBase *e) override;

    // 0..15; other values change nothing.
    void SetVoice(int voice);
    int GetVoice() const { return m_nVoice; }
    // 0..0x7FF; other values change nothing.
    void SetTrack(int track);
    int GetTrack() const { return m_nTrack; }

protected:
    int m_nVoice = 15;
    int m_nTrack = 0x7FF;
};
