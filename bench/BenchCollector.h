// The console reporter of the benchmarks that print goals: it keeps the CPU
// time of every run, in nanoseconds per iteration whatever the run's unit, so
// that main() can print ratios against a baseline measured in the same run.
// With --benchmark_repetitions the median stands for the run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace bench
{
class Collector : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
        {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0 && !ns.count(run.run_name.str()))
                ns[run.benchmark_name()] = run.GetAdjustedCPUTime() * NsPerUnit(run.time_unit);
            else if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                ns[run.run_name.str()] = run.GetAdjustedCPUTime() * NsPerUnit(run.time_unit);
        }
        ConsoleReporter::ReportRuns(runs);
    }
    // CPU ns per iteration of a run by name; 0 when it did not run.
    double Get(const std::string &name) const
    {
        auto it = ns.find(name);
        return it == ns.end() ? 0.0 : it->second;
    }

private:
    static double NsPerUnit(benchmark::TimeUnit unit)
    {
        switch (unit)
        {
        case benchmark::kSecond: return 1e9;
        case benchmark::kMillisecond: return 1e6;
        case benchmark::kMicrosecond: return 1e3;
        default: return 1.0;
        }
    }
};
} // namespace bench
