// The track commands: renumbering, undo and redo of the same objects, wave
// tracks and the chord staff, and the tracks they refuse.
#include "events/base/EventTestSupport.h"
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/commands/CCAdjustMeasureChildren.h>
#include <scoremodel/commands/CCCopyTracks.h>
#include <scoremodel/commands/CCGroupStaves.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/commands/CCRemoveTrack.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/MCGroup.h>

#include <algorithm>
#include <functional>

namespace
{
// Runs a synchronous removal of `track` in its own undo step; returns
// whether the command got through Process.
int Remove(ECPerformance *doc, ECTrack *track)
{
    auto *remove = new CCRemoveTrack(track);
    remove->Ref();
    remove->SetSynchronous(1);
    CString name(L"remove");
    MCCommandMgr::BeginUndo(doc, name);
    remove->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    const int removed = remove->GetCommandPhase() == CCBase::PhaseFinish;
    remove->Unref(1);
    return removed;
}
} // namespace

using TrackCommands = TrackTest;

TEST_F(TrackCommands, StavesAreRenumberedAndUndoAndRedoPutTheSameObjectBackAtItsNumber)
{
    CountedStaff *a = AddStaff();
    CountedStaff *b = AddStaff();
    auto *staff = new CountedStaff;
    auto *add = new CCAddTrack(staff, 1);
    add->Ref();
    add->SetSynchronous(1);
    BeginUndo();
    add->Apply(m_doc);
    EndUndo();
    EXPECT_EQ(add->GetTrackNumber(), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{staff, a, b}));

    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b}));
    EXPECT_EQ(a->GetTrack(), 1);
    EXPECT_EQ(staff->GetParents()->GetCount(), 0);
    EXPECT_EQ(g_liveTracks, 3) << "the command keeps the track alive";
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{staff, a, b}));
    EXPECT_EQ(staff->GetTrack(), 1);
    add->Unref(1);

    // Removing the first staff moves the ones behind down.
    ASSERT_TRUE(Remove(m_doc, staff));
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b}));
    EXPECT_EQ(a->GetTrack(), 1);
    EXPECT_EQ(b->GetTrack(), 2);
    EXPECT_EQ(staff->GetParents()->GetCount(), 0);
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{staff, a, b}));
    EXPECT_EQ(b->GetTrack(), 3);
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b}));

    // Once the history lets go, the removed staff dies.
    m_doc->ClearUndo();
    MCCommandMgr::OnIdle();
    EXPECT_EQ(g_liveTracks, 2);
}

TEST_F(TrackCommands, WaveTracksCarryNoInstrumentAndTheyAndTheChordStaffComeBackWhereTheyWere)
{
    CountedWaveTrack *w1 = AddWave();
    BeginUndo();
    ECTrack *w2 = m_conductor->GetTrack(3, 5, 1);
    EndUndo();
    ASSERT_NE(w2, nullptr);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1, w2})) << "a missing wave track is made at the end";
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1}));
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1, w2}));
    EXPECT_EQ(w2->GetTrack(), 2);

    ECStaff *chord = m_conductor->GetChordStaff();
    ASSERT_TRUE(Remove(m_doc, w1));
    EXPECT_EQ(w2->GetTrack(), 1);
    ASSERT_TRUE(Remove(m_doc, chord));
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1, w2}));
    EXPECT_EQ(w2->GetTrack(), 2);
    EXPECT_EQ(m_conductor->GetChordStaff(), chord);
}

TEST_F(TrackCommands, TracksThatCannotBePlacedOrAreNotPlacedAreRefusedAndNotLeaked)
{
    CountedStaff *a = AddStaff();
    // Placed already, no track at all, not a track the conductor takes, no document.
    EXPECT_EQ(CCAddTrack::AddNow(m_doc, a, -1), nullptr);
    EXPECT_EQ(CCAddTrack::AddNow(m_doc, nullptr, -1), nullptr);
    EXPECT_EQ(CCAddTrack::AddNow(m_doc, static_cast<ECTrack *>(RUNTIME_CLASS(ECTrack)->CreateObject()), -1), nullptr);
    EXPECT_EQ(CCAddTrack::AddNow(nullptr, new CountedStaff, -1), nullptr);
    EXPECT_EQ(g_liveTracks, 1);

    auto *stranger = new CountedStaff;
    stranger->Ref();
    EXPECT_FALSE(Remove(m_doc, stranger));
    EXPECT_FALSE(Remove(m_doc, nullptr));
    stranger->Unref(1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a}));
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
}

namespace
{
// The groups of a score as (first, last, kind, id) rows, primary then
// secondary.
std::vector<std::vector<int>> Groups(ECConductor *conductor)
{
    std::vector<std::vector<int>> rows;
    MCGroup &groups = conductor->GetConductorStaff()->GetGroup();
    for (MCGroup::GroupTable *table : {&groups.GetPrimaryGroup(), &groups.GetSecondaryGroup()})
        for (INT_PTR i = 0; i < table->GetSize(); ++i)
        {
            const MCGroup::tag_group &g = table->GetAt(i);
            rows.push_back({g.first, g.last, g.Kind(), g.Id(), g.InUse()});
        }
    return rows;
}

// Applies `command` in an undo step of its own; whether it got through.
bool Step(ECPerformance *doc, CCBase *command)
{
    command->Ref();
    command->SetSynchronous(1);
    CString name(L"group");
    MCCommandMgr::BeginUndo(doc, name);
    command->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    const bool done = command->GetCommandPhase() == CCBase::PhaseFinish;
    command->Unref(1);
    return done;
}
} // namespace

TEST_F(TrackCommands, GroupingStavesAndTakingAGroupAwayUndoToTheTablesBefore)
{
    for (int i = 0; i < 4; ++i)
        AddStaff();
    const auto plain = Groups(m_conductor);
    auto *brace = new CCGroupStaves(1, 2, 0);
    brace->Ref();
    ASSERT_TRUE(Step(m_doc, brace));
    const int id = brace->GetGroupId();
    const auto grouped = Groups(m_conductor);
    EXPECT_NE(grouped, plain);
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Groups(m_conductor), plain);
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Groups(m_conductor), grouped) << "a redo makes the same group, with the same id";
    EXPECT_EQ(brace->GetGroupId(), id);
    brace->Unref(1);

    // A group across that one rearranges the tables; undo puts them back.
    ASSERT_TRUE(Step(m_doc, new CCGroupStaves(2, 4, 0)));
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Groups(m_conductor), grouped);

    ASSERT_TRUE(Step(m_doc, CCGroupStaves::Ungroup(id)));
    EXPECT_EQ(Groups(m_conductor), plain);
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Groups(m_conductor), grouped);

    EXPECT_FALSE(Step(m_doc, CCGroupStaves::Ungroup(200))) << "no such group";
    EXPECT_FALSE(Step(m_doc, new CCGroupStaves(3, 1, 0))) << "last before first";
    EXPECT_FALSE(Step(m_doc, new CCGroupStaves)) << "nothing asked";
    EXPECT_EQ(Groups(m_conductor), grouped);
}

namespace
{
// Every event below `root`, depth first, each once.
std::vector<ECBase *> Below(ECBase *root)
{
    std::vector<ECBase *> out;
    std::function<void(ECBase *)> walk = [&](ECBase *e) {
        if (std::find(out.begin(), out.end(), e) != out.end())
            return;
        out.push_back(e);
        for (ECBase *child : Elements(e->GetChildren()))
            walk(child);
    };
    walk(root);
    return out;
}
} // namespace

TEST_F(TrackCommands, CopiedStavesHoldCopiesOfEverythingAndUndoTakesThemOut)
{
    CountedStaff *source = AddStaff();
    CountedStaff *other = AddStaff();
    MCTime end(7.0f); // two bars
    ASSERT_NE(m_conductor->GetConductorStaff()->GetConductorMeasureAtTime(end, 1, 1), nullptr);
    ECMeasure *bar = m_conductor->GetMeasure(1, MCTime(0.0f), 0, 1);
    ASSERT_NE(bar, nullptr);
    auto *chord = static_cast<ECChord *>(CreateEventW(EVENT_ID_CHORD));
    bar->AddChild(chord, 1);
    auto *slur = static_cast<ECSlur *>(CreateEventW(EVENT_ID_SLUR));
    source->AddChild(slur, 1);
    for (int i = 0; i < 2; ++i)
    {
        ECBase *note = CreateEventW(EVENT_ID_NOTE);
        bar->AddChild(note, 1);
        chord->AddChild(note, 1);
        slur->AddChild(note, 1);
    }
    const size_t events = Below(source).size();

    CArray<int, int> staves;
    staves.Add(1);
    auto *copy = new CCCopyTracks(staves, 2);
    copy->Ref();
    copy->SetSynchronous(1);
    CString name(L"copy");
    MCCommandMgr::BeginUndo(m_doc, name);
    copy->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    ASSERT_EQ(copy->GetCopies().size(), 1u);
    ECTrack *made = copy->GetCopies()[0];
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{source, made, other}));
    const std::vector<ECBase *> copied = Below(made);
    EXPECT_EQ(copied.size(), events) << "the same shape";
    for (ECBase *e : Below(source))
        EXPECT_EQ(std::find(copied.begin(), copied.end(), e), copied.end()) << "nothing shared";
    EXPECT_EQ(m_conductor->GetMeasure(2, MCTime(0.0f), 0, 1)->GetParents()->GetHead(), made)
        << "the copy's measures are the rows of its number";

    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{source, other}));
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{source, made, other})) << "the same copy comes back";
    copy->Unref(1);

    CArray<int, int> none;
    none.Add(9);
    auto *refused = new CCCopyTracks(none, -1);
    refused->Ref();
    refused->SetSynchronous(1);
    refused->Apply(m_doc);
    EXPECT_TRUE(refused->GetCopies().empty()) << "no staff 9";
    refused->Unref(1);
}

TEST_F(TrackCommands, EventsMoveToTheMeasureThatCoversThemAndBackOnUndo)
{
    AddStaff();
    MCTime last(7.0f); // two bars of 4.0
    ASSERT_NE(m_conductor->GetConductorStaff()->GetConductorMeasureAtTime(last, 1, 1), nullptr);
    ECMeasure *first = m_conductor->GetMeasure(1, MCTime(0.0f), 0, 1);
    ECMeasure *second = m_conductor->GetMeasure(1, MCTime(4.0f), 0, 1);
    // As a re-cut leaves them: a note of bar 2 still in bar 1, one past the
    // end in bar 2, one whose end runs past the score, one in place.
    struct Placed
    {
        float time, length;
        ECMeasure *in;
    } const placed[] = {{5.0f, 1.0f, first}, {9.0f, 1.0f, second}, {6.0f, 6.0f, second}, {1.0f, 1.0f, first}};
    std::vector<ECBase *> notes;
    for (const Placed &p : placed)
    {
        ECBase *note = CreateEventW(EVENT_ID_NOTE);
        MCTime t(p.time), d(p.length);
        note->SetTime(&t);
        note->SetDuration(&d);
        note->Ref();
        p.in->AddChild(note, 1);
        notes.push_back(note);
    }
    auto measureOf = [](ECBase *e) { return e->GetParents()->GetHead(); };

    auto *adjust = new CCAdjustMeasureChildren;
    adjust->Ref();
    adjust->SetTimeRange(MCTime(0.0f), MCTime::TimeMax());
    ASSERT_TRUE(Step(m_doc, adjust));
    // Measure numbers count from 1: bars 3 (8 to 12, for the note at 9) and
    // 4 (from 12, where the long note ends) were appended.
    EXPECT_EQ(adjust->GetMeasureInsertLocation(), 3);
    EXPECT_EQ(adjust->GetMeasureInsertCount(), 2);
    EXPECT_EQ(m_conductor->GetMaxMeasureNumber(), 4);
    EXPECT_EQ(measureOf(notes[0]), second);
    EXPECT_EQ(measureOf(notes[1]), m_conductor->GetMeasure(1, MCTime(9.0f), 0, 1));
    EXPECT_EQ(measureOf(notes[2]), second);
    EXPECT_EQ(measureOf(notes[3]), first);
    for (ECBase *note : notes)
        EXPECT_EQ(note->GetParents()->GetCount(), 1) << "in one measure only";

    ASSERT_EQ(m_doc->Undo(1), 1);
    for (size_t i = 0; i < notes.size(); ++i)
        EXPECT_EQ(measureOf(notes[i]), placed[i].in) << i;
    EXPECT_EQ(m_conductor->GetMaxMeasureNumber(), 2) << "the bars made at the end went";
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(measureOf(notes[0]), second);
    EXPECT_EQ(m_conductor->GetMaxMeasureNumber(), 4);
    adjust->Unref(1);
    for (ECBase *note : notes)
        note->Unref(1);
}
