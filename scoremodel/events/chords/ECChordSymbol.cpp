#include <scoremodel/events/chords/ECChordSymbol.h>

// The one place where the chord symbol reaches up into the document: its
// length is where the next chord symbol or the next bar line stands, which
// only the conductor and a search of the active performance know.
#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/Preferences.h>

IMPLEMENT_SERIAL(ECChordSymbol, ECWithTime, VERSIONABLE_SCHEMA | 2)

namespace
{
// From this version a record holds a display text after the chord type; from
// the next one the custom flavor and the custom root instead.
constexpr int kChordTextVersion = 3;
constexpr int kCustomTextsVersion = 19;

constexpr unsigned char kNoFlavor = 29;

struct FlavorRow
{
    unsigned char chart;
    unsigned char midiType;
};

// By flavour, 0 to 29.
constexpr FlavorRow kFlavors[ECChordSymbol::kFlavorCount] = {
    {1, 0},  {1, 8},  {1, 17}, {1, 7},  {1, 2},  {1, 10}, {0, 6},  {0, 3},  {1, 19}, {0, 9},
    {1, 11}, {1, 32}, {0, 15}, {0, 28}, {0, 23}, {0, 15}, {0, 25}, {0, 27}, {0, 29}, {1, 9},
    {1, 24}, {1, 22}, {1, 4},  {1, 5},  {1, 1},  {1, 13}, {1, 37}, {1, 20}, {0, 32}, {0, 36},
};

// A text and what it reads as: a flavour, or for a note name a root code.
struct Token
{
    const wchar_t *text;
    unsigned char value;
};

// Exact, case-sensitive, in this order: the first match wins.
constexpr Token kDirectTokens[] = {
    {L"m", 1}, {L"6", 20}, {L"69", 24}, {L"7", 8}, {L"7#11", 14}, {L"7#5", 18},
    {L"7#9", 17}, {L"7b9", 16}, {L"7sus", 27}, {L"9", 21}, {L"add9", 22}, {L"maj7", 4},
    {L"maj7#4", 7}, {L"maj7#5", 13}, {L"maj7add9", 23}, {L"m6", 19}, {L"m6add9", 26}, {L"m7add9", 25},
    {L"mb6", 9}, {L"mmaj7", 12}, {L"m7", 5}, {L"m7b5", 10}, {L"sus", 11}, {L"sus2", 28},
    {L"susb9", 6}, {L"+", 3}, {L"\u00B0", 2},
};

// Read after the direct tokens; a match keeps the user's spelling. The "+"
// here never fires, as the direct token comes first.
constexpr Token kAliasTokens[] = {
    {L"M", 0}, {L"major", 0}, {L"maj", 0}, {L"ma", 0}, {L"-", 1}, {L"min", 1},
    {L"Minor", 1}, {L"mi", 1}, {L"m-5", 2}, {L"+5", 3}, {L"+", 3}, {L"M7", 4},
    {L"?", 4}, {L"-7", 5}, {L"sus4", 11}, {L"dim7", 2}, {L"maj11", 14}, {L"m11", 14},
    {L"7+5", 18}, {L"m7-5", 10}, {L"\u00D8", 10}, {L"\u00F8", 10}, {L"\u00F87", 10}, {L"\u00D87", 10},
    {L"min7-5", 10}, {L"min7b5", 10}, {L"-add9", 25}, {L"madd9", 25}, {L"minadd9", 25},
};

// Note names, compared lower case, in this order. "b" is decided apart, by
// the pattern.
constexpr Token kNoteNames[] = {
    {L"c", 1}, {L"do", 1}, {L"d", 4}, {L"re", 4}, {L"e", 7}, {L"mi", 7}, {L"f", 10}, {L"fa", 10},
    {L"g", 13}, {L"so", 13}, {L"a", 16}, {L"la", 16}, {L"h", 19}, {L"si", 19}, {L"ti", 19},
};

// Old flavour numbers of documents before version 3, 0 to 18.
constexpr unsigned char kOldFlavors[19] = {0, 1, 8, 2, 19, 5, 20, 21, 4, 22, 23, 24, 25, 26, 10, 11, 27, 3, 29};

// The root codes of the MIDI letters 0 to 7, by accidental.
constexpr unsigned char kFlatRow[8] = {0, 21, 3, 6, 9, 12, 15, 18};
constexpr unsigned char kNaturalRow[8] = {0, 1, 4, 7, 10, 13, 16, 19};
constexpr unsigned char kSharpRow[8] = {0, 2, 5, 8, 11, 14, 17, 20};

int IndexIn(const unsigned char (&row)[8], unsigned char root)
{
    for (int i = 0; i < 8; ++i)
        if (row[i] == root)
            return i;
    return -1;
}

// One-letter names under patterns 0 and 1, two-letter syllables otherwise.
int NoteNameLength(int pattern)
{
    return pattern == 0 || pattern == 1 ? 1 : 2;
}
} // namespace

CString GetChordSymbolString(int flavour)
{
    if (flavour < 1 || flavour > 28)
        return CString();
    CString key;
    key.Format(L"IDS_DM_CHORD_%d", 12009 + flavour);
    return MCLanguageManager::GetText(L"DataModel", key);
}

ECChordSymbol::ECChordSymbol() : ECChordSymbol(1, 0, kNoFlavor, 1)
{
}

ECChordSymbol::ECChordSymbol(unsigned char root, unsigned char bass, unsigned char flavour, unsigned char style)
{
    FillTransformMap();
    m_chordType = root | (bass << 8) | (flavour << 16) | (static_cast<unsigned int>(style) << 24);
}

ECChordSymbol::ECChordSymbol(const ECChordSymbol &other) : ECWithTime(other)
{
    *this = other;
    m_phantom = other.m_phantom;
}

ECChordSymbol::~ECChordSymbol() = default;

void ECChordSymbol::FillTransformMap()
{
    for (int flavour = 0; flavour < kFlavorCount; ++flavour)
        m_transformMap[static_cast<unsigned char>(flavour)] = kFlavors[flavour].midiType;
}

ECChordSymbol &ECChordSymbol::operator=(const ECChordSymbol &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        m_transformMap = other.m_transformMap;
        m_chordType = other.m_chordType;
        m_customFlavor = other.m_customFlavor;
        m_lowerCaseMinor = other.m_lowerCaseMinor;
        m_customRoot = other.m_customRoot;
        m_validForPlayback = 0;
    }
    return *this;
}

CObject *ECChordSymbol::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChordSymbol)))
        *this = *static_cast<ECChordSymbol *>(src);
    return this;
}

int ECChordSymbol::GetEventId() const
{
    return EVENT_ID_CHORD_SYMBOL;
}

int ECChordSymbol::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

// ---- Value ------------------------------------------------------------------

void ECChordSymbol::SetByte(int index, unsigned char value)
{
    const int shift = 8 * index;
    m_chordType = (m_chordType & ~(0xFFu << shift)) | (static_cast<unsigned int>(value) << shift);
}

void ECChordSymbol::SetChordType(int type)
{
    m_chordType = static_cast<unsigned int>(type);
    m_validForPlayback = 0;
}

void ECChordSymbol::SetChordRoot(unsigned char root)
{
    SetByte(0, root);
    m_validForPlayback = 0;
}

void ECChordSymbol::SetChordBass(unsigned char bass)
{
    SetByte(1, bass);
    m_validForPlayback = 0;
}

void ECChordSymbol::SetChordFlavor(unsigned int flavour)
{
    SetByte(2, static_cast<unsigned char>(flavour));
    m_validForPlayback = 0;
}

void ECChordSymbol::SetChordStyle(unsigned char style)
{
    if (!HasChart(GetChordFlavor(), GetChordBass()))
        style &= static_cast<unsigned char>(~2u);
    SetByte(3, style);
}

int ECChordSymbol::HasChart(int flavour, int bass)
{
    if (bass > 0 || flavour < 0 || flavour >= kFlavorCount)
        return 0;
    return kFlavors[flavour].chart;
}

int ECChordSymbol::GetCustomFlavor(CString &out)
{
    if (m_lowerCaseMinor)
        return 1;
    if (m_customFlavor.IsEmpty())
        return 0;
    out = m_customFlavor;
    return 1;
}

int ECChordSymbol::GetCustomRoot(CString &out)
{
    if (m_customRoot.IsEmpty())
        return 0;
    out = m_customRoot;
    return 1;
}

void ECChordSymbol::Neutralize()
{
    SetByte(0, 0);
    SetByte(1, 0);
    SetByte(3, 1);
    m_customFlavor.Empty();
    m_customRoot.Empty();
    m_lowerCaseMinor = 0;
    m_validForPlayback = 0;
}

// ---- Reading names ----------------------------------------------------------

void ECChordSymbol::IgnoreCharacters(CString &text)
{
    for (wchar_t ch : {L'!', L'\'', L'(', L')', L'.', L',', L':', L';', L'[', L']', L'^', L'_'})
        text.Remove(ch);
}

int ECChordSymbol::UpdateFromString(CString &text)
{
    if (text.IsEmpty())
        return 0;
    Neutralize();
    IgnoreCharacters(text);

    const int n = text.GetLength();
    // The bass starts after the first of the three marks.
    const int bassMark = text.FindOneOf(L"\\/|");
    const int pattern = LoadIntPreference(L"Settings\\Notation", L"NoteNamePattern", 0);
    int r = NoteNameLength(pattern);
    if (r < n && (text[r] == L'#' || text[r] == L'b'))
        ++r;

    CString rootText = text.Left(r);
    const int flavourEnd = bassMark >= 0 ? bassMark : n;
    CString flavourText = flavourEnd > r ? text.Mid(r, flavourEnd - r) : CString();
    CString bassText = bassMark >= 0 ? text.Mid(bassMark + 1) : CString();

    if (n == r && (pattern == 0 || pattern == 1) && HandleLowerCaseMinor(rootText, pattern))
        return 1;

    int ok = 1;
    try
    {
        SetChordRoot(GetRootOrBassFromString(pattern, rootText, ok));
        if (ok)
            SetChordFlavor(GetFlavorFromString(flavourText, ok));
        if (bassMark >= 0 && ok)
            SetChordBass(GetRootOrBassFromString(pattern, bassText, ok));
    }
    catch (const CInvalidArgException &)
    {
        // A one-letter name under a syllable pattern: unreadable, like any
        // other name the tables do not know.
        ok = 0;
    }
    if (ok)
        SetByte(3, 1);
    m_validForPlayback = 0;
    return ok;
}

unsigned char ECChordSymbol::GetRootOrBassFromString(int pattern, CString &text, int &ok)
{
    if (text.IsEmpty())
    {
        ok = 0;
        return 0;
    }
    const int length = NoteNameLength(pattern);
    CString token = text.Left(length);
    token.MakeLower();

    int code = 0;
    if (token == L"b")
    {
        if (pattern == 0)
        {
            ok = 1;
            return 18;
        }
        code = 19;
    }
    else
    {
        for (const Token &name : kNoteNames)
            if (token == name.text)
            {
                code = name.value;
                break;
            }
    }
    if (code == 0)
    {
        ok = 0;
        return 0;
    }
    if (text.GetLength() == length)
    {
        ok = 1;
        return static_cast<unsigned char>(code);
    }
    // Throws CInvalidArgException when a one-letter name stands where the
    // pattern wants a syllable: the position lies past the end.
    const wchar_t next = text.GetAt(length);
    if (next == L'#')
    {
        ok = 1;
        return static_cast<unsigned char>(code + 1);
    }
    if (next == L'b')
    {
        ok = 1;
        return static_cast<unsigned char>(code == 1 ? 21 : code - 1);
    }
    ok = 0;
    return static_cast<unsigned char>(code);
}

unsigned char ECChordSymbol::GetFlavorFromString(CString &text, int &ok)
{
    ok = 1;
    const CString typed = text;
    text.Remove(L' ');
    if (text.IsEmpty())
        return 0;
    for (const Token &token : kDirectTokens)
        if (text == token.text)
            return token.value;
    for (const Token &token : kAliasTokens)
        if (text == token.text)
        {
            m_customFlavor = typed;
            return token.value;
        }
    ok = 0;
    return kNoFlavor;
}

int ECChordSymbol::HandleLowerCaseMinor(CString &text, int pattern)
{
    if (text.IsEmpty() || text[0] < L'a' || text[0] > L'h')
        return 0;
    int ok = 0;
    const unsigned char root = GetRootOrBassFromString(pattern, text, ok);
    if (!ok)
        return 0;
    SetChordRoot(root);
    SetChordFlavor(1);
    m_lowerCaseMinor = 1;
    m_customRoot = text;
    return 1;
}

int ECChordSymbol::FindChordFlavor(CString &text)
{
    for (int flavour = 0; flavour < kFlavorCount; ++flavour)
        if (GetChordSymbolString(flavour) == text)
            return flavour;
    return kFlavorCount;
}

// ---- Duration ---------------------------------------------------------------

ECChordSymbol *ECChordSymbol::GetNextChordSymbol()
{
    ECPerformance *performance = ECPerformance::GetActivePerformance();
    ECConductor *conductor = performance ? performance->GetConductor() : nullptr;
    if (!conductor)
        return nullptr;
    ACFindTime find(m_time, conductor->GetMaxMeasureEndTime(), ACRangeOpenStart);
    find.AddEvtType(EVENT_ID_CHORD_SYMBOL);
    find.SetMaxEventCount(1);
    find.Apply(performance);
    if (find.GetEvents().IsEmpty())
        return nullptr;
    return static_cast<ECChordSymbol *>(find.GetEvents().GetHead());
}

MCTime *ECChordSymbol::GetDuration()
{
    m_duration = MCTime::TimeZero();
    ECPerformance *performance = ECPerformance::GetActivePerformance();
    ECConductor *conductor = performance ? performance->GetConductor() : nullptr;
    if (!conductor)
        return &m_duration;
    const MCTime end = conductor->GetMaxMeasureEndTime();

    ECChordSymbol *next = GetNextChordSymbol();
    MCTime until = next ? *next->GetTime() : end;

    ECBase *ownMeasure = GetAncestor(EVENT_ID_MEASURE);
    MCTime measureTime = ownMeasure && ownMeasure->GetTime() ? *ownMeasure->GetTime() : m_time;
    const int number = conductor->GetMeasureNumberAtTime(measureTime);
    ECMeasure *following = conductor->GetMeasure(1, number + 1);
    const MCTime barLine = following && following->GetTime() ? *following->GetTime() : end;
    if (barLine < until)
        until = barLine;

    m_duration = MCTime(until.GetSeconds() - m_time.GetSeconds());
    return &m_duration;
}

// ---- MIDI exchange ----------------------------------------------------------

unsigned char ECChordSymbol::GetChordTypeForWritting2Midi(unsigned char const &flavour)
{
    auto found = m_transformMap.find(flavour);
    return found == m_transformMap.end() ? flavour : found->second;
}

unsigned char ECChordSymbol::GetChordTypeForSetting2Zelto(unsigned char const &midiType)
{
    for (const auto &[flavour, type] : m_transformMap)
        if (type == midiType)
            return flavour;
    return midiType;
}

unsigned char ECChordSymbol::GetZeltoChordInversionFromMidi(unsigned char midiRoot)
{
    const int accidental = _readFirstHalf(midiRoot);
    return accidental < 7 ? static_cast<unsigned char>(accidental) : midiRoot;
}

unsigned char ECChordSymbol::GetZeltoChordRootFromMidi(unsigned char midiRoot)
{
    const int letter = _readSecondHalf(midiRoot);
    if (letter > 7)
        return midiRoot;
    switch (GetZeltoChordInversionFromMidi(midiRoot))
    {
    case 2:
        return kFlatRow[letter];
    case 4:
        return kSharpRow[letter];
    default:
        return kNaturalRow[letter];
    }
}

unsigned char ECChordSymbol::SetMidiWriteChordInversionFromZelto(unsigned char root)
{
    if (IndexIn(kNaturalRow, root) >= 0)
        return 0x30;
    if (IndexIn(kSharpRow, root) >= 0)
        return 0x40;
    if (IndexIn(kFlatRow, root) >= 0)
        return 0x20;
    return root;
}

unsigned char ECChordSymbol::SetMidiWriteChordRootFromZelto(unsigned char root)
{
    int index = IndexIn(kNaturalRow, root);
    if (index < 0)
        index = IndexIn(kSharpRow, root);
    if (index < 0)
        index = IndexIn(kFlatRow, root);
    if (index < 0)
        return root;
    return static_cast<unsigned char>((SetMidiWriteChordInversionFromZelto(root) & 0xF0) | index);
}

// ---- Archive ----------------------------------------------------------------

void ECChordSymbol::Serialize(CArchive &ar)
{
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<DWORD>(m_chordType) << m_customFlavor << m_customRoot;
        return;
    }
    DWORD type = 0;
    ar >> type;
    m_chordType = type;
    m_lowerCaseMinor = 0;
    m_validForPlayback = 0;
    const int version = ActiveArchiveVersion();
    if (version >= kCustomTextsVersion)
    {
        ar >> m_customFlavor >> m_customRoot;
    }
    else if (version >= kChordTextVersion)
    {
        CString display;
        ar >> display;
        SetChordFlavor(static_cast<unsigned int>(FindChordFlavor(display)));
    }
    else
    {
        const int old = GetChordFlavor();
        if (old < static_cast<int>(sizeof kOldFlavors))
            SetChordFlavor(kOldFlavors[old]);
    }
}
