#include <scoremodel/pitch/MCPitchUtils.h>

#include "pitch/PitchTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <algorithm>
#include <cstdlib>
#include <string>
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

// Semitones a quality adds to the plain (perfect or major) interval of its
// size; a quality that does not exist for that size, or the triply
// diminished one of a major kind, counts as plain.
int QualityOffset(int quality, int size)
{
    for (const QualityRow &row : kQualities)
        if (row.quality == quality)
        {
            const int offset = IsPerfectKind(size) ? row.fromPerfect : row.fromMajor;
            return offset == kNone || (!IsPerfectKind(size) && quality == ddd) ? 0 : offset;
        }
    return 0;
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

TEST(MCPitchUtilsMidi, DistancesAreSignedAbsoluteAndByPitchClassForEveryPair)
{
    MCPitchUtils utils;
    for (int a = 0; a < 128; ++a)
        for (int b = 0; b < 128; ++b)
        {
            unsigned char ua = static_cast<unsigned char>(a), ub = static_cast<unsigned char>(b);
            const int pc = ((b - a) % 12 + 12) % 12;
            ASSERT_EQ(utils.OrderedInterval(ua, ub), b - a);
            ASSERT_EQ(utils.UnorderedInterval(ua, ub), std::abs(b - a));
            ASSERT_EQ(utils.OrderedPCInterval(ua, ub), pc) << a << " " << b;
            ASSERT_EQ(utils.UnorderedPCInterval(ua, ub), std::min(pc, 12 - pc)) << a << " " << b;
        }
    // Diatonic distance counts staff steps, not semitones.
    EXPECT_EQ(utils.OrderedDiatonic(Spelled("C4"), Spelled("B#3")), -1);
    EXPECT_EQ(utils.UnorderedDiatonic(Spelled("E5"), Spelled("G3")), 12);
}

TEST(MCPitchUtilsQuality, OffsetTablesPerfectStepsAndAccidentals)
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
    EXPECT_EQ(MCPitchUtils::PerfectQuality(INT_MIN), P);
    for (int step = 0; step < 21; ++step)
        EXPECT_EQ(MCPitchUtils::IsPerfectStep(step), IsPerfectKind(step)) << step;
    // A doubly altered quality still counts as one accidental.
    const int accidental[] = {0, 0, -1, 1, -1, 1, -1, 1, -1, 0, 0};
    for (int quality = -1; quality <= 10; ++quality)
        EXPECT_EQ(ExposedPitchUtils::QualityToAccidental(quality), quality < 0 ? 0 : accidental[quality]) << quality;
}

// The semitones to add to the note a natural step reaches (found) to get the
// wanted interval, written out by hand from what musicians count: a major
// third wanted where a minor third was found is one semitone up, and the same
// wanted downward is one semitone down.
TEST(MCPitchUtilsQuality, QualityDifferenceCountsSemitonesBetweenQualitiesOfOneSize)
{
    const int U = 0, SECOND = 1, THIRD = 2, FOURTH = 3, FIFTH = 4, SIXTH = 5, OCTAVE = 7, NINTH = 8;
    struct Case
    {
        int wanted, size;
        bool wantedDown;
        int found;
        bool foundDown;
        int semitones;
    };
    const Case cases[] = {
        // Perfect kind, against a perfect interval found upward.
        {P, FIFTH, false, P, false, 0},
        {A, FIFTH, false, P, false, 1},
        {d, FIFTH, false, P, false, -1},
        {AA, FOURTH, false, P, false, 2},
        {dd, FOURTH, false, P, false, -2},
        {AAA, U, false, P, false, 3},
        {ddd, OCTAVE, false, P, false, -3},
        {M, FIFTH, false, P, false, 0}, // no major fifth: taken as perfect
        {m, FIFTH, false, P, false, 0},
        // Major kind, against a major interval found upward.
        {M, THIRD, false, M, false, 0},
        {m, THIRD, false, M, false, -1},
        {A, SECOND, false, M, false, 1},
        {d, SIXTH, false, M, false, -2},
        {AA, SIXTH, false, M, false, 2},
        {dd, THIRD, false, M, false, -3},
        {AAA, SECOND, false, M, false, 3},
        {ddd, THIRD, false, M, false, 0}, // the major kind knows no triply diminished
        {P, THIRD, false, M, false, 0},
        // Other found qualities: the distance between the two.
        {M, THIRD, false, m, false, 1},
        {m, SIXTH, false, A, false, -2},
        {d, FIFTH, false, A, false, -2},
        {A, FOURTH, false, d, false, 2},
        // Both downward: the same distance, the other way.
        {M, THIRD, true, m, true, -1},
        {A, FOURTH, true, P, true, -1},
        {dd, FOURTH, true, A, true, 3},
        // Opposite directions: the found interval counts the other way round.
        {A, U, true, A, false, -2},
        {d, U, false, A, true, 0},
        {m, SECOND, false, m, true, -2},
        {M, SECOND, true, m, false, 1},
        // An octave is of the perfect kind, a ninth of the major kind.
        {A, OCTAVE, false, m, false, 1},
        {A, NINTH, false, m, false, 2},
        // Values past the table count as plain.
        {15, THIRD, false, 9, false, 0},
        {A, THIRD, false, 12, false, 1},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE("wanted " + std::to_string(c.wanted) + " size " + std::to_string(c.size) +
                     (c.wantedDown ? " down" : " up") + ", found " + std::to_string(c.found) +
                     (c.foundDown ? " down" : " up"));
        EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(c.wanted, c.size, c.wantedDown),
                                                  Interval(c.found, c.size, c.foundDown)),
                  c.semitones);
    }
    // The kind is taken from the wanted size alone.
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(A, OCTAVE, false), Interval(m, NINTH, false)), 1);
    EXPECT_EQ(MCPitchUtils::QualityDifference(Interval(A, NINTH, false), Interval(m, OCTAVE, false)), 2);
}

TEST(MCPitchUtilsInterval, EveryPairOfSpellingsHasItsQualityAndDirection)
{
    // Where letters and sound move the same way the theory names the
    // interval. Where they move opposite ways it reads as descending: letters
    // falling while the sound rises read as the theory names the fall;
    // letters rising while the sound falls are measured from the inversion.
    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctavesOfSpellings();
    for (const MCPitch &a : pitches)
    {
        for (const MCPitch &b : pitches)
        {
            const int steps = Position(b) - Position(a);
            const int semitones = b.GetMidiPitch() - a.GetMidiPitch();
            const MCPitchUtils::INTERVAL interval = utils.OrderedInterval(a, b);
            SCOPED_TRACE(FullName(a) + " to " + FullName(b));
            if (steps > 0 && semitones < 0)
            {
                EXPECT_TRUE(interval.descending);
                EXPECT_EQ(interval.size, steps);
                continue;
            }
            const int span = steps > 0 ? semitones : (steps < 0 ? -semitones : std::abs(semitones));
            EXPECT_INTERVAL(interval, TheoryQuality(std::abs(steps), span), std::abs(steps), steps < 0 || semitones < 0);
            EXPECT_INTERVAL(utils.UnorderedInterval(a, b), interval.quality, interval.size, false);
        }
    }
    EXPECT_INTERVAL(utils.OrderedInterval(Spelled("B#4"), Spelled("Cb5")), AA, 1, true);
    EXPECT_INTERVAL(utils.OrderedInterval(Spelled("B##4"), Spelled("Cbb5")), P, 1, true);
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
            EXPECT_INTERVAL(utils.OrderedPCInterval(a, b), TheoryQuality(upSteps, upSemitones), upSteps, true)
                << FullName(a) << " to " << FullName(b);
        }
    }
    // Ascending ones drop whole octaves; unisons and octaves keep size 0.
    EXPECT_INTERVAL(utils.OrderedPCInterval(Spelled("C4"), Spelled("E5")), M, 2, false);
    EXPECT_INTERVAL(utils.OrderedPCInterval(Spelled("C5"), Spelled("C4")), P, 0, true);
    EXPECT_INTERVAL(utils.OrderedPCInterval(Spelled("C4"), Spelled("Cb4")), d, 0, true);

    // Unordered: the smaller size; unisons tie at size 0 and the form from
    // the second pitch to the first wins.
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("E4"), Spelled("C4")), M, 2, false);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C4"), Spelled("A4")), m, 2, true);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C4"), Spelled("C#4")), d, 0, true);
    EXPECT_INTERVAL(utils.UnorderedPCInterval(Spelled("C#4"), Spelled("C4")), A, 0, false);

    // Between keys the interval runs between the tonics.
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 0, 1, 0, 0), P, 4, false); // C up to G
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 0, 1, 0, 1), P, 3, true);  // G down to C
    EXPECT_INTERVAL(utils.OrderedPCInterval(0, 2, 3, 0, 0), M, 6, true);  // B flat down to A
    EXPECT_INTERVAL(utils.OrderedPCInterval(7, 0, 0, 7, 0), dd, 0, false); // C sharp up to the C flat an octave on
}

TEST(MCPitchUtilsFromInterval, AQualityBeyondADoubleAccidentalIsRespelledFromItsSound)
{
    MCPitchUtils utils;
    const MCPitch tripleSharp = utils.GetPitchFromInterval(Spelled("C4"), Interval(AAA, 0, false));
    EXPECT_EQ(FullName(tripleSharp), FullName(Spelled("D#4")));
    EXPECT_TRUE(tripleSharp.ShowAccidental());
    EXPECT_FALSE(tripleSharp.IsDirty());
    EXPECT_EQ(FullName(utils.GetPitchFromInterval(Spelled("C4"), Interval(ddd, 0, false))), FullName(Spelled("A3")));
    // Positions off the octave range stay inside the tables.
    EXPECT_LT(utils.GetPitchFromInterval(Spelled("D-1"), Interval(M, 3, true)).GetDegree(), 7);
    EXPECT_LT(utils.GetPitchFromInterval(Spelled("D-1"), Interval(P, 2047, false)).GetDegree(), 7);
}

namespace
{
// The pitch the interval leads to by ordinary theory: the letter `size`
// steps on, sounding the plain interval plus the quality's offset. A pitch
// holds at most a double accidental, so past that it is spelled from its
// sound.
MCPitch TheoryPitch(const MCPitch &from, const MCPitchUtils::INTERVAL &interval)
{
    const int sign = interval.descending ? -1 : 1;
    const int position = Position(from) + sign * interval.size;
    const int semitones = 12 * (interval.size / 7) + kStepSize[interval.size % 7] + QualityOffset(interval.quality, interval.size);
    const int midi = from.GetMidiPitch() + sign * semitones;
    const int alteration = midi - (12 * (position / 7) + kStepSize[position % 7]);
    if (alteration < -2 || alteration > 2)
        return MCPitch(static_cast<unsigned char>(midi), 0);
    return Spelled(std::string(1, "CDEFGAB"[position % 7]) +
                   (alteration < 0 ? std::string(-alteration, 'b') : std::string(alteration, '#')) +
                   std::to_string(position / 7 - 1));
}
} // namespace

TEST(MCPitchUtilsFromInterval, RoundTripReturnsEveryPairExceptWhereAQualityOrDirectionIsLost)
{
    // GetPitchFromInterval(a, OrderedInterval(a, b)) gives back b, except:
    //  - letters rising while the sound falls (B#4 to Cb5) read as a descent,
    //    which leads down from a by the interval as named;
    //  - a quality beyond triply augmented or diminished reads as perfect,
    //    and a triply diminished second, third, sixth or seventh cannot be
    //    asked for: both lead to the plain (perfect or major) interval;
    //  - from E double sharp or B double sharp up a second, the natural
    //    letter above sounds below the start, the measuring step reads it as
    //    a descent, and the result lands a semitone under b.
    // In each, the whole result (letter, accidental, octave and sound) is the
    // one stated.
    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctavesOfSpellings();
    int exact = 0, contradictory = 0, plain = 0, doubleSharpSecond = 0;
    for (const MCPitch &a : pitches)
    {
        for (const MCPitch &b : pitches)
        {
            const MCPitchUtils::INTERVAL interval = utils.OrderedInterval(a, b);
            const MCPitch result = utils.GetPitchFromInterval(a, interval);
            const int steps = Position(b) - Position(a);
            const int semitones = b.GetMidiPitch() - a.GetMidiPitch();
            const int size = std::abs(steps);
            const int plainSpan = 12 * (size / 7) + kStepSize[size % 7];
            const int span = steps >= 0 ? semitones : -semitones;
            const int theory = TheoryQuality(size, span);
            SCOPED_TRACE(FullName(a) + " to " + FullName(b) + " (" + Describe(interval) + ") gave " + FullName(result));
            if (steps > 0 && semitones < 0)
            {
                ++contradictory;
                ASSERT_TRUE(interval.descending);
                EXPECT_EQ(FullName(result), FullName(TheoryPitch(a, interval)));
            }
            else if ((theory == P && span != plainSpan) || (theory == ddd && !IsPerfectKind(size)))
            {
                ++plain;
                MCPitchUtils::INTERVAL plainInterval = interval;
                plainInterval.quality = IsPerfectKind(size) ? P : M;
                EXPECT_EQ(FullName(result), FullName(TheoryPitch(a, plainInterval)));
            }
            else if (steps == 1 && a.GetAccidental() == 2 && (a.GetDegree() == 2 || a.GetDegree() == 6))
            {
                ++doubleSharpSecond;
                // b's letter and octave with one sharp fewer: F## gives F#, F# gives F.
                EXPECT_EQ(FullName(result), FullName(Spelled(SpellingName(b).substr(0, 1) +
                                                              (b.GetAccidental() == 2 ? "#" : "") +
                                                              std::to_string(b.GetOctave() - 1))));
            }
            else
            {
                ++exact;
                EXPECT_EQ(FullName(result), FullName(b));
            }
        }
    }
    EXPECT_GT(exact, 4000);
    EXPECT_GT(contradictory, 0);
    EXPECT_GT(plain, 0);
    EXPECT_EQ(doubleSharpSecond, 6);
}

TEST(MCPitchUtilsKeys, KeyTablesGiveTonicPitchDegreeQualityAndReferencePitchByCount)
{
    const int sharpPitch[] = {7, 2, 9, 4, 11, 6, 1}, flatPitch[] = {5, 10, 3, 8, 1, 6, 11};
    const int sharpDegree[] = {0, 1, 5, 2, 6, 3, 0}, flatDegree[] = {3, 6, 2, 5, 1, 4, 0}; // 0 for one sharp, not 4
    const int sharpQuality[] = {0, 1, 1, 1, 1, 3, 3}, flatQuality[] = {0, 2, 2, 2, 2, 4, 4};
    const char *sharpTonics[] = {"G4", "D4", "A4", "E4", "B4", "F#4", "C#4"};
    const char *flatTonics[] = {"F4", "Bb4", "Eb4", "Ab4", "Db4", "Gb4", "Cb5"};
    for (int count = 1; count <= 7; ++count)
    {
        SCOPED_TRACE("count " + std::to_string(count));
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(count, 0), sharpPitch[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(0, count), flatPitch[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegree(count, 0), sharpDegree[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegree(0, count), flatDegree[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyQuality(count, 0), sharpQuality[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyQuality(0, count), flatQuality[count - 1]);
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(count, 3), sharpPitch[count - 1]); // sharps win
        EXPECT_EQ(FullName(MCPitchUtils::GetKeyRefPitch(count, 0)), FullName(Spelled(sharpTonics[count - 1])));
        EXPECT_EQ(FullName(MCPitchUtils::GetKeyRefPitch(0, count)), FullName(Spelled(flatTonics[count - 1])));
    }
    EXPECT_EQ(FullName(MCPitchUtils::GetKeyRefPitch(0, 0)), FullName(Spelled("C4")));
    const std::pair<int, int> noKeys[] = {{0, 0}, {8, 0}, {0, 8}, {0, INT_MAX}, {8, 3}, {-1, 0}, {0, -5}};
    for (const auto &[sharps, flats] : noKeys)
    {
        EXPECT_EQ(MCPitchUtils::GetKeyDegreeChromatic(sharps, flats), 0) << sharps << " " << flats;
        EXPECT_EQ(MCPitchUtils::GetKeyDegree(sharps, flats), 0) << sharps << " " << flats;
        EXPECT_EQ(MCPitchUtils::GetKeyQuality(sharps, flats), 0) << sharps << " " << flats;
    }
}

TEST(MCPitchUtilsKeys, TransposeKeyLandsOnTheKeyOfTheNewTonicForEveryKeyAndShift)
{
    std::vector<std::pair<int, int>> keys;
    for (int count = -7; count <= 7; ++count)
        keys.push_back({std::max(count, 0), std::max(-count, 0)});
    std::vector<int> shifts = {INT_MAX, INT_MIN, INT_MAX - 5, INT_MIN + 7};
    for (int s = -84; s <= 80; ++s)
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
            if (newTonic == 6) // the tritone tie goes by the old key's flats
            {
                EXPECT_EQ(sharps, oldFlats >= 1 ? 0 : 6);
                EXPECT_EQ(flats, oldFlats >= 1 ? 6 : 0);
            }
            else
            {
                EXPECT_LE(sharps + flats, 5); // the one key of at most five accidentals on that tonic
            }
        }
    }
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
    for (int semitones : {INT_MIN, INT_MAX, 1000, -195})
        EXPECT_LE(std::abs(MCPitchUtils::GetTrackTranspositionDegree(semitones)), 6) << semitones;
}

TEST(MCPitchUtilsInert, KeptEntryPointsAnswerTheirFixedValues)
{
    MCPitchUtils utils;
    EXPECT_TRUE(utils.GetNumkeyFromPitch(60, 1, 0, 0).IsEmpty());
    EXPECT_EQ(utils.GetPitchFromNumkey(3, 0, 4, 5), 64);
    EXPECT_EQ(utils.GetPitchFromNumkey(0, 0, 1, INT_MAX), static_cast<int>(12LL * INT_MAX + 1));
}
