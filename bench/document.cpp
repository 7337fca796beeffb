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
// Goal: load no slower than twice the save, and both faster than
// Boost.Serialization on the same object graph where it is installed. The
// summary after the table gives bytes per event, MB/s of each and the ratios.
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

#ifdef SCOREMODEL_BENCH_BOOST
#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/serialization/vector.hpp>
#include <streambuf>
#include <unordered_map>
#include <unordered_set>
#endif

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

// Times `load`, which returns a new tree, per iteration; the tree of the
// iteration before is taken down by `release` outside the measure.
template <typename T, typename L, typename R> void TimedLoad(benchmark::State &state, double &best, L &&load, R &&release)
{
    T *loaded = nullptr;
    auto drop = [&] {
        if (loaded)
            release(loaded);
        loaded = nullptr;
    };
    Timed(state, best, drop, [&] { loaded = load(); });
    drop();
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
    TimedLoad<ECPerformance>(
        state, g_load,
        [&] {
            CMemFile mem(f.bytes.data(), static_cast<UINT>(f.bytes.size()));
            return MCDocumentFile::Read(mem);
        },
        Release);
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

#ifdef SCOREMODEL_BENCH_BOOST
// The same object graph for Boost.Serialization: one node per event with the
// fields an event record carries (id, flags, time and its mode, voice and
// track) and its children by pointer, so that the notes a beam shares with
// its measure are tracked and stored once, as in the document. One plain
// class instead of the event hierarchy, and no parent links rebuilt on load,
// both of which only spare Boost work the document's loader does.
struct BoostNode
{
    int id = 0;
    BYTE flags = 0;
    float time = 0;
    BYTE mode = 0;
    WORD voiceTrack = 0;
    std::vector<BoostNode *> children;

    template <class Archive> void serialize(Archive &ar, unsigned)
    {
        ar &id &flags &time &mode &voiceTrack &children;
    }
};

BoostNode *Mirror(ECBase *event, std::unordered_map<ECBase *, BoostNode *> &made)
{
    if (auto it = made.find(event); it != made.end())
        return it->second;
    auto *node = new BoostNode;
    made.emplace(event, node);
    node->id = event->GetEventId();
    node->flags = event->GetFlags();
    if (MCTime *time = event->GetTime())
    {
        node->time = time->GetSeconds();
        node->mode = time->GetMode();
    }
    if (MCVoiceTrack *vt = event->GetVoiceTrack())
        node->voiceTrack = vt->GetValue();
    if (ECBase::EventList *children = event->GetChildren())
        for (POSITION pos = children->GetHeadPosition(); pos;)
            node->children.push_back(Mirror(children->GetNext(pos), made));
    return node;
}

void Free(BoostNode *root)
{
    std::unordered_set<BoostNode *> seen;
    std::vector<BoostNode *> stack{root};
    while (!stack.empty())
    {
        BoostNode *node = stack.back();
        stack.pop_back();
        if (!node || !seen.insert(node).second)
            continue;
        stack.insert(stack.end(), node->children.begin(), node->children.end());
    }
    for (BoostNode *node : seen)
        delete node;
}

// A growing byte buffer as a stream, so that Boost writes to memory as the
// document does, without the string copies of a stringstream.
class ByteBuf : public std::streambuf
{
public:
    explicit ByteBuf(size_t reserve) { m_bytes.reserve(reserve); }
    ByteBuf(const char *data, size_t size) { setg(const_cast<char *>(data), const_cast<char *>(data), const_cast<char *>(data) + size); }
    size_t Size() const { return m_bytes.size(); }
    const char *Data() const { return m_bytes.data(); }

protected:
    std::streamsize xsputn(const char *s, std::streamsize n) override
    {
        m_bytes.insert(m_bytes.end(), s, s + n);
        return n;
    }
    int_type overflow(int_type c) override
    {
        if (c != traits_type::eof())
            m_bytes.push_back(static_cast<char>(c));
        return c;
    }

private:
    std::vector<char> m_bytes;
};

struct BoostFixture
{
    BoostNode *root = nullptr;
    std::vector<char> bytes;
    BoostFixture()
    {
        std::unordered_map<ECBase *, BoostNode *> made;
        root = Mirror(Document().doc, made);
        ByteBuf buf(Document().bytes.size() * 2);
        {
            boost::archive::binary_oarchive oa(buf, boost::archive::no_header);
            const BoostNode *r = root;
            oa << r;
        }
        bytes.assign(buf.Data(), buf.Data() + buf.Size());
    }
    ~BoostFixture() { Free(root); }
};

BoostFixture &BoostDocument()
{
    static BoostFixture fixture;
    return fixture;
}

double g_boostSave = 0, g_boostLoad = 0;

void BM_BoostSave(benchmark::State &state)
{
    BoostFixture &f = BoostDocument();
    Timed(state, g_boostSave, Nothing, [&] {
        ByteBuf buf(f.bytes.size() + 4096);
        boost::archive::binary_oarchive oa(buf, boost::archive::no_header);
        const BoostNode *r = f.root;
        oa << r;
        benchmark::DoNotOptimize(buf.Size());
    });
}
BENCHMARK(BM_BoostSave)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_BoostLoad(benchmark::State &state)
{
    BoostFixture &f = BoostDocument();
    TimedLoad<BoostNode>(
        state, g_boostLoad,
        [&] {
            ByteBuf buf(f.bytes.data(), f.bytes.size());
            boost::archive::binary_iarchive ia(buf, boost::archive::no_header);
            BoostNode *root = nullptr;
            ia >> root;
            return root;
        },
        Free);
}
BENCHMARK(BM_BoostLoad)->Unit(benchmark::kMillisecond)->MinTime(2.0);
#endif
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
#ifdef SCOREMODEL_BENCH_BOOST
    if (g_save > 0 && g_load > 0 && g_boostSave > 0 && g_boostLoad > 0)
    {
        std::printf("Boost.Serialization, same graph: %.0f bytes; save %.1f ms, load %.1f ms\n",
                    static_cast<double>(BoostDocument().bytes.size()), g_boostSave * 1e3, g_boostLoad * 1e3);
        std::printf("document against Boost (goal: below 1): save %.2f, load %.2f\n", g_save / g_boostSave,
                    g_load / g_boostLoad);
    }
#else
    std::printf("Boost.Serialization comparison skipped: libboost-serialization-dev is not installed\n");
#endif
    Release(Document().doc);
    benchmark::Shutdown();
    return 0;
}
