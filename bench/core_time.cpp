// What a time costs to copy: a normalized time is one word and a byte, a
// bar/pulse/tick time pays for a heap record. Event lists copy times all the
// time, so the ratio printed at the end is the price of leaving mode 0.
#include <scoremodel/core/MCTime.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <vector>

namespace
{
constexpr int kTimes = 10000;

std::vector<MCTime> MakeTimes(bool barPulseTick)
{
    std::vector<MCTime> times;
    times.reserve(kTimes);
    for (int i = 0; i < kTimes; ++i)
        times.push_back(barPulseTick ? MCTime(i / 4, i % 4, i % 480, 480) : MCTime(i * 0.25f));
    return times;
}

void CopyAll(benchmark::State &state, bool barPulseTick)
{
    const std::vector<MCTime> source = MakeTimes(barPulseTick);
    for (auto _ : state)
    {
        std::vector<MCTime> copy(source);
        benchmark::DoNotOptimize(copy.data());
    }
    state.SetItemsProcessed(state.iterations() * kTimes);
}

void BM_CopyNormalizedTimes(benchmark::State &state) { CopyAll(state, false); }
void BM_CopyBarPulseTickTimes(benchmark::State &state) { CopyAll(state, true); }
BENCHMARK(BM_CopyNormalizedTimes);
BENCHMARK(BM_CopyBarPulseTickTimes);

double SecondsPerCopy(bool barPulseTick)
{
    const std::vector<MCTime> source = MakeTimes(barPulseTick);
    const int rounds = 200;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < rounds; ++i)
    {
        std::vector<MCTime> copy(source);
        benchmark::DoNotOptimize(copy.data());
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / rounds;
}
} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    const double ratio = SecondsPerCopy(true) / SecondsPerCopy(false);
    std::printf("copying a bar/pulse/tick time costs %.1fx a normalized one\n", ratio);
    return 0;
}
