// Cost of adding notes under undo: N notes added to a score by one CCAdd in
// one undo step, the step undone (a CCRemove of the same notes) and redone
// (the same CCAdd again), for N = 10,000 and 100,000 notes, four to a bar of
// one staff.
//
// Every step must cost a constant per note, so the program prints ns per
// note for each N and phase, and the goal: the time per note at 100,000
// within 1.5 times the time at 10,000 for every phase (the larger score no
// longer fits the caches, which accounts for part of any rise). CPU time of
// the thread, best of three rounds.
#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <algorithm>
#include <cstdio>
#include <time.h>
#include <vector>

namespace
{
double Now()
{
    struct timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return static_cast<double>(ts.tv_sec) * 1e9 + static_cast<double>(ts.tv_nsec);
}

struct PerNote
{
    double add, undo, redo;
};

PerNote Measure(int notes)
{
    PerNote best{1e300, 1e300, 1e300};
    for (int round = 0; round < 3; ++round)
    {
        MCDocumentOwner doc = MCDocumentOwner::Make();
        ECConductor *conductor = doc->GetConductor();
        CCAddTrack::AddNow(doc.Get(), new ECStaff, -1);
        MCTime last(static_cast<float>(notes) - 0.5f);
        conductor->GetConductorStaff()->GetConductorMeasureAtTime(last, 1, 16);

        FCMidi none = FCMidi::MidiNull();
        auto *add = new CCAdd;
        add->Ref();
        add->SetSynchronous(1);
        for (int i = 0; i < notes; ++i)
        {
            auto *note = new ECNote;
            MCTime at(static_cast<float>(i));
            note->SetTime(&at);
            add->Add(note, conductor->GetMeasure(1, at, 0, 1), none);
        }
        CString name(L"notes");
        double start = Now();
        MCCommandMgr::BeginUndo(doc.Get(), name);
        add->Apply(doc.Get());
        MCCommandMgr::EndUndo(doc.Get());
        const double added = Now() - start;
        start = Now();
        doc->Undo(1);
        const double undone = Now() - start;
        start = Now();
        doc->Redo(1);
        const double redone = Now() - start;
        add->Unref(1);
        best.add = std::min(best.add, added / notes);
        best.undo = std::min(best.undo, undone / notes);
        best.redo = std::min(best.redo, redone / notes);
    }
    return best;
}
} // namespace

int main()
{
    const PerNote small = Measure(10000);
    const PerNote large = Measure(100000);
    std::printf("ns per note     add      undo     redo\n");
    std::printf("  10,000     %7.1f  %7.1f  %7.1f\n", small.add, small.undo, small.redo);
    std::printf("  100,000    %7.1f  %7.1f  %7.1f\n", large.add, large.undo, large.redo);
    bool met = true;
    const char *names[] = {"add", "undo", "redo"};
    const double ratios[] = {large.add / small.add, large.undo / small.undo, large.redo / small.redo};
    for (int i = 0; i < 3; ++i)
    {
        std::printf("%s: 100,000 over 10,000 per note %.2f (goal <= 1.5) %s\n", names[i], ratios[i],
                    ratios[i] <= 1.5 ? "met" : "MISSED");
        met = met && ratios[i] <= 1.5;
    }
    std::printf("goal %s\n", met ? "met" : "MISSED");
    return 0;
}
