// Chord symbols: reading typed names under each note-name pattern, the
// flavour texts, style and chart, copying and comparing, and the MIDI chord
// bytes in both directions.
#include "events/chords/ChordTestSupport.h"

#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
struct NameCase
{
    int pattern;
    const wchar_t *text;
    int result, root, flavour, bass;
    const wchar_t *customFlavor; // null: GetCustomFlavor answers 0
    const wchar_t *customRoot;   // null: none
};

const NameCase kNames[] = {
    {1, L"Cm7", 1, 1, 5, 0, nullptr, nullptr},
    {0, L"C-7", 1, 1, 5, 0, L"-7", nullptr},
    {0, L"C maj", 1, 1, 0, 0, L" maj", nullptr}, // the alias as typed, leading space and all
    {1, L"C maj", 1, 1, 0, 0, L" maj", nullptr},
    {0, L"(C7)", 1, 1, 8, 0, nullptr, nullptr},
    {0, L"F#m7b5/E", 1, 11, 10, 7, nullptr, nullptr},
    {0, L"Bb/D", 1, 18, 0, 4, nullptr, nullptr},
    {1, L"Hm", 1, 19, 1, 0, nullptr, nullptr},
    {0, L"Bm", 1, 18, 1, 0, nullptr, nullptr}, // B is B flat under pattern 0
    {1, L"Bm", 1, 19, 1, 0, nullptr, nullptr},
    {0, L"Hb", 1, 18, 0, 0, nullptr, nullptr},
    {0, L"B", 1, 18, 0, 0, nullptr, nullptr},
    {2, L"dom", 1, 1, 1, 0, nullptr, nullptr},
    {2, L"Sol#7", 0, 13, 29, 0, nullptr, nullptr}, // "so" + "l": not an accidental
    {2, L"So#7", 1, 14, 8, 0, nullptr, nullptr},
    {2, L"Tib maj7/Re", 1, 18, 4, 4, nullptr, nullptr},
    {3, L"Lam7", 1, 16, 5, 0, nullptr, nullptr},
    {0, L"CX", 0, 1, 29, 0, nullptr, nullptr},
    {0, L"C/", 0, 1, 0, 0, nullptr, nullptr}, // empty bass text
    {0, L"X7", 0, 0, 29, 0, nullptr, nullptr}, // nothing reached: Neutralize's root 0
    {0, L"d", 1, 4, 1, 0, nullptr, L"d"},      // lower-case minor
    {0, L"D", 1, 4, 0, 0, nullptr, nullptr},   // capital: major
    {0, L"d#", 1, 5, 1, 0, nullptr, L"d#"},
    {0, L"b", 1, 18, 1, 0, nullptr, L"b"}, // B flat minor under pattern 0
    {1, L"b", 1, 19, 1, 0, nullptr, L"b"},
    {0, L"x", 0, 0, 29, 0, nullptr, nullptr},
    {0, L"Cb", 1, 21, 0, 0, nullptr, nullptr}, // C flat wraps to the end
    {0, L"Ebdim7", 1, 6, 2, 0, L"dim7", nullptr},
    {0, L"G\u00F87", 1, 13, 10, 0, L"\u00F87", nullptr},
    {0, L"A m 7", 1, 16, 5, 0, nullptr, nullptr}, // spaces go in the flavour
    {0, L"A?", 1, 16, 4, 0, L"?", nullptr},
    {0, L"Cmadd9", 1, 1, 25, 0, L"madd9", nullptr},
    {0, L"C+", 1, 1, 3, 0, nullptr, nullptr}, // the direct token: no custom text
    {0, L"C7|G", 1, 1, 8, 13, nullptr, nullptr},
    {0, L"C7\\G", 1, 1, 8, 13, nullptr, nullptr},
    {0, L"C/E|G", 0, 1, 0, 7, nullptr, nullptr}, // the first mark starts the bass: "E|G"
    {0, L"C|E/G", 0, 1, 0, 7, nullptr, nullptr},
    {0, L"C7/Ex", 0, 1, 8, 7, nullptr, nullptr}, // a bad bass accidental keeps its letter
    {0, L"c7", 1, 1, 8, 0, nullptr, nullptr},     // lower case is minor only alone
    {0, L"[C]m7;", 1, 1, 5, 0, nullptr, nullptr},
};

CString Custom(ECChordSymbol *chord, int (ECChordSymbol::*get)(CString &), int *answer)
{
    CString out(L"untouched");
    *answer = (chord->*get)(out);
    return out;
}
} // namespace

TEST_F(ChordSymbolFixture, TypedNamesReadUnderEachPattern)
{
    for (const NameCase &c : kNames)
    {
        SCOPED_TRACE(testing::Message() << "pattern " << c.pattern << ": " << CStringA(CString(c.text)).GetString());
        SetPattern(c.pattern);
        ECChordSymbol *chord = Make();
        chord->ValidatePlayback();
        CString text(c.text);
        EXPECT_EQ(chord->UpdateFromString(text), c.result);
        EXPECT_EQ(chord->GetChordRoot(), c.root);
        EXPECT_EQ(chord->GetChordFlavor(), c.flavour);
        EXPECT_EQ(chord->GetChordBass(), c.bass);
        EXPECT_EQ(chord->GetChordStyle(), 1);
        EXPECT_EQ(chord->IsValidForPlayback(), 0);
        int answer = -1;
        CString flavour = Custom(chord, &ECChordSymbol::GetCustomFlavor, &answer);
        if (c.customRoot)
        {
            EXPECT_EQ(answer, 1) << "a lower-case minor answers 1";
            EXPECT_EQ(flavour, CString(L"untouched")) << "and leaves the argument alone";
        }
        else if (c.customFlavor)
        {
            EXPECT_EQ(answer, 1);
            EXPECT_EQ(flavour, CString(c.customFlavor));
        }
        else
        {
            EXPECT_EQ(answer, 0);
        }
        CString root = Custom(chord, &ECChordSymbol::GetCustomRoot, &answer);
        EXPECT_EQ(answer, c.customRoot ? 1 : 0);
        if (c.customRoot)
        {
            EXPECT_EQ(root, CString(c.customRoot));
        }
    }
}

TEST_F(ChordSymbolFixture, ANewNameDropsTheOldCustomTexts)
{
    ECChordSymbol *chord = Make();
    CString text(L"Emin");
    ASSERT_EQ(chord->UpdateFromString(text), 1);
    text = L"e";
    ASSERT_EQ(chord->UpdateFromString(text), 1);
    CString out;
    EXPECT_EQ(chord->GetCustomRoot(out), 1);
    text = L"G7";
    ASSERT_EQ(chord->UpdateFromString(text), 1);
    EXPECT_EQ(chord->GetCustomRoot(out), 0);
    EXPECT_EQ(chord->GetCustomFlavor(out), 0) << "neither the alias nor the lower-case mark stays";
}

TEST_F(ChordSymbolFixture, AnEmptyNameChangesNothing)
{
    ECChordSymbol *chord = Make();
    chord->SetChordType(0x01051304);
    chord->ValidatePlayback();
    CString empty;
    EXPECT_EQ(chord->UpdateFromString(empty), 0);
    EXPECT_EQ(chord->GetChordType(), 0x01051304);
    EXPECT_EQ(chord->IsValidForPlayback(), 1);
}

TEST_F(ChordSymbolFixture, IgnoredPunctuationLeavesTheCallersText)
{
    ECChordSymbol *chord = Make();
    CString text(L"!'(C).,:;[m]^_7");
    EXPECT_EQ(chord->UpdateFromString(text), 1);
    EXPECT_EQ(text, CString(L"Cm7")) << "the caller's text is cleaned in place";
    EXPECT_EQ(chord->GetChordFlavor(), 5);
}

TEST_F(ChordSymbolFixture, OneLetterNamesUnderSyllablesAreRefusedNotThrown)
{
    // The position check of the syllable reading throws; the host calls
    // UpdateFromString and sees a plain refusal, with what was reached kept.
    struct Case
    {
        const wchar_t *text;
        int root, flavour, bass;
    } cases[] = {
        {L"C", 0, 29, 0},       // the root throws: nothing reached after Neutralize
        {L"Do7/E", 1, 8, 0},    // the bass throws: root and flavour stay
        {L"a", 0, 29, 0},       // no lower-case minor under syllables
    };
    for (int pattern : {2, 5, -1})
        for (const Case &c : cases)
        {
            SCOPED_TRACE(testing::Message() << pattern << " " << CStringA(CString(c.text)).GetString());
            SetPattern(pattern);
            ECChordSymbol *chord = Make();
            CString text(c.text);
            int result = -1;
            EXPECT_NO_THROW(result = chord->UpdateFromString(text));
            EXPECT_EQ(result, 0);
            EXPECT_EQ(chord->GetChordRoot(), c.root);
            EXPECT_EQ(chord->GetChordFlavor(), c.flavour);
            EXPECT_EQ(chord->GetChordBass(), c.bass);
        }
    // Called directly, the reader keeps its contract and throws.
    ECChordSymbol *chord = Make();
    CString one(L"C");
    int ok = -1;
    EXPECT_THROW(chord->GetRootOrBassFromString(2, one, ok), CInvalidArgException);
}

TEST_F(ChordSymbolFixture, RootAndBassReaderCodes)
{
    ECChordSymbol *chord = Make();
    struct Case
    {
        int pattern;
        const wchar_t *text;
        int code, ok;
    } cases[] = {
        {0, L"", 0, 0},    {0, L"c", 1, 1},    {0, L"C#", 2, 1},  {0, L"Db", 3, 1},  {0, L"E", 7, 1},
        {0, L"E#", 8, 1},  {0, L"Fb", 9, 1},   {0, L"Gb", 12, 1}, {0, L"G#", 14, 1}, {0, L"Ab", 15, 1},
        {0, L"A#", 17, 1}, {0, L"b#", 18, 1},  {1, L"B#", 20, 1}, {0, L"H#", 20, 1}, {0, L"Cb", 21, 1},
        {0, L"Cx", 1, 0},  {0, L"Z", 0, 0},    {1, L"b", 19, 1},  {2, L"do", 1, 1},  {2, L"RE", 4, 1},
        {2, L"mib", 6, 1}, {2, L"fa#", 11, 1}, {2, L"ti", 19, 1}, {2, L"si", 19, 1}, {2, L"sol", 13, 0},
        {2, L"ut", 0, 0},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.pattern << " " << CStringA(CString(c.text)).GetString());
        CString text(c.text);
        int ok = -1;
        EXPECT_EQ(chord->GetRootOrBassFromString(c.pattern, text, ok), c.code);
        EXPECT_EQ(ok, c.ok);
    }
}

TEST_F(ChordSymbolFixture, EveryTokenReadsAsItsFlavourInTableOrder)
{
    // Direct tokens keep no custom text; aliases keep the text as typed.
    for (const ChordToken &t : kChordTokens)
    {
        SCOPED_TRACE(CStringA(CString(t.text)).GetString());
        ECChordSymbol *chord = Make();
        CString text(t.text);
        int ok = -1;
        EXPECT_EQ(chord->GetFlavorFromString(text, ok), t.flavour);
        EXPECT_EQ(ok, 1);
        CString custom;
        EXPECT_EQ(chord->GetCustomFlavor(custom), t.alias ? 1 : 0);
        if (t.alias)
        {
            EXPECT_EQ(custom, CString(t.text));
        }
    }
    // Case matters, and nothing else is known.
    for (const wchar_t *unknown : {L"MAJ7", L"Min", L"dim", L"aug", L"13", L"m9", L"7b5", L"alt"})
    {
        ECChordSymbol *chord = Make();
        CString text(unknown);
        int ok = -1;
        EXPECT_EQ(chord->GetFlavorFromString(text, ok), 29) << CStringA(CString(unknown)).GetString();
        EXPECT_EQ(ok, 0);
    }
}

TEST_F(ChordSymbolFixture, FlavourTextsAndTheirReverseLookup)
{
    const wchar_t *texts[] = {L"",        L"m",      L"\u00B0", L"+",           L"maj7",       L"m7",
                              L"sus b9",  L"maj7 b4", L"7",     L"mb6",         L"m7b5",       L"sus",
                              L"m(maj7)", L"maj7#5", L"7#11",   L"7 alt",       L"7b9",        L"7#9",
                              L"7#5",     L"m6",     L"6",      L"9",           L"add 9",      L"maj7 (add 9)",
                              L"6 9",     L"m7 (add 9)", L"m6 (add 9)", L"7 sus", L"sus2",     L""};
    ECChordSymbol *chord = Make();
    for (int flavour = 0; flavour < ECChordSymbol::kFlavorCount; ++flavour)
    {
        SCOPED_TRACE(flavour);
        EXPECT_EQ(GetChordSymbolString(flavour), CString(texts[flavour]));
        CString text(texts[flavour]);
        // 29 shares the empty text with 0, which comes first.
        EXPECT_EQ(chord->FindChordFlavor(text), flavour == 29 ? 0 : flavour);
    }
    EXPECT_EQ(GetChordSymbolString(-1), CString());
    EXPECT_EQ(GetChordSymbolString(30), CString());
    CString unknown(L"13b9");
    EXPECT_EQ(chord->FindChordFlavor(unknown), 30);
}

TEST_F(ChordSymbolFixture, StyleKeepsTheChartBitOnlyWhereAChartExists)
{
    const int charts[30] = {1, 1, 1, 1, 1, 1, 0, 0, 1, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0};
    for (int flavour = 0; flavour < 30; ++flavour)
    {
        EXPECT_EQ(ECChordSymbol::HasChart(flavour, 0), charts[flavour]) << flavour;
        EXPECT_EQ(ECChordSymbol::HasChart(flavour, 7), 0) << "a slash chord has no chart";
    }
    EXPECT_EQ(ECChordSymbol::HasChart(30, 0), 0);
    EXPECT_EQ(ECChordSymbol::HasChart(-1, 0), 0);
    EXPECT_EQ(ECChordSymbol::HasChart(5, -3), 1) << "only a bass above 0 is a slash";

    struct Case
    {
        int flavour, bass, style, stored;
    } cases[] = {{6, 0, 3, 1}, {5, 7, 3, 1}, {5, 0, 3, 3}, {28, 0, 0xFF, 0xFD}, {1, 0, 0xFE, 0xFE}};
    for (const Case &c : cases)
    {
        ECChordSymbol *chord = Make();
        chord->SetChordFlavor(static_cast<unsigned>(c.flavour));
        chord->SetChordBass(static_cast<unsigned char>(c.bass));
        chord->ValidatePlayback();
        chord->SetChordStyle(static_cast<unsigned char>(c.style));
        EXPECT_EQ(chord->GetChordStyle(), c.stored) << c.flavour << "/" << c.bass;
        EXPECT_EQ(chord->IsValidForPlayback(), 1) << "the style leaves playback alone";
    }
}

TEST_F(ChordSymbolFixture, ValueBytesSettersAndNeutralize)
{
    ECChordSymbol *chord = Make();
    EXPECT_EQ(chord->GetChordType(), 0x011D0001) << "root 1, bass 0, flavour 29, style 1";
    chord->SetChordRoot(200);
    EXPECT_EQ(chord->GetChordRoot(), -56) << "widened as a signed byte";
    chord->SetChordBass(0x80);
    EXPECT_EQ(chord->GetChordBass(), -128);
    chord->SetChordFlavor(0x1205);
    EXPECT_EQ(chord->GetChordFlavor(), 5) << "the low byte";
    EXPECT_EQ(chord->GetChordType(), 0x010580C8);

    using Setter = void (*)(ECChordSymbol *);
    for (Setter set : {Setter([](ECChordSymbol *c) { c->SetChordRoot(3); }),
                       Setter([](ECChordSymbol *c) { c->SetChordBass(3); }),
                       Setter([](ECChordSymbol *c) { c->SetChordFlavor(3); }),
                       Setter([](ECChordSymbol *c) { c->SetChordType(3); })})
    {
        chord->ValidatePlayback();
        set(chord);
        EXPECT_EQ(chord->IsValidForPlayback(), 0);
    }

    chord->SetChordType(static_cast<int>(0x7F0C0B0Au));
    CString text(L"d");
    chord->UpdateFromString(text);
    chord->SetChordFlavor(12);
    chord->Neutralize();
    EXPECT_EQ(chord->GetChordType(), 0x010C0000) << "the flavour stays";
    CString out;
    EXPECT_EQ(chord->GetCustomRoot(out), 0);
    EXPECT_EQ(chord->GetCustomFlavor(out), 0);
}

TEST_F(ChordSymbolFixture, CopiesCarryTheValueAndCompareByTypeAlone)
{
    ECChordSymbol *chord = Make();
    CString text(L"Eb-7/Bb");
    ASSERT_EQ(chord->UpdateFromString(text), 1);
    chord->SetPhantom(1);
    chord->ValidatePlayback();
    MCTime at(3.0f);
    chord->SetTime(&at);

    auto *copied = new ECChordSymbol(*chord);
    copied->Ref();
    EXPECT_TRUE(*copied == *chord);
    EXPECT_EQ(copied->IsPhantom(), 1);
    EXPECT_EQ(copied->IsValidForPlayback(), 0);
    EXPECT_TRUE(*copied->GetTime() == at);
    CString custom;
    EXPECT_EQ(copied->GetCustomFlavor(custom), 1);
    EXPECT_EQ(custom, CString(L"-7"));
    EXPECT_EQ(copied->GetChordTypeForWritting2Midi(5), 10) << "the map came along";

    ECChordSymbol *assigned = Make();
    assigned->Copy(chord);
    EXPECT_TRUE(*assigned == *chord);
    EXPECT_EQ(assigned->IsPhantom(), 0) << "operator= leaves the phantom mark";
    EXPECT_EQ(assigned->IsValidForPlayback(), 0);

    // Custom texts, time and phantom do not count; the type does.
    ECChordSymbol *plain = Make();
    plain->SetChordType(chord->GetChordType());
    EXPECT_TRUE(*plain == *chord);
    plain->SetChordStyle(5);
    EXPECT_TRUE(*plain != *chord);
    copied->Unref(1);
}

TEST_F(ChordSymbolFixture, MidiChordTypesBothWays)
{
    const int midi[30] = {0,  8,  17, 7,  2, 10, 6, 3, 19, 9, 11, 32, 15, 28, 23,
                          15, 25, 27, 29, 9, 24, 22, 4, 5, 1, 13, 37, 20, 32, 36};
    ECChordSymbol *chord = Make();
    for (int flavour = 0; flavour < 30; ++flavour)
        EXPECT_EQ(chord->GetChordTypeForWritting2Midi(static_cast<unsigned char>(flavour)), midi[flavour]) << flavour;
    const unsigned char fifteen = 15, thirtyTwo = 32, nine = 9, unknown = 99, beyond = 30;
    EXPECT_EQ(chord->GetChordTypeForWritting2Midi(fifteen), 15);
    EXPECT_EQ(chord->GetChordTypeForSetting2Zelto(fifteen), 12);
    EXPECT_EQ(chord->GetChordTypeForSetting2Zelto(thirtyTwo), 11);
    EXPECT_EQ(chord->GetChordTypeForSetting2Zelto(nine), 9);
    EXPECT_EQ(chord->GetChordTypeForSetting2Zelto(unknown), 99);
    EXPECT_EQ(chord->GetChordTypeForWritting2Midi(beyond), 30);
}

TEST_F(ChordSymbolFixture, MidiRootBytes)
{
    ECChordSymbol *chord = Make();
    struct Read
    {
        int byte, root;
    } reads[] = {{0x27, 18}, {0x41, 2}, {0x31, 1}, {0x3F, 0x3F}, {0x21, 21}, {0x47, 20}, {0x30, 0},
                 {0x11, 1},  {0x73, 7}, {0xF2, 4}, {0x28, 0x28}, {0x00, 0}};
    for (const Read &r : reads)
        EXPECT_EQ(chord->GetZeltoChordRootFromMidi(static_cast<unsigned char>(r.byte)), r.root) << std::hex << r.byte;
    EXPECT_EQ(chord->GetZeltoChordInversionFromMidi(0x64), 6);
    EXPECT_EQ(chord->GetZeltoChordInversionFromMidi(0x74), 0x74);

    EXPECT_EQ(chord->SetMidiWriteChordRootFromZelto(18), 0x27);
    EXPECT_EQ(chord->SetMidiWriteChordRootFromZelto(0), 0x30) << "none writes as a natural";
    EXPECT_EQ(chord->SetMidiWriteChordRootFromZelto(22), 22);
    EXPECT_EQ(chord->SetMidiWriteChordInversionFromZelto(22), 22);
    // Every root code writes and reads back, and its byte names its row.
    for (int root = 0; root <= 21; ++root)
    {
        const unsigned char code = static_cast<unsigned char>(root);
        const unsigned char byte = chord->SetMidiWriteChordRootFromZelto(code);
        EXPECT_EQ(chord->GetZeltoChordRootFromMidi(byte), root) << root;
        EXPECT_EQ(byte & 0xF0, chord->SetMidiWriteChordInversionFromZelto(code)) << root;
    }
}
