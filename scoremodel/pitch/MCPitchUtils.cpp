#include <scoremodel/pitch/MCPitchUtils.h>

#include <cstdlib>

namespace
{
constexpr int kNaturalSize[7] = {0, 2, 4, 5, 7, 9, 11};

// Key tables by count 1 to 7, sharps then flats.
constexpr int kSharpTonicPitch[7] = {7, 2, 9, 4, 11, 6, 1};
constexpr int kFlatTonicPitch[7] = {5, 10, 3, 8, 1, 6, 11};
// One sharp reads 0 rather than 4: what callers of GetKeyDegree have always seen.
constexpr int kSharpTonicDegree[7] = {0, 1, 5, 2, 6, 3, 0};
constexpr int kFlatTonicDegree[7] = {3, 6, 2, 5, 1, 4, 0};
constexpr int kSharpTonicQuality[7] = {0, 1, 1, 1, 1, 3, 3};
constexpr int kFlatTonicQuality[7] = {0, 2, 2, 2, 2, 4, 4};

// Semitone offset of each quality (by value 0 to 8) for the two kinds of step.
// Quality 8 has no major-kind value here: QualityDifference treats it as 0.
constexpr int kPerfectOffset[9] = {0, 0, 0, 1, -1, 2, -2, 3, -3};
constexpr int kMajorOffset[9] = {0, 0, -1, 1, -2, 2, -3, 3, 0};

int KeyTable(const int (&sharpTable)[7], const int (&flatTable)[7], int sharps, int flats)
{
    if (sharps > 0)
        return sharps <= 7 ? sharpTable[sharps - 1] : 0;
    if (flats > 0)
        return flats <= 7 ? flatTable[flats - 1] : 0;
    return 0;
}

int Position(const MCPitch &pitch)
{
    return pitch.GetDegree() + pitch.GetOctave() * 7;
}

// The quality with the other sign: major <-> minor, augmented <-> diminished,
// and so on; perfect stays.
int InvertQuality(int quality)
{
    if (quality >= 1 && quality <= 8)
        return quality % 2 == 1 ? quality + 1 : quality - 1;
    return quality;
}

int FloorMod(int value, int divisor)
{
    const int r = value % divisor;
    return r < 0 ? r + divisor : r;
}
} // namespace

MCPitchUtils::MCPitchUtils() = default;
MCPitchUtils::MCPitchUtils(const MCPitchUtils &) {}
MCPitchUtils &MCPitchUtils::operator=(const MCPitchUtils &)
{
    return *this;
}
MCPitchUtils::~MCPitchUtils() = default;

// ---- Plain MIDI distances -------------------------------------------------------

int MCPitchUtils::OrderedInterval(const unsigned char &a, const unsigned char &b) const
{
    return b - a;
}

int MCPitchUtils::UnorderedInterval(const unsigned char &a, const unsigned char &b) const
{
    return std::abs(b - a);
}

int MCPitchUtils::OrderedPCInterval(const unsigned char &a, const unsigned char &b) const
{
    return FloorMod(b - a, 12);
}

int MCPitchUtils::UnorderedPCInterval(const unsigned char &a, const unsigned char &b) const
{
    const int up = FloorMod(b - a, 12);
    const int down = FloorMod(a - b, 12);
    return up < down ? up : down;
}

// ---- Diatonic distances ----------------------------------------------------------

int MCPitchUtils::OrderedDiatonic(const MCPitch &a, const MCPitch &b) const
{
    return Position(b) - Position(a);
}

int MCPitchUtils::UnorderedDiatonic(const MCPitch &a, const MCPitch &b) const
{
    return std::abs(OrderedDiatonic(a, b));
}

// ---- Spelled intervals -------------------------------------------------------------

MCPitchUtils::INTERVAL MCPitchUtils::OrderedInterval(const MCPitch &first, const MCPitch &second) const
{
    const int d = OrderedDiatonic(first, second);
    int c = (second.GetMidiPitch() - first.GetMidiPitch()) % 12;
    const bool descending = c < 0 || d < 0;
    int step;
    if (!descending)
    {
        step = d % 7;
        c -= kNaturalSize[step];
    }
    else
    {
        // Measure the rising inversion within the octave, then turn its
        // offset back: a perfect offset changes sign, and a major-kind one
        // also trades major for minor (minor sixth up, major third down).
        const int s = FloorMod(d, 7);
        c = (c + 12) % 12 - kNaturalSize[s];
        c = IsPerfectStep(s) ? -c : -(c + 1);
        step = std::abs(d) % 7;
    }
    // Offsets beyond a tritone are the octave wrapping (B sharp up to C
    // flat): bring them back next to the natural size.
    if (12 - c < 6)
        c -= 12;
    else if (c + 12 < 6)
        c += 12;

    INTERVAL result{};
    result.quality = (IsPerfectStep(step) ? PerfectQuality(c) : MajMinQuality(c)) & 0xF;
    result.size = std::abs(d) & 0x7FF;
    result.descending = descending;
    return result;
}

MCPitchUtils::INTERVAL MCPitchUtils::UnorderedInterval(const MCPitch &first, const MCPitch &second) const
{
    INTERVAL result = OrderedInterval(first, second);
    result.descending = 0;
    return result;
}

MCPitchUtils::INTERVAL MCPitchUtils::OrderedPCInterval(const MCPitch &first, const MCPitch &second) const
{
    INTERVAL result = OrderedInterval(first, second);
    result.size = result.size % 7;
    if (result.descending)
    {
        result.size = (7 - result.size) % 7;
        result.quality = InvertQuality(result.quality) & 0xF;
    }
    return result;
}

MCPitchUtils::INTERVAL MCPitchUtils::OrderedPCInterval(int sharps1, int flats1, int sharps2, int flats2,
                                                       int reverse) const
{
    const MCPitch first = GetKeyRefPitch(sharps1, flats1);
    const MCPitch second = GetKeyRefPitch(sharps2, flats2);
    return reverse ? OrderedPCInterval(second, first) : OrderedPCInterval(first, second);
}

MCPitchUtils::INTERVAL MCPitchUtils::UnorderedPCInterval(const MCPitch &a, const MCPitch &b) const
{
    const INTERVAL forward = OrderedPCInterval(a, b);
    const INTERVAL backward = OrderedPCInterval(b, a);
    return forward.size < backward.size ? forward : backward;
}

MCPitch MCPitchUtils::GetPitchFromInterval(const MCPitch &pitch, const INTERVAL &interval) const
{
    const int position = Position(pitch) + (interval.descending ? -interval.size : interval.size);
    // A position below octave 0 or above octave 15 cannot be held; the degree
    // stays that of the position and the octave wraps like every 4-bit octave.
    const int degree = FloorMod(position, 7);
    const int octave = ((position - degree) / 7) & 0xF;

    MCPitch result;
    result.SetDegreeOnly(static_cast<unsigned char>(degree));
    result.SetOctave(static_cast<unsigned char>(octave));
    result.SetAccidental(0);
    result.UpdateMidiPitch();

    const INTERVAL found = OrderedInterval(pitch, result);
    const int diff = QualityDifference(interval, found);
    const int midi = MCPitch::DegreeToPitch(degree) + octave * 12 + diff;
    if (diff >= -2 && diff <= 2)
    {
        result.SetAccidental(static_cast<char>(diff));
        result.SetMidiPitch(static_cast<unsigned char>(midi));
    }
    else
    {
        result.SetPitch(static_cast<unsigned char>(midi), 0, 1);
    }
    result.SetDirty(false);
    return result;
}

// ---- Qualities --------------------------------------------------------------------------

int MCPitchUtils::PerfectQuality(int offset)
{
    switch (offset)
    {
    case 0: return QualityPerfect;
    case 1: return QualityAugmented;
    case -1: return QualityDiminished;
    case 2: return QualityDoublyAugmented;
    case -2: return QualityDoublyDiminished;
    case 3: return QualityTriplyAugmented;
    case -3: return QualityTriplyDiminished;
    default: return QualityPerfect;
    }
}

int MCPitchUtils::MajMinQuality(int offset)
{
    switch (offset)
    {
    case 0: return QualityMajor;
    case -1: return QualityMinor;
    case 1: return QualityAugmented;
    case -2: return QualityDiminished;
    case 2: return QualityDoublyAugmented;
    case -3: return QualityDoublyDiminished;
    case 3: return QualityTriplyAugmented;
    case -4: return QualityTriplyDiminished;
    default: return QualityPerfect;
    }
}

bool MCPitchUtils::IsPerfectStep(int step)
{
    const int s = FloorMod(step, 7);
    return s == 0 || s == 3 || s == 4;
}

int MCPitchUtils::QualityDifference(const INTERVAL &wanted, const INTERVAL &found)
{
    const int(&offsets)[9] = IsPerfectStep(wanted.size % 7) ? kPerfectOffset : kMajorOffset;
    const int w = wanted.quality < 9 ? offsets[wanted.quality] : 0;
    const int f = found.quality < 9 ? offsets[found.quality] : 0;
    if (wanted.descending == found.descending)
        return wanted.descending ? f - w : w - f;
    // Opposite directions: the found interval measured the other way round.
    return wanted.descending ? -(f + w) : f + w;
}

int MCPitchUtils::QualityToAccidental(int quality)
{
    if (quality < 2 || quality > 8)
        return 0;
    return quality % 2 == 1 ? 1 : -1;
}

// ---- Keys ---------------------------------------------------------------------------------

void MCPitchUtils::TransposeKey(int &sharps, int &flats, int semitones)
{
    if (semitones == 0)
        return;
    // Widened so that any int transposition is defined.
    const long long p = (static_cast<long long>(GetKeyRefPitch(sharps, flats).GetMidiPitch()) + semitones) % 12;
    if (p < 0)
        return;
    // New key per tonic pitch class: sharps, flats. Pitch class 6 is decided below.
    static constexpr int kNewKey[12][2] = {{0, 0}, {0, 5}, {2, 0}, {0, 3}, {4, 0}, {0, 1},
                                           {6, 0}, {1, 0}, {0, 4}, {3, 0}, {0, 2}, {5, 0}};
    if (p == 6 && flats >= 1)
    {
        sharps = 0;
        flats = 6;
        return;
    }
    sharps = kNewKey[p][0];
    flats = kNewKey[p][1];
}

MCPitch MCPitchUtils::GetKeyRefPitch(int sharps, int flats)
{
    return MCPitch(static_cast<unsigned char>(GetKeyDegreeChromatic(sharps, flats) + 60),
                   static_cast<char>(QualityToAccidental(GetKeyQuality(sharps, flats))));
}

int MCPitchUtils::GetKeyDegreeChromatic(int sharps, int flats)
{
    return KeyTable(kSharpTonicPitch, kFlatTonicPitch, sharps, flats);
}

int MCPitchUtils::GetKeyDegree(int sharps, int flats)
{
    return KeyTable(kSharpTonicDegree, kFlatTonicDegree, sharps, flats);
}

int MCPitchUtils::GetKeyQuality(int sharps, int flats)
{
    return KeyTable(kSharpTonicQuality, kFlatTonicQuality, sharps, flats);
}

int MCPitchUtils::GetTrackTranspositionDegree(int semitones)
{
    // Taken modulo 256 as the pitch byte would take it, without overflowing.
    const unsigned char lowered = static_cast<unsigned char>(60 - static_cast<long long>(semitones));
    MCPitch a;
    a.SetPitch(lowered, -1, 1);
    MCPitch b;
    b.SetPitch(60, 0, 1);
    return MCPitchUtils().OrderedDiatonic(a, b) % 7;
}

// ---- Inert entry points ------------------------------------------------------------------

CString MCPitchUtils::GetNumkeyFromPitch(int, int, int, int)
{
    return CString();
}

int MCPitchUtils::GetPitchFromNumkey(int, int, int degree, int octave)
{
    // Wide arithmetic: no octave, however absurd, overflows.
    return static_cast<int>(static_cast<long long>(octave) * 12 + degree);
}

void MCPitchUtils::NormalizeForm(CTypedPtrList<MCEventList, ECBase *> &, CTypedPtrList<MCEventList, ECBase *> &)
{
}

int MCPitchUtils::SetCardinality(CTypedPtrList<MCEventList, ECBase *> &)
{
    return 0;
}
