#include <scoremodel/pitch/MCPitch.h>

#include "pitch/PitchTestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace pitchtest;

namespace
{
// Which letter each alteration spells at each pitch class ('.' for none), as
// a table of spellings reads: a double flat on pitch class 0 is D, a sharp on
// pitch class 0 is B.
const std::map<int, std::string> kSpellingTable = {
    {-2, "D.EF.G.A.BC."},
    {-1, ".D.EF.G.A.BC"},
    {0, "C.D.EF.G.A.B"},
    {1, "BC.D.EF.G.A."},
    {2, ".BC.D.EF.G.A"},
};

// C flat and C double flat are written in the octave above the one their
// MIDI number falls in; B sharp and B double sharp in the octave below.
int OctaveCorrection(char letter, int alteration)
{
    if (letter == 'C' && alteration < 0)
        return 1;
    if (letter == 'B' && alteration > 0)
        return -1;
    return 0;
}

// The octave a written spelling of `midi` sits in, from what it sounds.
int WrittenOctave(int midi, const std::string &spelling)
{
    const int natural = kLetterPitch[LetterIndex(spelling[0])] + AlterationOf(spelling);
    const int diff = midi - natural;
    return (diff >= 0 ? diff / 12 : -((-diff + 11) / 12)) & 0xF;
}

MCPitch FromSetPitch(int midi, int alteration)
{
    MCPitch pitch;
    pitch.SetPitch(static_cast<unsigned char>(midi), static_cast<char>(alteration), 1);
    return pitch;
}
} // namespace

// ---- Fixed tables --------------------------------------------------------------

TEST(MCPitchTables, PitchClassToDegreeGivesTheNaturalOrSharpLetter)
{
    const int expected[12] = {0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};
    for (unsigned pc = 0; pc < 12; ++pc)
        EXPECT_EQ(MCPitch::PitchToDegree(pc), expected[pc]) << "pitch class " << pc;
    for (unsigned outside : {12u, 13u, 127u, 255u, 0xFFFFFFFFu})
        EXPECT_EQ(MCPitch::PitchToDegree(outside), 0) << outside;
}

TEST(MCPitchTables, DegreeToPitchClassGivesTheWhiteKeysAndZeroPastB)
{
    for (unsigned degree = 0; degree < 7; ++degree)
    {
        EXPECT_EQ(MCPitch::DegreeToPitch(degree), kLetterPitch[degree]) << "degree " << degree;
        EXPECT_EQ(MCPitch::PitchToDegree(static_cast<unsigned>(kLetterPitch[degree])), static_cast<int>(degree));
    }
    for (unsigned outside : {7u, 8u, 100u, 0xFFFFFFFFu})
        EXPECT_EQ(MCPitch::DegreeToPitch(outside), 0) << outside;
}

// ---- Construction and fields -------------------------------------------------------

TEST(MCPitchFields, DefaultPitchIsADirtyCInOctaveZeroShowingItsAccidental)
{
    MCPitch pitch;
    EXPECT_TRUE(pitch.IsDirty());
    EXPECT_TRUE(pitch.ShowAccidental());
    EXPECT_FALSE(pitch.IsUserSpelled());
    EXPECT_EQ(pitch.GetDegree(), 0);
    EXPECT_EQ(pitch.GetAccidental(), 0);
    EXPECT_EQ(pitch.GetOctave(), 0);
    EXPECT_EQ(pitch.GetMappingType(), 0);
    EXPECT_EQ(pitch.GetMidiPitch(), 0);
}

TEST(MCPitchFields, PitchAndAccidentalConstructorSpellsAndShowsTheAccidental)
{
    MCPitch pitch(61, -1);
    EXPECT_EQ(SpellingName(pitch), "Db");
    EXPECT_EQ(pitch.GetOctave(), 5);
    EXPECT_EQ(pitch.GetMidiPitch(), 61);
    EXPECT_TRUE(pitch.ShowAccidental());
    EXPECT_FALSE(pitch.IsDirty());
}

TEST(MCPitchFields, SetDegreeReadsADiatonicPositionAndLeavesTheMidiPitch)
{
    MCPitch pitch(70, 0);
    pitch.SetDegree(36);
    EXPECT_EQ(pitch.GetOctave(), 5);
    EXPECT_EQ(pitch.GetDegree(), 1);
    EXPECT_EQ(pitch.GetMidiPitch(), 70);

    pitch.SetDegreeOnly(9);
    EXPECT_EQ(pitch.GetDegree(), 2);
    EXPECT_EQ(pitch.GetOctave(), 5);

    pitch.SetOctave(0x13);
    EXPECT_EQ(pitch.GetOctave(), 3);
    EXPECT_EQ(pitch.GetMidiPitch(), 70);

    pitch.SetMidiPitch(12);
    EXPECT_EQ(pitch.GetDegree(), 2);
    EXPECT_EQ(pitch.GetOctave(), 3);
}

TEST(MCPitchFields, AccidentalStoresTheAlterationForEveryValueFromDoubleFlatToTripleSharp)
{
    MCPitch pitch;
    for (int alteration = -2; alteration <= 5; ++alteration)
    {
        pitch.SetAccidental(static_cast<char>(alteration));
        EXPECT_EQ(pitch.GetAccidental(), alteration);
    }
    // Three bits: -3 wraps onto the top of the field.
    pitch.SetAccidental(-3);
    EXPECT_EQ(pitch.GetAccidental(), 5);
}

TEST(MCPitchFields, UpdateMidiPitchSoundsTheSpellingIncludingBSharpBelowItsOctave)
{
    struct Row
    {
        const char *name;
        int midi;
    } rows[] = {{"C4", 60}, {"B#3", 60}, {"Cb4", 59}, {"Dbb4", 60}, {"A##4", 71}, {"G9", 127}, {"C-1", 0}};
    for (const Row &row : rows)
    {
        MCPitch pitch = Spelled(row.name);
        pitch.SetMidiPitch(0);
        pitch.UpdateMidiPitch();
        EXPECT_EQ(pitch.GetMidiPitch(), row.midi) << row.name;
    }
}

TEST(MCPitchFields, FlagsAreIndependentOfEachOther)
{
    MCPitch pitch(64, 0);
    pitch.SetUserSpelled(true);
    pitch.SetShowAccidental(false);
    pitch.SetDirty(true);
    EXPECT_TRUE(pitch.IsUserSpelled());
    EXPECT_FALSE(pitch.ShowAccidental());
    EXPECT_TRUE(pitch.IsDirty());
    EXPECT_EQ(SpellingName(pitch), "E");
    EXPECT_EQ(pitch.GetMidiPitch(), 64);
}

// ---- Copying --------------------------------------------------------------------------

TEST(MCPitchCopy, CopyDropsTheUserSpelledFlagButCarriesEverythingElse)
{
    MCPitch source(63, -1);
    source.SetUserSpelled(true);
    source.SetShowAccidental(false);
    source.SetDirty(true);
    source.SetMappingType(MCPitch::MappingDegree, 40);

    MCPitch copy(source);
    EXPECT_FALSE(copy.IsUserSpelled());
    EXPECT_FALSE(copy.ShowAccidental());
    EXPECT_TRUE(copy.IsDirty());
    EXPECT_EQ(copy.GetMappingType(), MCPitch::MappingDegree);
    EXPECT_EQ(copy.GetDegree(), source.GetDegree());
    EXPECT_EQ(copy.GetOctave(), source.GetOctave());
    EXPECT_EQ(copy.GetAccidental(), -1);
    EXPECT_EQ(copy.GetMidiPitch(), 63);
}

TEST(MCPitchCopy, AssignmentKeepsTheTargetsOwnUserSpelledFlag)
{
    MCPitch chosen(61, -1);
    chosen.SetUserSpelled(true);
    MCPitch plain(70, 1);

    MCPitch target = plain;
    target.SetUserSpelled(true);
    target = plain; // plain is not user spelled
    EXPECT_TRUE(target.IsUserSpelled());
    EXPECT_EQ(SpellingName(target), "A#");

    MCPitch other(60, 0);
    other = chosen;
    EXPECT_FALSE(other.IsUserSpelled());
    EXPECT_EQ(SpellingName(other), "Db");
    EXPECT_EQ(other.GetMidiPitch(), 61);
}

// ---- SetPitch ---------------------------------------------------------------------------

TEST(MCPitchSetPitch, EveryMidiPitchAndAlterationSpellsAsTheSpellingTableSays)
{
    for (int midi = 0; midi < 128; ++midi)
    {
        const int pc = midi % 12;
        for (int asked = -2; asked <= 2; ++asked)
        {
            // A natural on a black key falls back to a sharp, anything else to
            // a natural; if that fails too, the degree reads 7.
            int alteration = asked;
            char letter = kSpellingTable.at(alteration)[pc];
            if (letter == '.')
            {
                alteration = asked == 0 ? 1 : 0;
                letter = kSpellingTable.at(alteration)[pc];
            }
            const MCPitch pitch = FromSetPitch(midi, asked);
            SCOPED_TRACE("midi " + std::to_string(midi) + " asked " + std::to_string(asked));
            EXPECT_EQ(pitch.GetMidiPitch(), midi);
            EXPECT_EQ(pitch.GetAccidental(), alteration);
            EXPECT_FALSE(pitch.IsDirty());
            if (letter == '.')
            {
                EXPECT_EQ(pitch.GetDegree(), 7);
                EXPECT_EQ(pitch.GetOctave(), (midi / 12) & 0xF);
                continue;
            }
            EXPECT_EQ(pitch.GetDegree(), LetterIndex(letter));
            EXPECT_EQ(pitch.GetOctave(), (midi / 12 + OctaveCorrection(letter, alteration)) & 0xF);
            // What is written must sound the MIDI pitch.
            EXPECT_EQ(SoundingClass(SpellingName(pitch)), pc);
            EXPECT_EQ(pitch.GetOctave(), WrittenOctave(midi, SpellingName(pitch)));
        }
    }
}

TEST(MCPitchSetPitch, SpellingTableAgreesWithTheLettersItNames)
{
    // A guard on the test's own table: every letter named sounds its column.
    for (const auto &[alteration, letters] : kSpellingTable)
        for (int pc = 0; pc < 12; ++pc)
        {
            if (letters[pc] != '.')
            {
                EXPECT_EQ(((kLetterPitch[LetterIndex(letters[pc])] + alteration) % 12 + 12) % 12, pc);
            }
        }
}

TEST(MCPitchSetPitch, EnharmonicSpellingsLandInTheWrittenOctave)
{
    struct Row
    {
        int midi, alteration;
        const char *spelling;
        int octave;
    } rows[] = {
        {60, 1, "B#", 4}, {59, -1, "Cb", 5}, {61, 0, "C#", 5}, {60, -1, "C", 5}, {58, -2, "Cbb", 5},
        {61, 2, "B##", 4}, {0, 1, "B#", 15}, {1, 2, "B##", 15}, {127, 0, "G", 10}, {71, -1, "Cb", 6},
    };
    for (const Row &row : rows)
    {
        const MCPitch pitch = FromSetPitch(row.midi, row.alteration);
        EXPECT_EQ(SpellingName(pitch), row.spelling) << row.midi << " " << row.alteration;
        EXPECT_EQ(pitch.GetOctave(), row.octave) << row.midi << " " << row.alteration;
    }
    MCPitch bSharp = FromSetPitch(60, 1);
    bSharp.UpdateMidiPitch();
    EXPECT_EQ(bSharp.GetMidiPitch(), 60);
}

TEST(MCPitchSetPitch, ImpossibleDoubleAccidentalOnABlackKeyReadsDegreeSevenNatural)
{
    const std::pair<int, int> impossible[] = {{61, -2}, {66, -2}, {68, -2}, {63, 2}, {68, 2}, {70, 2}};
    for (const auto &[midi, alteration] : impossible)
    {
        const MCPitch pitch = FromSetPitch(midi, alteration);
        EXPECT_EQ(pitch.GetDegree(), 7) << midi << " " << alteration;
        EXPECT_EQ(pitch.GetAccidental(), 0);
        EXPECT_EQ(pitch.GetMidiPitch(), midi);
        EXPECT_EQ(pitch.GetOctave(), 5);
    }
}

TEST(MCPitchSetPitch, AlterationOutsideDoubleFlatToDoubleSharpFailsLikeAnyUnspellableRequest)
{
    EXPECT_EQ(SpellingName(FromSetPitch(60, 3)), "C");
    EXPECT_EQ(SpellingName(FromSetPitch(62, -5)), "D");
    const MCPitch black = FromSetPitch(61, 100);
    EXPECT_EQ(black.GetDegree(), 7);
    EXPECT_EQ(black.GetMidiPitch(), 61);
}

TEST(MCPitchSetPitch, ShowAccidentalComesFromBitZeroAndDirtyClears)
{
    MCPitch pitch;
    pitch.SetPitch(61, 0, 2);
    EXPECT_FALSE(pitch.ShowAccidental());
    EXPECT_FALSE(pitch.IsDirty());
    pitch.SetDirty(true);
    pitch.SetPitch(61, 0, 3);
    EXPECT_TRUE(pitch.ShowAccidental());
    EXPECT_FALSE(pitch.IsDirty());
}

// ---- SetPitchByDegree ----------------------------------------------------------------------

namespace
{
// Result by pitch class (rows) and asked letter C to B (columns). The cells
// marked "*" are where the flat-side walk would pass below C: those give the
// natural, or the sharp on a black key.
const char *const kByDegree[12][7] = {
    /* 0 */ {"C", "Dbb", "C*", "C*", "B#", "B#", "B#"},
    /* 1 */ {"C#", "Db", "C#*", "C#*", "B##", "B##", "B##"},
    /* 2 */ {"C##", "D", "Ebb", "C##", "C##", "C##", "C##"},
    /* 3 */ {"D#", "D#", "Eb", "Fbb", "C###", "D#", "D#"},
    /* 4 */ {"D##", "D##", "E", "Fb", "D##", "D##", "D##"},
    /* 5 */ {"E#", "E#", "E#", "F", "Gbb", "D###", "E#"},
    /* 6 */ {"E##", "E##", "E##", "F#", "Gb", "E##", "E##"},
    /* 7 */ {"G*", "F##", "F##", "F##", "G", "Abb", "F##"},
    /* 8 */ {"G#*", "G#", "G#", "G#", "G#", "Ab", "F###"},
    /* 9 */ {"A*", "A*", "G##", "G##", "G##", "A", "Bbb"},
    /* 10 */ {"Cbb", "A#*", "A#", "A#", "A#", "A#", "Bb"},
    /* 11 */ {"Cb", "B*", "B*", "A##", "A##", "A##", "B"},
};

std::string Unmarked(const char *cell)
{
    std::string s(cell);
    if (!s.empty() && s.back() == '*')
        s.pop_back();
    return s;
}
} // namespace

TEST(MCPitchSetPitchByDegree, EveryPitchAndAskedDegreeGivesTheTabledSpellingInItsWrittenOctave)
{
    for (int midi = 0; midi < 128; ++midi)
    {
        for (int degree = 0; degree < 7; ++degree)
        {
            const std::string expected = Unmarked(kByDegree[midi % 12][degree]);
            MCPitch pitch;
            pitch.SetShowAccidental(false);
            pitch.SetPitchByDegree(static_cast<unsigned char>(midi), static_cast<unsigned char>(degree));
            SCOPED_TRACE("midi " + std::to_string(midi) + " degree " + std::to_string(degree));
            EXPECT_EQ(SpellingName(pitch), expected);
            EXPECT_EQ(SoundingClass(expected), midi % 12) << "table cell does not sound its row";
            EXPECT_EQ(pitch.GetOctave(), WrittenOctave(midi, expected));
            EXPECT_EQ(pitch.GetMidiPitch(), midi);
            EXPECT_TRUE(pitch.ShowAccidental());
            EXPECT_FALSE(pitch.IsDirty());
        }
    }
}

TEST(MCPitchSetPitchByDegree, ReachableSpellingsAreKeptAsAsked)
{
    // Whenever the asked letter can spell the pitch within double flat to
    // double sharp, the result is that letter.
    for (int pc = 0; pc < 12; ++pc)
    {
        for (int degree = 0; degree < 7; ++degree)
        {
            int alteration = (pc - kLetterPitch[degree] + 12) % 12;
            if (alteration > 6)
                alteration -= 12;
            if (alteration < -2 || alteration > 2)
                continue;
            MCPitch pitch;
            pitch.SetPitchByDegree(static_cast<unsigned char>(60 + pc), static_cast<unsigned char>(degree));
            EXPECT_EQ(pitch.GetDegree(), degree) << "pc " << pc;
            EXPECT_EQ(pitch.GetAccidental(), alteration) << "pc " << pc;
        }
    }
}

TEST(MCPitchSetPitchByDegree, DegreeSevenOrMoreLeavesThePitchAlone)
{
    MCPitch pitch(64, 0);
    pitch.SetDirty(true);
    pitch.SetPitchByDegree(61, 7);
    pitch.SetPitchByDegree(61, 255);
    EXPECT_EQ(SpellingName(pitch), "E");
    EXPECT_EQ(pitch.GetMidiPitch(), 64);
    EXPECT_TRUE(pitch.IsDirty());
}

// ---- ToggleEnharmonic --------------------------------------------------------------------------

namespace
{
// The cycle of each pitch class, and the spellings outside it with where they
// go first.
const std::vector<std::string> kCycles[12] = {
    {"C", "B#", "Dbb"}, {"C#", "Db"},        {"D", "C##", "Ebb"}, {"D#", "Eb"},
    {"E", "Fb", "D##"}, {"F", "E#", "Gbb"},  {"F#", "Gb"},        {"G", "F##", "Abb"},
    {"G#", "Ab"},       {"A", "G##", "Bbb"}, {"A#", "Bb"},        {"B", "Cb", "A##"},
};
const std::map<std::string, std::string> kIntoCycle = {
    {"Fbb", "Eb"}, {"E##", "F#"}, {"Cbb", "Bb"}, {"B##", "C#"},
};

std::string NextInCycle(int pc, const std::string &spelling)
{
    const auto &cycle = kCycles[pc];
    for (size_t i = 0; i < cycle.size(); ++i)
        if (cycle[i] == spelling)
            return cycle[(i + 1) % cycle.size()];
    return kIntoCycle.at(spelling);
}
} // namespace

TEST(MCPitchToggleEnharmonic, EverySpellingOfEveryMidiPitchStepsToTheNextInItsCycle)
{
    for (int midi = 0; midi < 128; ++midi)
    {
        const int pc = midi % 12;
        for (int asked = -2; asked <= 2; ++asked)
        {
            MCPitch pitch = FromSetPitch(midi, asked);
            if (pitch.GetAccidental() != asked)
                continue; // not a spelling of this pitch class
            const std::string before = SpellingName(pitch);
            pitch.SetUserSpelled(true);
            pitch.SetShowAccidental(false);
            pitch.SetDirty(true);
            // Mapping moves the staff position only; the cycle reads the
            // accidental and the MIDI pitch.
            pitch.SetMappingType(MCPitch::MappingDegree, 30);

            pitch.ToggleEnharmonic();
            SCOPED_TRACE("midi " + std::to_string(midi) + " from " + before);
            const std::string expected = NextInCycle(pc, before);
            EXPECT_EQ(SpellingName(pitch), expected);
            EXPECT_EQ(pitch.GetOctave(), WrittenOctave(midi, expected));
            EXPECT_EQ(pitch.GetMidiPitch(), midi);
            EXPECT_TRUE(pitch.IsUserSpelled());
            EXPECT_FALSE(pitch.ShowAccidental());
            EXPECT_TRUE(pitch.IsDirty());
            EXPECT_EQ(pitch.GetMappingType(), MCPitch::MappingDegree);
        }
    }
}

TEST(MCPitchToggleEnharmonic, EachCycleReturnsToItsStartInExactlyItsLength)
{
    for (int midi = 0; midi < 128; ++midi)
    {
        const auto &cycle = kCycles[midi % 12];
        for (const std::string &start : cycle)
        {
            MCPitch pitch = FromSetPitch(midi, AlterationOf(start));
            ASSERT_EQ(SpellingName(pitch), start);
            for (size_t step = 1; step <= cycle.size(); ++step)
            {
                pitch.ToggleEnharmonic();
                const bool back = SpellingName(pitch) == start;
                EXPECT_EQ(back, step == cycle.size()) << "midi " << midi << " from " << start << " step " << step;
            }
            EXPECT_EQ(pitch.GetOctave(), FromSetPitch(midi, AlterationOf(start)).GetOctave());
        }
    }
}

TEST(MCPitchToggleEnharmonic, SpellingsOutsideTheCyclesJoinTheirCycle)
{
    // Degree 7 from an impossible request, triple sharps from
    // SetPitchByDegree, and a natural forced onto a black key.
    MCPitch unspelled = FromSetPitch(61, -2);
    unspelled.ToggleEnharmonic();
    EXPECT_EQ(SpellingName(unspelled), "C#");
    EXPECT_EQ(unspelled.GetOctave(), 5);

    const std::pair<int, const char *> tripleSharps[] = {{63, "D#"}, {65, "E#"}, {68, "G#"}};
    const int askedDegree[] = {4, 5, 6};
    for (size_t i = 0; i < 3; ++i)
    {
        MCPitch pitch;
        pitch.SetPitchByDegree(static_cast<unsigned char>(tripleSharps[i].first), static_cast<unsigned char>(askedDegree[i]));
        ASSERT_EQ(pitch.GetAccidental(), 3);
        pitch.ToggleEnharmonic();
        EXPECT_EQ(SpellingName(pitch), tripleSharps[i].second);
        EXPECT_EQ(pitch.GetMidiPitch(), tripleSharps[i].first);
    }

    for (int midi = 0; midi < 128; ++midi)
    {
        for (int field = -2; field <= 5; ++field)
        {
            MCPitch pitch(static_cast<unsigned char>(midi), 0);
            pitch.SetAccidental(static_cast<char>(field));
            pitch.ToggleEnharmonic();
            EXPECT_EQ(SoundingClass(SpellingName(pitch)), midi % 12) << midi << " field " << field;
            EXPECT_EQ(pitch.GetMidiPitch(), midi);
        }
    }
}

// ---- Mapping and comparison --------------------------------------------------------------------

TEST(MCPitchMapping, MappingTypeStoresTheStaffPositionAndRefusesUnknownTypes)
{
    MCPitch pitch(38, 0); // a drum note
    pitch.SetMappingType(MCPitch::MappingDrumMap, 36);
    EXPECT_EQ(pitch.GetMappingType(), MCPitch::MappingDrumMap);
    EXPECT_EQ(pitch.GetOctave(), 5);
    EXPECT_EQ(pitch.GetDegree(), 1);
    EXPECT_EQ(pitch.GetMidiPitch(), 38);

    pitch.SetMappingType(3, 10);
    EXPECT_EQ(pitch.GetMappingType(), MCPitch::MappingDrumMap);
    EXPECT_EQ(pitch.GetOctave(), 5);

    pitch.SetMappingType(MCPitch::MappingNone, 10);
    EXPECT_EQ(pitch.GetMappingType(), MCPitch::MappingNone);
    EXPECT_EQ(pitch.GetOctave(), 5);
}

namespace
{
struct CompareRow
{
    const char *what;
    int mapping;             // of the left operand
    int midiA, degreeA, octaveA;
    int midiB, degreeB, octaveB;
    bool eq, lt, le, gt, ge;
};

MCPitch Raw(int midi, int degree, int octave, int mapping)
{
    MCPitch pitch;
    pitch.SetMidiPitch(static_cast<unsigned char>(midi));
    pitch.SetDegreeOnly(static_cast<unsigned char>(degree));
    pitch.SetOctave(static_cast<unsigned char>(octave));
    if (mapping != 0)
        pitch.SetMappingType(static_cast<unsigned char>(mapping), static_cast<unsigned char>(octave * 7 + degree));
    return pitch;
}
} // namespace

TEST(MCPitchCompare, OperatorsFollowTheLeftOperandsMappingType)
{
    const CompareRow rows[] = {
        {"same sound and letter", 0, 60, 0, 5, 60, 0, 5, true, false, true, false, true},
        {"C sharp against D flat", 0, 61, 0, 5, 61, 1, 5, false, true, true, false, false},
        {"D flat against C sharp", 0, 61, 1, 5, 61, 0, 5, false, false, false, true, true},
        {"lower sound wins over higher letter", 0, 60, 6, 4, 61, 0, 5, false, true, true, false, false},
        {"octave is ignored without mapping", 0, 60, 0, 1, 60, 0, 9, true, false, true, false, true},
        {"higher sound", 0, 72, 0, 6, 60, 0, 5, false, false, false, true, true},
        {"drum map: equal octave is equal", 1, 38, 1, 5, 42, 4, 5, true, true, true, false, false},
        {"drum map: equal octave, higher degree", 1, 42, 4, 5, 38, 1, 5, true, false, false, true, true},
        {"drum map: octave decides before degree", 1, 35, 6, 4, 60, 0, 5, false, true, true, false, false},
        {"drum map: sound is ignored", 1, 90, 2, 5, 30, 2, 5, true, false, true, false, true},
        {"caller degree: same rules", 2, 60, 3, 6, 60, 3, 5, false, false, false, true, true},
        {"caller degree: equal octave", 2, 61, 0, 5, 62, 6, 5, true, true, true, false, false},
    };
    for (const CompareRow &row : rows)
    {
        const MCPitch a = Raw(row.midiA, row.degreeA, row.octaveA, row.mapping);
        const MCPitch b = Raw(row.midiB, row.degreeB, row.octaveB, 0);
        SCOPED_TRACE(row.what);
        EXPECT_EQ(a == b, row.eq);
        EXPECT_EQ(a != b, !row.eq);
        EXPECT_EQ(a < b, row.lt);
        EXPECT_EQ(a <= b, row.le);
        EXPECT_EQ(a > b, row.gt);
        EXPECT_EQ(a >= b, row.ge);
    }
}

TEST(MCPitchCompare, RightOperandsMappingIsNotLookedAt)
{
    MCPitch plain = Raw(60, 0, 5, 0);
    MCPitch mapped = Raw(64, 2, 5, 1);
    // Same octave: equal when asked of the mapped one, not of the plain one.
    EXPECT_TRUE(mapped == plain);
    EXPECT_FALSE(plain == mapped);
    EXPECT_TRUE(plain < mapped);
}
