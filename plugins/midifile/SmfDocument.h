// Between a Standard MIDI File (SmfFormat.h) and a score.
//
// Import, into a new performance:
//   - set tempo (FF 51) into the tempo map, one ECTempo per change; the
//     beats per minute are chosen so that the exact microseconds per quarter
//     come back on export. A map that does not open at time 0 gets the
//     format's default of 500000 microseconds there (the map always starts
//     at 0);
//   - time signatures (FF 58) into meters of the meter envelope; the
//     measures are then laid out under them to cover the whole file;
//   - key signatures (FF 59) into an ECKey in the measure of every staff;
//   - one staff per track and channel with channel messages, in track then
//     channel order; a track with only lyrics, texts or chord symbols gets
//     a staff of its own (channel "none");
//   - notes into the measures that hold their start; a note that crosses a
//     bar line is cut there and its pieces are held by one ECTie;
//   - program changes, controllers 0 to 119, pitch bend, channel and key
//     pressure into envelopes of the staff (ECPatchEnv, ECControllerEnv,
//     ECPitchBendEnv, ECChanPressureEnv, ECPolyPressureEnv); channel mode
//     messages (controllers 120 to 127) are counted as skipped;
//   - system exclusive messages into ECSystemMessage events of the conductor
//     staff (an F0 message with its F0 byte, an F7 escape without);
//   - text meta events 01 to 07 but lyrics into ECText events of text type
//     100 + the meta type (103 is the track name) on the staff of the track,
//     or on the conductor staff for the first track of a format 1 file;
//     lyrics (FF 05) into ECLyric events of the measure; a text is read
//     as UTF-8 where its bytes are that and as Latin-1 otherwise, and
//     written as UTF-8;
//   - chord symbols from the sequencer-specific event below.
// Velocity, release velocity, channel and MIDI pitch of a note, the channel
// of a staff and the division of the file ride in an SmfEventData
// attachment (view code kSmfViewCode), which the document archive keeps.
//
// Times: a tick becomes tick / division quarter notes in the float of
// MCTime. Where that float does not give the tick back (long files at
// divisions that are not powers of two) the time is the nearest float and
// the report counts it as rounded.
//
// Chord symbol event, sequencer specific (FF 7F), 5 or 6 bytes:
//   7D 43 48 root type [bass]
// 7D is the manufacturer id kept for non-commercial use, 43 48 ("CH") names
// the record; root and bass are MIDI chord root bytes (high nibble the
// accidental, 2 flat, 3 natural, 4 sharp; low nibble the letter, 1 C to 7 B;
// bass 0 or absent: none) and type the MIDI chord type, as ECChordSymbol
// converts them. Any other sequencer-specific event is skipped.
//
// Export is the inverse, as format 1: the conductor track (tempo, meters,
// keys, system messages, the conductor staff's texts), then one track per
// staff. Envelope points are written at their times; a ramp is sampled
// through ECEnvelope::GetValues up to the next point. Tied pieces join into
// one note. A tempo point is written from its beats per minute; a ramp as
// a tempo per sixteenth, each spending the clock time the map gives it.
//
// Limits (ImportLimits), so that a small hostile file cannot make a huge
// document: staves, bars, measures in all (bars times staves) and extra note
// pieces made by cuts at bar lines. Beyond them the import throws
// std::runtime_error and the document must be thrown away.
#pragma once

#include "SmfFormat.h"

#include <scoremodel/events/base/DCBase.h>

#include <string>

class ECPerformance;

namespace smf
{

constexpr int kSmfViewCode = 2;
struct ImportLimits
{
    int staves = 1024;
    long bars = 50000;
    long measures = 400000;
    long tiePieces = 1000000;
};
// Channel of a staff made for events without one.
constexpr int kNoChannel = 0xFF;
constexpr int kTextTypeBase = 100;
constexpr uint8_t kChordRecord[3] = {0x7D, 0x43, 0x48};

struct ImportReport
{
    size_t tracks = 0;
    size_t events = 0;
    size_t notes = 0;
    size_t staves = 0;
    size_t bars = 0;
    size_t rounded = 0;
    size_t skipped = 0;
    size_t superseded = 0;
    size_t unmatchedOffs = 0;
    size_t unfinishedNotes = 0;
    std::vector<std::string> warnings;

    // One line: tracks, events, notes, staves, bars and what was not exact.
    std::string Summary() const;
};

// Fills `doc`, a new performance with its conductor. Throws
// std::runtime_error when a limit is passed.
ImportReport Import(const File &file, ECPerformance *doc, const ImportLimits &limits = {});

// The file of a performance. `skipped`, when given, counts what the format
// cannot hold (meters whose denominator is not a power of two).
File Export(ECPerformance *doc, size_t *skipped = nullptr);

// Registers SmfEventData for notes, staves and the conductor staff, once.
void RegisterEventData();
void UnregisterEventData();

} // namespace smf

// The MIDI values the score has no field for, as a data attachment. On a
// note: pitch, velocity, release velocity (bit 7 set: the note ended with a
// note on of velocity 0) and channel. On a staff: the channel. On the
// conductor staff: the division. Archived through DCBase's two values.
class SmfEventData : public DCBase
{
    DECLARE_SERIAL(SmfEventData)

public:
    CObject *Copy(CObject *src) override;

    int GetPitch() const { return Byte(0); }
    int GetVelocity() const { return Byte(1); }
    int GetRelease() const { return Byte(2); }
    int GetChannel() const { return Byte(3); }
    int GetDivision() const { return m_value2.GetValue(); }
    void SetNote(int pitch, int velocity, int release, int channel);
    void SetChannel(int channel);
    void SetDivision(int division) { m_value2.SetValue(division); }

private:
    int Byte(int i) const { return (static_cast<unsigned>(m_value.GetValue()) >> (8 * i)) & 0xFF; }
};
