// The midifile plug-in: a reader and a writer of Standard MIDI Files,
// registered with the library's plug-in registries under
// kFileTypeStandardMidi, and the attachment that keeps the MIDI values of
// notes and staves.
//
// Reader: LoadFile reads the file whole, parses it and builds the score
// into the document (a new performance). 1 on success, with a one-line
// report in GetStatusMsg (tracks, events, notes, bars, rounded times,
// warnings); 0 on failure, with the reason (and the byte offset for a
// corrupt file) in GetStatusMsg. A failed load leaves a partial document
// that the host throws away.
//
// Writer: SaveFile writes the document to the archive as format 1. 1 on
// success; 0 with the reason in GetStatusMsg.
#include "SmfDocument.h"
#include "SmfFileType.h"

#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/plugins/CPluginFileReader.h>
#include <scoremodel/plugins/CPluginFileWriter.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#define EXPORT extern "C" __attribute__((visibility("default")))

namespace
{
CString Text(const std::string &text)
{
    return CString::FromUtf8(text.c_str());
}

// The whole file, refused past the size no file of the format reaches.
std::vector<uint8_t> ReadWhole(const std::string &path)
{
    FILE *in = std::fopen(path.c_str(), "rb");
    if (!in)
        throw std::runtime_error(path + ": " + std::strerror(errno));
    std::vector<uint8_t> bytes;
    uint8_t chunk[65536];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, in)) > 0)
    {
        bytes.insert(bytes.end(), chunk, chunk + n);
        if (bytes.size() > smf::kMaxFileSize)
        {
            std::fclose(in);
            throw std::runtime_error(path + ": larger than a MIDI file can be");
        }
    }
    const bool failed = std::ferror(in);
    std::fclose(in);
    if (failed)
        throw std::runtime_error(path + ": read error");
    return bytes;
}

// Runs `work`, which gives the status line of a success, and hands that line
// or the reason of a failure to `report`. 1 on success, 0 on failure.
template <class Work, class Report> int Reported(Work work, Report report)
{
    try
    {
        report(Text(work()));
        return 1;
    }
    catch (const std::bad_alloc &)
    {
        report(Text("out of memory"));
    }
    catch (const std::exception &e)
    {
        report(Text(e.what()));
    }
    return 0;
}
} // namespace

class SmfFileReader : public MCFileReader
{
    DECLARE_DYNCREATE(SmfFileReader)

public:
    int LoadFile(CString path, MCOpusDoc *document) override
    {
        auto work = [&] {
            if (!document)
                throw std::runtime_error("no document");
            const smf::File file = smf::Parse(ReadWhole(path.ToUtf8()));
            const smf::ImportReport report = smf::Import(file, SmfPerformanceOf(document));
            std::string status = "format " + std::to_string(file.format) + ", division " +
                                 std::to_string(file.division) + ", " + report.Summary();
            for (const std::string &warning : report.warnings)
                status += "; " + warning;
            return status;
        };
        return Reported(work, [this](const CString &status) { SetStatusMsg(status); });
    }
};
IMPLEMENT_DYNCREATE(SmfFileReader, MCFileReader)

class SmfFileWriter : public MCFileWriter
{
    DECLARE_DYNCREATE(SmfFileWriter)

public:
    int SaveFile(CArchive &ar, MCOpusDoc *document) override
    {
        auto work = [&] {
            if (!document)
                throw std::runtime_error("no document");
            size_t skipped = 0;
            const smf::File file = smf::Export(SmfPerformanceOf(document), &skipped);
            const std::vector<uint8_t> bytes = smf::Serialize(file);
            ar.Write(bytes.data(), static_cast<UINT>(bytes.size()));
            std::string status = std::to_string(file.tracks.size()) + " tracks, " +
                                 std::to_string(file.EventCount()) + " events, " + std::to_string(bytes.size()) +
                                 " bytes";
            if (skipped)
                status += "; " + std::to_string(skipped) + " events the format cannot hold left out";
            return status;
        };
        return Reported(work, [this](const CString &status) { SetStatusMsg(status); });
    }
};
IMPLEMENT_DYNCREATE(SmfFileWriter, MCFileWriter)

namespace
{
CPluginFileReader s_reader(kFileTypeStandardMidi, RUNTIME_CLASS(SmfFileReader));
CPluginFileWriter s_writer(kFileTypeStandardMidi, RUNTIME_CLASS(SmfFileWriter));
} // namespace

EXPORT unsigned int GetPluginVersion()
{
    return 1;
}

EXPORT int InitPlugins()
{
    CPluginFileReader::AddPlugin(&s_reader);
    CPluginFileWriter::AddPlugin(&s_writer);
    smf::RegisterEventData();
    return 1;
}
