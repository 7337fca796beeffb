// CCAddTrack: places a track in the document (command id 11).
//
// Process hands the track to ECConductor::InsertTrack at the given index:
// the conductor staff and the chord staff take their fixed places, a staff
// is numbered at `index` (the end for -1) and the staves behind it move up,
// a wave track enters the wave track array at `index` (the end when
// negative). Undo takes the same track out again through RemoveTrack, and a
// redo places the same object again, so the command holds a reference on
// its track from construction to destruction.
//
//     CCAddTrack *add = new CCAddTrack(new ECStaff, -1);
//     add->Apply(document);                  // posted; runs later
//
// A track that cannot be placed (already placed, or not a kind of track the
// conductor takes) makes Process refuse.
//
// The instrument value is carried for the host; a wave track has none
// (FCMidi::MidiNull()).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/core/FCMidi.h>

class ECTrack;

class SCOREMODEL_API CCAddTrack : public CCBase
{
    DECLARE_DYNCREATE(CCAddTrack)

public:
    // No track: Prepare refuses.
    CCAddTrack();
    CCAddTrack(ECTrack *track, int index, const FCMidi &instrument = FCMidi::MidiNull());

    // 11.
    int GetCommandId() override;
    // The base's, and 0 without a track.
    int Prepare() override;
    // ECConductor::InsertTrack; 0 when it refused.
    int Process() override;
    // ECConductor::RemoveTrack on the same track.
    void Undo() override;

    ECTrack *GetTrack() const { return m_pTrack; }
    int GetIndex() const { return m_nIndex; }
    const FCMidi &GetInstrument() const { return m_instrument; }
    // The number InsertTrack gave the track in the last Process; -1 before,
    // after a refusal and after Undo.
    int GetTrackNumber() const { return m_nNumber; }

    // Adds `track` to `document` by a synchronous command and returns when
    // it ran: `track` when it was placed, else 0 (and the track, if nobody
    // else holds it, is gone). This is how missing structure is made at
    // first use, so that the undo history sees it like any other edit.
    static ECTrack *AddNow(ECPerformance *document, ECTrack *track, int index,
                           const FCMidi &instrument = FCMidi::MidiNull());

protected:
    // Gives back the hold on the track (ECTrack::ReleaseHold).
    ~CCAddTrack() override;

private:
    ECTrack *m_pTrack = nullptr;
    int m_nIndex = -1;
    int m_nNumber = -1;
    FCMidi m_instrument;
};
