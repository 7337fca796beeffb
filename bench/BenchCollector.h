// The console reporter of the benchmarks, keeping each run's CPU time per
// iteration (in ns) by run name, so that a benchmark can print its goal's
// ratio against a baseline measured in the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

class BenchCollector : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                ns[run.benchmark_name()] = run.GetAdjustedCPUTime() *
                                           (run.time_unit == benchmark::kMillisecond ? 1e6 : 1.0);
        ConsoleReporter::ReportRuns(runs);
    }
    // 0 for a run that did not take place.
    double Get(const std::string &name) const
    {
        auto it = ns.find(name);
        return it == ns.end() ? 0.0 : it->second;
    }
};
