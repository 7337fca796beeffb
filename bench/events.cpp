// Cost of the event bases: bytes per event, appending children and events in
// time order, and sorting a sorted list.
//
//   sizes             sizeof of the main classes (printed once)
//   heap/child        heap bytes per child for 1,000,000 small timed events
//                     under parents of 32 children (no index) and of 1000
//                     children (with the membership index): the event, its
//                     node in the parent's list and its parent link
//   AddChild/N        N new children appended in time order to one parent
//                     with AddChild(child, 1): the sorted insertion is O(1)
//                     and a new child needs no double check
//   AddChildHeld/N    the same with children already held, so that every
//                     AddChild asks the membership index
//   AddEvent/N        N events appended in time order to a list, sorted
//   SortSorted/N      Sort() of a sorted list of N events
//
// Each timed figure is printed per element with the ratio of 200,000 to
// 100,000 elements; a flat cost gives about 1.0, and the goal is at most 2.5.
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/base/MCEventList.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <malloc.h>
#include <map>
#include <string>
#include <vector>

namespace
{
using EventList = CTypedPtrList<MCEventList, ECBase *>;

ECBase *MakeTimed(int id, float time)
{
    ECBase *e = CreateEventW(id);
    MCTime t(time);
    e->SetTime(&t);
    return e;
}

std::vector<ECBase *> MakeLeaves(int n)
{
    std::vector<ECBase *> leaves;
    leaves.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i)
        leaves.push_back(MakeTimed(EVENT_ID_WITH_TIME, static_cast<float>(i) * 0.25f));
    return leaves;
}

void ReleaseTree(ECBase *root)
{
    root->RemoveChildren(1);
    root->Unref(1);
}

void BM_AddChild(benchmark::State &state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state)
    {
        state.PauseTiming();
        ECBase *parent = CreateEventW(EVENT_ID_WITH_TIME_CHILD);
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
        ECBase *parent = CreateEventW(EVENT_ID_WITH_TIME_CHILD);
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

size_t HeapInUse()
{
    struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Heap per child for `total` timed leaves under parents of `perParent`; the
// parents themselves are made first and not counted.
double HeapPerChild(int total, int perParent)
{
    std::vector<ECBase *> parents;
    for (int made = 0; made < total; made += perParent)
    {
        ECBase *parent = CreateEventW(EVENT_ID_WITH_TIME_CHILD);
        parent->Ref();
        parents.push_back(parent);
    }
    size_t before = HeapInUse();
    int made = 0;
    for (ECBase *parent : parents)
    {
        for (int i = 0; i < perParent && made < total; ++i, ++made)
            parent->AddChild(MakeTimed(EVENT_ID_WITH_TIME, static_cast<float>(i)), 1);
        parent->GetChildren()->Contains(nullptr); // a search builds the index of a long list
    }
    size_t after = HeapInUse();
    for (ECBase *parent : parents)
        ReleaseTree(parent);
    return static_cast<double>(after - before) / total;
}

void PrintSizes()
{
    std::printf("sizeof: ECBase %zu, ECWithChild %zu, ECWithTime %zu, ECWithTimeChild %zu, MCEventList %zu, "
                "MCDataArray %zu, MCTime %zu, list node %zu\n",
                sizeof(ECBase), sizeof(ECWithChild), sizeof(ECWithTime), sizeof(ECWithTimeChild),
                sizeof(MCEventList), sizeof(MCDataArray), sizeof(MCTime), sizeof(MCObList::Node));
    double small = HeapPerChild(1000000, 32);
    double large = HeapPerChild(1000000, 1000);
    std::printf("heap per child, 1,000,000 timed events: %.1f bytes under parents of 32, %.1f bytes under "
                "parents of 1000 (ratio %.2f; the difference is the membership index)\n\n",
                small, large, large / small);
}
} // namespace

int main(int argc, char **argv)
{
    PrintSizes();
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
