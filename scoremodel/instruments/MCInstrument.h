// MCInstrument: a fretted instrument for tablature: strings, frets, the span
// of the fretting hand and the pitch of each open string.
//
// An instrument is a data attachment, so a staff carries its tablature
// instrument in its data array; the same class is the record of the
// instrument file (XMLInstrumentParser).
//
//     CArray<int, int> tunes;                       // open strings, highest first
//     for (int i = 0; i < 6; ++i) tunes.Add(MCInstrument::FretsDefault[i]);
//     MCInstrument guitar(L"Guitar", L"standard tuning", 6, 24, 4, tunes);
//
// Counts start at -1 ("not set") and are stored without range tests. The
// tunes are MIDI key numbers, one per string. Initialized() turns 1 once
// tunes are set, by either SetTunes, even when nothing changes.
//
// Equality (Equals, ==) is the identity a user picks an instrument by: name
// (exact, case sensitive), the three counts and every tune. Description and
// the initialized word do not count, so two instruments that differ only in
// their description are one instrument.
//
// Archive record (schema 1, versionable), after the DCBase record and the
// tunes array's own record (count and ints):
//
//     CString name, CString description, int strings, int frets,
//     int distance, int tune count, that many int tunes, int initialized
//
// Loaders branch on the document version: up to 4 nothing after the two
// records is read and the fields keep their initial values; from 5 the
// strings and counts; from 6 also the tunes again (replacing what the array
// record gave) and the initialized word. A negative tune count is a corrupt
// stream (CArchiveException).
//
// A plain value: no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CString.h>

class SCOREMODEL_API MCInstrument : public DCBase
{
    DECLARE_SERIAL(MCInstrument)

public:
    // Open strings of a guitar in standard tuning, highest first (E4 B3 G3 D3
    // A2 E2), and the low B of a seven-string guitar below them.
    static const int FretsDefault[7];
    static constexpr int FretsDefaultCount = 7;

    MCInstrument();
    MCInstrument(CString name, CString description, int strings, int frets, int distance,
                 CArray<int, int> &tunes);
    MCInstrument(const MCInstrument &other);
    ~MCInstrument() override;

    // ---- Fields -------------------------------------------------------------------

    CString GetName() const { return m_name; }
    void SetName(CString name) { m_name = name; }
    CString GetDescription() const { return m_description; }
    void SetDescription(CString description) { m_description = description; }
    int GetStringsCount() const { return m_stringsCount; }
    void SetStringsCount(int count) { m_stringsCount = count; }
    int GetFretsCount() const { return m_fretsCount; }
    void SetFretsCount(int count) { m_fretsCount = count; }
    int GetFingerDistance() const { return m_fingerDistance; }
    void SetFingerDistance(int distance) { m_fingerDistance = distance; }

    // ---- Tunes --------------------------------------------------------------------

    CArray<int, int> &GetTunes() { return m_tunes; }
    const CArray<int, int> &GetTunes() const { return m_tunes; }
    // Sets one string's tune; CInvalidArgException outside the array. Marks
    // the instrument initialized.
    void SetTunes(int index, int tune);
    // Copies the array (its own array is left as it is). Marks the
    // instrument initialized in either case.
    void SetTunes(CArray<int, int> &tunes);
    // 1 once tunes were set, else 0.
    int Initialized() const { return m_initialized; }

    // ---- Comparison and copies -------------------------------------------------

    // 1 when name, counts and every tune agree (see above).
    virtual int Equals(const MCInstrument &other) const;
    virtual int operator==(const MCInstrument &other) const { return Equals(other); }
    virtual int operator!=(const MCInstrument &other) const { return !Equals(other); }
    // Copies every field, the initialized word included.
    virtual MCInstrument &operator=(const MCInstrument &other);
    // Fills in what this instrument lacks from `other`: an empty name or
    // description, a count of -1, no tunes. What is set stays.
    virtual void DoComplementationCopy(const MCInstrument &other);

    CObject *Copy(CObject *src) override;
    void Serialize(CArchive &ar) override;

private:
    CString m_name;
    CString m_description;
    int m_stringsCount = -1;
    int m_fretsCount = -1;
    int m_fingerDistance = -1;
    CArray<int, int> m_tunes;
    int m_initialized = 0;
};
