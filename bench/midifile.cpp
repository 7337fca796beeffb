// MIDI file import and export of a large file, beside portSMF (Debian's
// libportsmf-dev) on the same bytes in the same run.
//
// The file: 1,000,000 notes over 16 tracks (one channel each) and a
// conductor track with 1,000 tempo changes, at 480 ticks per quarter.
//
// Goals, printed as ratios at the end:
//   import  <= portSMF's read plus our own score build from its result
//              (the same Import, fed with the notes and tempi portSMF read);
//   export  <= portSMF's write of the sequence it read.
// Also printed: our parse alone against portSMF's read, and the heap taken
// per imported note.
#include "BenchReport.h"

#include <SmfDocument.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentOwner.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <malloc.h>
#include <sstream>

#ifdef SCOREMODEL_BENCH_PORTSMF
#include <portSMF/allegro.h>
#endif

namespace
{
constexpr int kTracks = 16;
constexpr int kNotesPerTrack = 62500;
constexpr int kTempi = 1000;
constexpr uint16_t kDivision = 480;

const std::vector<uint8_t> &BenchFile()
{
    static const std::vector<uint8_t> bytes = [] {
        smf::File f;
        f.division = kDivision;
        const uint32_t length = kNotesPerTrack * 240u;
        smf::Track &conductor = f.tracks.emplace_back();
        const uint8_t meter[] = {4, 2, 24, 8};
        conductor.events.push_back(f.MakeEvent(0, smf::kStatusMeta, smf::kMetaTimeSignature, meter, 4));
        for (int i = 0; i < kTempi; ++i)
        {
            const uint32_t us = 400000 + static_cast<uint32_t>(i % 50) * 4000;
            const uint8_t tempo[] = {static_cast<uint8_t>(us >> 16), static_cast<uint8_t>(us >> 8),
                                     static_cast<uint8_t>(us)};
            conductor.events.push_back(
                f.MakeEvent(static_cast<uint32_t>(i) * (length / kTempi), smf::kStatusMeta, smf::kMetaTempo, tempo, 3));
        }
        conductor.endTick = length;
        for (int t = 0; t < kTracks; ++t)
        {
            smf::Track &track = f.tracks.emplace_back();
            track.events.reserve(2 * kNotesPerTrack);
            for (int i = 0; i < kNotesPerTrack; ++i)
            {
                smf::Event on;
                on.tick = static_cast<uint32_t>(i) * 240;
                on.status = static_cast<uint8_t>(0x90 | t);
                on.data1 = static_cast<uint8_t>(36 + (i * 7 + t) % 60);
                on.data2 = static_cast<uint8_t>(1 + (i + t) % 127);
                smf::Event off = on;
                off.tick += 200;
                off.data2 = 0;
                track.events.push_back(on);
                track.events.push_back(off);
            }
            track.endTick = length;
        }
        return smf::Serialize(f);
    }();
    return bytes;
}

void Setup()
{
    static const bool done = (MCCommandMgr::SetDocumentThread(), smf::RegisterEventData(), true);
    (void)done;
}

void BM_ParseOurs(benchmark::State &state)
{
    const std::vector<uint8_t> &bytes = BenchFile();
    for (auto _ : state)
        benchmark::DoNotOptimize(smf::Parse(bytes).tracks.size());
}
BENCHMARK(BM_ParseOurs)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ImportOurs(benchmark::State &state)
{
    Setup();
    const std::vector<uint8_t> &bytes = BenchFile();
    for (auto _ : state)
    {
        MCDocumentOwner doc = MCDocumentOwner::Make();
        smf::Import(smf::Parse(bytes), doc.Get());
        state.PauseTiming();
        doc = MCDocumentOwner();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_ImportOurs)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_ExportOurs(benchmark::State &state)
{
    Setup();
    MCDocumentOwner doc = MCDocumentOwner::Make();
    smf::Import(smf::Parse(BenchFile()), doc.Get());
    for (auto _ : state)
        benchmark::DoNotOptimize(smf::Serialize(smf::Export(doc.Get())).size());
}
BENCHMARK(BM_ExportOurs)->Unit(benchmark::kMillisecond)->Iterations(3);

// The bytes alone, from the events the score gave: the share of the writer
// in the export.
void BM_SerializeOurs(benchmark::State &state)
{
    Setup();
    MCDocumentOwner doc = MCDocumentOwner::Make();
    smf::Import(smf::Parse(BenchFile()), doc.Get());
    const smf::File file = smf::Export(doc.Get());
    for (auto _ : state)
        benchmark::DoNotOptimize(smf::Serialize(file).size());
}
BENCHMARK(BM_SerializeOurs)->Unit(benchmark::kMillisecond)->Iterations(3);

#ifdef SCOREMODEL_BENCH_PORTSMF
std::unique_ptr<Alg_seq> PortSmfRead(const std::vector<uint8_t> &bytes)
{
    std::istringstream in(std::string(bytes.begin(), bytes.end()));
    auto seq = std::make_unique<Alg_seq>(in, true);
    seq->convert_to_beats();
    return seq;
}

// The notes and tempo map portSMF read, handed to the same score build.
smf::File FromPortSmf(Alg_seq &seq)
{
    smf::File f;
    f.division = kDivision;
    smf::Track &conductor = f.tracks.emplace_back();
    Alg_time_map *map = seq.get_time_map();
    for (long i = 0; i + 1 < map->length(); ++i)
    {
        const Alg_beat &a = map->beats[i], &b = map->beats[i + 1];
        if (b.beat <= a.beat)
            continue;
        const uint32_t us = static_cast<uint32_t>(std::lround((b.time - a.time) / (b.beat - a.beat) * 1e6));
        const uint8_t tempo[] = {static_cast<uint8_t>(us >> 16), static_cast<uint8_t>(us >> 8),
                                 static_cast<uint8_t>(us)};
        conductor.events.push_back(f.MakeEvent(static_cast<uint32_t>(std::lround(a.beat * kDivision)),
                                               smf::kStatusMeta, smf::kMetaTempo, tempo, 3));
    }
    for (int t = 0; t < seq.tracks(); ++t)
    {
        Alg_track &events = *seq.track(t);
        smf::Track &track = f.tracks.emplace_back();
        for (int i = 0; i < events.length(); ++i)
        {
            Alg_event *e = events[i];
            if (!e->is_note())
                continue;
            auto *note = static_cast<Alg_note *>(e);
            smf::Event on;
            on.tick = static_cast<uint32_t>(std::lround(note->time * kDivision));
            on.status = static_cast<uint8_t>(0x90 | (note->chan & 0x0F));
            on.data1 = static_cast<uint8_t>(note->pitch);
            on.data2 = static_cast<uint8_t>(note->loud);
            smf::Event off = on;
            off.tick = static_cast<uint32_t>(std::lround((note->time + note->dur) * kDivision));
            off.data2 = 0;
            track.events.push_back(on);
            track.events.push_back(off);
        }
        std::stable_sort(track.events.begin(), track.events.end(),
                         [](const smf::Event &a, const smf::Event &b) { return a.tick < b.tick; });
        track.endTick = track.events.empty() ? 0 : track.events.back().tick;
    }
    return f;
}

void BM_PortSmfRead(benchmark::State &state)
{
    const std::vector<uint8_t> &bytes = BenchFile();
    for (auto _ : state)
        benchmark::DoNotOptimize(PortSmfRead(bytes)->tracks());
}
BENCHMARK(BM_PortSmfRead)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_PortSmfReadAndBuild(benchmark::State &state)
{
    Setup();
    const std::vector<uint8_t> &bytes = BenchFile();
    for (auto _ : state)
    {
        MCDocumentOwner doc = MCDocumentOwner::Make();
        std::unique_ptr<Alg_seq> seq = PortSmfRead(bytes);
        smf::Import(FromPortSmf(*seq), doc.Get());
        state.PauseTiming();
        doc = MCDocumentOwner();
        seq.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_PortSmfReadAndBuild)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_PortSmfWrite(benchmark::State &state)
{
    std::unique_ptr<Alg_seq> seq = PortSmfRead(BenchFile());
    for (auto _ : state)
    {
        std::ostringstream out;
        seq->smf_write(out);
        benchmark::DoNotOptimize(out.str().size());
    }
}
BENCHMARK(BM_PortSmfWrite)->Unit(benchmark::kMillisecond)->Iterations(3);
#endif

// Heap in use after an import, beyond what stood before, per note.
double BytesPerNote()
{
    Setup();
    const smf::File file = smf::Parse(BenchFile());
    malloc_trim(0);
    const size_t before = mallinfo2().uordblks;
    MCDocumentOwner doc = MCDocumentOwner::Make();
    const smf::ImportReport report = smf::Import(file, doc.Get());
    const size_t after = mallinfo2().uordblks;
    return static_cast<double>(after - before) / static_cast<double>(report.notes);
}

void Goal(const char *what, double ours, double theirs)
{
    if (ours <= 0.0 || theirs <= 0.0)
    {
        std::printf("%-58s not measured\n", what);
        return;
    }
    const double ratio = ours / theirs;
    std::printf("%-58s %.3f (goal <= 1.0: %s)\n", what, ratio, ratio <= 1.0 ? "met" : "MISSED");
}
} // namespace

int main(int argc, char **argv)
{
    return bench::RunAndReport(argc, argv, [](const bench::Collector &c) {
        std::printf("\nMIDI file, %d notes over %d tracks, %d tempo changes (%zu bytes)\n", kTracks * kNotesPerTrack,
                    kTracks, kTempi, BenchFile().size());
#ifndef SCOREMODEL_BENCH_PORTSMF
        std::printf("portSMF is not installed (scripts/install-deps.sh --bench): no baseline\n");
#endif
        Goal("import / (portSMF read + our build from its result)", c.Get("BM_ImportOurs/iterations:2"),
             c.Get("BM_PortSmfReadAndBuild/iterations:2"));
        Goal("export / portSMF write", c.Get("BM_ExportOurs/iterations:3"), c.Get("BM_PortSmfWrite/iterations:3"));
        const double parse = c.Get("BM_ParseOurs/iterations:3"), read = c.Get("BM_PortSmfRead/iterations:3");
        if (parse > 0.0 && read > 0.0)
            std::printf("%-58s %.3f\n", "parse alone / portSMF read", parse / read);
        const double bytes = c.Get("BM_SerializeOurs/iterations:3"), write = c.Get("BM_PortSmfWrite/iterations:3");
        if (bytes > 0.0 && write > 0.0)
            std::printf("%-58s %.3f\n", "bytes alone (events to file) / portSMF write", bytes / write);
        std::printf("%-58s %.0f bytes\n", "heap per imported note (score with its measures)", BytesPerNote());
    });
}
