#include "ACTestTree.h"

#include <scoremodel/actions/ACFindData.h>
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACFindMirror.h>
#include <scoremodel/actions/ACFindObjects.h>
#include <scoremodel/actions/ACFindVoiceTrack.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/MCDataArray.h>

#include <gtest/gtest.h>

#include <map>

namespace
{
// staff -> measure -> note, rest, note;  staff -> slur, which holds both notes too
struct Staff
{
    TestTree tree{new TestTimed(EVENT_ID_STAFF)};
    ECBase *staff = tree.Root();
    ECBase *measure = tree.Timed(staff, EVENT_ID_MEASURE, 0.0f);
    TestTimed *n1 = tree.Timed(measure, EVENT_ID_NOTE, 0.0f);
    TestTimed *rest = tree.Timed(measure, EVENT_ID_REST, 1.0f);
    TestTimed *n2 = tree.Timed(measure, EVENT_ID_NOTE, 2.0f);
    ECBase *slur = tree.Timed(staff, EVENT_ID_SLUR, 0.0f);
    Staff()
    {
        slur->AddChild(n1, 0);
        slur->AddChild(n2, 0);
    }
};

void Attach(ECBase *e, int type)
{
    e->GetData()->SetAtGrow(MCDataArray::TypeToIndex(type), new DCBase);
}

TEST(ACFindEventsTest, MaxCountStopsTheWalkAndWithoutResetFoundEventsAccumulate)
{
    Staff s;
    ACFindEvents first(1);
    first.AddEvtType(EVENT_ID_NOTE);
    first.SetMaxEventCount(1);
    EXPECT_EQ(first.Apply(s.staff), ACBase::ResultStop);
    EXPECT_EQ(ListOf(first.GetEvents()), std::vector<ECBase *>{s.n1});

    ACFindEvents rests(1);
    rests.AddEvtType(EVENT_ID_REST);
    rests.Apply(s.measure);
    rests.Apply(s.measure);
    EXPECT_EQ(ListOf(rests.GetEvents()), (std::vector<ECBase *>{s.rest, s.rest}));
    rests.Reset();
    rests.Apply(s.measure);
    EXPECT_EQ(rests.GetEventCount(), 1);

    ACFindEvents fromSlur; // a clipped start is listed, its notes are not
    EXPECT_EQ(fromSlur.Apply(s.slur), ACBase::ResultSkip);
    EXPECT_EQ(ListOf(fromSlur.GetEvents()), std::vector<ECBase *>{s.slur});
}

TEST(ACFindEventsTest, TypeListDecidesWhatMatches)
{
    Staff s;
    const std::vector<ECBase *> all{s.staff, s.measure, s.n1, s.rest, s.n2, s.slur};
    const struct
    {
        std::vector<int> add, remove;
        std::vector<ECBase *> expected;
    } cases[] = {
        {{}, {}, all},
        {{EVENT_ID_NOTE}, {}, {s.n1, s.n2}},
        {{EVENT_ID_REST, EVENT_ID_MEASURE, EVENT_ID_REST}, {}, {s.measure, s.rest}},
        {{EVENT_ID_REST, EVENT_ID_NOTE, EVENT_ID_REST}, {EVENT_ID_REST}, {s.n1, s.rest, s.n2}},
        {{EVENT_ID_SLUR}, {EVENT_ID_SLUR}, all},
        {{EVENT_ID_SLUR}, {EVENT_ID_NOTE}, {s.slur}},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
    {
        ACFindEvents find(3); // spare slots of -1 are not types
        for (int id : cases[i].add)
            find.AddEvtType(id);
        for (int id : cases[i].remove)
            find.RemoveEvtType(id);
        find.Apply(s.staff);
        EXPECT_EQ(ListOf(find.GetEvents()), cases[i].expected) << "case " << i;
    }
}

TEST(ACFindDataTest, FindsOnlyEventsCarryingTheViewCodeAndCreatesNone)
{
    Staff s;
    Attach(s.n2, 3);
    Attach(s.rest, 0);
    ACFindData find;
    find.SetViewCode(3);
    find.Apply(s.staff);
    EXPECT_EQ(ListOf(find.GetEvents()), std::vector<ECBase *>{s.n2});
    EXPECT_EQ(s.n1->GetData(3, 0), nullptr);
}

std::map<ECBase *, ECBase *> g_mirrors;

ECBase *ResolveForTest(ECBase *mirror)
{
    auto it = g_mirrors.find(mirror);
    return it == g_mirrors.end() ? nullptr : it->second;
}

TEST(ACFindMirrorTest, FindsTheMirrorsOfOneEventOrAll)
{
    TestTree tree(new TestTimed(EVENT_ID_CONDUCTOR_STAFF));
    ECBase *meter = tree.Timed(tree.Root(), EVENT_ID_METER);
    ECBase *key = tree.Timed(tree.Root(), EVENT_ID_KEY);
    ECBase *m1 = tree.Timed(tree.Root(), EVENT_ID_MIRROR);
    ECBase *m2 = tree.Timed(tree.Root(), EVENT_ID_MIRROR);
    g_mirrors = {{m1, meter}, {m2, key}};
    const ACFindMirror::MIRRORFUNC installed = ACFindMirror::SetMirrorResolver(ResolveForTest);
    ACFindMirror ofMeter(meter), all;
    ofMeter.Apply(tree.Root());
    all.Apply(tree.Root());
    EXPECT_EQ(ListOf(ofMeter.GetEvents()), std::vector<ECBase *>{m1});
    EXPECT_EQ(ListOf(all.GetEvents()), (std::vector<ECBase *>{m1, m2}));

    // Without a resolver a mirror mirrors nothing.
    ACFindMirror::SetMirrorResolver(nullptr);
    ACFindMirror unresolved(meter);
    unresolved.Apply(tree.Root());
    EXPECT_TRUE(unresolved.GetEvents().IsEmpty());
    ACFindMirror::SetMirrorResolver(installed);
}

TEST(ACFindVoiceTrackTest, MatchesVoiceAndTrackWithTheirWildcards)
{
    TestTree tree(new TestTimeless(EVENT_ID_MEASURE));
    TestTimed *bare = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    TestTimed *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    TestTimed *grace = tree.Timed(tree.Root(), EVENT_ID_GRACE_NOTE);
    TestTimed *rest = tree.Timed(tree.Root(), EVENT_ID_REST);
    TestTimed *clef = tree.Timed(tree.Root(), EVENT_ID_CLEF);
    bare->SetVoiceTrack(2, 5);
    note->SetVoiceTrack(2, 5);
    grace->SetVoiceTrack(3, 5);
    rest->SetVoiceTrack(2, 6);
    clef->SetVoiceTrack(14, 5);
    Attach(note, 0);
    Attach(grace, 0);
    const struct
    {
        int voice, track;
        std::vector<ECBase *> expected;
    } cases[] = {
        {15, 0x7FF, {note, grace, rest, clef}}, {14, 0x7FF, {note, grace, rest, clef}}, {2, 0x7FF, {note, rest}},
        {15, 5, {note, grace, clef}},           {2, 5, {note}},                         {3, 6, {}},
    };
    for (const auto &vc : cases)
    {
        ACFindVoiceTrack find;
        find.SetVoice(vc.voice);
        find.SetTrack(vc.track);
        find.Apply(tree.Root());
        EXPECT_EQ(ListOf(find.GetEvents()), vc.expected) << vc.voice << "/" << vc.track;
    }
}

TEST(ACFindObjectsTest, StopsAtAnObjectOfTheSetAndClearsTheFlagOnANewWalk)
{
    Staff s;
    ACFindObjects find(s.rest);
    EXPECT_EQ(find.Apply(s.measure), ACBase::ResultStop);
    EXPECT_TRUE(find.ObjectsFound());
    find.Reset();
    find.Apply(s.slur); // clipped, and does not hold the rest
    EXPECT_FALSE(find.ObjectsFound());
}
} // namespace
