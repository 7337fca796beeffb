// Saving and loading a document of a million events, beside memcpy of the
// same bytes in the same run.
//
// The document: a conductor with its staff, and ten staves (added by
// commands) of a thousand measures; each measure holds 80
// notes and 20 beams, and each beam holds four of the measure's notes, so
// four events in five are reached through two parents (stored once, shared
// on load). Save and load go through MCDocumentFile in memory, so the figures
// are the archive's and the records', not the disk's.
//
// Goal: load no slower than twice the save. The summary after the table
// gives bytes per event, MB/s of each and the ratios.
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/platform/CFile.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

namespace
{
constexpr int kStaves = 10;
constexpr int kMeasures = 1000;
constexpr int kNotes = 80;
constexpr int kBeams = 20;
// The conductor, its staff and the staves are not counted.
constexpr int kEvents = kStaves * kMeasures * (kNotes + kBeams);

ECPerformance *Build()
{
    auto *doc = new ECPerformance;
    doc->Ref();
    auto *conductor = new ECConductor;
    doc->AddChild(conductor, 0);
    conductor->GetConductorStaff();
    for (int s = 0; s < kStaves; ++s)
    {
        ECTrack *staff = CCAddTrack::AddNow(doc, new ECStaff, -1);
        for (int m = 0; m < kMeasures; ++m)
        {
            ECBase *measure = CreateEventW(EVENT_ID_MEASURE);
            MCTime start(static_cast<float>(4 * m));
            measure->SetTime(&start);
            measure->SetVoiceTrack(14, s + 1);
            staff->AddChild(measure, 0);
            for (int b = 0; b < kBeams; ++b)
            {
                ECBase *beam = CreateEventW(EVENT_ID_BEAM);
                MCTime at(static_cast<float>(4 * m) + 0.2f * static_cast<float>(b));
                beam->SetTime(&at);
                beam->SetVoiceTrack(b % 4, s + 1);
                for (int n = 0; n < kNotes / kBeams; ++n)
                {
                    ECBase *note = CreateEventW(EVENT_ID_NOTE);
                    MCTime t(static_cast<float>(4 * m) + 0.05f * static_cast<float>(b * 4 + n));
                    note->SetTime(&t);
                    note->SetVoiceTrack(b % 4, s + 1);
                    measure->AddChild(note, 0);
                    beam->AddChild(note, 0);
                }
                measure->AddChild(beam, 0);
            }
        }
    }
    return doc;
}

void Release(ECPerformance *doc)
{
    doc->RemoveChildren(1);
    doc->Unref(1);
    MCCommandMgr::OnIdle();
}

struct Fixture
{
    ECPerformance *doc = Build();
    std::vector<BYTE> bytes;
    Fixture()
    {
        CMemFile mem(64 << 20);
        MCDocumentFile::Write(mem, doc);
        bytes.resize(static_cast<size_t>(mem.GetLength()));
        mem.SeekToBegin();
        mem.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    }
};

Fixture &Document()
{
    static Fixture fixture;
    return fixture;
}

// The best seconds per iteration of each benchmark, in processor time of
// this thread: other work on a busy machine does not count.
double g_save = 0, g_load = 0, g_memcpy = 0;

double ThreadSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// Runs `body` per iteration and keeps its best time; `untimed` runs before
// each, outside every measure.
template <typename U, typename F>
void Timed(benchmark::State &state, double &best, U &&untimed, F &&body)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        untimed();
        state.ResumeTiming();
        const double start = ThreadSeconds();
        body();
        const double seconds = ThreadSeconds() - start;
        best = best == 0 ? seconds : std::min(best, seconds);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * Document().bytes.size()));
    state.counters["bytes/event"] = static_cast<double>(Document().bytes.size()) / kEvents;
}

void Nothing()
{
}

void BM_Save(benchmark::State &state)
{
    Fixture &f = Document();
    Timed(state, g_save, Nothing, [&] {
        CMemFile mem(static_cast<UINT>(f.bytes.size() + 4096));
        MCDocumentFile::Write(mem, f.doc);
        benchmark::DoNotOptimize(mem.GetLength());
    });
}
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_Load(benchmark::State &state)
{
    Fixture &f = Document();
    // Taking the loaded tree down is not part of the load.
    ECPerformance *loaded = nullptr;
    auto release = [&loaded] {
        if (loaded)
            Release(loaded);
        loaded = nullptr;
    };
    Timed(state, g_load, release, [&] {
        CMemFile mem(f.bytes.data(), static_cast<UINT>(f.bytes.size()));
        loaded = MCDocumentFile::Read(mem);
    });
    release();
}
BENCHMARK(BM_Load)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_Memcpy(benchmark::State &state)
{
    Fixture &f = Document();
    std::unique_ptr<BYTE[]> target(new BYTE[f.bytes.size()]);
    std::memset(target.get(), 1, f.bytes.size());
    Timed(state, g_memcpy, Nothing, [&] {
        std::memcpy(target.get(), f.bytes.data(), f.bytes.size());
        benchmark::ClobberMemory();
    });
}
BENCHMARK(BM_Memcpy)->Unit(benchmark::kMillisecond)->MinTime(1.0);
} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    if (g_save > 0 && g_load > 0 && g_memcpy > 0)
    {
        const double mb = static_cast<double>(Document().bytes.size()) / 1e6;
        std::printf("\ndocument of %d events: %.0f bytes, %.2f bytes per event\n", kEvents, mb * 1e6,
                    mb * 1e6 / kEvents);
        std::printf("save   %8.1f MB/s  %7.1f ns per event\n", mb / g_save, g_save * 1e9 / kEvents);
        std::printf("load   %8.1f MB/s  %7.1f ns per event\n", mb / g_load, g_load * 1e9 / kEvents);
        std::printf("memcpy %8.1f MB/s\n", mb / g_memcpy);
        std::printf("load takes %.2f times the save (goal: at most 2); save is %.0f times memcpy's time\n",
                    g_load / g_save, g_save / g_memcpy);
    }
#if __has_include(<boost/archive/binary_oarchive.hpp>)
    std::printf("Boost.Serialization is installed, but its comparison is not built here\n");
#else
    std::printf("Boost.Serialization comparison skipped: libboost-serialization-dev is not installed\n");
#endif
    Release(Document().doc);
    benchmark::Shutdown();
    return 0;
}
