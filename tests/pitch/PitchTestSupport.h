// Helpers shared by the pitch tests: spelling names and a pitch builder that
// uses only the raw setters, so that fixtures never depend on the spelling
// rules under test.
#pragma once

#include <scoremodel/pitch/MCPitch.h>

#include <string>

namespace pitchtest
{
// Natural pitch class of the letters C to B.
inline constexpr int kLetterPitch[7] = {0, 2, 4, 5, 7, 9, 11};

inline int LetterIndex(char letter)
{
    return static_cast<int>(std::string("CDEFGAB").find(letter));
}

// "C", "F#", "Bbb", "C###"; degree 7 reads "?".
inline std::string SpellingName(const MCPitch &pitch)
{
    const int alteration = pitch.GetAccidental();
    return std::string(1, pitch.GetDegree() < 7 ? "CDEFGAB"[pitch.GetDegree()] : '?') +
           (alteration < 0 ? std::string(-alteration, 'b') : std::string(alteration, '#'));
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
// and "B#3" sounding it too.
inline MCPitch Spelled(const std::string &name)
{
    const size_t octaveAt = name.find_first_of("-0123456789");
    const int alteration = AlterationOf(name.substr(0, octaveAt));
    const int octave = std::stoi(name.substr(octaveAt)) + 1;
    MCPitch pitch;
    pitch.SetDegreeOnly(static_cast<unsigned char>(LetterIndex(name[0])));
    pitch.SetOctave(static_cast<unsigned char>(octave));
    pitch.SetAccidental(static_cast<char>(alteration));
    pitch.SetMidiPitch(static_cast<unsigned char>(12 * octave + kLetterPitch[LetterIndex(name[0])] + alteration));
    return pitch;
}

// Name with scientific octave and MIDI pitch, for comparisons and messages.
inline std::string FullName(const MCPitch &pitch)
{
    return SpellingName(pitch) + std::to_string(static_cast<int>(pitch.GetOctave()) - 1) + " (MIDI " +
           std::to_string(pitch.GetMidiPitch()) + ")";
}
} // namespace pitchtest
