#include <scoremodel/pitch/MCHarmonicaConverter.h>

#include <scoremodel/platform/MCLanguageManager.h>

#include <array>

namespace
{
// Key-0 pitches of the 4-row grid; a 3-row grid takes each row but its last
// button, and no row 3.
const std::array<std::vector<unsigned char>, 4> kCompression = {{
    {43, 47, 50, 55, 59, 62, 67, 71, 74, 79, 83, 86, 91},
    {48, 52, 55, 60, 64, 67, 72, 76, 79, 84, 88, 91},
    {53, 57, 60, 65, 69, 72, 77, 81, 84, 89, 93},
    {58, 62, 65, 70, 74, 77, 82, 86, 89, 94},
}};
const std::array<std::vector<unsigned char>, 4> kRelease = {{
    {48, 50, 54, 57, 60, 64, 66, 69, 72, 76, 78, 81, 84},
    {53, 55, 59, 62, 65, 67, 71, 74, 77, 81, 83, 86},
    {58, 60, 64, 67, 70, 72, 76, 79, 82, 84, 86},
    {63, 65, 69, 72, 75, 77, 81, 84, 87, 89},
}};

const wchar_t *const kLayoutNames[MCHarmonicaConverter::kLayoutCount] = {
    L"3-reihig, 33 T., traditionell",
    L"4-reihig, 46 T., 1x chromat. gleichtönig (Strasser)",
    L"4-reihig, 46 T., 1x chromat. wechseltönig (Öller, Strasser)",
    L"4-reihig, 46 T., 2x chromat. gleichtönig (Michlbauer)",
    L"4-reihig, 46 T., Tieftöne (traditionell)",
};

struct KeyName
{
    const wchar_t *german;
    const wchar_t *other;
};
// Keys -5..6.
const KeyName kKeyNames[12] = {
    {L"08  D-G-C-(F)", L"08  D-G-C-(F)"},
    {L"09  Es-As-Des-(Ges)", L"09  Eb-Ab-Db-(Gb)"},
    {L"10  E-A-D-(G)", L"10  E-A-D-(G)"},
    {L"11  F-B-Es-(As)", L"11  F-Bb-Eb-(Ab)"},
    {L"12  F#-H-E-(A)", L"12  F#-B-E-(A)"},
    {L" 1  G-C-F-(B)", L" 1  G-C-F-(Bb)"},
    {L" 2  G#-C#-F#-H", L" 2  G#-C#-F#-B"},
    {L" 3  A-D-G-(C)", L" 3  A-D-G-(C)"},
    {L" 4  B-Es-As-(Des)", L" 4  Bb-Eb-Ab-(Db)"},
    {L" 5  H-E-A-(D)", L" 5  B-E-A-(D)"},
    {L" 6  C-F-B-(Es)", L" 6  C-F-Bb-(Eb)"},
    {L" 7  C#-F#-H-E", L" 7  C#-F#-B-E"},
};

const char kBassLetters[] = "aABbCcDd";
constexpr unsigned char kBassMark = 0x80;
constexpr unsigned char kBassCompression = 0x40;
constexpr unsigned char kBassSecondRow = 0x08;
} // namespace

MCHarmonicaConverter *MCHarmonicaConverter::my_instance = nullptr;

MCHarmonicaConverter &MCHarmonicaConverter::GetInstance()
{
    // Never freed: views may still ask while static objects are destroyed.
    if (!my_instance)
        my_instance = new MCHarmonicaConverter(0);
    return *my_instance;
}

MCHarmonicaConverter::MCHarmonicaConverter(int mainKey)
{
    BuildDescantTables();
    SetMainKey(mainKey % 12);
}

MCHarmonicaConverter::~MCHarmonicaConverter()
{
    FreeDescantPointers();
    FreeBassPointers();
}

int MCHarmonicaConverter::ButtonCount(int rows, int row)
{
    if (rows < 0 || rows > kMaxRows || row < 0 || row >= rows)
        return 0;
    return rows + 9 - row;
}

// ---- Tables ---------------------------------------------------------------------

void MCHarmonicaConverter::BuildDescantTables()
{
    FreeDescantPointers();
    for (int row = 0; row < m_descantRowCount; ++row)
    {
        const auto count = static_cast<size_t>(ButtonCount(m_descantRowCount, row));
        m_compression.emplace_back(kCompression[static_cast<size_t>(row)].begin(),
                                   kCompression[static_cast<size_t>(row)].begin() + static_cast<std::ptrdiff_t>(count));
        m_release.emplace_back(kRelease[static_cast<size_t>(row)].begin(),
                               kRelease[static_cast<size_t>(row)].begin() + static_cast<std::ptrdiff_t>(count));
    }
}

void MCHarmonicaConverter::FreeDescantPointers()
{
    m_compression.clear();
    m_release.clear();
}

void MCHarmonicaConverter::FreeBassPointers()
{
}

unsigned char *MCHarmonicaConverter::Entry(int row, int button, int compression)
{
    Table &table = compression ? m_compression : m_release;
    if (row < 0 || static_cast<size_t>(row) >= table.size() || button < 0 ||
        static_cast<size_t>(button) >= table[static_cast<size_t>(row)].size())
        return nullptr;
    return &table[static_cast<size_t>(row)][static_cast<size_t>(button)];
}

const unsigned char *MCHarmonicaConverter::Entry(int row, int button, int compression) const
{
    return const_cast<MCHarmonicaConverter *>(this)->Entry(row, button, compression);
}

void MCHarmonicaConverter::ApplyLayout(int layout)
{
    auto setBoth = [this](int row, int button, unsigned char pitch) {
        // A button the row count did not build is skipped: the 3-row grid
        // has no row 3 and no button 12 - r.
        if (unsigned char *c = Entry(row, button, 1))
            *c = pitch;
        if (unsigned char *r = Entry(row, button, 0))
            *r = pitch;
    };
    switch (layout)
    {
    case 0:
        for (int button = 0; button < 10; ++button)
            setBoth(3, button, 0);
        for (int row = 0; row < m_descantRowCount; ++row)
            setBoth(row, 12 - row, 0);
        break;
    case 1: setBoth(0, 0, 68); break;
    case 2:
        if (unsigned char *c = Entry(0, 0, 1))
            *c = 68;
        if (unsigned char *r = Entry(0, 0, 0))
            *r = 73;
        break;
    case 3:
        setBoth(0, 0, 68);
        setBoth(0, 1, 73);
        break;
    default: break;
    }
}

// ---- Main key, rows and layouts --------------------------------------------------

int MCHarmonicaConverter::SetMainKey(int key)
{
    int value = key % 12;
    if (value > 6)
        value -= 12;
    m_mainKey = value;
    return value;
}

CString MCHarmonicaConverter::GetKeyNamesFromMainKey(int key)
{
    if (key < -5 || key > 6)
        return CString();
    const KeyName &name = kKeyNames[key + 5];
    return CString(MCLanguageManager::GetLanguageId() == L"DE" ? name.german : name.other);
}

void MCHarmonicaConverter::SetDescantRowCount(unsigned char rows)
{
    if (rows < 3 || rows > kMaxRows)
        return;
    FreeDescantPointers();
    m_descantRowCount = rows;
    BuildDescantTables();
}

void MCHarmonicaConverter::SetDescantLayout(unsigned char layout)
{
    if (layout >= kLayoutCount)
        return;
    BuildDescantTables();
    ApplyLayout(layout);
    m_descantLayout = layout;
}

CString MCHarmonicaConverter::GetDescantLayoutInformation(unsigned char layout)
{
    return layout < kLayoutCount ? CString(kLayoutNames[layout]) : CString();
}

CString MCHarmonicaConverter::GetDescantLayoutInformation() const
{
    return GetDescantLayoutInformation(static_cast<unsigned char>(m_descantLayout));
}

void MCHarmonicaConverter::SetBassLayout(unsigned char)
{
}

void MCHarmonicaConverter::InitBassConvertData()
{
}

// ---- Descant --------------------------------------------------------------------

unsigned char MCHarmonicaConverter::NotationOf(int row, int button, int compression)
{
    return CombineToNotationByte(compression, row >= 2, static_cast<unsigned char>(button * 2 + row + 2));
}

bool MCHarmonicaConverter::Locate(unsigned char notationByte, int &row, int &button) const
{
    if (notationByte == 0)
        return false;
    const int degree = ExtractStaffDegree(notationByte);
    row = (degree & 1) + 2 * ExtractNoteStyle(notationByte);
    const int offset = degree - row - 2;
    if (offset < 0)
        return false;
    button = offset / 2;
    return Entry(row, button, ExtractCompression(notationByte)) != nullptr;
}

unsigned char MCHarmonicaConverter::GetDescantMidiPitch(unsigned char noteStyle, unsigned char staffDegree,
                                                        int compression) const
{
    if (noteStyle > 1)
        return 0;
    const int row = 2 * noteStyle + (staffDegree & 1);
    const int offset = staffDegree - row - 2;
    if (offset < 0)
        return 0;
    const unsigned char *entry = Entry(row, offset / 2, compression);
    return entry ? static_cast<unsigned char>(*entry + m_mainKey) : 0;
}

unsigned char MCHarmonicaConverter::GetDescantMidiPitch(unsigned char notationByte) const
{
    return GetDescantMidiPitch(static_cast<unsigned char>(ExtractNoteStyle(notationByte)),
                               ExtractStaffDegree(notationByte), ExtractCompression(notationByte));
}

unsigned char MCHarmonicaConverter::GetHarmonicaDescantNotation(unsigned char pitch, int compression) const
{
    static const int kRowOrder[kMaxRows] = {1, 0, 2, 3};
    const Table &table = compression ? m_compression : m_release;
    for (int row : kRowOrder)
    {
        if (static_cast<size_t>(row) >= table.size())
            continue;
        const std::vector<unsigned char> &buttons = table[static_cast<size_t>(row)];
        for (size_t button = 0; button < buttons.size(); ++button)
            if (static_cast<unsigned char>(buttons[button] + m_mainKey) == pitch)
                return NotationOf(row, static_cast<int>(button), compression);
    }
    return 0;
}

unsigned char MCHarmonicaConverter::GetNextEnharmonicNotationByte(unsigned char notationByte) const
{
    int row = 0;
    int button = 0;
    if (!Locate(notationByte, row, button))
        return 0;
    const int compression = ExtractCompression(notationByte);
    const unsigned char sound = *Entry(row, button, compression);
    // Every button once, then back at the start at worst.
    for (;;)
    {
        if (++button >= ButtonCount(m_descantRowCount, row))
        {
            button = 0;
            row = (row + 1) % m_descantRowCount;
        }
        if (*Entry(row, button, compression) == sound)
            return NotationOf(row, button, compression);
    }
}

// ---- Custom pitches ---------------------------------------------------------------

void MCHarmonicaConverter::SetCustomMidiPitchDescant(int row, int button, int compression, unsigned char pitch)
{
    unsigned char *entry = Entry(row, button, compression);
    if (!entry)
        return;
    m_customChanges.push_back(
        static_cast<std::uint16_t>(pitch | (NotationOf(row, button, compression ? 1 : 0) << 8)));
    ++m_customChangeCount;
    *entry = pitch;
}

void MCHarmonicaConverter::SetCustomMidiPitchDescant(unsigned char notationByte, unsigned char pitch)
{
    int row = 0;
    int button = 0;
    if (Locate(notationByte, row, button))
        SetCustomMidiPitchDescant(row, button, ExtractCompression(notationByte), pitch);
}

void MCHarmonicaConverter::ResetCustomMidiPitchesDescant()
{
    m_customChanges.clear();
    m_customChangeCount = 0;
    BuildDescantTables();
}

// ---- Notation bytes ------------------------------------------------------------------

unsigned char MCHarmonicaConverter::CombineToNotationByte(int compression, int noteStyle, unsigned char staffDegree)
{
    return static_cast<unsigned char>((compression ? 0x40 : 0) | (noteStyle ? 0x20 : 0) | (staffDegree & 0x1F));
}

unsigned char MCHarmonicaConverter::GetNoteheadToDraw(unsigned char notationByte, unsigned char forEvenDegree,
                                                      unsigned char forOddDegree)
{
    if (!ExtractNoteStyle(notationByte))
        return 0;
    return (ExtractStaffDegree(notationByte) & 1) ? forOddDegree : forEvenDegree;
}

unsigned char MCHarmonicaConverter::HasXAccidentalToDraw(unsigned char notationByte, unsigned char forEvenDegree,
                                                         unsigned char forOddDegree)
{
    return GetNoteheadToDraw(notationByte, forEvenDegree, forOddDegree) == 0 && ExtractNoteStyle(notationByte) ? 1
                                                                                                               : 0;
}

// ---- Bass and chords ------------------------------------------------------------------

unsigned char MCHarmonicaConverter::CombineToBassByte(int compression, char letter, int secondRow)
{
    unsigned char byte = kBassMark;
    if (compression)
        byte |= kBassCompression;
    if (letter == 'X')
        return byte | kBassSecondRow;
    if (secondRow)
        byte |= kBassSecondRow;
    if (letter >= 'A' && letter <= 'D')
        byte |= static_cast<unsigned char>((letter - 'A') * 2);
    else if (letter >= 'a' && letter <= 'd')
        byte |= static_cast<unsigned char>((letter - 'a') * 2 + 1);
    return byte;
}

char MCHarmonicaConverter::ExtractBassLetter(unsigned char bassByte)
{
    if ((bassByte & kBassSecondRow) && (bassByte & 7) == 0)
        return 'X';
    return kBassLetters[bassByte & 7];
}

unsigned char MCHarmonicaConverter::CombineToChordByte(int pitch, int flag1, int flag2)
{
    return static_cast<unsigned char>(((pitch % 12 + 12) % 12) | (flag1 ? 0x10 : 0) | (flag2 ? 0x20 : 0));
}

unsigned char MCHarmonicaConverter::CombineToChordByte(int pitch)
{
    return static_cast<unsigned char>(((pitch % 12 + 12) % 12) | 0x40);
}

int MCHarmonicaConverter::MidiClamp(int pitch, int base)
{
    return base + (pitch - base) % 12;
}
