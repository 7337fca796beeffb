// Drives the bar-structure commands from the fuzzer's bytes: meters of any
// size added at any bar and removed, bars inserted and removed anywhere,
// undo and redo, on a small score with notes, clefs, keys and tempi.
//
// A finding is a crash, a hang, a sanitizer report or a leak; a score whose
// matrix is broken or whose events lie outside their bars after an edit;
// or an undo or redo that does not give back exactly the tree before or
// after (the harness aborts with what it found).
#include "../tests/commands/ScoreChecks.h"

#include <scoremodel/commands/CCAddMeasure.h>
#include <scoremodel/commands/CCAddMeter.h>
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/CCRemoveMeasure.h>
#include <scoremodel/commands/CCRemoveMeter.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace
{
[[noreturn]] void Fail(const std::string &what)
{
    std::fprintf(stderr, "measure_edits: %s\n", what.c_str());
    std::abort();
}

ECMeter *Meter(int numerator, int denominator, float time)
{
    auto *meter = new ECMeter(static_cast<unsigned char>(numerator), static_cast<unsigned char>(denominator), 255);
    MCTime t(time);
    meter->SetTime(&t);
    return meter;
}

ECBase *Timed(ECBase *event, float time, float length = -1.0f)
{
    MCTime t(time);
    event->SetTime(&t);
    if (length >= 0.0f)
    {
        MCTime d(length);
        event->SetDuration(&d);
    }
    return event;
}

ECPerformance *Build()
{
    auto *doc = new ECPerformance;
    doc->Ref();
    auto *conductor = new ECConductor;
    doc->AddChild(conductor, 0);
    for (int s = 0; s < 2; ++s)
        CCAddTrack::AddNow(doc, new ECStaff, -1);
    ECConductorStaff *score = conductor->GetConductorStaff();
    score->GetMeterEnv()->AddChild(Meter(4, 4, 0.0f), 1);
    MCTime last(23.0f);
    score->GetConductorMeasureAtTime(last, 1, 1);
    for (float at : {0.0f, 6.0f})
    {
        auto *tempo = new ECTempo;
        tempo->SetTempo(at == 0.0f ? 100 : 140, 1);
        score->GetTempoEnv()->AddChild(Timed(tempo, at), 1);
    }
    for (int track = 1; track <= 2; ++track)
    {
        ECMeasure *first = conductor->GetMeasure(track, MCTime(0.0f), 0, 1);
        first->AddChild(Timed(new ECClef(static_cast<unsigned char>(track)), 0.0f), 1);
        first->AddChild(Timed(new ECKey(2, 0, 0), 0.0f), 1);
        // A clef change inside the score, for the edges of removed bars.
        conductor->GetMeasure(track, MCTime(8.0f), 0, 1)->AddChild(Timed(new ECClef(3), 8.0f), 1);
        for (int i = 0; i < 24; i += track * 2)
            conductor->GetMeasure(track, MCTime(static_cast<float>(i)), 0, 1)
                ->AddChild(Timed(CreateEventW(EVENT_ID_NOTE), static_cast<float>(i), static_cast<float>(track * 2)),
                           1);
    }
    score->RebuildStaffCaches();
    return doc;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool threaded = (MCCommandMgr::SetDocumentThread(), true);
    (void)threaded;
    if (size > 512)
        return 0;
    std::size_t next = 0;
    auto byte = [&]() -> unsigned { return next < size ? data[next++] : 0u; };

    ECPerformance *doc = Build();
    ECConductor *conductor = doc->GetConductor();
    ECConductorStaff *score = conductor->GetConductorStaff();
    // The shapes after each step still in the history, the first the score
    // as built; `done` of them are applied.
    std::vector<score_checks::TreeShape> history{score_checks::ShapeOf(doc)};
    std::size_t done = 1;
    for (int step = 0; step < 40 && next < size; ++step)
    {
        const unsigned op = byte() % 7;
        if (op == 5 || op == 6)
        {
            const bool undo = op == 5;
            if (undo ? done <= 1 : done >= history.size())
                continue;
            if ((undo ? doc->Undo(1) : doc->Redo(1)) != 1)
                Fail(undo ? "undo refused" : "redo refused");
            done += undo ? -1 : 1;
            if (!(score_checks::ShapeOf(doc) == history[done - 1]))
                Fail(std::string(undo ? "undo" : "redo") + " did not give back the tree");
            continue;
        }
        ECConductorStaff::MeasureArray &columns = score->GetConductorMeasures();
        const int bar = static_cast<int>(byte()) % columns.GetSize();
        const int signedIndex = static_cast<int>(static_cast<std::int8_t>(byte()));
        CCBase *command = nullptr;
        switch (op)
        {
        case 0: {
            const int numerator = 1 + static_cast<int>(byte() % 16);
            const int denominator = 1 << (byte() % 6);
            command = new CCAddMeter(Meter(numerator, denominator, columns.GetAt(bar)->GetTime()->GetSeconds()),
                                     nullptr);
            break;
        }
        case 1: {
            std::vector<ECBase *> meters = score_checks::Members(score->GetMeterEnv()->GetChildren());
            if (meters.size() < 2)
                continue; // the first meter is refused, which would leave the step open
            command = new CCRemoveMeter(meters[1 + static_cast<std::size_t>(bar) % (meters.size() - 1)]);
            break;
        }
        case 2:
            command = new CCAddMeasure(static_cast<int>(byte() % 4), signedIndex);
            break;
        default:
            command = new CCRemoveMeasure(static_cast<int>(byte() % 5), signedIndex);
            break;
        }
        const score_checks::TreeShape before = score_checks::ShapeOf(doc);
        if (!score_checks::RunStep(doc, command, L"edit " + std::to_wstring(step)))
            Fail("a command did not finish");
        const std::string problem = score_checks::CheckWhole(conductor);
        if (!problem.empty())
            Fail("after op " + std::to_string(op) + ": " + problem);
        const score_checks::TreeShape after = score_checks::ShapeOf(doc);
        history.resize(done);
        history.push_back(after);
        ++done;
        if (doc->Undo(1) != 1 || !(score_checks::ShapeOf(doc) == before))
            Fail("undo of op " + std::to_string(op) + " did not give back the tree");
        if (doc->Redo(1) != 1 || !(score_checks::ShapeOf(doc) == after))
            Fail("redo of op " + std::to_string(op) + " did not give back the tree");
    }
    doc->ClearUndo();
    doc->RemoveChildren(1);
    doc->Unref(1);
    MCCommandMgr::OnIdle();
    return 0;
}
