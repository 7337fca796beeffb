// theory_sample: prints a sample of the library's spelled pitches, intervals,
// transpositions and keys, one result per line, for check.js to hold against
// an independent music theory package.
//
// Lines (fields divided by one blank; names are letter, '#' or 'b' repeated,
// and the scientific octave, so that C4 is MIDI 60):
//
//   spell <how> <name> <midi>
//   interval <from> <to> <quality> <size> <descending>
//   transpose <from> <quality> <size> <descending> <result> <midi>
//   key <sharps> <flats> <tonic> <midi> <pitch class> <degree> <quality>
//   transposekey <sharps> <flats> <semitones> <new sharps> <new flats>
//
// Qualities and sizes are the raw INTERVAL fields; the checker names them.
//
// With --node-missing the program prints why the check cannot run and exits
// with 77, which CTest reads as a skip: the build uses that when it finds no
// node, so a machine without it still runs every other test.
#include <scoremodel/pitch/MCPitch.h>
#include <scoremodel/pitch/MCPitchUtils.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace
{
const char kLetters[] = "CDEFGAB";
const int kLetterPitch[7] = {0, 2, 4, 5, 7, 9, 11};

// The stored spelling as a name. Degree 7 (no spelling) reads as '?', so the
// checker can tell it apart.
std::string Name(const MCPitch &pitch)
{
    const int alteration = pitch.GetAccidental();
    std::string name(1, pitch.GetDegree() < 7 ? kLetters[pitch.GetDegree()] : '?');
    name += alteration < 0 ? std::string(-alteration, 'b') : std::string(alteration, '#');
    return name + std::to_string(static_cast<int>(pitch.GetOctave()) - 1);
}

// A spelled pitch built from the raw fields, so that the inputs of the
// interval sample do not depend on the spelling rules being checked.
MCPitch Spelled(int letter, int alteration, int octave)
{
    MCPitch pitch;
    pitch.SetDegreeOnly(static_cast<unsigned char>(letter));
    pitch.SetOctave(static_cast<unsigned char>(octave + 1));
    pitch.SetAccidental(static_cast<char>(alteration));
    pitch.SetMidiPitch(static_cast<unsigned char>(12 * (octave + 1) + kLetterPitch[letter] + alteration));
    return pitch;
}

std::vector<MCPitch> Spellings(int firstOctave, int lastOctave)
{
    std::vector<MCPitch> pitches;
    for (int octave = firstOctave; octave <= lastOctave; ++octave)
        for (int letter = 0; letter < 7; ++letter)
            for (int alteration = -2; alteration <= 2; ++alteration)
                pitches.push_back(Spelled(letter, alteration, octave));
    return pitches;
}

void PrintSpell(const char *how, const MCPitch &pitch)
{
    std::printf("spell %s %s %d\n", how, Name(pitch).c_str(), pitch.GetMidiPitch());
}

void PrintSpellings()
{
    char how[64];
    for (int midi = 0; midi < 128; ++midi)
    {
        for (int accidental = -2; accidental <= 2; ++accidental)
        {
            MCPitch pitch;
            pitch.SetPitch(static_cast<unsigned char>(midi), static_cast<char>(accidental), 1);
            std::snprintf(how, sizeof how, "SetPitch(%d,%d)", midi, accidental);
            PrintSpell(how, pitch);
            if (pitch.GetDegree() == 7)
                continue;
            // Every spelling the toggle cycles through must sound the same.
            for (int step = 1; step <= 3; ++step)
            {
                pitch.ToggleEnharmonic();
                std::snprintf(how, sizeof how, "Toggle%d(SetPitch(%d,%d))", step, midi, accidental);
                PrintSpell(how, pitch);
            }
        }
        for (int degree = 0; degree < 7; ++degree)
        {
            MCPitch pitch;
            pitch.SetPitchByDegree(static_cast<unsigned char>(midi), static_cast<unsigned char>(degree));
            std::snprintf(how, sizeof how, "SetPitchByDegree(%d,%d)", midi, degree);
            PrintSpell(how, pitch);
        }
    }
}

void PrintIntervals(const MCPitchUtils &utils)
{
    const std::vector<MCPitch> pitches = Spellings(2, 5);
    for (const MCPitch &from : pitches)
        for (const MCPitch &to : pitches)
        {
            const MCPitchUtils::INTERVAL interval = utils.OrderedInterval(from, to);
            std::printf("interval %s %s %d %d %d\n", Name(from).c_str(), Name(to).c_str(), interval.quality,
                        interval.size, interval.descending);
        }
}

void PrintTranspositions(const MCPitchUtils &utils)
{
    const std::vector<MCPitch> starts = Spellings(4, 4);
    for (const MCPitch &from : starts)
        for (int size = 0; size <= 14; ++size)
            for (int quality = MCPitchUtils::QualityPerfect; quality <= MCPitchUtils::QualityTriplyDiminished; ++quality)
            {
                // Perfect steps have no major or minor, the others no perfect.
                const bool perfectKind = MCPitchUtils::IsPerfectStep(size);
                if (perfectKind ? (quality == MCPitchUtils::QualityMajor || quality == MCPitchUtils::QualityMinor)
                                : quality == MCPitchUtils::QualityPerfect)
                    continue;
                for (int descending = 0; descending <= 1; ++descending)
                {
                    MCPitchUtils::INTERVAL interval{};
                    interval.quality = static_cast<unsigned short>(quality);
                    interval.size = static_cast<unsigned short>(size);
                    interval.descending = static_cast<unsigned short>(descending);
                    const MCPitch result = utils.GetPitchFromInterval(from, interval);
                    std::printf("transpose %s %d %d %d %s %d\n", Name(from).c_str(), quality, size, descending,
                                Name(result).c_str(), result.GetMidiPitch());
                }
            }
}

void PrintKeys()
{
    for (int count = -7; count <= 7; ++count)
    {
        const int sharps = count > 0 ? count : 0, flats = count < 0 ? -count : 0;
        const MCPitch tonic = MCPitchUtils::GetKeyRefPitch(sharps, flats);
        std::printf("key %d %d %s %d %d %d %d\n", sharps, flats, Name(tonic).c_str(), tonic.GetMidiPitch(),
                    MCPitchUtils::GetKeyDegreeChromatic(sharps, flats), MCPitchUtils::GetKeyDegree(sharps, flats),
                    MCPitchUtils::GetKeyQuality(sharps, flats));
        // Shifts reach past five octaves down, where a transposition gives up.
        for (int semitones = -72; semitones <= 72; ++semitones)
        {
            int newSharps = sharps, newFlats = flats;
            MCPitchUtils::TransposeKey(newSharps, newFlats, semitones);
            std::printf("transposekey %d %d %d %d %d\n", sharps, flats, semitones, newSharps, newFlats);
        }
    }
}
} // namespace

int main(int argc, char **argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--node-missing") == 0)
    {
        std::puts("node was not found when the build was configured; the theory check is skipped");
        return 77;
    }
    const MCPitchUtils utils;
    PrintSpellings();
    PrintIntervals(utils);
    PrintTranspositions(utils);
    PrintKeys();
    return 0;
}
