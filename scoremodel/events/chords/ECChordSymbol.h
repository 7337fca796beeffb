// ECChordSymbol: a harmony label over the staff, such as C minor seventh
// over B flat.
//
// It reads what the user typed into a root, a bass and a numbered flavour,
// keeps the user's spelling where it differs from the canonical one, and
// converts its value to and from the byte pair that MIDI files use for chord
// events.
//
//     ECChordSymbol *chord = new ECChordSymbol();
//     CString text(L"F#m7b5/E");
//     if (chord->UpdateFromString(text))     // root 11, flavour 10, bass 7
//         Show(chord->GetChordFlavor());
//
// Value: the chord type, one 32-bit word of four bytes, from the low end:
// root, bass, flavour, style. Root and bass codes share one table, 0 none:
//
//   1 C   2 C#  3 Db  4 D   5 D#  6 Eb  7 E   8 E#  9 Fb  10 F  11 F#
//   12 Gb 13 G  14 G# 15 Ab 16 A  17 A# 18 Bb 19 B  20 B#  21 Cb
//
// Flavours 0 to 29 (kFlavorCount of them); GetChordSymbolString gives their
// display texts, string ids 12010 upward for 1 to 28 (the language file's
// "IDS_DM_CHORD_<id>" keys of "DataModel"), empty for 0 and 29. Flavours 15
// (7 alt) and 29 (none) have no typed token: only a number or a document
// sets them. Style is 1 for a chord read or built normally; bit 1 asks the
// host to show the chart, and SetChordStyle clears it where HasChart says
// there is none. The other style bits and the phantom mark are the host's.
//
// Reading names (UpdateFromString). The note-name pattern is the preference
// "NoteNamePattern" of "Settings\Notation" (default 0): 0 and 1 name notes
// by one letter, any other value by two-letter syllables (do re mi fa so la
// si/ti). Under pattern 0, B is B flat and H is B natural (B and Bb both
// read 18); under 1, B and H are both B natural. The flavour is matched
// exactly, case-sensitively, first against the direct tokens and then the
// aliases; an alias keeps the user's spelling as the custom flavor. Kept
// oddities of the token table, wanted as they are: "dim7" reads as the
// flavour of "°", "m11" and "maj11" as "7#11", "madd9" as "m7add9", and a
// literal "?" as "maj7". A lone lower-case letter (c, d#, b) reads as a
// minor chord and keeps its text as the custom root.
//
// What a caller sees of an unreadable name: UpdateFromString returns 0 and
// keeps what it had reached (root and flavour 29 after an unknown flavour;
// there is no message). Under a syllable pattern a one-letter note name
// ("C", or a bass "/E") makes GetRootOrBassFromString throw the platform's
// CInvalidArgException, as its position check demands; UpdateFromString
// catches exactly that exception and returns 0 like any other unreadable
// name, so it never reaches the host.
//
// MIDI exchange. The transform map, filled per object, gives each flavour a
// MIDI chord type; it is not one to one, so flavours 15, 19 and 28 do not
// survive a round trip (MIDI 15 reads as 12, 9 as 9, 32 as 11). A MIDI root
// byte holds the accidental in its high nibble (2 flat, 3 natural, 4 sharp)
// and the letter in its low nibble (1 C to 7 B, 0 none).
//
// Duration. GetDuration measures from this symbol to the next chord symbol
// of the active document, but never past its own measure's bar line.
// Differs from the ECBase convention of a new object for the caller: the
// result points to a member refreshed by each call, so the walks and
// commands that read every event's duration need not know this class to
// free it. The duration is not stored and has no setter.
//
// Copying: the copy constructor and operator= carry the chord type, both
// custom strings, the lower-case minor mark and the map, and clear the
// playback mark; the copy constructor also carries the phantom mark and
// the time, operator= neither. operator== compares the 32-bit chord type
// alone.
//
// Archive record, behind ECWithTime: the chord type as a DWORD, then the
// custom flavor and the custom root as wide strings (loaded from version
// 19). Versions 3 to 18 hold one wide string, a display text, and the
// flavour is found from it (FindChordFlavor, 30 for a text not known).
// Versions below 3 hold no string, and the flavour is an old number mapped
// to today's. The lower-case minor mark, the phantom mark and the map are
// not stored.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/platform/CString.h>

#include <map>

// The display text of a flavour: the language file's text for 1 to 28,
// empty for 0, 29 and anything else.
SCOREMODEL_API CString GetChordSymbolString(int flavour);

class SCOREMODEL_API ECChordSymbol : public ECWithTime
{
    DECLARE_SERIAL(ECChordSymbol)

public:
    // Flavours 0 to 29; FindChordFlavor answers this for a text not known.
    static constexpr int kFlavorCount = 30;

    // Root 1 (C), bass 0, flavour 29, style 1.
    ECChordSymbol();
    ECChordSymbol(unsigned char root, unsigned char bass, unsigned char flavour, unsigned char style);
    ECChordSymbol(const ECChordSymbol &other);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 13.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;
    // The time to the next chord symbol or the next bar line, whichever
    // comes first (see the class comment); 0 with no active document.
    MCTime *GetDuration() override;

    // ---- Value (every setter but SetChordStyle clears the playback mark) ----

    virtual int GetChordType() const { return static_cast<int>(m_chordType); }
    virtual void SetChordType(int type);
    // The stored byte widened as a signed value.
    virtual int GetChordRoot() const { return static_cast<signed char>(Byte(0)); }
    virtual void SetChordRoot(unsigned char root);
    // The stored byte widened as a signed value.
    virtual int GetChordBass() const { return static_cast<signed char>(Byte(1)); }
    virtual void SetChordBass(unsigned char bass);
    virtual int GetChordFlavor() const { return Byte(2); }
    // The low byte of `flavour`.
    virtual void SetChordFlavor(unsigned int flavour);
    virtual unsigned char GetChordStyle() const { return Byte(3); }
    // Clears bit 1 of `style` when HasChart(flavour, bass) is 0, then stores
    // it; leaves the playback mark alone.
    virtual void SetChordStyle(unsigned char style);

    // 0 for a slash chord (bass above 0) and for flavours beyond 29;
    // otherwise whether the flavour has a chord diagram.
    static int HasChart(int flavour, int bass);

    // 1 and the user's spelling of the flavour in `out`; 0 when there is
    // none. A lower-case minor chord answers 1 and leaves `out` alone: its
    // text is the custom root.
    int GetCustomFlavor(CString &out);
    // 1 and the text of a lower-case minor chord in `out`; 0 when empty.
    int GetCustomRoot(CString &out);

    int IsPhantom() const { return m_phantom; }
    void SetPhantom(int phantom) { m_phantom = phantom; }
    int IsValidForPlayback() const { return m_validForPlayback; }
    void ValidatePlayback() { m_validForPlayback = 1; }
    void InvalidatePlayback() { m_validForPlayback = 0; }

    // Root and bass 0, style 1, both custom strings empty, no lower-case
    // minor, playback mark cleared. The flavour stays.
    void Neutralize();

    // ---- Reading names ----

    // Reads a typed chord name (see the class comment). 0 for an empty text
    // (nothing changes) and for a name that cannot be read; 1 otherwise.
    // Removes the ignored punctuation from `text` itself.
    int UpdateFromString(CString &text);
    // The code of the note name that starts `text` under the note-name
    // pattern, with `ok` set to 1, or 0 with `ok` 0. An accidental that is
    // neither "#" nor "b" gives `ok` 0 and still the code. REQUIRES under a
    // syllable pattern (2 and up): `text` is not a one-letter note name,
    // which throws CInvalidArgException.
    unsigned char GetRootOrBassFromString(int pattern, CString &text, int &ok);
    // The flavour of `text` (spaces removed from `text` itself), 0 for an
    // empty one. An alias keeps the text as typed as the custom flavor. A
    // text not known: `ok` 0 and 29.
    unsigned char GetFlavorFromString(CString &text, int &ok);
    // A text that starts with one of "a" to "h" and reads as a note name is
    // stored as that root's minor chord, with the text as the custom root:
    // 1. Otherwise 0 and nothing stored.
    int HandleLowerCaseMinor(CString &text, int pattern);
    // The first flavour whose display text equals `text`, or 30.
    int FindChordFlavor(CString &text);

    // ---- MIDI exchange ----

    // The MIDI chord type of a flavour; the argument itself for one the map
    // lacks.
    unsigned char GetChordTypeForWritting2Midi(unsigned char const &flavour);
    // The first flavour, in ascending order, with that MIDI chord type; the
    // argument itself when none has it.
    unsigned char GetChordTypeForSetting2Zelto(unsigned char const &midiType);
    // The root code of a MIDI root byte; the byte itself for a letter
    // nibble above 7.
    unsigned char GetZeltoChordRootFromMidi(unsigned char midiRoot);
    // The accidental nibble of a MIDI root byte when it is below 7,
    // otherwise the byte itself.
    unsigned char GetZeltoChordInversionFromMidi(unsigned char midiRoot);
    // The MIDI root byte of a root code; the code itself for one beyond 21.
    unsigned char SetMidiWriteChordRootFromZelto(unsigned char root);
    // 0x30 for a natural (and for 0), 0x40 for a sharp, 0x20 for a flat;
    // the code itself for one beyond 21.
    unsigned char SetMidiWriteChordInversionFromZelto(unsigned char root);

    ECChordSymbol &operator=(const ECChordSymbol &other);
    int operator==(const ECChordSymbol &other) const { return m_chordType == other.m_chordType; }
    int operator!=(const ECChordSymbol &other) const { return !(*this == other); }

protected:
    ~ECChordSymbol() override;

    // Removes every "!", "'", "(", ")", ".", ",", ":", ";", "[", "]", "^"
    // and "_" from `text`; spaces stay.
    void IgnoreCharacters(CString &text);
    // The next chord symbol of the active document after this one's time,
    // up to the end of the last measure; null when none.
    ECChordSymbol *GetNextChordSymbol();

    // The high and the low nibble.
    int _readFirstHalf(unsigned char byte) { return byte >> 4; }
    int _readSecondHalf(unsigned char byte) { return byte & 0x0F; }

private:
    unsigned char Byte(int index) const { return static_cast<unsigned char>(m_chordType >> (8 * index)); }
    void SetByte(int index, unsigned char value);
    void FillTransformMap();

    std::map<unsigned char, unsigned char> m_transformMap;
    // Root, bass, flavour, style, from the low byte up.
    unsigned int m_chordType = 0;
    CString m_customFlavor;
    int m_lowerCaseMinor = 0;
    CString m_customRoot;
    int m_phantom = 0;
    int m_validForPlayback = 0;
    MCTime m_duration = MCTime::TimeZero();
};
