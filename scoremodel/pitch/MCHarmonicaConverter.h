// MCHarmonicaConverter: sounding MIDI pitches to and from the tablature of a
// diatonic button accordion, and the packing of its bass letters and chords.
//
// A button of the treble side (the descant) gives one pitch when the bellows
// close (compression) and another when they open (release). The descant is a
// grid of rows; with R rows (3 or 4), row r has R + 9 - r buttons. A note is
// told by one notation byte:
//
//     bit 6     compression (1) or release (0)
//     bit 5     note style: 1 for rows 2 and 3, 0 for rows 0 and 1
//     bits 0-4  staff degree: button * 2 + row + 2
//
// Byte 0 means "no note". The row comes back from the byte as (degree odd)
// + 2 * style, the button as (degree - row - 2) / 2.
//
//     MCHarmonicaConverter &c = MCHarmonicaConverter::GetInstance();
//     unsigned char b = c.GetHarmonicaDescantNotation(48, 1);  // 0x43: row 1, button 0
//     unsigned char p = c.GetDescantMidiPitch(b);              // 48 again
//
// Tables. Every entry is a key-0 pitch; the main key (-6..6, see SetMainKey)
// is added on reading, so a transposed instrument is one number. A layout
// (0..4) is a set of changes to the freshly built tables, and custom pitches
// are written into the tables on top; both are dropped whenever the tables
// are rebuilt (a new row count, a new layout, a reset of custom pitches).
//
// Searches. A pitch is found by scanning rows in the order 1, 0, 2, 3 and
// buttons from 0 up: the inner row wins among buttons that sound alike.
//
// Bass byte: bit 7 always set, bit 6 compression, bit 3 second row, bits 0-2
// the letter (A a B b C c D d as 0..7). Reading the letter back swaps A and
// a; that swap is kept so that bytes already stored keep reading as they
// always have (see ExtractBassLetter).
//
// Chord byte: pitch class in bits 0-3 and flags in bits 4, 5 or 6, whose
// meaning belongs to the drawing side; only the packing is done here.
//
// GetInstance hands out one converter per process, made at first use. A
// host may make further converters of its own. No lock: a converter
// belongs to the thread that drives the tablature views.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>

#include <cstdint>
#include <vector>

class SCOREMODEL_API MCHarmonicaConverter
{
public:
    // The shared converter (key 0, 4 rows, layout 4), made at first use.
    static MCHarmonicaConverter &GetInstance();

    // Key 0, 4 rows, layout 4, no custom pitches; then SetMainKey(mainKey % 12).
    explicit MCHarmonicaConverter(int mainKey = 0);
    virtual ~MCHarmonicaConverter();
    MCHarmonicaConverter(const MCHarmonicaConverter &) = delete;
    MCHarmonicaConverter &operator=(const MCHarmonicaConverter &) = delete;

    // ---- Limits -------------------------------------------------------------------

    static constexpr int kMaxRows = 4;
    static constexpr int kLayoutCount = 5;
    // Buttons of row `row` with `rows` rows: rows + 9 - row (0 outside the grid).
    static int ButtonCount(int rows, int row);

    // ---- Main key ---------------------------------------------------------------

    // Stores key % 12 (sign of the dividend) minus 12 when above 6, and
    // returns it. A negative key is not lifted: -7 stays -7 (and has no name).
    int SetMainKey(int key);
    int GetMainKey() const { return m_mainKey; }
    // The row tunings of a key ("-5".."6"): German names when the language id
    // is "DE", English ones otherwise; empty outside -5..6.
    static CString GetKeyNamesFromMainKey(int key);

    // ---- Rows and layouts -------------------------------------------------------

    // 3 or 4; any other count is ignored. Rebuilds the tables, which drops
    // the layout's changes and custom pitches from them.
    void SetDescantRowCount(unsigned char rows);
    unsigned char GetDescantRowCount() const { return m_descantRowCount; }
    // 0..4; a value above 4 is ignored. Rebuilds the tables and applies the
    // layout's changes; custom pitches leave the tables (their list stays).
    void SetDescantLayout(unsigned char layout);
    int GetDescantLayout() const { return m_descantLayout; }
    // The layout's name; empty above 4. Without argument: the current one.
    static CString GetDescantLayoutInformation(unsigned char layout);
    CString GetDescantLayoutInformation() const;
    // The bass side has no table: both do nothing.
    void SetBassLayout(unsigned char layout);
    void InitBassConvertData();

    // ---- Descant ---------------------------------------------------------------

    // The sounding pitch of a button (table entry plus main key, as a byte).
    // 0 for a note style other than 0 or 1 and for a degree that names no
    // button of the grid.
    unsigned char GetDescantMidiPitch(unsigned char noteStyle, unsigned char staffDegree, int compression) const;
    unsigned char GetDescantMidiPitch(unsigned char notationByte) const;
    // The notation byte of the first button (rows 1, 0, 2, 3; buttons from 0
    // up) that sounds `pitch` in that direction; 0 when none does. In layout
    // 0 the emptied buttons sound the main key and can be found.
    unsigned char GetHarmonicaDescantNotation(unsigned char pitch, int compression) const;
    // The next button after the byte's (on along the row, then row + 1
    // modulo the row count) that sounds the same in the same direction; the
    // byte itself when no other does. 0 for byte 0 or a byte off the grid.
    unsigned char GetNextEnharmonicNotationByte(unsigned char notationByte) const;

    // ---- Custom pitches ---------------------------------------------------------

    // Writes `pitch` (stored as given; the main key still adds on reading)
    // into the table and records the change for the host. A row, button or
    // byte off the grid is ignored.
    void SetCustomMidiPitchDescant(int row, int button, int compression, unsigned char pitch);
    void SetCustomMidiPitchDescant(unsigned char notationByte, unsigned char pitch);
    // Empties the list of changes and rebuilds the tables. The layout number
    // stays, but its changes stay out of the tables until SetDescantLayout
    // runs again: that gap is wanted, hosts re-apply the layout themselves.
    void ResetCustomMidiPitchesDescant();
    int GetDescantCustomChangeCount() const { return m_customChangeCount; }
    // The recorded changes: low byte the pitch, high byte the notation byte.
    const std::vector<std::uint16_t> &GetDescantCustomChanges() const { return m_customChanges; }

    // ---- Notation bytes ---------------------------------------------------------

    // Non-zero flags set bits 6 and 5; the degree keeps its low 5 bits.
    static unsigned char CombineToNotationByte(int compression, int noteStyle, unsigned char staffDegree);
    static int ExtractCompression(unsigned char notationByte) { return (notationByte >> 6) & 1; }
    static int ExtractNoteStyle(unsigned char notationByte) { return (notationByte >> 5) & 1; }
    static unsigned char ExtractStaffDegree(unsigned char notationByte) { return notationByte & 0x1F; }
    // 0 for note style 0; otherwise forEvenDegree or forOddDegree by the degree.
    static unsigned char GetNoteheadToDraw(unsigned char notationByte, unsigned char forEvenDegree,
                                           unsigned char forOddDegree);
    // 1 when the note style is 1 and no special notehead is set for it: the
    // note then shows an X sign instead.
    static unsigned char HasXAccidentalToDraw(unsigned char notationByte, unsigned char forEvenDegree,
                                              unsigned char forOddDegree);

    // ---- Bass and chords -------------------------------------------------------

    // Letter 'X' sets the second-row bit and nothing else; a letter outside
    // A-D and a-d leaves bits 0-2 at 0.
    static unsigned char CombineToBassByte(int compression, char letter, int secondRow);
    // 'X' for a second-row byte with letter bits 0; otherwise "aABbCcDd" at
    // bits 0-2. A byte packed from 'A' reads as 'a' and the other way round,
    // and a second-row 'A' reads as 'X': stored documents depend on it.
    static char ExtractBassLetter(unsigned char bassByte);
    static int IsSecondRowBass(unsigned char bassByte) { return (bassByte >> 3) & 1; }
    // Pitch class (modulo 12, also for negative pitches) with bit 4 for
    // flag1 and bit 5 for flag2.
    static unsigned char CombineToChordByte(int pitch, int flag1, int flag2);
    // Pitch class with bit 6.
    static unsigned char CombineToChordByte(int pitch);

private:
    using Table = std::vector<std::vector<unsigned char>>;

    void BuildDescantTables();
    void FreeDescantPointers();
    void FreeBassPointers();
    void ApplyLayout(int layout);
    // The table entry of a button, or null off the grid.
    unsigned char *Entry(int row, int button, int compression);
    const unsigned char *Entry(int row, int button, int compression) const;
    // Row and button of a notation byte; false for byte 0 or off the grid.
    bool Locate(unsigned char notationByte, int &row, int &button) const;
    static unsigned char NotationOf(int row, int button, int compression);
    // base + (pitch - base) % 12.
    static int MidiClamp(int pitch, int base);

    static MCHarmonicaConverter *my_instance;

    int m_mainKey = 0;
    unsigned char m_descantRowCount = 4;
    int m_descantLayout = 4;
    int m_customChangeCount = 0;
    std::vector<std::uint16_t> m_customChanges;
    Table m_compression;
    Table m_release;
};
