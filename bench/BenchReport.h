// The console report of a benchmark program that also keeps each run's CPU
// time, so the program can print its goals as ratios measured in one run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench
{
// CPU nanoseconds per iteration by run name, whatever unit a run prints in.
class Collector : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                ns[run.benchmark_name()] = run.GetAdjustedCPUTime() * ToNanoseconds(run.time_unit);
        ConsoleReporter::ReportRuns(runs);
    }
    // 0 for a run that did not take place.
    double Get(const std::string &name) const
    {
        auto it = ns.find(name);
        return it == ns.end() ? 0.0 : it->second;
    }

private:
    static double ToNanoseconds(benchmark::TimeUnit unit)
    {
        switch (unit)
        {
        case benchmark::kMicrosecond: return 1e3;
        case benchmark::kMillisecond: return 1e6;
        case benchmark::kSecond: return 1e9;
        default: return 1.0;
        }
    }
};

// Runs the benchmarks the command line selects with a Collector, then
// `report` with it. The main of a benchmark program.
template <class Report>
int RunAndReport(int argc, char **argv, Report report)
{
    benchmark::Initialize(&argc, argv);
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::Shutdown();
    report(collector);
    return 0;
}
} // namespace bench
