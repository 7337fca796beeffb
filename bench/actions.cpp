// Walk speed of the standard searches over a score of a million events.
//
// The tree: the shared score of BenchScore.h, 1,010,011 events of the real
// staff, measure and note classes, and the same score with one staff (101,002
// events) for the scaling ratio. Each benchmark reports events visited per
// second (DoAction calls), and the walks that find nothing report the heap
// allocations they made per visited event, which must be zero: the walk
// recurses over the lists in place. The summary prints nanoseconds per
// visited event at both sizes and their ratio; a flat walk gives about 1.
//
//   FindEvents/none      every event visited, nothing found: the bare walk
//   FindEvents/measures  every event visited, 10,000 found
//   FindEvents/all       every event visited and listed (one list node each)
//   FindTime/window      a 4-beat window: the time-ordered cut (result 3)
//                        leaves most of the tree unvisited
//   FindTime/nothing     start == end in mode 3: every event visited, none found
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/events/base/EventIds.h>

#include "BenchScore.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <string>
#include <utility>

// ---- Allocation counting (this program only) ----
//
// The replacement new and delete below pair malloc with free; the compiler
// sees free() reach memory from operator new once both are inlined, and
// warns although the pair is a matched replacement.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif

namespace
{
std::atomic<long long> g_allocations{0};
}

void *operator new(std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void *p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}

void operator delete(void *p) noexcept
{
    std::free(p);
}

void operator delete(void *p, std::size_t) noexcept
{
    std::free(p);
}

namespace
{
using namespace bench;

ECBase *Score(int staves)
{
    static std::map<int, ECBase *> scores;
    ECBase *&root = scores[staves];
    if (!root)
        root = BuildScore(staves);
    return root;
}

// Processor time of this thread, so that other work on a busy machine does
// not count.
double ThreadSeconds()
{
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) * 1e-9;
}

// Nanoseconds per visited event, by benchmark name and staves.
std::map<std::pair<std::string, int>, double> g_nsPerEvent;

// Counts the events a search visits; the count costs one increment.
template <class FIND>
class Counting : public FIND
{
public:
    using FIND::FIND;
    int DoAction(ECBase *e) override
    {
        ++visited;
        return FIND::DoAction(e);
    }
    long long visited = 0;
};

// Runs a search built from `args`, configured by `configure`, once per
// iteration over the whole score.
template <class ACTION, class CONFIGURE, class... ARGS>
void RunSearch(benchmark::State &state, const char *name, CONFIGURE configure, ARGS... args)
{
    const int staves = static_cast<int>(state.range(0));
    ECBase *root = Score(staves);
    long long visited = 0;
    long long found = 0;
    long long allocs = 0;
    double seconds = 0;
    for (auto _ : state)
    {
        ACTION find(args...);
        configure(find);
        long long before = g_allocations.load(std::memory_order_relaxed);
        const double start = ThreadSeconds();
        find.Apply(root);
        seconds += ThreadSeconds() - start;
        allocs += g_allocations.load(std::memory_order_relaxed) - before;
        visited += find.visited;
        found = find.GetEvents().GetCount();
        benchmark::DoNotOptimize(found);
    }
    state.counters["events_per_s"] = benchmark::Counter(static_cast<double>(visited), benchmark::Counter::kIsRate);
    state.counters["visited"] = static_cast<double>(visited) / static_cast<double>(state.iterations());
    state.counters["found"] = static_cast<double>(found);
    state.counters["allocs_per_event"] = static_cast<double>(allocs) / static_cast<double>(visited);
    if (visited > 0)
        g_nsPerEvent[{name, staves}] = seconds * 1e9 / static_cast<double>(visited);
}

void NoConfig(ACBase &)
{
}

void BM_FindEventsNone(benchmark::State &state)
{
    RunSearch<Counting<ACFindEvents>>(state, "FindEvents/none", [](ACFindEvents &find) { find.AddEvtType(EVENT_ID_TEXT); }, 1);
}

void BM_FindEventsMeasures(benchmark::State &state)
{
    RunSearch<Counting<ACFindEvents>>(state, "FindEvents/measures", [](ACFindEvents &find) { find.AddEvtType(EVENT_ID_MEASURE); }, 1);
}

void BM_FindEventsAll(benchmark::State &state)
{
    RunSearch<Counting<ACFindEvents>>(state, "FindEvents/all", NoConfig, 0);
}

void BM_FindTimeWindow(benchmark::State &state)
{
    RunSearch<Counting<ACFindTime>>(state, "FindTime/window", NoConfig, MCTime(100.0f), MCTime(104.0f), int(ACRangeOpenEnd));
}

void BM_FindTimeNothing(benchmark::State &state)
{
    MCTime end(kMeasures * kBeatsPerMeasure + 1.0f);
    RunSearch<Counting<ACFindTime>>(state, "FindTime/nothing", NoConfig, end, end, int(ACRangeOpenEnd));
}
} // namespace

// The argument is the number of staves: 1 and 10.
BENCHMARK(BM_FindEventsNone)->Name("FindEvents/none")->Arg(1)->Arg(kStaves)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindEventsMeasures)->Name("FindEvents/measures")->Arg(1)->Arg(kStaves)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindEventsAll)->Name("FindEvents/all")->Arg(1)->Arg(kStaves)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindTimeWindow)->Name("FindTime/window")->Arg(1)->Arg(kStaves)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FindTimeNothing)->Name("FindTime/nothing")->Arg(1)->Arg(kStaves)->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::printf("events_per_s is DoAction calls per second; allocs_per_event must be 0 where nothing is found.\n");
    std::printf("\n%-20s %14s %14s %7s\n", "walk", "ns/event 1 st", "ns/event 10 st", "ratio");
    for (const auto &[key, small] : g_nsPerEvent)
    {
        if (key.second != 1)
            continue;
        auto large = g_nsPerEvent.find({key.first, kStaves});
        if (large != g_nsPerEvent.end())
            std::printf("%-20s %14.2f %14.2f %7.2f\n", key.first.c_str(), small, large->second, large->second / small);
    }
    return 0;
}
