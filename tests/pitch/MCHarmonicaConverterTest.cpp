#include <scoremodel/pitch/MCHarmonicaConverter.h>

#include <scoremodel/platform/MCLanguageManager.h>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

namespace
{
// The grid as a player's chart gives it, key 0, 4 rows; written out again
// here so that a slip in the library's own copy shows.
const std::vector<std::vector<int>> kPush = {
    {43, 47, 50, 55, 59, 62, 67, 71, 74, 79, 83, 86, 91},
    {48, 52, 55, 60, 64, 67, 72, 76, 79, 84, 88, 91},
    {53, 57, 60, 65, 69, 72, 77, 81, 84, 89, 93},
    {58, 62, 65, 70, 74, 77, 82, 86, 89, 94},
};
const std::vector<std::vector<int>> kPull = {
    {48, 50, 54, 57, 60, 64, 66, 69, 72, 76, 78, 81, 84},
    {53, 55, 59, 62, 65, 67, 71, 74, 77, 81, 83, 86},
    {58, 60, 64, 67, 70, 72, 76, 79, 82, 84, 86},
    {63, 65, 69, 72, 75, 77, 81, 84, 87, 89},
};

// The expected key-0 grid of a row count and layout, built from the chart.
struct Grid
{
    std::vector<std::vector<int>> push, pull;

    Grid(int rows, int layout)
    {
        for (int r = 0; r < rows; ++r)
        {
            push.emplace_back(kPush[r].begin(), kPush[r].begin() + (rows + 9 - r));
            pull.emplace_back(kPull[r].begin(), kPull[r].begin() + (rows + 9 - r));
        }
        auto both = [&](int r, int b, int p) {
            if (r < rows && b < static_cast<int>(push[r].size()))
                push[r][b] = pull[r][b] = p;
        };
        if (layout == 0)
        {
            for (int b = 0; b < 10; ++b)
                both(3, b, 0);
            for (int r = 0; r < rows; ++r)
                both(r, 12 - r, 0);
        }
        else if (layout == 1)
            both(0, 0, 68);
        else if (layout == 2)
        {
            push[0][0] = 68;
            pull[0][0] = 73;
        }
        else if (layout == 3)
        {
            both(0, 0, 68);
            both(0, 1, 73);
        }
    }
    const std::vector<std::vector<int>> &Of(int compression) const { return compression ? push : pull; }
};

unsigned char Byte(int row, int button, int compression)
{
    return static_cast<unsigned char>((compression ? 0x40 : 0) | (row >= 2 ? 0x20 : 0) | (button * 2 + row + 2));
}

std::unique_ptr<MCHarmonicaConverter> Make(int rows, int layout, int key)
{
    auto c = std::make_unique<MCHarmonicaConverter>(key);
    c->SetDescantRowCount(static_cast<unsigned char>(rows));
    c->SetDescantLayout(static_cast<unsigned char>(layout));
    return c;
}
} // namespace

TEST(MCHarmonicaConverter, ConstructionStateAndSingleton)
{
    MCHarmonicaConverter c(14);
    EXPECT_EQ(c.GetMainKey(), 2);
    EXPECT_EQ(c.GetDescantRowCount(), 4);
    EXPECT_EQ(c.GetDescantLayout(), 4);
    EXPECT_EQ(c.GetDescantCustomChangeCount(), 0);
    EXPECT_EQ(&MCHarmonicaConverter::GetInstance(), &MCHarmonicaConverter::GetInstance());
    EXPECT_EQ(MCHarmonicaConverter::GetInstance().GetMainKey(), 0);
}

TEST(MCHarmonicaConverter, MainKeyKeepsTheSignOfTheDividend)
{
    const struct
    {
        int in, out;
    } cases[] = {{0, 0}, {6, 6}, {7, -5}, {19, -5}, {12, 0}, {-7, -7}, {-5, -5}, {-13, -1}, {-12, 0}, {30, 6}};
    MCHarmonicaConverter c;
    for (const auto &k : cases)
    {
        EXPECT_EQ(c.SetMainKey(k.in), k.out) << k.in;
        EXPECT_EQ(c.GetMainKey(), k.out) << k.in;
    }
}

TEST(MCHarmonicaConverter, KnownButtonsAndBytes)
{
    MCHarmonicaConverter c;
    EXPECT_EQ(c.GetHarmonicaDescantNotation(48, 1), 0x43); // row 1 before row 0
    EXPECT_EQ(c.GetHarmonicaDescantNotation(48, 0), 0x02); // release: row 0 button 0
    EXPECT_EQ(c.GetDescantMidiPitch(0x43), 48);
    EXPECT_EQ(c.GetDescantMidiPitch(0, 3, 1), 48);
    c.SetMainKey(2);
    EXPECT_EQ(c.GetDescantMidiPitch(0x43), 50);
    EXPECT_EQ(c.GetHarmonicaDescantNotation(50, 1), 0x43);
    EXPECT_EQ(c.GetHarmonicaDescantNotation(48, 1), 0); // no button sounds 46 on push
    EXPECT_EQ(c.GetDescantMidiPitch(2, 3, 1), 0);       // note style 2
    EXPECT_EQ(c.GetDescantMidiPitch(0), 0);
}

// Every row count, layout, key and button: the byte gives back the chart's
// pitch plus the key, the search finds the first button of that pitch in the
// order rows 1, 0, 2, 3, and the enharmonic walk visits exactly the buttons
// that sound alike before returning to its start.
TEST(MCHarmonicaConverter, ExhaustiveAgainstTheChart)
{
    for (int rows : {3, 4})
        for (int layout = 0; layout < 5; ++layout)
            for (int key = -6; key <= 6; ++key)
            {
                auto owner = Make(rows, layout, key);
                MCHarmonicaConverter &c = *owner;
                const Grid grid(rows, layout);
                for (int comp : {0, 1})
                {
                    const auto &t = grid.Of(comp);
                    for (int r = 0; r < rows; ++r)
                        for (int b = 0; b < static_cast<int>(t[r].size()); ++b)
                        {
                            SCOPED_TRACE(testing::Message() << "rows " << rows << " layout " << layout << " key "
                                                            << key << " comp " << comp << " r" << r << " b" << b);
                            const unsigned char byte = Byte(r, b, comp);
                            const auto pitch = static_cast<unsigned char>(t[r][b] + key);
                            ASSERT_EQ(c.GetDescantMidiPitch(byte), pitch);

                            unsigned char first = 0;
                            for (int rr : {1, 0, 2, 3})
                                for (int bb = 0; rr < rows && bb < static_cast<int>(t[rr].size()) && !first; ++bb)
                                    if (static_cast<unsigned char>(t[rr][bb] + key) == pitch)
                                        first = Byte(rr, bb, comp);
                            ASSERT_EQ(c.GetHarmonicaDescantNotation(pitch, comp), first);

                            std::set<int> alike, seen;
                            for (int rr = 0; rr < rows; ++rr)
                                for (int bb = 0; bb < static_cast<int>(t[rr].size()); ++bb)
                                    if (t[rr][bb] == t[r][b])
                                        alike.insert(Byte(rr, bb, comp));
                            unsigned char next = byte;
                            do
                            {
                                next = c.GetNextEnharmonicNotationByte(next);
                                ASSERT_TRUE(alike.count(next)) << int(next);
                                ASSERT_TRUE(seen.insert(next).second) << "visited twice: " << int(next);
                            } while (next != byte);
                            ASSERT_EQ(seen, alike);
                        }
                }
            }
}

TEST(MCHarmonicaConverter, EnharmonicStepOrderAndLoneButton)
{
    MCHarmonicaConverter c;
    // 91 on push: row 0 button 12, then row 1 button 11.
    EXPECT_EQ(c.GetNextEnharmonicNotationByte(Byte(0, 12, 1)), Byte(1, 11, 1));
    EXPECT_EQ(c.GetNextEnharmonicNotationByte(Byte(1, 11, 1)), Byte(0, 12, 1));
    EXPECT_EQ(c.GetNextEnharmonicNotationByte(Byte(0, 0, 1)), Byte(0, 0, 1)); // 43 only there
    EXPECT_EQ(c.GetNextEnharmonicNotationByte(0), 0);
}

TEST(MCHarmonicaConverter, LayoutZeroEntriesReadAsTheMainKey)
{
    auto owner = Make(4, 0, 3);
    MCHarmonicaConverter &c = *owner;
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(3, 4, 1)), 3);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 12, 0)), 3);
    // Row 1's emptied last button is met before row 0's.
    EXPECT_EQ(c.GetHarmonicaDescantNotation(3, 1), Byte(1, 11, 1));
    EXPECT_EQ(c.GetDescantLayoutInformation(), L"3-reihig, 33 T., traditionell");
}

TEST(MCHarmonicaConverter, ThreeRowsHaveNoRowThreeAndNoLastButtons)
{
    auto owner = Make(3, 4, 0);
    MCHarmonicaConverter &c = *owner;
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(3, 0, 1)), 0);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 12, 1)), 0);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 11, 1)), 86);
    EXPECT_EQ(c.GetHarmonicaDescantNotation(94, 1), 0);
    EXPECT_EQ(c.GetNextEnharmonicNotationByte(Byte(3, 0, 1)), 0);
    // Layout 0 names row 3 and button 12 - r; neither was built.
    c.SetDescantLayout(0);
    EXPECT_EQ(c.GetDescantLayout(), 0);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(2, 9, 0)), 84);
    c.SetDescantRowCount(5);
    c.SetDescantRowCount(2);
    EXPECT_EQ(c.GetDescantRowCount(), 3);
    c.SetDescantLayout(5);
    EXPECT_EQ(c.GetDescantLayout(), 0);
}

TEST(MCHarmonicaConverter, LayoutNames)
{
    const wchar_t *names[] = {
        L"3-reihig, 33 T., traditionell",
        L"4-reihig, 46 T., 1x chromat. gleichtönig (Strasser)",
        L"4-reihig, 46 T., 1x chromat. wechseltönig (Öller, Strasser)",
        L"4-reihig, 46 T., 2x chromat. gleichtönig (Michlbauer)",
        L"4-reihig, 46 T., Tieftöne (traditionell)",
    };
    for (unsigned char i = 0; i < 5; ++i)
        EXPECT_EQ(MCHarmonicaConverter::GetDescantLayoutInformation(i), names[i]);
    EXPECT_TRUE(MCHarmonicaConverter::GetDescantLayoutInformation(5).IsEmpty());
    EXPECT_EQ(MCHarmonicaConverter().GetDescantLayoutInformation(), names[4]);
}

TEST(MCHarmonicaConverter, KeyNamesFollowTheLanguage)
{
    ASSERT_EQ(MCLanguageManager::GetLanguageId(), L"EN");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(0), L" 1  G-C-F-(Bb)");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(-4), L"09  Eb-Ab-Db-(Gb)");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(-5), L"08  D-G-C-(F)");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(6), L" 7  C#-F#-B-E");
    EXPECT_TRUE(MCHarmonicaConverter::GetKeyNamesFromMainKey(-6).IsEmpty());
    EXPECT_TRUE(MCHarmonicaConverter::GetKeyNamesFromMainKey(7).IsEmpty());
    ASSERT_TRUE(MCLanguageManager::LoadLanguage(L"DE"));
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(0), L" 1  G-C-F-(B)");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(-1), L"12  F#-H-E-(A)");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(3), L" 4  B-Es-As-(Des)");
    EXPECT_EQ(MCHarmonicaConverter::GetKeyNamesFromMainKey(2), L" 3  A-D-G-(C)");
    MCLanguageManager::LoadLanguage(L"EN");
}

TEST(MCHarmonicaConverter, CustomPitchesAreRecordedAndDroppedByRebuilds)
{
    MCHarmonicaConverter c(1);
    c.SetDescantLayout(1);
    c.SetCustomMidiPitchDescant(2, 3, 1, 100);
    c.SetCustomMidiPitchDescant(Byte(0, 1, 0), 30);
    c.SetCustomMidiPitchDescant(3, 10, 1, 1); // off the grid: ignored
    c.SetCustomMidiPitchDescant(0x00, 1);
    EXPECT_EQ(c.GetDescantCustomChangeCount(), 2);
    ASSERT_EQ(c.GetDescantCustomChanges().size(), 2u);
    EXPECT_EQ(c.GetDescantCustomChanges()[0], (Byte(2, 3, 1) << 8) | 100);
    EXPECT_EQ(c.GetDescantCustomChanges()[1], (Byte(0, 1, 0) << 8) | 30);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(2, 3, 1)), 101); // the key still adds
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 1, 0)), 31);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 0, 1)), 69); // layout 1

    c.SetDescantLayout(1); // tables rebuilt; the list stays
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(2, 3, 1)), 66);
    EXPECT_EQ(c.GetDescantCustomChangeCount(), 2);

    c.SetCustomMidiPitchDescant(1, 0, 0, 20);
    c.ResetCustomMidiPitchesDescant();
    EXPECT_EQ(c.GetDescantCustomChangeCount(), 0);
    EXPECT_TRUE(c.GetDescantCustomChanges().empty());
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(1, 0, 0)), 54);
    // The layout number stays, its change is gone until set again.
    EXPECT_EQ(c.GetDescantLayout(), 1);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 0, 1)), 44);

    c.SetCustomMidiPitchDescant(0, 0, 1, 10);
    c.SetDescantRowCount(4);
    EXPECT_EQ(c.GetDescantMidiPitch(Byte(0, 0, 1)), 44);
}

// Every byte through every reader on both grids: off-grid bytes give 0, and
// nothing reads or writes outside the tables (the sanitizer build checks).
TEST(MCHarmonicaConverter, EveryByteIsSafe)
{
    for (int rows : {3, 4})
    {
        auto owner = Make(rows, 0, -6);
        MCHarmonicaConverter &c = *owner;
        for (int v = 0; v < 256; ++v)
        {
            const auto byte = static_cast<unsigned char>(v);
            const int degree = v & 0x1F;
            const int row = (degree & 1) + ((v >> 5) & 1) * 2;
            const int button = (degree - row - 2) / 2;
            const bool onGrid = v != 0 && degree - row - 2 >= 0 && row < rows && button < rows + 9 - row;
            if (!onGrid)
            {
                EXPECT_EQ(c.GetDescantMidiPitch(byte), 0) << v;
                EXPECT_EQ(c.GetNextEnharmonicNotationByte(byte), 0) << v;
            }
            else
                EXPECT_NE(c.GetNextEnharmonicNotationByte(byte), 0) << v;
            c.SetCustomMidiPitchDescant(byte, byte);
            c.GetHarmonicaDescantNotation(byte, v & 1);
        }
    }
}

TEST(MCHarmonicaConverter, NotationByteFields)
{
    using C = MCHarmonicaConverter;
    EXPECT_EQ(C::CombineToNotationByte(5, -1, 0xFF), 0x7F);
    EXPECT_EQ(C::CombineToNotationByte(0, 0, 0x23), 0x03);
    EXPECT_EQ(C::ExtractCompression(0x43), 1);
    EXPECT_EQ(C::ExtractNoteStyle(0x43), 0);
    EXPECT_EQ(C::ExtractStaffDegree(0x43), 3);
    const struct
    {
        unsigned char byte, notehead, x;
    } cases[] = {{0x43, 0, 0}, {0x24, 7, 0}, {0x25, 9, 0}, {0x66, 7, 0}};
    for (const auto &k : cases)
    {
        EXPECT_EQ(C::GetNoteheadToDraw(k.byte, 7, 9), k.notehead) << int(k.byte);
        EXPECT_EQ(C::HasXAccidentalToDraw(k.byte, 7, 9), k.x) << int(k.byte);
    }
    // A row-2 or row-3 note without its notehead shows an X.
    EXPECT_EQ(C::HasXAccidentalToDraw(0x24, 0, 9), 1);
    EXPECT_EQ(C::HasXAccidentalToDraw(0x25, 7, 0), 1);
    EXPECT_EQ(C::HasXAccidentalToDraw(0x04, 0, 0), 0);
}

TEST(MCHarmonicaConverter, BassBytesKeepTheLetterSwap)
{
    using C = MCHarmonicaConverter;
    EXPECT_EQ(C::CombineToBassByte(1, 'c', 1), 0xCD);
    EXPECT_EQ(C::ExtractBassLetter(0xCD), 'c');
    const struct
    {
        char in, out;
        unsigned char bits;
    } letters[] = {{'A', 'a', 0}, {'a', 'A', 1}, {'B', 'B', 2}, {'b', 'b', 3},
                   {'C', 'C', 4}, {'c', 'c', 5}, {'D', 'D', 6}, {'d', 'd', 7}};
    for (const auto &l : letters)
        for (int comp : {0, 1})
            for (int second : {0, 1})
            {
                const unsigned char b = C::CombineToBassByte(comp, l.in, second);
                EXPECT_EQ(b, 0x80 | (comp ? 0x40 : 0) | (second ? 0x08 : 0) | l.bits) << l.in;
                EXPECT_EQ(C::IsSecondRowBass(b), second);
                // A second-row capital A cannot be told from X.
                EXPECT_EQ(C::ExtractBassLetter(b), l.in == 'A' && second ? 'X' : l.out) << l.in;
            }
    EXPECT_EQ(C::CombineToBassByte(1, 'X', 0), 0xC8);
    EXPECT_EQ(C::ExtractBassLetter(0xC8), 'X');
    EXPECT_EQ(C::CombineToBassByte(0, 'E', 0), 0x80);
    EXPECT_EQ(C::CombineToBassByte(0, '\0', 1), 0x88);
}

TEST(MCHarmonicaConverter, ChordBytes)
{
    using C = MCHarmonicaConverter;
    EXPECT_EQ(C::CombineToChordByte(14), 0x42);
    EXPECT_EQ(C::CombineToChordByte(60, 1, 0), 0x10);
    EXPECT_EQ(C::CombineToChordByte(61, 0, 7), 0x21);
    EXPECT_EQ(C::CombineToChordByte(71, 1, 1), 0x3B);
    EXPECT_EQ(C::CombineToChordByte(-1, 0, 0), 11);
    EXPECT_EQ(C::CombineToChordByte(-13), 0x4B);
}
