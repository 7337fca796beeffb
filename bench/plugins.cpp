// The plug-in registries, asked each time the host makes a filter, a reader
// or a data attachment.
//
//   lookup    CPluginFilter::FindPlugin(key) with 10 and 1,000 filters
//             registered. Goal: flat in the number of filters (ratio <= 2).
//   create    CreateFilter(key) and CPluginData::CreateData beside a plain
//             `new` of the same class, the baseline. Goal: the registry adds
//             at most twice the cost of the object itself (ratio <= 3).
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/plugins/CPluginData.h>
#include <scoremodel/plugins/CPluginFilter.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <deque>
#include <map>
#include <string>

namespace
{
class LCBenchFilter : public LCBase
{
    DECLARE_DYNCREATE(LCBenchFilter)
};
class DCBenchData : public DCBase
{
    DECLARE_DYNCREATE(DCBenchData)
};
} // namespace
IMPLEMENT_DYNCREATE(LCBenchFilter, LCBase)
IMPLEMENT_DYNCREATE(DCBenchData, DCBase)

namespace
{
// Entries live for the process, as a plug-in's do; registering is
// idempotent for a key, so the sizes only grow.
std::deque<std::string> g_keys;
std::deque<CPluginFilter> g_filters;

void RegisterFilters(int count)
{
    while (static_cast<int>(g_filters.size()) < count)
    {
        g_keys.push_back("Bench.Filter." + std::to_string(g_filters.size()));
        g_filters.emplace_back(RUNTIME_CLASS(LCBenchFilter), g_keys.back().c_str());
        CPluginFilter::AddPlugin(&g_filters.back());
    }
}

void BM_FindPlugin(benchmark::State &state)
{
    const int count = static_cast<int>(state.range(0));
    RegisterFilters(count);
    int i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(CPluginFilter::FindPlugin(g_keys[i].c_str()));
        if (++i == count)
            i = 0;
    }
}
BENCHMARK(BM_FindPlugin)->Arg(10)->Arg(1000);

// Makes and deletes one object per iteration.
template <class MAKE>
void MakeAndDelete(benchmark::State &state, MAKE make)
{
    for (auto _ : state)
    {
        CObject *object = make();
        benchmark::DoNotOptimize(object);
        delete object;
    }
}

void BM_CreateFilter(benchmark::State &state)
{
    RegisterFilters(10);
    MakeAndDelete(state, [] { return CPluginFilter::CreateFilter(g_keys[3].c_str()); });
}
BENCHMARK(BM_CreateFilter);

void BM_NewFilter(benchmark::State &state)
{
    MakeAndDelete(state, [] { return new LCBenchFilter; });
}
BENCHMARK(BM_NewFilter);

void BM_CreateData(benchmark::State &state)
{
    static CPluginData entry(RUNTIME_CLASS(DCBenchData), 5, 37);
    CPluginData::AddPlugin(&entry);
    MakeAndDelete(state, [] { return CPluginData::CreateData(5, 37); });
}
BENCHMARK(BM_CreateData);

void BM_NewData(benchmark::State &state)
{
    MakeAndDelete(state, [] { return new DCBenchData; });
}
BENCHMARK(BM_NewData);


void PrintRatio(const char *what, double value, double baseline, double goal)
{
    const double ratio = baseline > 0 ? value / baseline : 0.0;
    std::printf("  %-44s %7.1f ns vs %7.1f ns: ratio %5.2f (goal <= %.0f) %s\n", what, value, baseline, ratio, goal,
                ratio <= goal ? "met" : "MISSED");
}
} // namespace

int main(int argc, char **argv)
{
    return bench::RunAndReport(argc, argv, [](const bench::Collector &c) {
        std::printf("\nplug-in registries\n");
        PrintRatio("FindPlugin(key), 1,000 filters vs 10", c.Get("BM_FindPlugin/1000"), c.Get("BM_FindPlugin/10"), 2);
        PrintRatio("CreateFilter(key) vs new", c.Get("BM_CreateFilter"), c.Get("BM_NewFilter"), 3);
        PrintRatio("CPluginData::CreateData vs new", c.Get("BM_CreateData"), c.Get("BM_NewData"), 3);
    });
}
