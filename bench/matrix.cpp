// The score matrix: columns made by lookups, walks through the score by
// time, clef and key lookups, and a staff inserted into a large score.
//
//   build        a score of 20 staves built column by column through
//                GetConductorMeasureAtTime(t, 1, 1), 1,000, 5,000 and 10,000
//                measures. Goal: linear (ns per measure at 10,000 within
//                1.5 times that at 5,000; both scores outgrow the caches,
//                where the 1,000-measure one still fits, so 10,000 / 1,000
//                is printed beside it).
//   walk         every column looked up by time, in order and at random, on
//                the 10,000-measure score, beside std::upper_bound over a
//                plain vector of the column times. Goal: the walk in order
//                is linear (ns per lookup at 10,000 within 1.5 times that
//                at 1,000) and no slower than upper_bound (ratio <= 1). The
//                random walk has no goal: the cursor walks the columns
//                between two lookups.
//   clef/key     GetClefAtTime and GetKeyAtTime in time order over a staff
//                with 1,000 clef and key changes, beside one with 10.
//                Goal: flat (ratio <= 1.5).
//   insert staff InsertStaff (through the add-track command) in the middle
//                of the 20-staff score of 1,000, 10,000 and 20,000 measures.
//                Goal: linear in the score, judged between 10,000 and 20,000
//                (ratio <= 2.5, against 2 for linear and 4 for quadratic).
//                The insertion renumbers the staves behind it, a walk of
//                their events that waits on memory: a score that fits the
//                caches is much cheaper per event, so only two scores well
//                beyond them (40 and 80 MB) show the growth; 10,000 / 1,000
//                is printed beside it.
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace
{
constexpr int kStaves = 20;

struct Score
{
    ECPerformance *doc = nullptr;
    ECConductor *conductor = nullptr;
    ECConductorStaff *staff = nullptr;

    explicit Score(int staves)
    {
        doc = new ECPerformance;
        doc->Ref();
        conductor = new ECConductor;
        doc->AddChild(conductor, 0);
        staff = conductor->GetConductorStaff();
        for (int s = 0; s < staves; ++s)
            CCAddTrack::AddNow(doc, new ECStaff, -1);
    }
    void Columns(int measures)
    {
        for (int m = 0; m < measures; ++m)
        {
            MCTime t(4.0f * m + 1.0f);
            staff->GetConductorMeasureAtTime(t, 1, 1);
        }
    }
    ~Score()
    {
        doc->ClearUndo();
        doc->RemoveChildren(1);
        doc->Unref(1);
        MCCommandMgr::OnIdle();
    }
};

void BM_Build(benchmark::State &state)
{
    const int measures = static_cast<int>(state.range(0));
    for (auto _ : state)
    {
        state.PauseTiming();
        auto *score = new Score(kStaves);
        state.ResumeTiming();
        score->Columns(measures);
        state.PauseTiming();
        delete score;
        state.ResumeTiming();
    }
    state.counters["ns_per_measure"] = benchmark::Counter(static_cast<double>(measures) * state.iterations(),
                                                          benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_Build)->Arg(1000)->Arg(5000)->Arg(10000)->Unit(benchmark::kMillisecond);

// The times of the lookups: the middle of each column, in order or shuffled.
std::vector<float> Times(int measures, bool random)
{
    std::vector<float> times;
    for (int m = 0; m < measures; ++m)
        times.push_back(4.0f * m + 2.0f);
    if (random)
        std::shuffle(times.begin(), times.end(), std::mt19937(7));
    return times;
}

void BM_Walk(benchmark::State &state)
{
    const int measures = static_cast<int>(state.range(0));
    Score score(kStaves);
    score.Columns(measures);
    const std::vector<float> times = Times(measures, state.range(1) != 0);
    size_t i = 0;
    for (auto _ : state)
    {
        MCTime t(times[i]);
        benchmark::DoNotOptimize(score.staff->GetConductorMeasureAtTime(t, 0, 0));
        if (++i == times.size())
            i = 0;
    }
}
BENCHMARK(BM_Walk)->ArgsProduct({{1000, 10000}, {0, 1}});

void BM_UpperBound(benchmark::State &state)
{
    const int measures = static_cast<int>(state.range(0));
    std::vector<float> starts;
    for (int m = 0; m < measures; ++m)
        starts.push_back(4.0f * m);
    const std::vector<float> times = Times(measures, state.range(1) != 0);
    size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(std::upper_bound(starts.begin(), starts.end(), times[i]));
        if (++i == times.size())
            i = 0;
    }
}
BENCHMARK(BM_UpperBound)->ArgsProduct({{10000}, {0, 1}});

// One staff, `changes` clefs and keys spread over 1,000 measures; lookups
// every quarter in order.
void BM_ClefKey(benchmark::State &state)
{
    const int changes = static_cast<int>(state.range(0));
    Score score(1);
    score.Columns(1000);
    const float span = 4000.0f / changes;
    for (int c = 0; c < changes; ++c)
        for (int id : {EVENT_ID_CLEF, EVENT_ID_KEY})
        {
            ECBase *e = CreateEventW(id);
            MCTime t(span * c);
            e->SetTime(&t);
            score.staff->GetMeasure(1, t, 0, 0)->AddChild(e, 1);
        }
    ECStaff *staff = score.staff->GetStaff(1, 0);
    float at = 0.0f;
    for (auto _ : state)
    {
        MCTime t(at);
        benchmark::DoNotOptimize(staff->GetClefAtTime(t, 0));
        benchmark::DoNotOptimize(staff->GetKeyAtTime(t, 0));
        at += 1.0f;
        if (at >= 4000.0f)
            at = 0.0f;
    }
}
BENCHMARK(BM_ClefKey)->Arg(10)->Arg(1000);

void BM_InsertStaff(benchmark::State &state)
{
    const int measures = static_cast<int>(state.range(0));
    Score score(kStaves);
    score.Columns(measures);
    for (auto _ : state)
    {
        ECTrack *staff = CCAddTrack::AddNow(score.doc, new ECStaff, kStaves / 2);
        state.PauseTiming();
        // Taken out again so every round inserts into the same score.
        staff->Ref();
        score.staff->RemoveStaff(static_cast<ECStaff *>(staff));
        staff->ReleaseHold();
        score.doc->ClearUndo();
        MCCommandMgr::OnIdle();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_InsertStaff)->Arg(1000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

using bench::Collector;

void Goal(const char *what, double ratio, double limit)
{
    std::printf("  %-48s ratio %7.2f  goal <= %5.2f  %s\n", what, ratio, limit, ratio <= limit ? "met" : "MISSED");
}

void PrintRatios(const Collector &c)
{
    std::printf("\nscore matrix goals\n");
    const double b1 = c.Get("BM_Build/1000") / 1000, b5 = c.Get("BM_Build/5000") / 5000,
                 b10 = c.Get("BM_Build/10000") / 10000;
    std::printf("  build: %.0f ns per measure at 1,000, %.0f at 5,000, %.0f at 10,000 (10,000 / 1,000: %.2f)\n", b1,
                b5, b10, b1 > 0 ? b10 / b1 : 0);
    Goal("build, per measure 10,000 / 5,000", b5 > 0 ? b10 / b5 : 0, 1.5);
    const double w1 = c.Get("BM_Walk/1000/0"), w10 = c.Get("BM_Walk/10000/0"), r10 = c.Get("BM_Walk/10000/1");
    const double ub = c.Get("BM_UpperBound/10000/0"), ubr = c.Get("BM_UpperBound/10000/1");
    std::printf("  walk: in order %.1f ns (1,000) %.1f ns (10,000); at random %.0f ns; upper_bound %.1f / %.1f ns\n",
                w1, w10, r10, ub, ubr);
    Goal("walk in order, per lookup 10,000 / 1,000", w1 > 0 ? w10 / w1 : 0, 1.5);
    Goal("walk in order against upper_bound (10,000)", ub > 0 ? w10 / ub : 0, 1.0);
    std::printf("  walk at random against upper_bound: ratio %.1f (no goal)\n", ubr > 0 ? r10 / ubr : 0);
    const double k10 = c.Get("BM_ClefKey/10"), k1000 = c.Get("BM_ClefKey/1000");
    std::printf("  clef+key: %.1f ns per pair with 10 changes, %.1f with 1,000\n", k10, k1000);
    Goal("clef and key lookups, 1,000 changes / 10", k10 > 0 ? k1000 / k10 : 0, 1.5);
    const double i1 = c.Get("BM_InsertStaff/1000"), i10 = c.Get("BM_InsertStaff/10000"),
                 i20 = c.Get("BM_InsertStaff/20000");
    std::printf("  insert staff: %.2f ms at 1,000 measures, %.2f at 10,000, %.2f at 20,000 (10,000 / 1,000: %.1f)\n",
                i1 / 1e6, i10 / 1e6, i20 / 1e6, i1 > 0 ? i10 / i1 : 0);
    Goal("insert staff, 20,000 / 10,000 measures", i10 > 0 ? i20 / i10 : 0, 2.5);
}
} // namespace

int main(int argc, char **argv)
{
    MCCommandMgr::SetDocumentThread();
    return bench::RunAndReport(argc, argv, [](const Collector &collector) { PrintRatios(collector); });
}
