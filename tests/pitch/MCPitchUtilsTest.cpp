#include <scoremodel/pitch/MCPitchUtils.h>

#include "pitch/PitchTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>
#include <type_traits>
#include <vector>

using namespace pitchtest;

namespace
{
enum
{
    P = MCPitchUtils::QualityPerfect,
    M = MCPitchUtils::QualityMajor,
    m = MCPitchUtils::QualityMinor,
    A = MCPitchUtils::QualityAugmented,
    d = MCPitchUtils::QualityDiminished,
    AA = MCPitchUtils::QualityDoublyAugmented,
    dd = MCPitchUtils::QualityDoublyDiminished,
    AAA = MCPitchUtils::QualityTriplyAugmented,
    ddd = MCPitchUtils::QualityTriplyDiminished,
};

// The quality table: semitones from the perfect size and from the major size.
// kNone marks a quality that does not exist for that kind of step.
constexpr int kNone = 99;
struct QualityRow
{
    int quality, fromPerfect, fromMajor;
};
constexpr QualityRow kQualities[] = {
    {P, 0, kNone}, {M, kNone, 0}, {m, kNone, -1}, {A, 1, 1},    {d, -1, -2},
    {AA, 2, 2},    {dd, -2, -3},  {AAA, 3, 3},     {ddd, -3, -4},
};

// Semitones of the natural steps: unison, second, ..., seventh.
constexpr int kStepSize[7] = {0, 2, 4, 5, 7, 9, 11};

bool IsPerfectKind(int size)
{
    const int step = size % 7;
    return step == 0 || step == 3 || step == 4;
}

// The quality musicians give an interval of `size` steps spanning `semitones`
// (both counted upward), or QualityPerfect when no named quality fits.
int TheoryQuality(int size, int semitones)
{
    const int offset = semitones - (12 * (size / 7) + kStepSize[size % 7]);
    for (const QualityRow &row : kQualities)
        if ((IsPerfectKind(size) ? row.fromPerfect : row.fromMajor) == offset)
            return row.quality;
    return P;
}

MCPitchUtils::INTERVAL Interval(int quality, int size, bool descending)
{
    MCPitchUtils::INTERVAL interval{};
    interval.quality = static_cast<unsigned short>(quality);
    interval.size = static_cast<unsigned short>(size);
    interval.descending = descending;
    return interval;
}

std::string Describe(const MCPitchUtils::INTERVAL &interval)
{
    return "quality " + std::to_string(interval.quality) + " size " + std::to_string(interval.size) +
           (interval.descending ? " descending" : " ascending");
}

#define EXPECT_INTERVAL(actual, quality, size, descending) \
    EXPECT_EQ(Describe(actual), Describe(Interval(quality, size, descending)))

int Position(const MCPitch &pitch)
{
    return pitch.GetDegree() + 7 * pitch.GetOctave();
}

bool SameSpelling(const MCPitch &a, const MCPitch &b)
{
    return a.GetDegree() == b.GetDegree() && a.GetOctave() == b.GetOctave() &&
           a.GetAccidental() == b.GetAccidental() && a.GetMidiPitch() == b.GetMidiPitch();
}

// Every spelling, double flat to double sharp, of the letters of two octaves
// from C3.
std::vector<MCPitch> TwoOctavesOfSpellings()
{
    std::vector<MCPitch> pitches;
    for (int octave = 3; octave <= 4; ++octave)
        for (const char *letter : {"C", "D", "E", "F", "G", "A", "B"})
            for (const char *accidental : {"bb", "b", "", "#", "##"})
                pitches.push_back(Spelled(std::string(letter) + accidental + std::to_string(octave)));
    return pitches;
}

class ExposedPitchUtils : public MCPitchUtils
{
public:
    using MCPitchUtils::QualityToAccidental;
};
} // namespace

// ---- Plain MIDI distances --------------------------------------------------------

TEST(MCPitchUtilsMidi, DistancesAreSignedAbsoluteAndByPitchClass)
{
    MCPitchUtils utils;
    struct Row
    {
        unsigned char a, b;
        int ordered, unordered, orderedPC, unorderedPC;
    } rows[] = {
        {60, 64, 4, 4, 4, 4},   {64, 60, -4, 4, 8, 4},  {60, 60, 0, 0, 0, 0},     {60, 72, 12, 12, 0, 0},
        {60, 79, 19, 19, 7, 5}, {79, 60, -19, 19, 5, 5}, {0, 127, 127, 127, 7, 5}, {61, 67, 6, 6, 6, 6},
        {127, 0, -127, 127, 5, 5},
    };
    for (const Row &row : rows)
    {
        EXPECT_EQ(utils.OrderedInterval(row.a, row.b), row.ordered) << int(row.a) << " " << int(row.b);
        EXPECT_EQ(utils.UnorderedInterval(row.a, row.b), row.unordered) << int(row.a) << " " << int(row.b);
        EXPECT_EQ(utils.OrderedPCInterval(row.a, row.b), row.orderedPC) << int(row.a) << " " << int(row.b);
        EXPECT_EQ(utils.UnorderedPCInterval(row.a, row.b), row.unorderedPC) << int(row.a) << " " << int(row.b);
    }
}

TEST(MCPitchUtilsMidi, DiatonicDistanceCountsStaffStepsNotSemitones)
{
    MCPitchUtils utils;
    EXPECT_EQ(utils.OrderedDiatonic(Spelled("B#3"), Spelled("C4")), 1);
    EXPECT_EQ(utils.OrderedDiatonic(Spelled("C4"), Spelled("B#3")), -1);
    EXPECT_EQ(utils.UnorderedDiatonic(Spelled("C4"), Spelled("B#3")), 1);
    EXPECT_EQ(utils.OrderedDiatonic(Spelled("C#4"), Spelled("Db4")), 1);
    EXPECT_EQ(utils.OrderedDiatonic(Spelled("G3"), Spelled("E5")), 12);
    EXPECT_EQ(utils.UnorderedDiatonic(Spelled("E5"), Spelled("G3")), 12);
}

// ---- Quality tables ---------------------------------------------------------------------

TEST(MCPitchUtilsQuality, OffsetsMapToTheirQualitiesAndOthersToPerfect)
{
    for (int offset = -6; offset <= 6; ++offset)
    {
        int perfect = P, major = P;
        for (const QualityRow &row : kQualities)
        {
            if (row.fromPerfect == offset)
                perfect = row.quality;
            if (row.fromMajor == offset)
                major = row.quality;
        }
        EXPECT_EQ(MCPitchUtils::PerfectQuality(offset), perfect) << "offset " << offset;
        EXPECT_EQ(MCPitchUtils::MajMinQuality(offset), major) << "offset " << offset;
    }
    EXPECT_EQ(MCPitchUtils::MajMinQuality(-4), ddd);
    EXPECT_EQ(MCPitchUtils::PerfectQuality(-4), P);
    EXPECT_EQ(MCPitchUtils::PerfectQuality(INT_MIN), P);
    EXPECT_EQ(MCPitchUtils::MajMinQuality(INT_MAX), P);
}

TEST(MCPitchUtilsQuality, UnisonFourthAndFifthAreThePerfectSteps)
{
    for (int step = 0; step < 21; ++step)
        EXPECT_EQ(MCPitchUtils::IsPerfectStep(step), IsPerfectKind(step)) << step;
}

TEST(MCPitchUtilsQuality, QualityToAccidentalIsOneAccidentalWhateverTheDegree)
{
    const int expected[] = {0, 0, -1, 1, -1, 1, -1, 1, -1, 0, 0};
    for (int quality = 0; quality <= 10; ++quality)
        EXPECT_EQ(ExposedPitchUtils::QualityToAccidental(quality), expected[quality]) << quality;
    EXPECT_EQ(ExposedPitchUtils::QualityToAccidental(-1), 0);
}

TEST(MCPitchUtilsQuality, QualityDifferenceCountsSemitonesBetweenQualitiesOfOneSize)
{
    // Against a perfect or major interval found in the same direction, the
    // difference is the wanted quality's offset, negated when descending.
    for (const QualityRow &row : kQualities)
    {
        for (int size : {0, 3, 4, 7, 1, 2, 5, 6, 9})
        {
            int offset = IsPerfectKind(size) ? row.fromPerfect : row.fromMajor;
            if (offset == kNone)
                offset = 0; // no such quality for this kind of step: counts as plain
            if (!IsPerfectKind(size) && row.quality == ddd)
                offset = 0; // a triply diminished third cannot be asked for
            const int plain = IsPerfectKind(size) ? P : M;
            SCOPED_TRACE("quality " + std::to_string(row.quality) + " size " + std::to_string(size));
            EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(row.quality, size, false), Interval(plain, size, false)),
                      offset);
            EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(row.quality, size, true), Interval(plain, size, true)),
                      -offset);
            EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(row.quality, size, false), Interval(plain, size, true)),
                      offset);
            EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(row.quality, size, true), Interval(plain, size, false)),
                      -offset);
        }
    }
    // Found not plain: minor found where major wanted is one semitone short.
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(M, 2, false), Interval(m, 2, false)), 1);
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(M, 2, true), Interval(m, 2, true)), -1);
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(A, 3, false), Interval(d, 3, false)), 2);
    // Mixed directions add the two offsets.
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(A, 0, true), Interval(A, 0, false)), -2);
    // Quality values past the table count as plain and read nothing beyond it.
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(15, 2, false), Interval(9, 2, false)), 0);
}

// ---- Spelled intervals -------------------------------------------------------------------------

TEST(MCPitchUtilsInterval, KnownIntervalsHaveTheirNamedQuality)
{
    MCPitchUtils utils;
    struct Row
    {
        const char *from, *to;
        int quality, size;
        bool descending;
    } rows[] = {
        {"C4", "E4", M, 2, false},    {"C4", "Eb4", m, 2, false},   {"C4", "D#4", A, 1, false},
        {"E4", "C4", M, 2, true},     {"B#3", "C4", d, 1, false},   {"C4", "G4", P, 4, false},
        {"C4", "F#4", A, 3, false},   {"C4", "Gb4", d, 4, false},   {"C4", "C5", P, 7, false},
        {"C4", "C#5", A, 7, false},   {"C5", "B3", m, 8, true},     {"C4", "B4", M, 6, false},
        {"C4", "Bbb4", d, 6, false},  {"C4", "A#4", A, 5, false},   {"C4", "E##4", AA, 2, false},
        {"Cb4", "E#4", AA, 2, false}, {"G4", "C4", P, 4, true},     {"F4", "B4", A, 3, false},
        {"B4", "F5", d, 4, false},    {"E4", "F4", m, 1, false},    {"C4", "C4", P, 0, false},
        {"C4", "C#4", A, 0, false},   {"C4", "Cb4", A, 0, true},    {"C4", "Dbb4", d, 1, false},
        {"C4", "E3", m, 5, true},     {"C4", "D3", m, 6, true},     {"C4", "F#3", d, 4, true},
        {"C5", "C4", P, 7, true},     {"C5", "Cb4", A, 7, true},    {"C4", "E5", M, 9, false},
        {"Cb4", "G##4", AAA, 4, false}, {"C##4", "Ebb4", ddd, 2, false}, {"Cbb4", "E##4", P, 2, false},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(std::string(row.from) + " to " + row.to);
        const MCPitchUtils::INTERVAL interval = utils.OrderedInterval(Spelled(row.from), Spelled(row.to));
        EXPECT_INTERVAL(interval, row.quality, row.size, row.descending);
        EXPECT_INTERVAL(utils.UnorderedInterval(Spelled(row.from), Spelled(row.to)), row.quality, row.size, false);
    }
}

TEST(MCPitchUtilsInterval, EveryPairWhoseSpellingAgreesWithItsSoundHasItsTheoryQuality)
{
    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctavesOfSpellings();
    for (const MCPitch &a : pitches)
    {
        for (const MCPitch &b : pitches)
        {
            const int steps = Position(b) - Position(a);
            const int semitones = b.GetMidiPitch() - a.GetMidiPitch();
            if ((steps > 0 && semitones < 0) || (steps < 0 && semitones > 0))
                continue; // contradicting spellings, below
            const bool descending = steps < 0 || semitones < 0;
            const int expected = TheoryQuality(std::abs(steps), std::abs(semitones));
            EXPECT_INTERVAL(utils.OrderedInterval(a, b), expected, std::abs(steps), descending)
                << FullName(a) << " to " << FullName(b);
        }
    }
}

TEST(MCPitchUtilsInterval, ContradictingSpellingsReadAsDescending)
{
    // When the letters and the sound move opposite ways, the interval is
    // descending either way. Letters falling while the sound rises read as
    // the theory names the fall; letters rising while the sound falls give a
    // quality measured from the inversion.
    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctavesOfSpellings();
    int seen = 0;
    for (const MCPitch &a : pitches)
    {
        for (const MCPitch &b : pitches)
        {
            const int steps = Position(b) - Position(a);
            const int semitones = b.GetMidiPitch() - a.GetMidiPitch();
            if (!((steps > 0 && semitones < 0) || (steps < 0 && semitones > 0)))
                continue;
            ++seen;
            const MCPitchUtils::INTERVAL interval = utils.OrderedInterval(a, b);
            EXPECT_TRUE(interval.descending) << FullName(a) << " to " << FullName(b);
            EXPECT_EQ(interval.size, std::abs(steps));
            if (steps < 0)
            {
                EXPECT_EQ(interval.quality, TheoryQuality(-steps, -semitones)) << FullName(a) << " to " << FullName(b);
            }
        }
    }
    EXPECT_GT(seen, 0);
    EXPECT_INTERVAL(utils.OrderedInterval(Spelled("B#4"), Spelled("Cb5")), AA, 1, true);
    EXPECT_INTERVAL(utils.OrderedInterval(Spelled("B##4"), Spelled("Cbb5")), P, 1, true);
    EXPECT_INTERVAL(utils.OrderedInterval(Spelled("Cb5"), Spelled("B#4")), dd, 1, true);
}

TEST(MCPitchUtilsInterval, PitchClassIntervalInvertsDescendingIntervalsAndKeepsTheirDirection)
{
    MCPitchUtils utils;
    struct Row
    {
        const char *from, *to;
        int quality, size;
        bool descending;
    } rows[] = {
        {"E4", "C4", m, 5, true},    {"C4", "E4", M, 2, false},  {"C4", "E5", M, 2, false},
        {"G4", "C4", P, 3, true},    {"C4", "F#3", A, 3, true},  {"C5", "B3", M, 6, true},
        {"C5", "C4", P, 0, true},    {"C4", "Cb4", d, 0, true},  {"C4", "C#4", A, 0, false},
        {"A4", "C4", m, 2, true},    {"E5", "C3", m, 5, true},   {"C4", "A#3", A, 5, true},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(std::string(row.from) + " to " + row.to);
        EXPECT_INTERVAL(utils.OrderedPCInterval(Spelled(row.from), Spelled(row.to)), row.quality, row.size,
                        row.descending);
    }
}

TEST(MCPitchUtilsInterval, PitchClassIntervalOfADescentNamesTheRiseToTheSameLetter)
{
    // Going down to a letter and going up to it in the octave above name the
    // same pitch class interval: E down to C, E up to C, both a minor sixth.
    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctavesOfSpellings();
    for (const MCPitch &a : pitches)
    {
        for (const MCPitch &b : pitches)
        {
            const int steps = Position(b) - Position(a);
            const int semitones = b.GetMidiPitch() - a.GetMidiPitch();
            if (steps >= 0 || semitones > 0 || steps % 7 == 0)
                continue;
            const int octaves = (-steps + 6) / 7;
            const int upSteps = steps + 7 * octaves;
            const int upSemitones = semitones + 12 * octaves;
            if (upSemitones < 0)
                continue;
            const int expected = TheoryQuality(upSteps, upSemitones);
            EXPECT_INTERVAL(utils.OrderedPCInterval(a, b), expected, upSteps, true)
                << FullName(a) << " to " << FullName(b);
        }
    }
}

TEST(MCPitchUtilsInterval, UnorderedPitchClassIntervalTakesTheSmallerSizeAndTheSecondOnATie)
{
    MCPitchUtils utils;
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C4"), Spelled("E4")), M, 2, false);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("E4"), Spelled("C4")), M, 2, false);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C4"), Spelled("A4")), m, 2, true);
    // Unisons tie at size 0: the form from the second pitch to the first wins.
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C4"), Spelled("C#4")), d, 0, true);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C#4"), Spelled("C4")), A, 0, false);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C4"), Spelled("C5")), P, 0, true);
}

TEST(MCPitchUtilsInterval, KeyToKeyIntervalRunsBetweenTheTonics)
{
    MCPitchUtils utils;
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 0, 1, 0, 0), P, 4, false);  // C up to G
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 0, 0, 1, 0), P, 3, false);  // C up to F
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 0, 1, 0, 1), P, 3, true);   // G down to C
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 2, 3, 0, 0), M, 6, true);   // B flat down to A
    EXPECT_INTERVAL(utils.OrderedPCInterval(6, 0, 0, 6, 0), d, 1, false);  // F sharp up to G flat
    EXPECT_INTERVAL(utils.OrderedPCInterval(7, 0, 0, 7, 0), dd, 0, false); // C sharp up to the C flat an octave on
}

// ---- GetPitchFromInterval ----------------------------------------------------------------------

TEST(MCPitchUtilsFromInterval, IntervalsLeadToTheirSpelledPitch)
{
    MCPitchUtils utils;
    struct Row
    {
        const char *from;
        int quality, size;
        bool descending;
        const char *to;
    } rows[] = {
        {"C4", AA, 0, false, "C##4"}, {"C4", AAA, 0, false, "D#4"}, {"E4", M, 2, true, "C4"},
        {"E4", m, 2, true, "C#4"},    {"C4", M, 2, false, "E4"},    {"C4", m, 9, false, "Eb5"},
        {"F#4", P, 4, false, "C#5"},  {"Bb3", d, 4, false, "Fb4"},  {"C4", A, 0, true, "Cb4"},
        {"G4", P, 4, true, "C4"},     {"D4", m, 6, true, "E3"},     {"C4", ddd, 4, false, "E4"},
        {"C4", ddd, 0, false, "A3"},
    };
    for (const Row &row : rows)
    {
        SCOPED_TRACE(std::string(row.from) + " by " + Describe(Interval(row.quality, row.size, row.descending)));
        const MCPitch result = utils.GetPitchFromInterval(Spelled(row.from), Interval(row.quality, row.size, row.descending));
        EXPECT_EQ(FullName(result), FullName(Spelled(row.to)));
        EXPECT_TRUE(result.ShowAccidental());
        EXPECT_FALSE(result.IsDirty());
    }
}

TEST(MCPitchUtilsFromInterval, RoundTripReturnsEveryPairExceptWhereAQualityOrDirectionIsLost)
{
    // GetPitchFromInterval(a, OrderedInterval(a, b)) gives back b, except:
    //  - a quality beyond triply augmented or diminished reads as perfect,
    //    and a triply diminished second, third, sixth or seventh cannot be
    //    asked for: both lead to the plain (perfect or major) interval, at
    //    b's staff position unless that needs more than a double accidental;
    //  - letters rising while the sound falls (B#4 to Cb5) read as a descent,
    //    which leads down by the size, away from b;
    //  - from E double sharp or B double sharp up a second, the natural
    //    letter above sounds below the start, the measuring step reads it as
    //    a descent, and the result lands a semitone under b.
    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctavesOfSpellings();
    int exact = 0, lostQuality = 0, contradicted = 0, doubleSharpSecond = 0;
    for (const MCPitch &a : pitches)
    {
        for (const MCPitch &b : pitches)
        {
            const MCPitchUtils::INTERVAL interval = utils.OrderedInterval(a, b);
            const MCPitch result = utils.GetPitchFromInterval(a, interval);
            const int steps = Position(b) - Position(a);
            const int semitones = b.GetMidiPitch() - a.GetMidiPitch();
            const int size = std::abs(steps);
            const int theory = TheoryQuality(size, steps >= 0 ? semitones : -semitones);
            const int offset = (steps >= 0 ? semitones : -semitones) - (12 * (size / 7) + kStepSize[size % 7]);
            const bool unnamed = (theory == P && offset != 0) || (theory == ddd && !IsPerfectKind(size));
            SCOPED_TRACE(FullName(a) + " to " + FullName(b) + " gave " + FullName(result));

            if (steps > 0 && semitones < 0)
            {
                ++contradicted;
                EXPECT_EQ(Position(result), Position(a) - size);
            }
            else if (unnamed)
            {
                ++lostQuality;
                EXPECT_FALSE(SameSpelling(result, b));
                const int plainSemitones = 12 * (size / 7) + kStepSize[size % 7];
                EXPECT_EQ(result.GetMidiPitch(), a.GetMidiPitch() + (interval.descending ? -plainSemitones : plainSemitones));
                const MCPitch respelled(result.GetMidiPitch(), 0);
                EXPECT_TRUE(Position(result) == Position(b) ||
                            (result.GetDegree() == respelled.GetDegree() && result.GetAccidental() == respelled.GetAccidental()));
            }
            else if (steps == 1 && a.GetAccidental() == 2 && (a.GetDegree() == 2 || a.GetDegree() == 6))
            {
                ++doubleSharpSecond;
                EXPECT_EQ(Position(result), Position(b));
                EXPECT_EQ(result.GetMidiPitch(), b.GetMidiPitch() - 1);
            }
            else
            {
                ++exact;
                EXPECT_TRUE(SameSpelling(result, b));
            }
        }
    }
    // Most pairs come back exactly; each kind of loss does occur.
    EXPECT_EQ(exact + lostQuality + contradicted + doubleSharpSecond, 70 * 70);
    EXPECT_GT(exact, 4000);
    EXPECT_GT(lostQuality, 0);
    EXPECT_GT(contradicted, 0);
    EXPECT_EQ(doubleSharpSecond, 6);
}

TEST(MCPitchUtilsFromInterval, PositionsOffTheOctaveRangeStayDefined)
{
    MCPitchUtils utils;
    MCPitch low = Spelled("D-1");
    const MCPitch below = utils.GetPitchFromInterval(low, Interval(M, 3, true));
    EXPECT_LT(below.GetDegree(), 7);
    EXPECT_LT(below.GetOctave(), 16);
    const MCPitch far = utils.GetPitchFromInterval(low, Interval(P, 2047, false));
    EXPECT_LT(far.GetDegree(), 7);
}

// ---- Keys --------------------------------------------------------------------------------------------

TEST(MCPitchUtilsKeys, KeyTablesGiveTonicPitchDegreeAndQualityByCount)
{
    const int sharpPitch[] = {7, 2, 9, 4, 11, 6, 1}, flatPitch[] = {5, 10, 3, 8, 1, 6, 11};
    const int sharpDegree[] = {0, 1, 5, 2, 6, 3, 0}, flatDegree[] = {3, 6, 2, 5, 1, 4, 0};
    const int sharpQuality[] = {0, 1, 1, 1, 1, 3, 3}, flatQuality[] = {0, 2, 2, 2, 2, 4, 4};
    for (int count = 1; count <= 7; ++count)
    {
        SCOPED_TRACE("count " + std::to_string(count));
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(count, 0), sharpPitch[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(0, count), flatPitch[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegree(count, 0), sharpDegree[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegree(0, count), flatDegree[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyQuality(count, 0), sharpQuality[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyQuality(0, count), flatQuality[count - 1]);
        // Sharps win when both are set.
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(count, 3), sharpPitch[count - 1]);
        // The circle of fifths: each sharp a fifth up, each flat a fifth down.
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(count, 0), 7 * count % 12);
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(0, count), 5 * count % 12);
    }
    EXPECT_EQ(MCPitchUtils::GetKeyDegree(1, 0), 0); // not 4: callers rely on it
}

TEST(MCPitchUtilsKeys, NoKeyAndCountsPastSevenReadZeroInEveryTable)
{
    const std::pair<int, int> keys[] = {{0, 0}, {8, 0}, {0, 8}, {100, 0}, {0, INT_MAX}, {8, 3}, {-1, 0}, {0, -5}};
    for (const auto &[sharps, flats] : keys)
    {
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(sharps, flats), 0) << sharps << " " << flats;
        EXPECT_EQ(MCPitchUtils::GetKeyDegree(sharps, flats), 0) << sharps << " " << flats;
        EXPECT_EQ(MCPitchUtils::GetKeyQuality(sharps, flats), 0) << sharps << " " << flats;
    }
    EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(-1, 2), 10); // no sharps: the flats count
}

TEST(MCPitchUtilsKeys, ReferencePitchIsTheTonicSpelledWithTheKeysAccidentalFromMiddleC)
{
    const char *sharpTonics[] = {"C4", "G4", "D4", "A4", "E4", "B4", "F#4", "C#4"};
    const char *flatTonics[] = {"C4", "F4", "Bb4", "Eb4", "Ab4", "Db4", "Gb4", "Cb5"};
    for (int count = 0; count <= 7; ++count)
    {
        EXPECT_EQ(FullName(MCPitchUtils::GetKeyRefPitch(count, 0)), FullName(Spelled(sharpTonics[count]))) << count;
        EXPECT_EQ(FullName(MCPitchUtils::GetKeyRefPitch(0, count)), FullName(Spelled(flatTonics[count]))) << count;
    }
    EXPECT_EQ(MCPitchUtils::GetKeyRefPitch(0, 7).GetMidiPitch(), 71);
}

TEST(MCPitchUtilsKeys, TransposeKeyLandsOnTheKeyOfTheNewTonicForEveryKeyAndShift)
{
    std::vector<std::pair<int, int>> keys;
    for (int count = 0; count <= 7; ++count)
        keys.push_back({count, 0});
    for (int count = 1; count <= 7; ++count)
        keys.push_back({0, count});
    std::vector<int> shifts;
    for (int s = -80; s <= 80; ++s)
        shifts.push_back(s);
    for (int s : {255, 1000, -1000, INT_MAX, INT_MIN, INT_MAX - 5, INT_MIN + 7})
        shifts.push_back(s);

    for (const auto &[oldSharps, oldFlats] : keys)
    {
        const long long tonic = 60 + MCPitchUtils::GetKeyDegreeChromatic(oldSharps, oldFlats);
        for (int shift : shifts)
        {
            int sharps = oldSharps, flats = oldFlats;
            MCPitchUtils::TransposeKey(sharps, flats, shift);
            SCOPED_TRACE("key " + std::to_string(oldSharps) + "#/" + std::to_string(oldFlats) + "b by " +
                         std::to_string(shift));
            const long long target = tonic + shift;
            if (shift == 0 || (target < 0 && target % 12 != 0))
            {
                EXPECT_EQ(sharps, oldSharps);
                EXPECT_EQ(flats, oldFlats);
                continue;
            }
            const int newTonic = static_cast<int>(((target % 12) + 12) % 12);
            EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(sharps, flats), newTonic);
            EXPECT_TRUE(sharps == 0 || flats == 0);
            if (newTonic == 6)
            {
                EXPECT_EQ(sharps, oldFlats >= 1 ? 0 : 6);
                EXPECT_EQ(flats, oldFlats >= 1 ? 6 : 0);
            }
            else
            {
                // The one key of at most five accidentals on that tonic.
                EXPECT_LE(sharps + flats, 5);
            }
        }
    }
}

TEST(MCPitchUtilsKeys, TransposeKeyBreaksTheTritoneTieByTheOldKeysFlats)
{
    int sharps = 0, flats = 0;
    MCPitchUtils::TransposeKey(sharps, flats, 6);
    EXPECT_EQ(sharps, 6);
    EXPECT_EQ(flats, 0);

    sharps = 0, flats = 1;
    MCPitchUtils::TransposeKey(sharps, flats, 1);
    EXPECT_EQ(sharps, 0);
    EXPECT_EQ(flats, 6);

    sharps = 0, flats = 2;
    MCPitchUtils::TransposeKey(sharps, flats, 1);
    EXPECT_EQ(sharps, 5);
    EXPECT_EQ(flats, 0);

    // A fall of exactly six octaves from C lands on C; one semitone less
    // leaves a negative remainder and the key stays.
    sharps = 3, flats = 0;
    MCPitchUtils::TransposeKey(sharps, flats, -69 - 12);
    EXPECT_EQ(sharps, 0);
    EXPECT_EQ(flats, 0);
    sharps = 3, flats = 0;
    MCPitchUtils::TransposeKey(sharps, flats, -70);
    EXPECT_EQ(sharps, 3);
    EXPECT_EQ(flats, 0);
}

TEST(MCPitchUtilsKeys, TrackTranspositionDegreeFollowsTheFlatLeaningSpelling)
{
    const std::pair<int, int> rows[] = {
        {0, 0},   {1, 0},   {2, 1},   {3, 2},   {4, 2},   {5, 3},   {6, 3},   {7, 4},   {8, 4},    {9, 5},
        {10, 6},  {11, 6},  {12, 0},  {13, 0},  {14, 1},  {-1, -1}, {-2, -1}, {-3, -2}, {-4, -3},  {-5, -3},
        {-6, -4}, {-7, -4}, {-8, -5}, {-9, -5}, {-10, -6}, {-11, 0}, {-12, 0}, {-13, -1},
    };
    for (const auto &[semitones, degree] : rows)
        EXPECT_EQ(MCPitchUtils::GetTrackTranspositionDegree(semitones), degree) << semitones;
    for (int semitones : {INT_MIN, INT_MAX, 1000, -1000, 60, 61, -195})
    {
        const int degree = MCPitchUtils::GetTrackTranspositionDegree(semitones);
        EXPECT_GE(degree, -6) << semitones;
        EXPECT_LE(degree, 6) << semitones;
    }
}

// ---- Inert entry points -----------------------------------------------------------------------------

TEST(MCPitchUtilsInert, KeptEntryPointsAnswerTheirFixedValues)
{
    MCPitchUtils utils;
    EXPECT_TRUE(utils.GetNumkeyFromPitch(60, 1, 0, 0).IsEmpty());
    EXPECT_EQ(utils.GetPitchFromNumkey(3, 0, 4, 5), 64);
    EXPECT_EQ(utils.GetPitchFromNumkey(0, 7, 0, 0), 0);
    EXPECT_EQ(utils.GetPitchFromNumkey(0, 0, 1, INT_MAX), static_cast<int>(12LL * INT_MAX + 1));
    static_assert(std::is_same_v<decltype(&MCPitchUtils::NormalizeForm),
                                 void (MCPitchUtils::*)(CTypedPtrList<MCEventList, ECBase *> &,
                                                        CTypedPtrList<MCEventList, ECBase *> &)>);
    static_assert(std::is_same_v<decltype(&MCPitchUtils::SetCardinality),
                                 int (MCPitchUtils::*)(CTypedPtrList<MCEventList, ECBase *> &)>);
    MCPitchUtils copy(utils);
    copy = utils;
}
