// A console reporter that also keeps the CPU time of each run by name, so a
// benchmark program can print its goals as ratios of runs measured in the
// same process.
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
    // CPU ns per iteration by run name.
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration && run.iterations > 0)
                ns[run.benchmark_name()] = run.GetAdjustedCPUTime() *
                                           (run.time_unit == benchmark::kMillisecond ? 1e6 : 1.0);
        ConsoleReporter::ReportRuns(runs);
    }
    // 0 for a run that did not happen.
    double Get(const std::string &name) const
    {
        auto it = ns.find(name);
        return it == ns.end() ? 0.0 : it->second;
    }
};
} // namespace bench
