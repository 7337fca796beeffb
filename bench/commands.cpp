// Cost of the road of one command: N trivial commands applied inside one undo
// bracket, then the step undone and redone, for N = 10,000 and 100,000.
//
//   sync     each command sent at once (its own batch)
//   posted   each command posted; the batch timer merges them into one batch
//            (the wait for the timer itself is not counted)
//
// Times are CPU time of the document thread, the best of the iterations.
// Nothing on the road may cost more than a constant per command, so the
// per-command time should be flat: the program prints it for each N and the
// ratio of 100,000 over 10,000 for each phase. 10,000 commands and their
// lists still fit in the caches and 100,000 do not, so that ratio also shows
// the memory; 200,000 over 100,000 shows what the code adds. The goal is a
// ratio of 200,000 over 10,000 within 1.3 for every phase, printed last.
//
// Discard: a command discards an event with N children (10,000 and 320,000),
// against a direct RemoveChildren(0) of the same tree; both must be linear,
// so the ratio of the per-child times of the two sizes should stay near 1.
#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCMessageLoop.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

#include <time.h>

namespace
{
// CPU time of this thread in nanoseconds: the machine may be shared, and the
// wait for the batch timer is no work of the manager's.
double Now()
{
    struct timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return (double)ts.tv_sec * 1e9 + (double)ts.tv_nsec;
}

// A command that changes nothing: the cost measured is the manager's.
class TrivialCommand : public CCBase
{
public:
    static inline long s_finished = 0;
    static inline double s_firstPrepare = 0;

    int Prepare() override
    {
        if (s_firstPrepare == 0)
            s_firstPrepare = Now();
        return CCBase::Prepare();
    }
    int Finish() override
    {
        ++s_finished;
        return 1;
    }
};

struct Phases
{
    double apply = 0, undo = 0, redo = 0; // ns per command
};
std::map<std::string, std::map<long, Phases>> s_results;


ECPerformance *NewDocument()
{
    auto *doc = new ECPerformance;
    doc->Ref();
    doc->AddChild(new ECConductor, 0);
    return doc;
}

void DropDocument(ECPerformance *doc)
{
    doc->SetCommandRate(0);
    doc->RemoveChildren(1);
    doc->Unref(1);
    MCCommandMgr::OnIdle();
}

// Pumps until `count` commands have finished.
void PumpUntilFinished(long count)
{
    while (TrivialCommand::s_finished < count)
        MCMessageLoop::ProcessPending();
}

void Run(benchmark::State &state, bool posted)
{
    const long n = (long)state.range(0);
    Phases phases;
    bool first = true;
    for (auto _ : state)
    {
        ECPerformance *doc = NewDocument();
        if (posted)
            doc->SetCommandRate(10);
        TrivialCommand::s_finished = 0;
        TrivialCommand::s_firstPrepare = 0;
        CString name(L"bench");

        // Apply: every command counted into one step; for posted commands
        // the time from the post to the timer's queue, plus the batch.
        double start = Now();
        MCCommandMgr::BeginUndo(doc, name);
        for (long i = 0; i < n; ++i)
        {
            auto *cmd = new TrivialCommand;
            cmd->SetSynchronous(posted ? 0 : 1);
            cmd->Apply(doc);
        }
        MCCommandMgr::EndUndo(doc);
        double apply = Now() - start;
        if (posted)
        {
            // The posts reach the timer's queue; the batch may already run
            // inside this pump when the queueing took longer than the rate.
            MCMessageLoop::ProcessPending();
            double queued = Now();
            PumpUntilFinished(n);
            if (TrivialCommand::s_firstPrepare < queued)
                queued = TrivialCommand::s_firstPrepare;
            apply = (queued - start) + (Now() - TrivialCommand::s_firstPrepare);
            // Each Apply took a reference on the document and the one batch
            // gave one back.
            for (long i = 1; i < n; ++i)
                doc->Unref(0);
            doc->SetCommandRate(0);
        }
        if (doc->GetUndoCount() != 1)
            state.SkipWithError("the bracket was not filed as one step");

        start = Now();
        doc->Undo(1);
        const double undo = Now() - start;

        TrivialCommand::s_finished = 0;
        start = Now();
        doc->Redo(1);
        PumpUntilFinished(n);
        const double redo = Now() - start;

        const Phases these = {apply / (double)n, undo / (double)n, redo / (double)n};
        if (first || these.apply + these.undo + these.redo < phases.apply + phases.undo + phases.redo)
            phases = these;
        first = false;
        state.SetIterationTime((apply + undo + redo) * 1e-9);
        DropDocument(doc);
    }
    state.counters["apply_ns"] = phases.apply;
    state.counters["undo_ns"] = phases.undo;
    state.counters["redo_ns"] = phases.redo;
    s_results[posted ? "posted" : "sync"][n] = phases;
}

void BM_SyncCommands(benchmark::State &state)
{
    Run(state, false);
}

void BM_PostedCommands(benchmark::State &state)
{
    Run(state, true);
}

// An event with `n` children, held by the caller.
ECBase *Family(long n)
{
    ECBase *parent = CreateEventW(EVENT_ID_WITH_TIME_CHILD);
    parent->Ref();
    for (long i = 0; i < n; ++i)
        parent->AddChild(CreateEventW(EVENT_ID_WITH_TIME), 0);
    return parent;
}

std::map<long, std::pair<double, double>> s_discard; // ns per child: discard, direct

void BM_DiscardChildren(benchmark::State &state)
{
    const long n = (long)state.range(0);
    double best = 0, bestDirect = 0;
    for (auto _ : state)
    {
        ECBase *parent = Family(n);
        auto *cmd = new CCBase;
        cmd->Ref();
        cmd->Discard(parent);
        double start = Now();
        cmd->Process();
        const double discard = (Now() - start) / (double)n;
        cmd->Unref(1);
        parent->Unref(1);

        parent = Family(n);
        start = Now();
        parent->RemoveChildren(0);
        const double direct = (Now() - start) / (double)n;
        parent->Unref(1);
        if (best == 0 || discard < best)
            best = discard;
        if (bestDirect == 0 || direct < bestDirect)
            bestDirect = direct;
        state.SetIterationTime(discard * (double)n * 1e-9);
    }
    s_discard[n] = {best, bestDirect};
}

BENCHMARK(BM_DiscardChildren)->Arg(10000)->Arg(320000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SyncCommands)->Arg(10000)->Arg(100000)->Arg(200000)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PostedCommands)->Arg(10000)->Arg(100000)->Arg(200000)->UseManualTime()->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    std::printf("\nns per command     apply     undo     redo\n");
    for (const auto &[name, bySize] : s_results)
    {
        for (const auto &[n, p] : bySize)
            std::printf("%-6s %7ld  %8.1f %8.1f %8.1f\n", name.c_str(), n, p.apply, p.undo, p.redo);
        const std::pair<long, long> ratios[] = {{10000, 100000}, {100000, 200000}, {10000, 200000}};
        for (const auto &[from, to] : ratios)
        {
            auto small = bySize.find(from), large = bySize.find(to);
            if (small != bySize.end() && large != bySize.end())
                std::printf("%-6s ratio %ldk/%ldk %5.2f    %5.2f    %5.2f\n", name.c_str(), to / 1000, from / 1000,
                            large->second.apply / small->second.apply, large->second.undo / small->second.undo,
                            large->second.redo / small->second.redo);
        }
    }
    std::printf("\nns per child     discard   direct\n");
    for (const auto &[n, times] : s_discard)
        std::printf("discard %7ld  %8.1f %8.1f\n", n, times.first, times.second);
    if (s_discard.size() == 2)
        std::printf("discard ratio 320k/10k %5.2f %8.2f\n", s_discard.rbegin()->second.first / s_discard.begin()->second.first,
                    s_discard.rbegin()->second.second / s_discard.begin()->second.second);
    return 0;
}
