// ACSetVoiceTrack: gives the visited events a new track and/or voice.
//
// Only events whose current track (voice) lies in the track (voice) range
// are changed; "none" (track 0x7FF, voice 14 or 15) always qualifies, and an
// event on track 0x7FE ("all tracks") is never touched. The new track is
// clamped to 0..0x7FB and the new voice to 0..7; writing either makes the
// word unconverted again.
//
// Track 0x7FF and voice 15 as the new values mean "leave as it is".
//
//     ACSetVoiceTrack move(4, 15);   // to track 4, voices unchanged
//     move.Apply(pMeasure);
//
// Wanted: the voice range runs to 8 while the clamp stops at 7, so an event
// of voice 8 qualifies and a new voice of 8 is written as 7.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>

class SCOREMODEL_API ACSetVoiceTrack : public ACBase
{
public:
    static constexpr int kNoTrack = 0x7FF;
    static constexpr int kNoVoice = 15;

    // Track 0x7FF, voice 15: changes nothing until set.
    ACSetVoiceTrack();
    ACSetVoiceTrack(int track, int voice);
    ~ACSetVoiceTrack() override;

    // -1 for null; sets the track and voice as the header says; always 0
    // otherwise, whether or not anything changed.
    int DoAction(ECBase *e) override;

    // The values are clamped when written, not here.
    void SetTrack(int track) { m_nTrack = track; }
    void SetVoice(int voice) { m_nVoice = voice; }
    int GetTrack() const { return m_nTrack; }
    int GetVoice() const { return m_nVoice; }
    // The current values that qualify an event; 1..0x7FB and 0..8 by default.
    void SetTrackRange(int minTrack, int maxTrack);
    void SetVoiceRange(int minVoice, int maxVoice);
    int GetTrackMin() const { return m_nTrackMin; }
    int GetTrackMax() const { return m_nTrackMax; }
    int GetVoiceMin() const { return m_nVoiceMin; }
    int GetVoiceMax() const { return m_nVoiceMax; }

protected:
    int m_nTrack = kNoTrack;
    int m_nVoice = kNoVoice;
    int m_nTrackMin = 1;
    int m_nTrackMax = 0x7FB;
    int m_nVoiceMin = 0;
    int m_nVoiceMax = 8;
};
