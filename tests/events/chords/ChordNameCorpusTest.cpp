// Chord names as musicians type them, and every name the tables can build:
// nothing may crash or leave an impossible value, every root-plus-token name
// reads back to that token's flavour under every pattern, and the MIDI
// chord types round-trip except where the map is not one to one.
#include "events/chords/ChordTestSupport.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

namespace
{
// Suffixes seen on lead sheets and in chord forums, known to the tables or
// not: the reader must refuse the unknown ones cleanly.
const wchar_t *const kTypedSuffixes[] = {
    L"",       L"m",       L"min",    L"-",      L"M",       L"maj",     L"major",   L"ma",     L"mi",
    L"7",      L"maj7",    L"M7",     L"\u0394", L"\u03947", L"ma7",     L"m7",      L"-7",     L"min7",
    L"mi7",    L"dim",     L"dim7",   L"\u00B0", L"\u00B07", L"o",       L"o7",      L"aug",    L"+",
    L"+5",     L"#5",      L"7#5",    L"7+5",    L"7+",      L"aug7",    L"sus",     L"sus4",   L"sus2",
    L"7sus",   L"7sus4",   L"9sus4",  L"susb9",  L"6",       L"m6",      L"69",      L"6/9",    L"m69",
    L"9",      L"m9",      L"maj9",   L"add9",   L"add2",    L"madd9",   L"-add9",   L"minadd9", L"11",
    L"m11",    L"maj11",   L"#11",    L"7#11",   L"13",      L"m13",     L"maj13",   L"7b9",    L"7#9",
    L"7b5",    L"m7b5",    L"m7-5",   L"min7b5", L"min7-5",  L"\u00F8",  L"\u00F87", L"\u00D8", L"\u00D87",
    L"mmaj7",  L"m(maj7)", L"mM7",    L"m/maj7", L"maj7#5",  L"maj7#4",  L"maj7#11", L"maj7add9", L"m7add9",
    L"m6add9", L"mb6",     L"7alt",   L"alt",    L"5",       L"(omit3)", L"7(b9)",   L"9(#11)", L"13b9",
    L" maj7",  L"m 7",     L"?",      L"m-5",    L"7 sus",   L"add 9",   L"(add9)",  L"[m7]",  L"M9",
};

const wchar_t *const kRoots[] = {L"C", L"C#", L"Db", L"D", L"D#", L"Eb", L"E", L"F", L"F#", L"Gb",
                                 L"G", L"G#", L"Ab", L"A", L"A#", L"Bb", L"B", L"Cb", L"E#", L"Fb", L"B#", L"H"};

// Note names per pattern kind with their codes: letters (pattern 1, where
// B is B natural) and syllables.
struct Name
{
    const wchar_t *text;
    int code;
};
const Name kLetterNames[] = {{L"C", 1},   {L"C#", 2},  {L"Db", 3},  {L"D", 4},  {L"D#", 5},  {L"Eb", 6},  {L"E", 7},
                             {L"E#", 8},  {L"Fb", 9},  {L"F", 10},  {L"F#", 11}, {L"Gb", 12}, {L"G", 13}, {L"G#", 14},
                             {L"Ab", 15}, {L"A", 16},  {L"A#", 17}, {L"Bb", 18}, {L"B", 19},  {L"B#", 20}, {L"Cb", 21},
                             {L"H", 19},  {L"Hb", 18}};
const Name kSyllables[] = {{L"Do", 1},  {L"Do#", 2}, {L"Reb", 3}, {L"Re", 4},   {L"Re#", 5},  {L"Mib", 6},
                           {L"Mi", 7},  {L"Mi#", 8}, {L"Fab", 9}, {L"Fa", 10},  {L"Fa#", 11}, {L"Solb", 0},
                           {L"So", 13}, {L"So#", 14}, {L"Lab", 15}, {L"La", 16}, {L"La#", 17}, {L"Sib", 18},
                           {L"Si", 19}, {L"Ti", 19}, {L"Si#", 20}, {L"Dob", 21}};

// What any reading must leave, whatever the text.
void ExpectSane(ECChordSymbol *chord, int result)
{
    EXPECT_TRUE(result == 0 || result == 1);
    EXPECT_GE(chord->GetChordRoot(), 0);
    EXPECT_LE(chord->GetChordRoot(), 21);
    EXPECT_GE(chord->GetChordBass(), 0);
    EXPECT_LE(chord->GetChordBass(), 21);
    EXPECT_LE(chord->GetChordFlavor(), 29);
    EXPECT_EQ(chord->GetChordStyle(), 1);
    if (result == 1)
    {
        EXPECT_GE(chord->GetChordRoot(), 1) << "a read chord has a root";
    }
}
} // namespace

TEST_F(ChordSymbolFixture, TypedCorpusReadsSanelyUnderEveryPattern)
{
    int read = 0, refused = 0;
    for (int pattern : {0, 1, 2})
    {
        SetPattern(pattern);
        ECChordSymbol *chord = Make();
        for (const wchar_t *root : kRoots)
            for (const wchar_t *suffix : kTypedSuffixes)
                for (const wchar_t *bass : {L"", L"/E", L"/Bb", L"/G#", L"|A", L"\\F", L"/x", L"/"})
                {
                    CString text = CString(root) + suffix + bass;
                    const CStringA shown(text);
                    SCOPED_TRACE(shown.GetString());
                    const int result = chord->UpdateFromString(text);
                    ExpectSane(chord, result);
                    (result ? read : refused)++;
                }
    }
    // Both kinds occur: the corpus holds names the tables know and names
    // they do not.
    EXPECT_GT(read, 1000);
    EXPECT_GT(refused, 1000);
}

TEST_F(ChordSymbolFixture, EveryRootAndTokenReadsBackToTheTokensFlavour)
{
    struct Patterned
    {
        int pattern;
        const Name *names;
        size_t count;
    } kinds[] = {{1, kLetterNames, std::size(kLetterNames)}, {2, kSyllables, std::size(kSyllables)},
                 {7, kSyllables, std::size(kSyllables)}};
    int checked = 0;
    for (const Patterned &kind : kinds)
    {
        SetPattern(kind.pattern);
        ECChordSymbol *chord = Make();
        for (size_t i = 0; i < kind.count; ++i)
        {
            const Name &root = kind.names[i];
            if (root.code == 0)
                continue; // "Solb": the syllable is "So", so "l" is no accidental
            for (const ChordToken &token : kChordTokens)
                for (const Name *bass : {static_cast<const Name *>(nullptr), &kind.names[(i + 5) % kind.count]})
                {
                    if (bass && bass->code == 0)
                        continue;
                    CString text = CString(root.text) + token.text;
                    if (bass)
                        text += CString(L"/") + bass->text;
                    const CStringA shown(text);
                    SCOPED_TRACE(testing::Message() << kind.pattern << " " << shown.GetString());
                    ASSERT_EQ(chord->UpdateFromString(text), 1);
                    EXPECT_EQ(chord->GetChordRoot(), root.code);
                    EXPECT_EQ(chord->GetChordFlavor(), token.flavour);
                    EXPECT_EQ(chord->GetChordBass(), bass ? bass->code : 0);
                    ++checked;
                }
        }
    }
    EXPECT_GT(checked, 4000);
}

TEST_F(ChordSymbolFixture, RandomTextsNeverCrashOrLeaveImpossibleValues)
{
    // Characters that matter to the reader, and some that do not.
    const std::wstring alphabet =
        L"CDEFGABHcdefgabh#b/|\\mM7956+-?sudaijnor ()[]!.,:;^_'\u00B0\u00F8\u00D8x\u00E9\u4E2D";
    std::mt19937 random(20);
    for (int pattern : {0, 1, 2})
    {
        SetPattern(pattern);
        ECChordSymbol *chord = Make();
        for (int i = 0; i < 20000; ++i)
        {
            std::wstring text(static_cast<size_t>(random() % 9), L' ');
            for (wchar_t &ch : text)
                ch = alphabet[random() % alphabet.size()];
            CString typed(text.c_str());
            const CStringA shown(typed);
            SCOPED_TRACE(shown.GetString());
            int result = -1;
            ASSERT_NO_THROW(result = chord->UpdateFromString(typed));
            ExpectSane(chord, result);
        }
    }
}

TEST_F(ChordSymbolFixture, MidiChordTypesRoundTripExceptTheSharedOnes)
{
    ECChordSymbol *chord = Make();
    for (int flavour = 0; flavour <= 255; ++flavour)
    {
        const unsigned char f = static_cast<unsigned char>(flavour);
        const unsigned char type = chord->GetChordTypeForWritting2Midi(f);
        const int back = chord->GetChordTypeForSetting2Zelto(type);
        if (flavour == 15 || flavour == 19 || flavour == 28)
            EXPECT_EQ(back, flavour == 15 ? 12 : flavour == 19 ? 9 : 11) << flavour;
        else if (flavour < 30)
            EXPECT_EQ(back, flavour) << flavour;
        else
            EXPECT_EQ(type, flavour) << "beyond the map a flavour writes as itself";
    }
    // MIDI side: every type the map writes reads to a flavour that writes it
    // again.
    std::set<int> written;
    for (int flavour = 0; flavour < ECChordSymbol::kFlavorCount; ++flavour)
        written.insert(chord->GetChordTypeForWritting2Midi(static_cast<unsigned char>(flavour)));
    for (int midi : written)
    {
        const unsigned char m = static_cast<unsigned char>(midi);
        EXPECT_EQ(chord->GetChordTypeForWritting2Midi(chord->GetChordTypeForSetting2Zelto(m)), midi) << midi;
    }
}
