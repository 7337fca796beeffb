// MCInstrumentManager: what the rest of the program calls for tablature
// instruments. It passes instrument calls on to XMLInstrumentParser (see
// there for the file, the cached arrays and how they lag behind edits) and
// adds the frequencies of MIDI keys for the instrument in use.
//
//     MCInstrumentManager *m = MCInstrumentManager::GetInstance();
//     CArray<CString, CString> &names = m->GetInstrumentNameList(true);
//     m->SetInstrument(m->GetInstrument(0));
//     double hz = m->GetHzPitch(0);             // the first string's frequency
//
// The pitch table holds keys 0..126 (key 69 is 440 Hz, equal temperament),
// filled once at construction.
//
// A singleton made at first use and never replaced. No lock: use it from one
// thread (the document thread).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/instruments/MCInstrument.h>
#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CString.h>

class SCOREMODEL_API MCInstrumentManager : public DCBase
{
    DECLARE_DYNAMIC(MCInstrumentManager)

public:
    // Keys in the pitch table: 0..126.
    static constexpr int kPitchCount = 127;

    static MCInstrumentManager *GetInstance();
    ~MCInstrumentManager() override;

    // ---- Instruments (from the parser's cache) -----------------------------------

    // A copy of cached instrument `index`; initial values (counts -1) outside.
    MCInstrument GetInstrument(int index);
    // The first cached index whose instrument Equals `instrument`; -1 if none.
    int GetIndex(MCInstrument instrument);
    // The parser's names (read again when `refresh`), copied into the
    // manager's own list, which is returned.
    CArray<CString, CString> &GetInstrumentNameList(bool refresh);
    // 0 for null; else HasInstrumentName(its name).
    int HasInstrumentName(MCInstrument *instrument);
    // 1 when a cached instrument has exactly this name.
    int HasInstrumentName(CString name);

    // ---- Edits (to the parser's document) -----------------------------------------

    // The index the instrument gets at the next refresh.
    int AddInstrument(MCInstrument instrument);
    // Do nothing (0) for a negative index; else the parser's result.
    int DelInstrument(int index);
    int EditInstrument(int index, MCInstrument instrument);
    // Writes the user's file; 1 on success.
    int Persist();

    // ---- Frequencies ------------------------------------------------------------

    // The instrument whose tunes GetHzPitch reads: a copy of `instrument`.
    void SetInstrument(const MCInstrument &instrument);
    const MCInstrument &GetCurrentInstrument() const { return m_instrument; }
    // The frequency of the open string `index` of the current instrument.
    // CInvalidArgException for a string the instrument lacks or a tune
    // outside 0..126.
    double GetHzPitch(int index);
    // The frequency of MIDI key `key` (0..126); CInvalidArgException outside.
    double GetHzOfKey(int key) const;

private:
    MCInstrumentManager();
    // 13.75 Hz * 2^((k - 9) / 12) for k = 0..126.
    void GenerateHzPitches();

    CArray<CString, CString> m_nameList;
    // Part of the manager's layout; nothing in the library reads it yet.
    CString m_name;
    MCInstrument m_instrument;
    CArray<double, double> m_hzPitches;
};
