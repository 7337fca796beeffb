// The tool's MIDI file commands (midi_commands.cpp).
#pragma once

// Loads the plug-ins once; documents that carry MIDI values need them.
void LoadPlugins();
// Whether the file at `path` opens as a MIDI file ("MThd").
bool IsMidiFile(const char *path);
// scoremodel import MIDI DOCUMENT
int ImportMidi(const char *midi, const char *document);
// scoremodel export DOCUMENT MIDI
int ExportMidi(const char *document, const char *midi);
// scoremodel info MIDI: tracks, events, tempo and meter maps, length.
int MidiInfo(const char *midi);
