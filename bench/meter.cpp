// The meter map: the views and the transport turn every displayed time into
// bar, pulse and tick and back, so both conversions run in tight loops.
//
//   positions    GetBarPulseTick and GetNormalizedTime, stepping forward over
//                maps of 1,000 and 10,000 meters (4/4, 3/4, 6/8, 5/4 and 7/8,
//                two bars each), beside a plain baseline measured in the same
//                run: the meter starts in a std::vector, std::upper_bound for
//                the meter, then the same arithmetic. Goal: sequential calls
//                within 2x of the baseline at 1,000 meters (the map also
//                takes its lock and gives an MCTime with a heap record), and
//                flat from 1,000 to 10,000 meters (ratio <= 1.5).
//                GetNormalizedTime with its cursor turned off (a position set
//                by hand) shows the walk from the last meter it replaces.
//   recalculate  RecalculateBPTTimes over 1,000 and 10,000 meters. Goal:
//                linear, the 10k/1k ratio between 8 and 12.
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace
{
constexpr int kResolution = 480;

struct MeterMap
{
    ECMeterEnv *env = nullptr;
    // The plain baseline: start time, start bar and shape of every meter.
    std::vector<float> starts;
    std::vector<int> bars;
    std::vector<float> lengths, pulses;
    std::vector<BPTTime> positions; // sequential positions to convert back
    float end = 0.0f;
};

MeterMap &SharedMap(int n)
{
    static std::map<int, MeterMap> made;
    MeterMap &m = made[n];
    if (m.env)
        return m;
    static const int shapes[][2] = {{4, 4}, {3, 4}, {6, 8}, {5, 4}, {7, 8}};
    m.env = static_cast<ECMeterEnv *>(RUNTIME_CLASS(ECMeterEnv)->CreateObject());
    m.env->Ref();
    float at = 0.0f;
    int bar = 0;
    for (int i = 0; i < n; ++i)
    {
        const int *s = shapes[i % 5];
        auto *meter = new ECMeter(static_cast<unsigned char>(s[0]), static_cast<unsigned char>(s[1]), 255);
        MCTime t(at);
        meter->SetTime(&t);
        // Filled directly and recalculated once, as a load does: adding
        // recalculates every time, which would make building quadratic.
        m.env->GetChildren()->AddTail(meter);
        meter->AddParent(m.env);
        m.starts.push_back(at);
        m.bars.push_back(bar);
        m.lengths.push_back(meter->GetMeasureLength());
        m.pulses.push_back(meter->GetPulse());
        at += 2.0f * meter->GetMeasureLength();
        bar += 2;
    }
    m.env->UpdateChildren();
    m.end = at;
    const float step = m.end / 100000.0f;
    for (float t = 0.0f; t < m.end; t += step)
    {
        MCTime time(t);
        m.env->GetBarPulseTick(time, kResolution);
        m.positions.push_back(*time.GetBarPulseTick());
    }
    return m;
}

// Sequential reads step a little forward and wrap at the end.
template <class F>
void RunReads(benchmark::State &state, float end, F read)
{
    const float step = end / 100000.0f;
    float at = 0.0f;
    for (auto _ : state)
    {
        read(at);
        at += step;
        if (at >= end)
            at = 0.0f;
    }
}

void BM_GetBarPulseTick(benchmark::State &state)
{
    MeterMap &m = SharedMap(static_cast<int>(state.range(0)));
    RunReads(state, m.end, [&](float at) {
        MCTime t(at);
        m.env->GetBarPulseTick(t, kResolution);
        benchmark::DoNotOptimize(t.GetBarPulseTick()->tick);
    });
}

void BM_PlainBarPulseTick(benchmark::State &state)
{
    MeterMap &m = SharedMap(static_cast<int>(state.range(0)));
    RunReads(state, m.end, [&](float at) {
        const size_t i = static_cast<size_t>(std::upper_bound(m.starts.begin(), m.starts.end(), at) -
                                             m.starts.begin()) - 1;
        const float L = m.lengths[i], P = m.pulses[i];
        const float measures = (at - m.starts[i]) / L;
        const int b = static_cast<int>(measures);
        const float rest = (measures - static_cast<float>(b)) * L;
        const int q = static_cast<int>(rest / P);
        const int tick = static_cast<int>((rest - static_cast<float>(q) * P) * kResolution + 0.5f);
        BPTTime out{m.bars[i] + b, q, tick, kResolution};
        benchmark::DoNotOptimize(out);
    });
}

template <class F>
void RunPositions(benchmark::State &state, MeterMap &m, F read)
{
    size_t i = 0;
    for (auto _ : state)
    {
        read(m.positions[i]);
        if (++i == m.positions.size())
            i = 0;
    }
}

void BM_GetNormalizedTime(benchmark::State &state)
{
    MeterMap &m = SharedMap(static_cast<int>(state.range(0)));
    RunPositions(state, m, [&](const BPTTime &at) {
        MCTime t(at.bar, at.pulse, at.tick, at.ppq);
        m.env->GetNormalizedTime(t);
        benchmark::DoNotOptimize(t.GetSeconds());
    });
}

void BM_GetNormalizedTimeWalk(benchmark::State &state)
{
    MeterMap &m = SharedMap(static_cast<int>(state.range(0)));
    // A position set by hand turns the cursor off until the next
    // recalculation.
    auto *first = static_cast<ECMeter *>(m.env->GetPointAtIndex(0));
    first->SetBarPulseTick(first->GetBarPulseTick());
    RunPositions(state, m, [&](const BPTTime &at) {
        MCTime t(at.bar, at.pulse, at.tick, at.ppq);
        m.env->GetNormalizedTime(t);
        benchmark::DoNotOptimize(t.GetSeconds());
    });
    m.env->RecalculateBPTTimes();
}

void BM_PlainNormalizedTime(benchmark::State &state)
{
    MeterMap &m = SharedMap(static_cast<int>(state.range(0)));
    RunPositions(state, m, [&](const BPTTime &at) {
        const size_t i =
            static_cast<size_t>(std::upper_bound(m.bars.begin(), m.bars.end(), at.bar) - m.bars.begin()) - 1;
        const float time = m.starts[i] + m.lengths[i] * static_cast<float>(at.bar - m.bars[i]) +
                           static_cast<float>(at.pulse) * m.pulses[i] +
                           static_cast<float>(at.tick) / static_cast<float>(at.ppq);
        benchmark::DoNotOptimize(time);
    });
}

void BM_RecalculateBPTTimes(benchmark::State &state)
{
    MeterMap &m = SharedMap(static_cast<int>(state.range(0)));
    for (auto _ : state)
        m.env->RecalculateBPTTimes();
}

BENCHMARK(BM_GetBarPulseTick)->Arg(1000)->Arg(10000);
BENCHMARK(BM_PlainBarPulseTick)->Arg(1000)->Arg(10000);
BENCHMARK(BM_GetNormalizedTime)->Arg(1000)->Arg(10000);
BENCHMARK(BM_GetNormalizedTimeWalk)->Arg(1000)->Arg(10000);
BENCHMARK(BM_PlainNormalizedTime)->Arg(1000)->Arg(10000);
BENCHMARK(BM_RecalculateBPTTimes)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

using bench::Collector;

double Ratio(double a, double b)
{
    return b > 0 ? a / b : 0.0;
}

void PrintRatios(const Collector &c)
{
    std::printf("\npositions, sequential (ns per call; goal: within 2x of the plain baseline at 1,000 meters, "
                "10k/1k <= 1.5)\n");
    for (auto [ours, plain] : {std::pair{"BM_GetBarPulseTick", "BM_PlainBarPulseTick"},
                               std::pair{"BM_GetNormalizedTime", "BM_PlainNormalizedTime"}})
    {
        const double a = c.Get(std::string(ours) + "/1000"), b = c.Get(std::string(ours) + "/10000");
        const double p = c.Get(std::string(plain) + "/1000");
        const double vs = Ratio(a, p), flat = Ratio(b, a);
        std::printf("  %-22s 1k %7.1f  10k %7.1f  plain 1k %6.1f  ours/plain %5.2f (%s)  10k/1k %5.2f (%s)\n", ours,
                    a, b, p, vs, vs <= 2.0 ? "met" : "MISSED", flat, flat <= 1.5 ? "met" : "MISSED");
    }
    const double w1 = c.Get("BM_GetNormalizedTimeWalk/1000"), w10 = c.Get("BM_GetNormalizedTimeWalk/10000");
    std::printf("  without the cursor (walk from the last meter): 1k %.1f  10k %.1f  (x%.1f and x%.1f the "
                "cursor)\n",
                w1, w10, Ratio(w1, c.Get("BM_GetNormalizedTime/1000")),
                Ratio(w10, c.Get("BM_GetNormalizedTime/10000")));
    const double r1 = c.Get("BM_RecalculateBPTTimes/1000"), r10 = c.Get("BM_RecalculateBPTTimes/10000");
    const double linear = Ratio(r10, r1);
    std::printf("\nrecalculate (us per call; goal: linear, 10k/1k between 8 and 12)\n  1k %.1f  10k %.1f  "
                "10k/1k %.2f (%s)  %.1f ns per meter\n",
                r1 / 1e3, r10 / 1e3, linear, linear >= 8.0 && linear <= 12.0 ? "met" : "MISSED", r10 / 10000.0);
}
} // namespace

int main(int argc, char **argv)
{
    return bench::RunAndReport(argc, argv, PrintRatios);
}
