// ECTempo: a tempo point of the tempo map (ECTempoEnv).
//
// A tempo carries beats per minute (after its beat factor), a type from the
// list of tempo words, a duration for the relative types, and its place on
// the clock, which the envelope keeps (RecalculateClockTimes).
//
//     ECTempo *t = new ECTempo(14, MCTime::TimeZero());   // Allegro
//     t->SetTempo(132, 1);                                 // 132 bpm
//
// Tempo types: 0 and 1 plain, 2 to 20 the absolute words (Larghissimo to
// Prestissimo), 21 to 23 accelerando, rallentando, ritardando, 24 a pause
// without word, 25 G.P., 26 L.P., 27 a tempo, 28 rubato, 29 a pause.
//
// Kept oddities, wanted as they are:
// - The default tempi of the words are not monotonic (Adagio 70 stands
//   above Lento and Larghetto, Prestissimo 200 below its neighbours), and
//   GetTempoType takes the first word whose tempo exceeds the argument.
// - SetTempo refuses, with 0, once the stored tempo is exactly 0: a point
//   once given tempo 0 keeps it.
// - Rate and speed start at 1, not at what a tempo of 100 gives; they agree
//   with the tempo from the first SetTempo on.
// - SetTempoType stores the type first, even a type it then refuses.
// - GetTempo(beat) looks at its argument only to tell 1 from anything else.
//
// Copying: operator= (and so Copy) copies type, text, tempo, rate, speed,
// beat and pause percent and sets the point's value to the tempo; the copy
// constructor also takes the duration. Clock time and mirrors never copy.
// operator== compares type, duration, text, tempo, speed, beat and pause
// percent.
//
// Archive record, behind ECEnvPoint: float tempo, rate, speed, beat, BYTE
// type, MCTime duration only for the types with a duration, CString text,
// float pause percent (read from version 3 on; older files keep 100).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/platform/CString.h>

class ECMirror;

// The translated word of a tempo type (section "DataModel"); empty for the
// types without a word.
CString GetTempoString(unsigned char type);
// The beats per minute of a tempo word, from the preference
// "Settings\Tempo\<word>" "BPM"; when absent the default is taken and
// written there at once. 60 outside types 2 to 20.
int GetTempoValue(int type);
// The word for a tempo in bpm: the type before the first word whose tempo
// exceeds `bpm`; 2 when the first already does, 20 when none does.
int GetTempoType(int bpm);

class SCOREMODEL_API ECTempo : public ECEnvPoint
{
    DECLARE_SERIAL(ECTempo)

public:
    ECTempo();
    ECTempo(unsigned char type, MCTime duration);
    ECTempo(const ECTempo &other);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 57.
    int GetEventId() const override;
    // ECTempoEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Type tests ----

    static int HasDuration(int type) { return type >= 21 && type <= 26; }
    static int IsRelativeTempo(int type) { return type >= 21 && type <= 27; }
    static int IsPauseTempo(int type) { return (type >= 24 && type <= 26) || type == 29; }

    // ---- Tempo ----

    // 0, changing nothing, when the stored tempo is exactly 0. Otherwise
    // tempo = beat * tempo, with rate and speed to match; 1.
    int SetTempo(float tempo, float beat);
    // 0 for a stored beat of 0; the stored tempo for `beat` 1; otherwise the
    // stored tempo over the stored beat.
    float GetTempo(float beat);
    float GetValue() override { return m_tempo; }
    void SetValue(float value) override { SetTempo(value, 1.0f); }
    float GetRate() const { return m_rate; }
    float GetSpeed() const { return m_speed; }
    float GetBeat() const { return m_beat; }

    // Stores the type; the words take their tempo, 21 to 23 the duration.
    // 0 for a type above 29, else 1.
    int SetTempoType(int type, MCTime duration);
    int GetTempoType() const { return GetSpareByte(); }
    // The stored percent for a pause type, else 0.
    float GetPausePercent() const;
    // Clamped to 0 to 400.
    void SetPausePercent(float percent);

    MCTime *GetDuration() override { return &m_duration; }
    // Stores it, then the first parent tempo map recalculates its clock.
    void SetDuration(MCTime *duration) override;

    // The user's text, or the word of the type when there is none.
    CString GetText() const;
    void SetText(const CString &text) { m_text = text; }

    MCTime &GetClockTime() { return m_clockTime; }
    void SetClockTime(const MCTime &time) { m_clockTime = time; }

    // ---- Mirrors ----

    void AddMirror(ECMirror *mirror);
    void RemoveMirror(ECMirror *mirror);
    void RemoveMirrors();
    EventList *GetMirrors() { return &m_mirrors; }

    ECTempo &operator=(const ECTempo &other);
    int operator==(const ECTempo &other) const;
    int operator!=(const ECTempo &other) const { return !(*this == other); }

protected:
    ~ECTempo() override;

    MCTime m_duration = MCTime::TimeZero();
    MCTime m_clockTime;
    CString m_text;
    float m_tempo = 100.0f;
    float m_rate = 1.0f;
    float m_speed = 1.0f;
    float m_beat = 1.0f;
    float m_pausePercent = 100.0f;
    EventList m_mirrors;
};
