// ECNote: a note, held by its measure and at the same time by its chord,
// beam and tuplet.
//
// A new note stands at time 0.0 (not at TimeNull) and lasts 1.0. Beside its
// duration it keeps a tablature place (string and fret, -1 for none), the
// button-accordion notation byte, a MIDI pitch that only the host reads and
// writes, a repeat-tie mark, and the track, time and duration it had when it
// was last saved, so that a later edit can tell what it changed.
//
// operator= (and so Copy) copies the ECWithTimeChild part, the string, the
// fret and the notation byte, and nothing else: neither the duration nor the
// MIDI pitch. operator== compares the time, the duration, the string and the
// fret.
//
// Archive record: that of ECWithTimeChild, the duration (MCTime record), the
// fret and then the string (DWORD each, from version 5), and the notation
// byte (from version 18). Storing a note also sets its previous track, time
// and duration from the present ones: a save marks the state an edit
// compares with. The MIDI pitch is in no record; a host that needs it across
// a save keeps it in the note's data attachments.
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

    // ---- Tablature and notation ----

    int GetString() const { return m_string; }
    void SetString(int string) { m_string = string; }
    int GetFret() const { return m_fret; }
    void SetFret(int fret) { m_fret = fret; }
    BYTE GetNotationByte() const { return m_notationByte; }
    void SetNotationByte(BYTE notation) { m_notationByte = notation; }
    BYTE GetMidiPitch() const { return m_midiPitch; }
    void SetMidiPitch(BYTE pitch) { m_midiPitch = pitch; }
    int GetRepeatTie() const { return m_repeatTie; }
    void SetRepeatTie(int repeatTie) { m_repeatTie = repeatTie; }

    // Rebuilds the notation byte with a new bellows direction (non-zero:
    // compression), keeping its note style and staff degree.
    void SetHarmonicaCompression(int compression);
    // 0 when the notation byte's top bit is set; otherwise the descant pitch
    // the byte stands for on the process's button-accordion converter.
    BYTE GetHarmonicaMidiPitch();

    // ---- The state at the last save ----

    int GetPrevTrack() const { return m_prevTrack; }
    void SetPrevTrack(int track) { m_prevTrack = track; }
    float GetPrevTime() const { return m_prevTime; }
    void SetPrevTime(float time) { m_prevTime = time; }
    float GetPrevDuration() const { return m_prevDuration; }
    void SetPrevDuration(float duration) { m_prevDuration = duration; }

    // ---- Relatives ----

    // A dot among the children.
    int HasDot();
    // A tie among the parents.
    int HasTie();
    int HasDotOrTie();
    // A chord among the parents.
    int IsInChord();

    ECNote &operator=(const ECNote &other);
    int operator==(const ECNote &other) const;
    int operator!=(const ECNote &other) const { return !(*this == other); }

protected:
    ~ECNote() override;

    MCTime m_duration = MCTime(1.0f);

private:
    int m_string = -1;
    int m_fret = -1;
    BYTE m_notationByte = 0;
    BYTE m_midiPitch = 0;
    int m_repeatTie = 0;
    int m_prevTrack = -1;
    float m_prevTime = -1.0f;
    float m_prevDuration = -1.0f;
};
