#include <scoremodel/pitch/MCPitch.h>

#include "pitch/PitchTestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace pitchtest;

namespace
{
// Which letter each alteration spells at each pitch class ('.' for none): a
// double flat on pitch class 0 is D, a sharp on pitch class 0 is B.
const std::map<int, std::string> kSpellingTable = {
    {-2, "D.EF.G.A.BC."}, {-1, ".D.EF.G.A.BC"}, {0, "C.D.EF.G.A.B"}, {1, "BC.D.EF.G.A."}, {2, ".BC.D.EF.G.A"},
};

// The octave a written spelling of `midi` sits in, from what it sounds: C
// flat belongs to the octave above its MIDI number, B sharp to the one below.
int WrittenOctave(int midi, const std::string &spelling)
{
    const int diff = midi - (kLetterPitch[LetterIndex(spelling[0])] + AlterationOf(spelling));
    return (diff >= 0 ? diff / 12 : -((-diff + 11) / 12)) & 0xF;
}

MCPitch FromSetPitch(int midi, int alteration)
{
    MCPitch pitch;
    pitch.SetPitch(static_cast<unsigned char>(midi), static_cast<char>(alteration), 1);
    return pitch;
}
} // namespace

TEST(MCPitchTables, PitchClassToDegreeAndBackWithZeroOutsideTheTables)
{
    const int expected[12] = {0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};
    for (unsigned pc = 0; pc < 12; ++pc)
        EXPECT_EQ(MCPitch::PitchToDegree(pc), expected[pc]) << "pitch class " << pc;
    for (unsigned degree = 0; degree < 7; ++degree)
        EXPECT_EQ(MCPitch::DegreeToPitch(degree), kLetterPitch[degree]) << "degree " << degree;
    for (unsigned outside : {12u, 255u, 0xFFFFFFFFu})
        EXPECT_EQ(MCPitch::PitchToDegree(outside), 0) << outside;
    for (unsigned outside : {7u, 8u, 0xFFFFFFFFu})
        EXPECT_EQ(MCPitch::DegreeToPitch(outside), 0) << outside;
}

TEST(MCPitchFields, DefaultsAndTheRawSettersTouchOnlyTheirOwnField)
{
    MCPitch fresh;
    EXPECT_TRUE(fresh.IsDirty());
    EXPECT_TRUE(fresh.ShowAccidental());
    EXPECT_FALSE(fresh.IsUserSpelled());
    EXPECT_EQ(FullName(fresh), "C-1 (MIDI 0)"); // octave 0

    MCPitch pitch(70, 0);
    pitch.SetDegree(36); // a diatonic position: D in octave 5
    EXPECT_EQ(pitch.GetOctave(), 5);
    EXPECT_EQ(pitch.GetDegree(), 1);
    pitch.SetDegreeOnly(9);
    EXPECT_EQ(pitch.GetDegree(), 2);
    pitch.SetOctave(0x13);
    EXPECT_EQ(pitch.GetOctave(), 3);
    EXPECT_EQ(pitch.GetMidiPitch(), 70);

    // The accidental field is three bits: -2 to 5 come back, -3 wraps to 5.
    for (int alteration = -2; alteration <= 5; ++alteration)
    {
        pitch.SetAccidental(static_cast<char>(alteration));
        EXPECT_EQ(pitch.GetAccidental(), alteration);
    }
    pitch.SetAccidental(-3);
    EXPECT_EQ(pitch.GetAccidental(), 5);
}

TEST(MCPitchFields, UpdateMidiPitchSoundsTheSpellingIncludingBSharpBelowItsOctave)
{
    const std::pair<const char *, int> rows[] = {{"B#3", 60}, {"Cb4", 59}, {"Dbb4", 60}, {"A##4", 71}, {"G9", 127}};
    for (const auto &[name, midi] : rows)
    {
        MCPitch pitch = Spelled(name);
        pitch.SetMidiPitch(0);
        pitch.UpdateMidiPitch();
        EXPECT_EQ(pitch.GetMidiPitch(), midi) << name;
    }
}

TEST(MCPitchCopy, CopiesCarryEverythingButTheUserSpelledFlag)
{
    MCPitch source(63, -1);
    source.SetUserSpelled(true);
    source.SetShowAccidental(false);
    source.SetMappingType(MCPitch::MappingDegree, 40);
    MCPitch copy(source), userSpelled(70, 1);
    userSpelled.SetUserSpelled(true);
    userSpelled = source; // assignment keeps the target's own flag
    for (const MCPitch *made : {&copy, &userSpelled})
    {
        EXPECT_FALSE(made->ShowAccidental());
        EXPECT_EQ(made->GetMappingType(), MCPitch::MappingDegree);
        EXPECT_EQ(FullName(*made), FullName(source));
    }
    EXPECT_FALSE(copy.IsUserSpelled());
    EXPECT_TRUE(userSpelled.IsUserSpelled());
}

TEST(MCPitchSetPitch, EveryMidiPitchAndAlterationSpellsAsTheSpellingTableSays)
{
    for (int midi = 0; midi < 128; ++midi)
    {
        const int pc = midi % 12;
        for (int asked : {-5, -2, -1, 0, 1, 2, 3, 100})
        {
            // A natural on a black key falls back to a sharp, anything else
            // (including alterations past double) to a natural; if that fails
            // too, the degree reads 7.
            int alteration = asked;
            char letter = kSpellingTable.count(asked) ? kSpellingTable.at(asked)[pc] : '.';
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
                EXPECT_EQ(pitch.GetOctave(), midi / 12);
                continue;
            }
            EXPECT_EQ(pitch.GetDegree(), LetterIndex(letter));
            EXPECT_EQ(SoundingClass(SpellingName(pitch)), pc);
            EXPECT_EQ(pitch.GetOctave(), WrittenOctave(midi, SpellingName(pitch)));
        }
    }
    // The octave field wraps below octave 0, and the show flag is bit 0.
    EXPECT_EQ(FromSetPitch(0, 1).GetOctave(), 15);
    MCPitch hidden;
    hidden.SetPitch(61, 0, 2);
    EXPECT_FALSE(hidden.ShowAccidental());
}

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
} // namespace

TEST(MCPitchSetPitchByDegree, EveryPitchAndAskedDegreeGivesTheTabledSpellingInItsWrittenOctave)
{
    for (int midi = 0; midi < 128; ++midi)
    {
        for (int degree = 0; degree < 7; ++degree)
        {
            std::string expected = kByDegree[midi % 12][degree];
            if (expected.back() == '*')
                expected.pop_back();
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
    // A degree past B reads nothing outside the table and changes nothing.
    MCPitch pitch(64, 0);
    pitch.SetPitchByDegree(61, 7);
    pitch.SetPitchByDegree(61, 255);
    EXPECT_EQ(FullName(pitch), FullName(MCPitch(64, 0)));
}

namespace
{
// The cycle of each pitch class, and the spellings outside it with where they
// go first.
const std::vector<std::string> kCycles[12] = {
    {"C", "B#", "Dbb"}, {"C#", "Db"},        {"D", "C##", "Ebb"}, {"D#", "Eb"},
    {"E", "Fb", "D##"}, {"F", "E#", "Gbb"},  {"F#", "Gb"},        {"G", "F##", "Abb"},
    {"G#", "Ab"},       {"A", "G##", "Bbb"}, {"A#", "Bb"},        {"B", "Cb", "A##"},
};
const std::map<std::string, std::string> kIntoCycle = {{"Fbb", "Eb"}, {"E##", "F#"}, {"Cbb", "Bb"}, {"B##", "C#"}};

std::string NextInCycle(int pc, const std::string &spelling)
{
    const auto &cycle = kCycles[pc];
    for (size_t i = 0; i < cycle.size(); ++i)
        if (cycle[i] == spelling)
            return cycle[(i + 1) % cycle.size()];
    return kIntoCycle.at(spelling);
}
} // namespace

TEST(MCPitchToggleEnharmonic, EverySpellingStepsToTheNextInItsCycleAndComesBackAfterItsLengthAndNotBefore)
{
    // Three steps for the pitch classes with a natural, two for the others; a
    // spelling outside the cycles comes back to the one it first joins.
    for (int midi = 0; midi < 128; ++midi)
    {
        for (int asked = -2; asked <= 2; ++asked)
        {
            MCPitch pitch = FromSetPitch(midi, asked);
            if (pitch.GetAccidental() != asked)
                continue; // not a spelling of this pitch class
            const std::string before = SpellingName(pitch);
            pitch.SetUserSpelled(true);
            pitch.SetShowAccidental(false);
            pitch.SetDirty(true);
            pitch.SetMappingType(MCPitch::MappingDegree, 30);

            pitch.ToggleEnharmonic();
            SCOPED_TRACE("midi " + std::to_string(midi) + " from " + before);
            const std::string expected = NextInCycle(midi % 12, before);
            EXPECT_EQ(SpellingName(pitch), expected);
            EXPECT_EQ(pitch.GetOctave(), WrittenOctave(midi, expected));
            EXPECT_EQ(pitch.GetMidiPitch(), midi);
            EXPECT_TRUE(pitch.IsUserSpelled());
            EXPECT_FALSE(pitch.ShowAccidental());
            EXPECT_TRUE(pitch.IsDirty());
            EXPECT_EQ(pitch.GetMappingType(), MCPitch::MappingDegree);

            // Round the cycle from where the first step landed, or from the
            // start when it was in the cycle already.
            const MCPitch start = kIntoCycle.count(before) != 0 ? pitch : FromSetPitch(midi, asked);
            const size_t length = kCycles[midi % 12].size();
            pitch = start;
            for (size_t step = 1; step < length; ++step)
            {
                pitch.ToggleEnharmonic();
                EXPECT_NE(FullName(pitch), FullName(start)) << "back after only " << step;
            }
            pitch.ToggleEnharmonic();
            EXPECT_EQ(FullName(pitch), FullName(start)) << "not back after " << length;
        }
    }
}

TEST(MCPitchToggleEnharmonic, SpellingsOutsideTheCyclesJoinACycleOfTheirSound)
{
    MCPitch unspelled = FromSetPitch(61, -2); // degree 7
    unspelled.ToggleEnharmonic();
    EXPECT_EQ(SpellingName(unspelled), "C#");
    EXPECT_EQ(unspelled.GetOctave(), 5);

    // Hand-set accidentals, triple sharps among them.
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

namespace
{
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
    const struct
    {
        const char *what;
        int mapping; // of the left operand; the right one is never mapped
        int midiA, degreeA, octaveA;
        int midiB, degreeB, octaveB;
        bool eq, lt, le, gt, ge;
    } rows[] = {
        {"same sound and letter", 0, 60, 0, 5, 60, 0, 5, true, false, true, false, true},
        {"C sharp against D flat", 0, 61, 0, 5, 61, 1, 5, false, true, true, false, false},
        {"lower sound wins over higher letter", 0, 60, 6, 4, 61, 0, 5, false, true, true, false, false},
        {"octave is ignored without mapping", 0, 60, 0, 1, 60, 0, 9, true, false, true, false, true},
        {"drum map: equal octave is equal", 1, 38, 1, 5, 42, 4, 5, true, true, true, false, false},
        {"drum map: equal octave, higher degree", 1, 42, 4, 5, 38, 1, 5, true, false, false, true, true},
        {"drum map: octave decides before degree", 1, 35, 6, 4, 60, 0, 5, false, true, true, false, false},
        {"drum map: sound is ignored", 1, 90, 2, 5, 30, 2, 5, true, false, true, false, true},
        {"caller degree: same rules", 2, 60, 3, 6, 60, 3, 5, false, false, false, true, true},
        {"unmapped left against a mapped right", 0, 60, 0, 5, 64, 2, 5, false, true, true, false, false},
    };
    for (const auto &row : rows)
    {
        const MCPitch a = Raw(row.midiA, row.degreeA, row.octaveA, row.mapping);
        const MCPitch b = Raw(row.midiB, row.degreeB, row.octaveB, row.mapping == 0 ? 1 : 0);
        SCOPED_TRACE(row.what);
        EXPECT_EQ(a == b, row.eq);
        EXPECT_EQ(a != b, !row.eq);
        EXPECT_EQ(a < b, row.lt);
        EXPECT_EQ(a <= b, row.le);
        EXPECT_EQ(a > b, row.gt);
        EXPECT_EQ(a >= b, row.ge);
    }
    // Mapping places the pitch on the staff without touching its sound, and
    // an unknown type changes nothing.
    MCPitch drum(38, 0);
    drum.SetMappingType(MCPitch::MappingDrumMap, 36);
    drum.SetMappingType(3, 10);
    EXPECT_EQ(drum.GetMappingType(), MCPitch::MappingDrumMap);
    EXPECT_EQ(FullName(drum), "D4 (MIDI 38)");
}
