#include <scoremodel/instruments/GeneralMidiInstrumentList.h>

#include <scoremodel/platform/Exceptions.h>

#include <string>

CString GeneralMidiInstrumentList::m_arInstruments[kCount] = {
    // Piano
    L"Acoustic Grand Piano", L"Bright Acoustic Piano", L"Electric Grand Piano", L"Honky-tonk Piano",
    L"Electric Piano 1", L"Electric Piano 2", L"Harpsichord", L"Clavi",
    // Chromatic percussion
    L"Celesta", L"Glockenspiel", L"Music Box", L"Vibraphone", L"Marimba", L"Xylophone", L"Tubular Bells",
    L"Dulcimer",
    // Organ
    L"Drawbar Organ", L"Percussive Organ", L"Rock Organ", L"Church Organ", L"Reed Organ", L"Accordion",
    L"Harmonica", L"Tango Accordion",
    // Guitar
    L"Acoustic Guitar (nylon)", L"Acoustic Guitar (steel)", L"Electric Guitar (jazz)", L"Electric Guitar (clean)",
    L"Electric Guitar (muted)", L"Overdriven Guitar", L"Distortion Guitar", L"Guitar harmonics",
    // Bass
    L"Acoustic Bass", L"Electric Bass (finger)", L"Electric Bass (pick)", L"Fretless Bass", L"Slap Bass 1",
    L"Slap Bass 2", L"Synth Bass 1", L"Synth Bass 2",
    // Strings
    L"Violin", L"Viola", L"Cello", L"Contrabass", L"Tremolo Strings", L"Pizzicato Strings", L"Orchestral Harp",
    L"Timpani",
    // Ensemble
    L"String Ensemble 1", L"String Ensemble 2", L"SynthStrings 1", L"SynthStrings 2", L"Choir Aahs",
    L"Voice Oohs", L"Synth Voice", L"Orchestra Hit",
    // Brass
    L"Trumpet", L"Trombone", L"Tuba", L"Muted Trumpet", L"French Horn", L"Brass Section", L"SynthBrass 1",
    L"SynthBrass 2",
    // Reed
    L"Soprano Sax", L"Alto Sax", L"Tenor Sax", L"Baritone Sax", L"Oboe", L"English Horn", L"Bassoon",
    L"Clarinet",
    // Pipe
    L"Piccolo", L"Flute", L"Recorder", L"Pan Flute", L"Blown Bottle", L"Shakuhachi", L"Whistle", L"Ocarina",
    // Synth lead
    L"Lead 1 (square)", L"Lead 2 (sawtooth)", L"Lead 3 (calliope)", L"Lead 4 (chiff)", L"Lead 5 (charang)",
    L"Lead 6 (voice)", L"Lead 7 (fifths)", L"Lead 8 (bass + lead)",
    // Synth pad
    L"Pad 1 (new age)", L"Pad 2 (warm)", L"Pad 3 (polysynth)", L"Pad 4 (choir)", L"Pad 5 (bowed)",
    L"Pad 6 (metallic)", L"Pad 7 (halo)", L"Pad 8 (sweep)",
    // Synth effects
    L"FX 1 (rain)", L"FX 2 (soundtrack)", L"FX 3 (crystal)", L"FX 4 (atmosphere)", L"FX 5 (brightness)",
    L"FX 6 (goblins)", L"FX 7 (echoes)", L"FX 8 (sci-fi)",
    // Ethnic
    L"Sitar", L"Banjo", L"Shamisen", L"Koto", L"Kalimba", L"Bag pipe", L"Fiddle", L"Shanai",
    // Percussive
    L"Tinkle Bell", L"Agogo", L"Steel Drums", L"Woodblock", L"Taiko Drum", L"Melodic Tom", L"Synth Drum",
    L"Reverse Cymbal",
    // Sound effects
    L"Guitar Fret Noise", L"Breath Noise", L"Seashore", L"Bird Tweet", L"Telephone Ring", L"Helicopter",
    L"Applause", L"Gunshot",
};

CString &GeneralMidiInstrumentList::GetInstrumentName(unsigned long index)
{
    if (index >= kCount)
        throw CInvalidArgException("GeneralMidiInstrumentList: no program " + std::to_string(index));
    return m_arInstruments[index];
}
