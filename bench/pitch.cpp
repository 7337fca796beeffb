// Throughput of pitch spelling and interval arithmetic: the per-note work of
// respelling a staff after a key change or a transposition.
//
// Each benchmark sweeps every MIDI pitch with every alteration (or degree),
// so branch history cannot learn one answer. Items are single calls; the
// "ns_per_call" counter gives the cost of one.
#include <scoremodel/pitch/MCPitchUtils.h>

#include <benchmark/benchmark.h>

#include <vector>

namespace
{
void SetCounters(benchmark::State &state, long long callsPerIteration)
{
    state.SetItemsProcessed(state.iterations() * callsPerIteration);
    state.counters["ns_per_call"] = benchmark::Counter(static_cast<double>(state.iterations() * callsPerIteration),
                                                       benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_SetPitch(benchmark::State &state)
{
    MCPitch pitch;
    for (auto _ : state)
    {
        for (int midi = 0; midi < 128; ++midi)
        {
            for (int alteration = -2; alteration <= 2; ++alteration)
            {
                pitch.SetPitch(static_cast<unsigned char>(midi), static_cast<char>(alteration), 1);
                benchmark::DoNotOptimize(pitch);
            }
        }
    }
    SetCounters(state, 128 * 5);
}
BENCHMARK(BM_SetPitch);

void BM_SetPitchByDegree(benchmark::State &state)
{
    MCPitch pitch;
    for (auto _ : state)
    {
        for (int midi = 0; midi < 128; ++midi)
        {
            for (int degree = 0; degree < 7; ++degree)
            {
                pitch.SetPitchByDegree(static_cast<unsigned char>(midi), static_cast<unsigned char>(degree));
                benchmark::DoNotOptimize(pitch);
            }
        }
    }
    SetCounters(state, 128 * 7);
}
BENCHMARK(BM_SetPitchByDegree);

void BM_ToggleEnharmonic(benchmark::State &state)
{
    std::vector<MCPitch> pitches;
    for (int midi = 0; midi < 128; ++midi)
        pitches.emplace_back(static_cast<unsigned char>(midi), 0);
    for (auto _ : state)
    {
        for (MCPitch &pitch : pitches)
        {
            pitch.ToggleEnharmonic();
            benchmark::DoNotOptimize(pitch);
        }
    }
    SetCounters(state, 128);
}
BENCHMARK(BM_ToggleEnharmonic);

// Spellings of two octaves, double flat to double sharp: 70 pitches.
std::vector<MCPitch> Spellings()
{
    std::vector<MCPitch> pitches;
    for (int midi = 48; midi < 72; ++midi)
        for (int alteration = -2; alteration <= 2; ++alteration)
        {
            MCPitch pitch(static_cast<unsigned char>(midi), static_cast<char>(alteration));
            if (pitch.GetAccidental() == alteration)
                pitches.push_back(pitch);
        }
    return pitches;
}

void BM_OrderedInterval(benchmark::State &state)
{
    const std::vector<MCPitch> pitches = Spellings();
    MCPitchUtils utils;
    for (auto _ : state)
    {
        for (const MCPitch &a : pitches)
            for (const MCPitch &b : pitches)
                benchmark::DoNotOptimize(utils.OrderedInterval(a, b));
    }
    SetCounters(state, static_cast<long long>(pitches.size() * pitches.size()));
}
BENCHMARK(BM_OrderedInterval);

void BM_IntervalRoundTrip(benchmark::State &state)
{
    const std::vector<MCPitch> pitches = Spellings();
    MCPitchUtils utils;
    for (auto _ : state)
    {
        for (const MCPitch &a : pitches)
            for (const MCPitch &b : pitches)
                benchmark::DoNotOptimize(utils.GetPitchFromInterval(a, utils.OrderedInterval(a, b)));
    }
    SetCounters(state, static_cast<long long>(pitches.size() * pitches.size()));
}
BENCHMARK(BM_IntervalRoundTrip);

void BM_TransposeKey(benchmark::State &state)
{
    for (auto _ : state)
    {
        for (int count = 0; count <= 7; ++count)
            for (int semitones = -12; semitones <= 12; ++semitones)
            {
                int sharps = count, flats = 0;
                MCPitchUtils::TransposeKey(sharps, flats, semitones);
                benchmark::DoNotOptimize(sharps);
                benchmark::DoNotOptimize(flats);
            }
    }
    SetCounters(state, 8 * 25);
}
BENCHMARK(BM_TransposeKey);
} // namespace

BENCHMARK_MAIN();
