// Helpers shared by the pitch tests: spelling names and pitch builders that
// use only the raw setters, so that fixtures never depend on the spelling
// rules under test.
#pragma once

#include <scoremodel/pitch/MCPitch.h>

#include <stdexcept>
#include <string>

namespace pitchtest
{
// Natural pitch class of the letters C to B, as every musician counts them.
inline constexpr int kLetterPitch[7] = {0, 2, 4, 5, 7, 9, 11};

inline int LetterIndex(char letter)
{
    const std::string letters = "CDEFGAB";
    const auto at = letters.find(letter);
    if (at == std::string::npos)
        throw std::invalid_argument(std::string("not a letter: ") + letter);
    return static_cast<int>(at);
}

// "C", "F#", "Bbb", "C###"; degree 7 reads "?".
inline std::string SpellingName(const MCPitch &pitch)
{
    std::string name(1, pitch.GetDegree() < 7 ? "CDEFGAB"[pitch.GetDegree()] : '?');
    const int alteration = pitch.GetAccidental();
    name += alteration < 0 ? std::string(-alteration, 'b') : std::string(alteration, '#');
    return name;
}

// Alteration of a spelling name: count of '#' minus count of 'b'.
inline int AlterationOf(const std::string &spelling)
{
    int alteration = 0;
    for (size_t i = 1; i < spelling.size(); ++i)
        alteration += spelling[i] == '#' ? 1 : (spelling[i] == 'b' ? -1 : 0);
    return alteration;
}

// Pitch class a spelling sounds.
inline int SoundingClass(const std::string &spelling)
{
    return ((kLetterPitch[LetterIndex(spelling[0])] + AlterationOf(spelling)) % 12 + 12) % 12;
}

// A pitch from a name with a scientific octave, "C4" being middle C (MIDI 60)
// and "B#3" sounding it too; built with the raw setters only.
inline MCPitch Spelled(const std::string &name)
{
    size_t octaveAt = name.size();
    while (octaveAt > 0 && (isdigit(static_cast<unsigned char>(name[octaveAt - 1])) || name[octaveAt - 1] == '-'))
        --octaveAt;
    const std::string spelling = name.substr(0, octaveAt);
    const int scientificOctave = std::stoi(name.substr(octaveAt));
    MCPitch pitch;
    pitch.SetDegreeOnly(static_cast<unsigned char>(LetterIndex(spelling[0])));
    pitch.SetOctave(static_cast<unsigned char>(scientificOctave + 1));
    pitch.SetAccidental(static_cast<char>(AlterationOf(spelling)));
    pitch.SetMidiPitch(static_cast<unsigned char>(12 * (scientificOctave + 1) + kLetterPitch[LetterIndex(spelling[0])] +
                                                  AlterationOf(spelling)));
    return pitch;
}

// Name with scientific octave, for failure messages.
inline std::string FullName(const MCPitch &pitch)
{
    return SpellingName(pitch) + std::to_string(static_cast<int>(pitch.GetOctave()) - 1) + " (MIDI " +
           std::to_string(pitch.GetMidiPitch()) + ")";
}
} // namespace pitchtest
