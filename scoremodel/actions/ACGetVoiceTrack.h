// ACGetVoiceTrack: reads the voice/track word of the first event a walk meets
// that has one.
//
// Walking up from an event without a word of its own (a dot, an accent)
// gives the word of the note or chord it belongs to.
//
//     ACGetVoiceTrack get(1);     // towards the parents
//     get.Apply(pAccent);
//     int track = get.GetVoiceTrack().GetTrack();
//
// The word starts as voice 15, track 0x7FF and keeps the last word found;
// BeginAction does not clear it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/events/base/MCVoiceTrack.h>

class SCOREMODEL_API ACGetVoiceTrack : public ACBase
{
public:
    explicit ACGetVoiceTrack(int bReverse = 0);
    ~ACGetVoiceTrack() override;

    // -1 for null; 0 for an event without a word; otherwise copies the word
    // and stops the walk (2).
    int DoAction(ECBase *e) override;

    const MCVoiceTrack &GetVoiceTrack() const { return m_voiceTrack; }

protected:
    MCVoiceTrack m_voiceTrack;
};
