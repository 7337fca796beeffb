// What a host needs to ask the plug-in registries for Standard MIDI Files:
// the file type under which the midifile plug-in registers its reader and
// writer, and how the reader and writer take the document.
//
//     CPlugin::Initialize();
//     MCFileReader *reader = CPluginFileReader::CreateReader(kFileTypeStandardMidi);
//     reader->LoadFile(path, SmfDocumentOf(performance));   // 1 or 0
//     reader->GetStatusMsg();                                // the report or the error
//
// The host's document class is opaque to the plug-in interface; this host's
// document is the performance itself, passed under the opaque type.
#pragma once

class ECPerformance;
class MCOpusDoc;

// "MThd" read as a big-endian number: the four bytes every such file opens with.
constexpr int kFileTypeStandardMidi = 0x4D546864;

inline MCOpusDoc *SmfDocumentOf(ECPerformance *performance)
{
    return reinterpret_cast<MCOpusDoc *>(performance);
}
inline ECPerformance *SmfPerformanceOf(MCOpusDoc *document)
{
    return reinterpret_cast<ECPerformance *>(document);
}
