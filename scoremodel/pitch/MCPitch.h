// MCPitch: one spelled pitch, the value between a MIDI note number and a note
// on a staff.
//
// A MIDI number can be written in up to three ways (C sharp or D flat; G,
// F double sharp or A double flat). MCPitch holds one such spelling: a
// diatonic degree (0 to 6 for C to B), an octave, an alteration (-2 double
// flat to 2 double sharp) and the MIDI number it sounds, plus display flags
// and a mapping mode. It owns the rules that choose a spelling for a MIDI
// number (SetPitch), that aim a spelling at a staff degree (SetPitchByDegree)
// and that cycle through the spellings of one MIDI number (ToggleEnharmonic).
//
//     MCPitch cSharp(61, 0);        // natural asked on a black key: C sharp
//     cSharp.ToggleEnharmonic();    // D flat, still MIDI 61
//
// Invariants after SetPitch, SetPitchByDegree or ToggleEnharmonic:
//   - the spelling sounds the MIDI pitch: DegreeToPitch(degree) + octave * 12
//     + alteration == MIDI pitch, except where the 4-bit octave wrapped (a
//     B sharp spelling of MIDI 0 to 11 sits in octave 15) and for degree 7;
//   - middle C, MIDI 60, is octave 5; C flat belongs to the octave above its
//     MIDI pitch class and B sharp to the octave below.
// Degree 7 marks a MIDI number that SetPitch could not spell as asked (a
// double accidental on a black key that neither it nor the natural reaches).
//
// The accessors are raw: none of them keeps the fields consistent with each
// other (SetDegree does not touch the MIDI pitch; SetMidiPitch touches nothing
// else). UpdateMidiPitch rebuilds the MIDI pitch from the spelling.
//
// Threads: a plain value with no lock; it belongs to the thread holding it.
// Not written to the document archive: notes keep their own MIDI number.
#pragma once

#include <scoremodel/Export.h>

class SCOREMODEL_API MCPitch
{
public:
    // Where a staff position comes from.
    enum MappingType
    {
        MappingNone = 0,   // the spelling decides the staff position
        MappingDrumMap = 1, // the drum map placed the note
        MappingDegree = 2, // a degree given by the caller
    };

    // ---- Construction and copying ------------------------------------------

    // Dirty, show accidental set; C natural in octave 0, MIDI pitch 0.
    MCPitch();
    // SetPitch(pitch, accidental, 1).
    MCPitch(unsigned char pitch, char accidental);
    // Both carry the spelling, the MIDI pitch, dirty, show accidental, the
    // mapping type and the reserved flag, but never the user spelled flag: a
    // fresh copy starts with it clear and an assigned-to pitch keeps its own.
    // A spelling the user chose belongs to one note, not to its copies.
    MCPitch(const MCPitch &other);
    MCPitch &operator=(const MCPitch &other);
    virtual ~MCPitch();

    // ---- Fixed tables -------------------------------------------------------

    // Degree of the natural or sharp spelling of a pitch class:
    // 0 0 1 1 2 3 3 4 4 5 5 6 for 0 to 11; 12 or more gives 0.
    static int PitchToDegree(unsigned int pitchClass);
    // Natural pitch class of a degree: 0 2 4 5 7 9 11 for 0 to 6; 7 or more gives 0.
    static int DegreeToPitch(unsigned int degree);

    // ---- Spelling -----------------------------------------------------------

    // Spells `pitch` with the alteration `accidental` (-2 to 2). When that
    // alteration cannot spell the pitch class, a natural is retried as a sharp
    // and anything else as a natural; if that fails too (a double accidental
    // on C sharp, E flat, F sharp, G sharp or B flat), the degree reads 7 and
    // the accidental natural. An accidental outside -2 to 2 is a request that
    // fails the same way. Sets the MIDI pitch to `pitch`, show accidental to
    // bit 0 of `showAccidental`, clears dirty. The octave is cut to 4 bits.
    void SetPitch(unsigned char pitch, char accidental, int showAccidental);
    // Spells `pitch` as near as possible to the staff degree `degree` (0 to 6;
    // 7 or more does nothing). An alteration beyond double sharp moves the
    // degree up until it fits; one beyond double flat moves the degree down
    // until it reaches a double sharp or more, wrapping from C to B. So the
    // result can be a triple sharp (alteration 3): G asked for pitch class 3
    // gives C with alteration 3. This lopsided walk is wanted; do not mirror it.
    // Where the downward walk would pass below C (E asked for pitch class 0,
    // C asked for pitch class 7, ...), the pitch gets the spelling
    // SetPitch(pitch, 0, ...) gives: the natural, or the sharp on a black key.
    // Sets the MIDI pitch and show accidental, clears dirty.
    void SetPitchByDegree(unsigned char pitch, unsigned char degree);
    // Moves to the next spelling of the same MIDI pitch in the pitch class's
    // fixed cycle: C -> B sharp -> D double flat -> C; C sharp <-> D flat; ...
    // Leaves the MIDI pitch, the flags and show accidental alone. A spelling
    // outside any cycle (degree 7, a triple sharp, a hand-set accidental)
    // joins its cycle in one step.
    void ToggleEnharmonic();
    // MIDI pitch = DegreeToPitch(degree) + octave * 12 + alteration, cut to 8 bits.
    void UpdateMidiPitch();

    // ---- Fields -------------------------------------------------------------

    unsigned char GetDegree() const { return m_degree; }
    unsigned char GetOctave() const { return m_octave; }
    unsigned char GetMidiPitch() const { return m_midiPitch; }
    // Alteration, -2 (double flat) to 2 (double sharp); SetPitchByDegree can
    // leave 3.
    char GetAccidental() const { return static_cast<char>(static_cast<int>(m_accidental) - 2); }
    // Degree becomes `degree` modulo 7; octave kept.
    void SetDegreeOnly(unsigned char degree) { m_degree = degree % 7; }
    // `position` is a diatonic staff position: octave position / 7, degree
    // position modulo 7 (so 36 is D in octave 5). The octave is cut to 4 bits.
    void SetDegree(unsigned char position)
    {
        m_octave = (position / 7) & 0xF;
        m_degree = position % 7;
    }
    // Stores the low 4 bits.
    void SetOctave(unsigned char octave) { m_octave = octave & 0xF; }
    // Stores `accidental` + 2 cut to 3 bits; nothing is checked.
    void SetAccidental(char accidental) { m_accidental = (static_cast<signed char>(accidental) + 2) & 0x7; }
    void SetMidiPitch(unsigned char pitch) { m_midiPitch = pitch; }

    bool IsDirty() const { return m_dirty; }
    void SetDirty(bool dirty) { m_dirty = dirty; }
    bool IsUserSpelled() const { return m_userSpelled; }
    void SetUserSpelled(bool userSpelled) { m_userSpelled = userSpelled; }
    bool ShowAccidental() const { return m_showAccidental; }
    void SetShowAccidental(bool show) { m_showAccidental = show; }

    // ---- Mapping --------------------------------------------------------------

    unsigned char GetMappingType() const { return m_mappingType; }
    // Stores the mapping type (0 to 2; 3 or more does nothing). For types 1
    // and 2 it also places the pitch at the diatonic staff position
    // `staffPosition` through SetDegree, so that comparisons see where the
    // map put the note. The drum map itself is the document's; its caller
    // looks the position up and passes it here.
    void SetMappingType(unsigned char type, unsigned char staffPosition = 0);

    // ---- Comparison -----------------------------------------------------------
    //
    // The mapping type of the left operand decides; the right one's is not
    // looked at. Without mapping: equal when MIDI pitch and degree are equal,
    // ordered by MIDI pitch, then degree. With mapping (type 1 or 2): equal
    // when the octaves are equal, nothing else counting, yet ordered by
    // octave, then degree. So a == b and a < b can both hold under mapping;
    // that is wanted and stays.

    int operator==(const MCPitch &other) const;
    int operator!=(const MCPitch &other) const;
    int operator<(const MCPitch &other) const;
    int operator<=(const MCPitch &other) const;
    int operator>(const MCPitch &other) const;
    int operator>=(const MCPitch &other) const;

private:
    // Negative when this sorts before `other`, by the left operand's mapping.
    int Order(const MCPitch &other) const;
    // Stores a spelling whose alteration, degree and correction come from a
    // table; octave = MIDI pitch / 12 + correction, cut to 4 bits.
    void StoreSpelling(int alteration, int degree, int correction, unsigned char pitch);

    unsigned short m_dirty : 1;
    unsigned short m_userSpelled : 1;
    unsigned short m_reserved : 1;
    unsigned short m_showAccidental : 1;
    unsigned short m_degree : 3;
    unsigned short m_accidental : 3; // alteration + 2
    unsigned short m_octave : 4;
    unsigned short m_mappingType : 2;
    unsigned char m_midiPitch;
};
