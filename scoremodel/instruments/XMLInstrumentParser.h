// XMLInstrumentParser: the tablature instruments of the program, read from
// and written to one XML file.
//
// The file. Any root element (this library writes "instruments") holding
// "instrument" elements; other elements are skipped:
//
//     <instruments>
//       <instrument>
//         <name>Guitar</name>                      text
//         <description>Standard tuning</description>
//         <strings>6</strings>                     decimal
//         <frets>24</frets>
//         <distance>4</distance>                   span of the fretting hand
//         <tune><frequency>64</frequency>...</tune> open strings as MIDI keys
//       </instrument>
//     </instruments>
//
// Decimal texts read like the platform's integer reading: leading blanks, a
// sign, digits up to the first other character (no digits: 0), clamped to
// the int range. "sound" is a known element name that nothing reads.
//
// Which file. At first use the user's file (MCGetUserTabInstrumentsPath) is
// read if it exists, else the application's (MCGetAppTabInstrumentsPath).
// The two are never merged: a user's file, once written, replaces the
// application's wholly. Persist always writes the user's path.
//
// Three copies of the truth, on purpose. The document is the source of
// truth: AddInstrument, DelInstrument and EditInstrument change it at once.
// The cached arrays (names and instruments, in file order) change only when
// a getter is called with `refresh` set, and the file only on Persist. So
// after AddInstrument on a file of 5 instruments, GetInstruments(0) still
// holds 5 and GetInstruments(1) shows 6.
//
// Writing drops fields: a written instrument holds name, strings, frets and
// tunes only. An instrument that was added or edited loses its description
// and finger distance once the file is read again. The format has always
// behaved so; files in the field depend on nothing else.
//
// Failures. A file that is missing or cannot be read shows the text
// IDD_DM_MB_TEXT15, a file that is read but is not well-formed XML shows
// IDD_DM_MB_TEXT16 (section "TuDataModel_Misc_XMLInstrumentParser"), through
// the message box (MCMessageBox). Either leaves an empty document and empty
// arrays that work as usual: instruments can be added and persisted. The
// reader never fetches external entities or DTDs. Persist writes atomically
// (a temporary file beside the target, flushed and synced, then renamed over
// it): on failure the previous file is untouched, no temporary is left and
// "ERROR_SAVE_FILE_F" of section "Util" is shown with the path.
//
// Ownership and invalidation. The parser owns the cached instruments; the
// pointers GetInstruments hands out die at the next refresh or reload.
//
// The parser is a singleton made at first use and never replaced. No lock:
// use it from one thread (the document thread).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/instruments/MCInstrument.h>
#include <scoremodel/instruments/XMLParser.h>
#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CString.h>

namespace pugi
{
class xml_node;
}

class SCOREMODEL_API XMLInstrumentParser : public XMLParser
{
public:
    // The element names, by index: 0 "instrument", 1 "name", 2 "description",
    // 3 "strings", 4 "frets", 5 "distance", 6 "sound", 7 "tune", 8 "frequency".
    enum Element
    {
        ElementInstrument,
        ElementName,
        ElementDescription,
        ElementStrings,
        ElementFrets,
        ElementDistance,
        ElementSound,
        ElementTune,
        ElementFrequency,
        ElementCount
    };
    // The name at `index`; null outside 0..8.
    static const char *GetNodeName(int index);

    // The parser, made at first use from the user's or application's file.
    static XMLInstrumentParser *GetInstance();
    ~XMLInstrumentParser() override;

    // ---- Loading ---------------------------------------------------------------

    // Replaces the document by the file at `path` and reads its instruments
    // into the emptied arrays. 1 on success; 0 after showing the failure
    // (see above), with an empty document. (Takes a const path: the file
    // name is only read.)
    virtual int ParseXMLFromFile(const wchar_t *path);
    // Loads the user's file when it exists, else the application's: what the
    // first use does, for a host that wants to start over.
    int ParseStartFile();

    // ---- Cached arrays ---------------------------------------------------------

    // With refresh 0 the cached arrays as they are; otherwise they are
    // emptied (freeing the instruments) and read from the document again.
    CArray<CString, CString> &GetInstrumentNameList(int refresh);
    CArray<MCInstrument *, MCInstrument *> &GetInstruments(int refresh);
    // A copy of entry `index` after GetInstruments(refresh); an instrument
    // with initial values (counts -1) outside the array.
    MCInstrument GetInstrument(int index, int refresh);
    // 1 when a cached instrument Equals `instrument`.
    int ExistsInstrument(const MCInstrument &instrument);

    // ---- Editing the document ---------------------------------------------------

    // Appends an "instrument" element. Returns the cached count: the index
    // the instrument gets at the next refresh. The cache does not change.
    int AddInstrument(MCInstrument &instrument);
    // Removes the index-th "instrument" element, if the cached instrument at
    // `index` exists; 1 when an element was removed, else 0.
    int DelInstrument(int index);
    // Replaces the index-th "instrument" element by one written from
    // `instrument`, in the same place; 1 on success, 0 when there is none.
    int EditInstrument(int index, MCInstrument instrument);
    // The index-th instrument element counts "instrument" elements only, the
    // same elements the cache reads, so an index of the cache names the
    // element it was read from even when the root holds other elements.

    // Writes the document to the user's path, atomically. 1 on success; 0
    // after showing "ERROR_SAVE_FILE_F".
    int Persist();

private:
    XMLInstrumentParser();

    void ClearCache();
    // Shows the text of `key` in the parser's section.
    static void ShowMessage(const wchar_t *key);
    pugi::xml_node Root();
    pugi::xml_node InstrumentNodeAt(int index);
    void ParseRoot(pugi::xml_node root);
    static int FieldOf(const char *name);
    void ParseInstrument(pugi::xml_node node);
    void ParseTune(pugi::xml_node node, MCInstrument &instrument);
    // Fills an empty "instrument" element from `instrument`.
    static void CreateInstrumentNode(pugi::xml_node node, const MCInstrument &instrument);

    static const char *const m_sNodeNames[ElementCount];

    CArray<CString, CString> m_nameList;
    CArray<MCInstrument *, MCInstrument *> m_instruments;
};
