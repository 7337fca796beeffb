// Changing the first meter of a whole score: every bar is re-cut and every
// note handed to the bar that now covers it, with the record that undo and
// redo replay. Goal: the time grows linearly with the score (4,000 bars no
// more than 2.2 times 2,000 bars).
#include "BenchReport.h"

#include <scoremodel/actions/ACDeltaTime.h>
#include <scoremodel/commands/CCAddMeter.h>
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <cstdio>
#include <string>

namespace
{
constexpr int kStaves = 20;
constexpr int kNotesPerBar = 4;

ECMeter *Meter(int numerator, int denominator)
{
    auto *meter = new ECMeter(static_cast<unsigned char>(numerator), static_cast<unsigned char>(denominator), 255);
    MCTime zero(0.0f);
    meter->SetTime(&zero);
    return meter;
}

// A document of 20 staves of `bars` bars of 4/4, a quarter note on every
// beat of every staff.
ECPerformance *BuildDocument(int bars)
{
    auto *doc = new ECPerformance;
    doc->Ref();
    auto *conductor = new ECConductor;
    doc->AddChild(conductor, 0);
    for (int s = 0; s < kStaves; ++s)
        CCAddTrack::AddNow(doc, new ECStaff, -1);
    ECConductorStaff *score = conductor->GetConductorStaff();
    score->GetMeterEnv()->AddChild(Meter(4, 4), 1);
    MCTime last(4.0f * static_cast<float>(bars) - 1.0f);
    score->GetConductorMeasureAtTime(last, 1, 1);
    for (int track = 1; track <= kStaves; ++track)
        for (int bar = 0; bar < bars; ++bar)
        {
            ECMeasure *measure = conductor->GetMeasure(track, bar + 1);
            for (int beat = 0; beat < kNotesPerBar; ++beat)
            {
                ECBase *note = CreateEventW(EVENT_ID_NOTE);
                MCTime t(4.0f * static_cast<float>(bar) + static_cast<float>(beat)), d(1.0f);
                note->SetTime(&t);
                note->SetDuration(&d);
                measure->AddChild(note, 0);
            }
        }
    return doc;
}

void Release(ECPerformance *doc)
{
    doc->ClearUndo();
    doc->RemoveChildren(1);
    doc->Unref(1);
    MCCommandMgr::OnIdle();
}

// range(1) 1: in an undo step, as a host runs it (the command records what
// it changed); 0: outside one, the re-cut alone.
void BM_FirstMeterChange(benchmark::State &state)
{
    MCCommandMgr::SetDocumentThread();
    const int bars = static_cast<int>(state.range(0));
    const bool recorded = state.range(1) != 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        ECPerformance *doc = BuildDocument(bars);
        auto *add = new CCAddMeter(Meter(3, 4), nullptr);
        add->SetSynchronous(1);
        CString name(L"3/4");
        state.ResumeTiming();
        if (recorded)
            MCCommandMgr::BeginUndo(doc, name);
        add->Apply(doc);
        if (recorded)
            MCCommandMgr::EndUndo(doc);
        state.PauseTiming();
        Release(doc);
        state.ResumeTiming();
    }
    state.counters["notes"] = static_cast<double>(bars) * kStaves * kNotesPerBar;
}
// The baseline: one plain pass over the same document (every event's time
// read and compared, nothing moved), as any linear step of the command
// makes. It shows how the memory of a twice larger score scales alone.
void BM_PlainPass(benchmark::State &state)
{
    MCCommandMgr::SetDocumentThread();
    const int bars = static_cast<int>(state.range(0));
    ECPerformance *doc = BuildDocument(bars);
    for (auto _ : state)
    {
        ACDeltaTime pass(MCTime(1.0f), MCTime::TimeMax(), MCTime::TimeMax());
        pass.Apply(doc);
    }
    Release(doc);
}
BENCHMARK(BM_PlainPass)->Arg(2000)->Arg(4000)->Unit(benchmark::kMillisecond);

BENCHMARK(BM_FirstMeterChange)
    ->Args({2000, 1})
    ->Args({4000, 1})
    ->Args({2000, 0})
    ->Args({4000, 0})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
} // namespace

int main(int argc, char **argv)
{
    return bench::RunAndReport(argc, argv, [](const bench::Collector &collector) {
        const double plainSmall = collector.Get("BM_PlainPass/2000");
        const double plainLarge = collector.Get("BM_PlainPass/4000");
        if (plainSmall > 0.0 && plainLarge > 0.0)
            std::printf("baseline, one plain pass over the document: 4,000 / 2,000 bars: %.2f\n",
                        plainLarge / plainSmall);
        for (int recorded : {1, 0})
        {
            const std::string suffix = "/" + std::to_string(recorded) + "/iterations:3";
            const double small = collector.Get("BM_FirstMeterChange/2000" + suffix);
            const double large = collector.Get("BM_FirstMeterChange/4000" + suffix);
            if (small <= 0.0 || large <= 0.0)
                continue;
            const double ratio = large / small;
            std::printf("first meter change%s: %.1f ms at 2,000 bars, %.1f ms at 4,000 (%.0f ns per note)\n",
                        recorded ? " in an undo step" : ", not recorded", small / 1e6, large / 1e6,
                        large / (4000.0 * kStaves * kNotesPerBar));
            std::printf("  4,000 / 2,000 bars: %.2f (goal <= 2.2): %s\n", ratio, ratio <= 2.2 ? "met" : "MISSED");
        }
    });
}
