// The tool's MIDI file commands: import, export and info of a MIDI file.
// They reach the reader and writer only through the plug-in registries, as
// any host does: the midifile plug-in sits in the plug-in folder beside the
// library. Errors are thrown as std::runtime_error with a one-line reason.
#include "midi_commands.h"

#include <SmfFileType.h>

#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/document/MCFileWriter.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/plugins/CPlugin.h>
#include <scoremodel/plugins/CPluginFileReader.h>
#include <scoremodel/plugins/CPluginFileWriter.h>

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace
{
// Prints one line on stderr when the work lasts more than a second.
class Progress
{
public:
    explicit Progress(std::string line) : m_line(std::move(line)), m_thread([this] { Watch(); }) {}
    ~Progress()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_done = true;
        }
        m_wake.notify_one();
        m_thread.join();
    }

private:
    void Watch()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_wake.wait_for(lock, std::chrono::seconds(1), [this] { return m_done; }))
        {
            std::fprintf(stderr, "scoremodel: %s ...\n", m_line.c_str());
            std::fflush(stderr);
        }
    }

    std::string m_line;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_done = false;
    std::thread m_thread;
};

} // namespace

void LoadPlugins()
{
    static bool loaded = false;
    if (!loaded)
        CPlugin::Initialize();
    loaded = true;
}

namespace
{

std::unique_ptr<MCFileReader> MidiReader()
{
    LoadPlugins();
    std::unique_ptr<MCFileReader> reader(CPluginFileReader::CreateReader(kFileTypeStandardMidi));
    if (!reader)
        throw std::runtime_error("no plug-in in " + CPlugin::GetPluginFolder().ToUtf8() + " reads MIDI files");
    return reader;
}

// Imports a MIDI file into `doc`; the reader's report.
std::string Load(const char *path, ECPerformance *doc)
{
    std::unique_ptr<MCFileReader> reader = MidiReader();
    Progress progress(std::string("importing ") + path);
    if (!reader->LoadFile(CString::FromUtf8(path), SmfDocumentOf(doc)))
        throw std::runtime_error(std::string(path) + ": " + reader->GetStatusMsg().ToUtf8());
    return reader->GetStatusMsg().ToUtf8();
}

std::string BarBeat(ECConductorStaff *cs, MCTime time)
{
    char text[64];
    std::snprintf(text, sizeof text, "bar %d, beat %.3f", cs->GetMeasureNumberAtTime(time), time.GetSeconds());
    return text;
}

// The points of a map, the first twenty of them one a line.
template <class Point, class Line> void PrintMap(const char *title, ECBase *map, Line line)
{
    constexpr int kShown = 20;
    ECBase::EventList *points = map ? map->GetChildren() : nullptr;
    if (!points)
        return;
    std::printf("  %s: %d changes\n", title, static_cast<int>(points->GetCount()));
    int shown = 0;
    for (POSITION pos = points->GetHeadPosition(); pos && shown < kShown; ++shown)
        if (auto *point = dynamic_cast<Point *>(points->GetNext(pos)))
            line(point);
    if (points->GetCount() > kShown)
        std::printf("    ... %d more\n", static_cast<int>(points->GetCount()) - kShown);
}

double Seconds(ECTempoEnv *tempi, float beats)
{
    MCTime t(beats);
    if (tempi)
        tempi->GetClockTime(t);
    return t.GetSeconds();
}
} // namespace

bool IsMidiFile(const char *path)
{
    if (std::strcmp(path, "-") == 0)
        return false;
    FILE *in = std::fopen(path, "rb");
    if (!in)
        return false;
    char magic[4] = {};
    const bool midi = std::fread(magic, 1, 4, in) == 4 && std::memcmp(magic, "MThd", 4) == 0;
    std::fclose(in);
    return midi;
}

int ImportMidi(const char *midi, const char *document)
{
    MCDocumentOwner doc = MCDocumentOwner::Make();
    const std::string report = Load(midi, doc.Get());
    {
        Progress progress(std::string("saving ") + document);
        MCDocumentFile::Save(doc.Get(), document);
    }
    std::printf("%s: %s\nsaved %s\n", midi, report.c_str(), document);
    return 0;
}

int ExportMidi(const char *document, const char *midi)
{
    LoadPlugins();
    std::unique_ptr<MCFileWriter> writer(CPluginFileWriter::CreateWriter(kFileTypeStandardMidi));
    if (!writer)
        throw std::runtime_error("no plug-in in " + CPlugin::GetPluginFolder().ToUtf8() + " writes MIDI files");
    MCDocumentOwner doc;
    {
        CFile in(document, CFile::modeRead);
        try
        {
            doc = MCDocumentOwner(MCDocumentFile::Read(in));
        }
        catch (const std::exception &e)
        {
            throw std::runtime_error(std::string(document) + ": " + e.what());
        }
    }
    Progress progress(std::string("exporting ") + midi);
    CMemFile memory;
    int written = 0;
    {
        CArchive ar(&memory, CArchive::store);
        written = writer->SaveFile(ar, SmfDocumentOf(doc.Get()));
        ar.Close();
    }
    if (!written)
        throw std::runtime_error(std::string(midi) + ": " + writer->GetStatusMsg().ToUtf8());
    const ULONGLONG size = memory.GetLength();
    BYTE *bytes = memory.Detach();
    FILE *out = std::fopen(midi, "wb");
    const bool ok = out && std::fwrite(bytes, 1, size, out) == size;
    const bool closed = out && std::fclose(out) == 0;
    std::free(bytes);
    if (!ok || !closed)
    {
        const std::string reason = std::strerror(errno);
        std::remove(midi);
        throw std::runtime_error(std::string(midi) + ": " + reason);
    }
    std::printf("%s: %s\n", midi, writer->GetStatusMsg().ToUtf8().c_str());
    return 0;
}

int MidiInfo(const char *midi)
{
    MCDocumentOwner doc = MCDocumentOwner::Make();
    const std::string report = Load(midi, doc.Get());
    ECConductorStaff *cs = doc->GetConductor()->GetConductorStaff();
    std::printf("%s: MIDI file, %s\n", midi, report.c_str());
    ECTempoEnv *tempi = cs->FindTempoEnv();
    PrintMap<ECTempo>("tempo map", tempi, [&](ECTempo *tempo) {
        std::printf("    %s (%.3f s): %.3f quarters per minute\n", BarBeat(cs, *tempo->GetTime()).c_str(),
                    Seconds(tempi, tempo->GetTime()->GetSeconds()), tempo->GetTempo(1.0f));
    });
    PrintMap<ECMeter>("meter map", cs->FindMeterEnv(), [&](ECMeter *meter) {
        std::printf("    %s: %d/%d\n", BarBeat(cs, *meter->GetTime()).c_str(), meter->GetNumerator(),
                    meter->GetDenominator());
    });
    const float end = cs->GetMaxMeasureEndTime().GetSeconds();
    std::printf("  length: %d bars, %.3f s\n", cs->GetMaxMeasureNumber() + 1, Seconds(tempi, end));
    return 0;
}
