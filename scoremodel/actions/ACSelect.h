// ACSelect: finds the events in a time range on chosen voices and tracks,
// the walk behind a selection by rectangle or by range.
//
// An event on a track not chosen is passed over with its children (result
// 1): tracks are staves, and nothing beneath a staff lies on another track.
// An event on a voice not chosen is passed over, but its children are
// searched. The rest are found as by ACFindTime when they have a time, and as
// by ACFindEvents when they have none (so timeless events count towards
// GetEventCount and the maximum, timed ones do not).
//
// Voice 15 and track 0x7FF (no voice, no track) always pass, as does track 0
// (the conductor staff); an event without a voice/track word reads as voice
// 15, track 0x7FF.
//
//     CUIntArray tracks;
//     tracks.Add(2);
//     ACSelect select(MCTime(0.0f), MCTime(16.0f));   // [0, 16)
//     select.SetTracks(tracks);
//     select.Apply(pPerformance);
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/platform/CArray.h>

class SCOREMODEL_API ACSelect : public ACFindTime
{
public:
    // Range mode 3: start <= time < end. All voices, all tracks.
    ACSelect(const MCTime &start, const MCTime &end);
    ~ACSelect() override;

    // See the header; -1 for null.
    int DoAction(ECBase *e) override;

    // True for voice 15, or when no voices are chosen, or when `voice` is chosen.
    bool FindVoice(unsigned voice) const;
    // True for track 0x7FF or 0, or when no tracks are chosen, or when
    // `track` is chosen.
    bool FindTrack(unsigned track) const;

    // Replace the chosen voices or tracks with a copy of the array.
    void SetVoices(const CUIntArray &voices);
    void SetTracks(const CUIntArray &tracks);
    // Choose every voice or track (empty the arrays).
    void SetAllVoices() { m_voices.RemoveAll(); }
    void SetAllTracks() { m_tracks.RemoveAll(); }
    const CUIntArray &GetVoices() const { return m_voices; }
    const CUIntArray &GetTracks() const { return m_tracks; }

protected:
    CUIntArray m_voices;
    CUIntArray m_tracks;
};
