// Dumps spellings, intervals and keys computed by the library as tab-separated
// rows, for compare.mjs to check against an independent music theory package.
// Built and run by run.sh only; not part of the test program.
#include <scoremodel/pitch/MCPitchUtils.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{
// "C#4": letter, accidentals, scientific octave (MIDI 60 is C4).
std::string Name(const MCPitch &pitch)
{
    std::string name(1, "CDEFGAB"[pitch.GetDegree() % 7]);
    const int alteration = pitch.GetAccidental();
    name += alteration < 0 ? std::string(-alteration, 'b') : std::string(alteration, '#');
    return name + std::to_string(static_cast<int>(pitch.GetOctave()) - 1);
}

// The tonal-style name of an interval: "3M", "-5P", "2dd".
std::string IntervalName(const MCPitchUtils::INTERVAL &interval)
{
    static const char *const kQuality[] = {"P", "M", "m", "A", "d", "AA", "dd", "AAA", "ddd"};
    const std::string quality = interval.quality < 9 ? kQuality[interval.quality] : "?";
    return (interval.descending ? "-" : "") + std::to_string(interval.size + 1) + quality;
}

std::vector<MCPitch> TwoOctaves()
{
    std::vector<MCPitch> pitches;
    for (int position = 28; position < 42; ++position)
        for (int alteration = -2; alteration <= 2; ++alteration)
        {
            MCPitch pitch;
            pitch.SetDegree(static_cast<unsigned char>(position));
            pitch.SetAccidental(static_cast<char>(alteration));
            pitch.UpdateMidiPitch();
            pitches.push_back(pitch);
        }
    return pitches;
}
} // namespace

int main()
{
    // Spellings: what is written must sound the MIDI pitch. Octaves 0 and 10
    // are left out, where the 4-bit octave can wrap.
    for (int midi = 12; midi < 120; ++midi)
    {
        for (int alteration = -2; alteration <= 2; ++alteration)
        {
            MCPitch pitch(static_cast<unsigned char>(midi), static_cast<char>(alteration));
            if (pitch.GetDegree() < 7)
                std::printf("note\tSetPitch\t%d\t%s\n", midi, Name(pitch).c_str());
        }
        for (int degree = 0; degree < 7; ++degree)
        {
            MCPitch pitch;
            pitch.SetPitchByDegree(static_cast<unsigned char>(midi), static_cast<unsigned char>(degree));
            std::printf("note\tSetPitchByDegree\t%d\t%s\n", midi, Name(pitch).c_str());
            for (int step = 0; step < 3; ++step)
            {
                pitch.ToggleEnharmonic();
                std::printf("note\tToggleEnharmonic\t%d\t%s\n", midi, Name(pitch).c_str());
            }
        }
    }

    MCPitchUtils utils;
    const std::vector<MCPitch> pitches = TwoOctaves();
    for (const MCPitch &a : pitches)
        for (const MCPitch &b : pitches)
            std::printf("interval\t%s\t%s\t%s\n", Name(a).c_str(), Name(b).c_str(),
                        IntervalName(utils.OrderedInterval(a, b)).c_str());

    // Every named quality of every size up to a tenth, both ways, from every
    // spelling of two octaves.
    for (const MCPitch &a : pitches)
        for (int size = 0; size <= 9; ++size)
            for (int quality = 0; quality <= 8; ++quality)
                for (int descending = 0; descending <= 1; ++descending)
                {
                    const bool perfectKind = size % 7 == 0 || size % 7 == 3 || size % 7 == 4;
                    if (perfectKind ? (quality == 1 || quality == 2) : quality == 0)
                        continue;
                    MCPitchUtils::INTERVAL interval{};
                    interval.quality = static_cast<unsigned short>(quality);
                    interval.size = static_cast<unsigned short>(size);
                    interval.descending = static_cast<unsigned short>(descending);
                    std::printf("transpose\t%s\t%s\t%s\n", Name(a).c_str(), IntervalName(interval).c_str(),
                                Name(utils.GetPitchFromInterval(a, interval)).c_str());
                }

    for (int count = 0; count <= 7; ++count)
    {
        std::printf("key\t%d\t%s\n", count, Name(MCPitchUtils::GetKeyRefPitch(count, 0)).c_str());
        std::printf("key\t%d\t%s\n", -count, Name(MCPitchUtils::GetKeyRefPitch(0, count)).c_str());
    }
    for (int count = -7; count <= 7; ++count)
        for (int semitones = -24; semitones <= 24; ++semitones)
        {
            int sharps = count > 0 ? count : 0, flats = count < 0 ? -count : 0;
            const std::string before = Name(MCPitchUtils::GetKeyRefPitch(sharps, flats));
            MCPitchUtils::TransposeKey(sharps, flats, semitones);
            std::printf("transposekey\t%s\t%d\t%s\n", before.c_str(), semitones,
                        Name(MCPitchUtils::GetKeyRefPitch(sharps, flats)).c_str());
        }
    return 0;
}
