// Cost of the event tree: bytes per note, appending children and events in
// time order, and sorting a sorted list.
//
//   sizes             sizeof of the main classes (printed once)
//   heap/note         heap bytes per note for the score of BenchScore.h
//                     (1,000,000 notes in 10,000 measures): the note,
//                     its node in the measure's list and its parent link,
//                     with the measures and staves spread over the notes;
//                     and per note under parents of 1000, where the
//                     membership index of a long list is built
//   AddChild/N        N new children appended in time order to one parent
//                     with AddChild(child, 1): the sorted insertion is O(1)
//                     and a new child needs no double check
//   AddChildHeld/N    the same with children already held, so that every
//                     AddChild asks the membership index
//   AddEvent/N        N events appended in time order to a list, sorted
//   SortSorted/N      Sort() of a sorted list of N events
//   node allocators   the list node pool against std::pmr's unsynchronized
//                     and synchronized pool resources and plain new, on two
//                     patterns of 4,000,000 nodes with an event-sized
//                     object made beside every fourth node: a load then a
//                     close (nodes freed in the order they were made), and
//                     a close in scattered order followed by the next load;
//                     ns per node, best of 3, with the ratio of the pool to
//                     the best of the others (the pool is kept only while
//                     it stays below them; the whole load of bench_document
//                     with SCOREMODEL_NODE_POOL=heap is the other check)
//
// Each sized figure is printed per element with the ratio of 200,000 to
// 100,000 elements; a flat cost gives about 1.0, and the goal is at most 2.5.
// The walk speed of the searches over the same score is bench_actions'.
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/base/MCEventList.h>
#include <scoremodel/events/base/MCEventWalk.h>
#include <scoremodel/events/base/MCNodePool.h>
#include <scoremodel/events/notes/ECBeam.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECRest.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <benchmark/benchmark.h>

#include "BenchScore.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <map>
#include <memory_resource>
#include <random>
#include <string>
#include <vector>

namespace
{
using EventList = CTypedPtrList<MCEventList, ECBase *>;

using bench::MakeTimed;
using bench::ReleaseTree;

std::vector<ECBase *> MakeLeaves(int n)
{
    std::vector<ECBase *> leaves;
    leaves.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i)
        leaves.push_back(MakeTimed(EVENT_ID_NOTE, static_cast<float>(i) * 0.25f));
    return leaves;
}

void BM_AddChild(benchmark::State &state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state)
    {
        state.PauseTiming();
        ECBase *parent = CreateEventW(EVENT_ID_MEASURE);
        parent->Ref();
        std::vector<ECBase *> leaves = MakeLeaves(n);
        state.ResumeTiming();
        for (ECBase *leaf : leaves)
            parent->AddChild(leaf, 1);
        state.PauseTiming();
        ReleaseTree(parent);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

// The same with every child already held (as a command holds what it adds),
// so that each AddChild asks the parent's membership index.
void BM_AddChildHeld(benchmark::State &state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state)
    {
        state.PauseTiming();
        ECBase *parent = CreateEventW(EVENT_ID_MEASURE);
        parent->Ref();
        std::vector<ECBase *> leaves = MakeLeaves(n);
        for (ECBase *leaf : leaves)
            leaf->Ref();
        state.ResumeTiming();
        for (ECBase *leaf : leaves)
            parent->AddChild(leaf, 1);
        state.PauseTiming();
        for (ECBase *leaf : leaves)
            leaf->Unref(1);
        ReleaseTree(parent);
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_AddEvent(benchmark::State &state)
{
    const int n = static_cast<int>(state.range(0));
    std::vector<ECBase *> leaves = MakeLeaves(n);
    for (ECBase *leaf : leaves)
        leaf->Ref();
    for (auto _ : state)
    {
        EventList list;
        for (ECBase *leaf : leaves)
            list.AddEvent(leaf, 1);
        state.PauseTiming();
        list.RemoveAll();
        state.ResumeTiming();
    }
    for (ECBase *leaf : leaves)
        leaf->Unref(1);
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_SortSorted(benchmark::State &state)
{
    const int n = static_cast<int>(state.range(0));
    EventList list;
    for (ECBase *leaf : MakeLeaves(n))
        list.AddTail(leaf);
    for (auto _ : state)
        list.Sort();
    state.SetItemsProcessed(state.iterations() * n);
}

BENCHMARK(BM_AddChild)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddChildHeld)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_AddEvent)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortSorted)->Arg(100000)->Arg(200000)->Unit(benchmark::kMillisecond);

// Collects the time per element of each run and prints the ratio of the two
// sizes of each benchmark at the end.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs)
        {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0)
                continue;
            std::string name = run.run_name.function_name;
            long long n = std::stoll(run.run_name.args);
            // CPU time: other programs on a shared machine disturb it less.
            double nsPerElement = run.GetAdjustedCPUTime() * 1e6 / static_cast<double>(n); // ms to ns
            m_perElement[name][n] = nsPerElement;
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf("\n%-16s %14s %14s %8s  (CPU time; goal: 200k total at most 2.5 times 100k total)\n",
                    "benchmark", "ns/elem 100k", "ns/elem 200k", "ratio");
        for (auto &[name, sizes] : m_perElement)
        {
            if (!sizes.count(100000) || !sizes.count(200000))
                continue;
            double a = sizes[100000], b = sizes[200000];
            std::printf("%-16s %14.1f %14.1f %8.2f  total time ratio %.2f\n", name.c_str(), a, b, b / a,
                        2.0 * b / a);
        }
    }

private:
    std::map<std::string, std::map<long long, double>> m_perElement;
};

// Bytes in use for the model: what the heap has handed out, with the list
// nodes counted one by one instead of the pool's chunks (which hold free
// nodes as well).
size_t HeapInUse()
{
    struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd - MCNodePool::GetReservedCount() * MCNodePool::kBlockSize;
}

size_t NodeBytes(ECBase *root)
{
    std::vector<ECBase *> events;
    MCEventWalk::CollectAll(root, events);
    size_t nodes = 0;
    for (ECBase *e : events)
    {
        nodes += static_cast<size_t>(e->GetParents()->GetCount());
        if (ECBase::EventList *children = e->GetChildren())
            nodes += static_cast<size_t>(children->GetCount());
    }
    return nodes * MCNodePool::kBlockSize;
}

// Heap per note for `total` notes under measures of `perMeasure`; the
// measures are made first and not counted.
double HeapPerNote(int total, int perMeasure)
{
    std::vector<ECBase *> measures;
    for (int made = 0; made < total; made += perMeasure)
    {
        ECBase *measure = CreateEventW(EVENT_ID_MEASURE);
        measure->Ref();
        measures.push_back(measure);
    }
    size_t before = HeapInUse();
    int made = 0;
    for (ECBase *measure : measures)
    {
        for (int i = 0; i < perMeasure && made < total; ++i, ++made)
            measure->AddChild(MakeTimed(EVENT_ID_NOTE, static_cast<float>(i)), 1);
        measure->GetChildren()->Contains(nullptr); // a search builds the index of a long list
    }
    size_t after = HeapInUse();
    for (ECBase *measure : measures)
        after += NodeBytes(measure);
    for (ECBase *measure : measures)
        ReleaseTree(measure);
    return static_cast<double>(after - before) / total;
}

void PrintSizes()
{
    std::printf("sizeof: ECBase %zu, ECWithChild %zu, ECWithTime %zu, ECWithTimeChild %zu, ECNote %zu, ECChord %zu, "
                "ECRest %zu, ECBeam %zu, ECTuplet %zu, ECMeasure %zu, ECStaff %zu, MCEventList %zu, "
                "MCDataArray %zu, MCTime %zu, list node %zu\n",
                sizeof(ECBase), sizeof(ECWithChild), sizeof(ECWithTime), sizeof(ECWithTimeChild), sizeof(ECNote),
                sizeof(ECChord), sizeof(ECRest), sizeof(ECBeam), sizeof(ECTuplet), sizeof(ECMeasure),
                sizeof(ECStaff), sizeof(MCEventList), sizeof(MCDataArray), sizeof(MCTime),
                sizeof(MCObList::Node));
    double large = HeapPerNote(1000000, 1000);
    size_t before = HeapInUse();
    ECBase *score = bench::BuildScore();
    double perNote = static_cast<double>(HeapInUse() + NodeBytes(score) - before) / bench::kScoreNotes;
    ReleaseTree(score);
    std::printf("heap per note, 1,000,000 notes: %.1f bytes in the score (10 staves, 1000 measures each, 100 notes "
                "each, measures and staves included), %.1f bytes under measures of 1000 (ratio %.2f; the "
                "difference is the membership index of long lists)\n\n",
                perNote, large, large / perNote);
}
// ns per node for a load (nodes made in order, an event-sized object beside
// every fourth) followed by a close, freeing in the order of making or in a
// scattered one; best of three.
template <class Allocate, class Free>
double NodeCycle(bool scattered, Allocate allocate, Free free)
{
    constexpr size_t kNodes = 4000000;
    std::vector<void *> nodes(kNodes);
    std::vector<void *> events(kNodes / 4);
    std::vector<size_t> order(kNodes);
    for (size_t i = 0; i < kNodes; ++i)
        order[i] = i;
    if (scattered)
        std::shuffle(order.begin(), order.end(), std::mt19937_64(42));
    double best = 1e300;
    for (int round = 0; round < 3; ++round)
    {
        const auto start = std::chrono::steady_clock::now();
        for (size_t i = 0; i < kNodes; ++i)
        {
            nodes[i] = allocate();
            if (i % 4 == 0)
                events[i / 4] = ::operator new(sizeof(ECNote));
        }
        for (size_t i : order)
        {
            free(nodes[i]);
            if (i % 4 == 0)
                ::operator delete(events[i / 4]);
        }
        const double ns = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
        best = std::min(best, ns / kNodes);
    }
    return best;
}

void PrintNodeAllocators()
{
    constexpr size_t kSize = MCNodePool::kBlockSize;
    std::printf("node allocators, ns per node%s:\n", MCNodePool::UsesHeap() ? " (the pool in heap mode)" : "");
    for (bool scattered : {false, true})
    {
        const double heap =
            NodeCycle(scattered, [] { return ::operator new(kSize); }, [](void *p) { ::operator delete(p); });
        std::pmr::unsynchronized_pool_resource unsynchronized;
        const double unsync = NodeCycle(
            scattered, [&] { return unsynchronized.allocate(kSize, alignof(void *)); },
            [&](void *p) { unsynchronized.deallocate(p, kSize, alignof(void *)); });
        std::pmr::synchronized_pool_resource synchronized;
        const double sync = NodeCycle(
            scattered, [&] { return synchronized.allocate(kSize, alignof(void *)); },
            [&](void *p) { synchronized.deallocate(p, kSize, alignof(void *)); });
        const double pool =
            NodeCycle(scattered, [] { return MCNodePool::Allocate(); }, [](void *p) { MCNodePool::Free(p); });
        const double best = std::min({heap, unsync, sync});
        std::printf("  %-28s plain new %6.2f, pmr unsynchronized %6.2f, pmr synchronized %6.2f, MCNodePool %6.2f; "
                    "the pool to the best other %.2f (%s)\n",
                    scattered ? "close scattered, load:" : "load, close in order:", heap, unsync, sync, pool,
                    pool / best, pool < 0.9 * best ? "pool wins" : "pool does not win");
    }
    std::printf("\n");
}
} // namespace

int main(int argc, char **argv)
{
    PrintNodeAllocators();
    PrintSizes();
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
