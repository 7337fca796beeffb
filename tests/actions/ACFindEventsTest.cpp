#include "ACTestTree.h"

#include <scoremodel/actions/ACCount.h>
#include <scoremodel/actions/ACFindData.h>
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACFindFirstEvent.h>
#include <scoremodel/actions/ACFindMirror.h>
#include <scoremodel/actions/ACFindObjects.h>
#include <scoremodel/actions/ACFindVoiceTrack.h>
#include <scoremodel/actions/ACGetVoiceTrack.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/MCDataArray.h>

#include <gtest/gtest.h>

#include <map>

namespace
{
// staff(55) -> measure(32) -> note, rest, note
//           -> slur(54) holding the two notes as well
struct Staff
{
    TestTree tree{new TestTimed(EVENT_ID_STAFF)};
    ECBase *staff = tree.Root();
    ECBase *measure = tree.Timed(staff, EVENT_ID_MEASURE, 0.0f);
    ECBase *n1 = tree.Timed(measure, EVENT_ID_NOTE, 0.0f);
    ECBase *rest = tree.Timed(measure, EVENT_ID_REST, 1.0f);
    ECBase *n2 = tree.Timed(measure, EVENT_ID_NOTE, 2.0f);
    ECBase *slur = tree.Timed(staff, EVENT_ID_SLUR, 0.0f);

    Staff()
    {
        slur->AddChild(n1, 0);
        slur->AddChild(n2, 0);
    }
};

// Gives an event an attachment of a type, as a plug-in would.
void Attach(ECBase *e, int type)
{
    e->GetData()->SetAtGrow(MCDataArray::TypeToIndex(type), new DCBase);
}

TEST(ACFindEventsTest, MaxCountOfOneStopsAtTheFirstMatch)
{
    Staff s;
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_NOTE);
    find.SetMaxEventCount(1);
    EXPECT_EQ(find.Apply(s.staff), ACBase::ResultStop);
    EXPECT_EQ(find.GetEventCount(), 1);
    EXPECT_EQ(ListOf(find.GetEvents()), std::vector<ECBase *>{s.n1});
}

TEST(ACFindEventsTest, SearchFromAClippedSlurFindsOnlyTheSlur)
{
    Staff s;
    ACFindEvents find;
    EXPECT_EQ(find.Apply(s.slur), ACBase::ResultSkip);
    EXPECT_EQ(ListOf(find.GetEvents()), std::vector<ECBase *>{s.slur});
}

TEST(ACFindEventsTest, NotesUnderASlurAreFoundOnceThroughTheirMeasure)
{
    Staff s;
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_NOTE);
    find.Apply(s.staff);
    EXPECT_EQ(ListOf(find.GetEvents()), (std::vector<ECBase *>{s.n1, s.n2}));
}

TEST(ACFindEventsTest, WithoutResetASecondApplyListsTheEventsTwice)
{
    Staff s;
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_REST);
    find.Apply(s.measure);
    find.Apply(s.measure);
    EXPECT_EQ(ListOf(find.GetEvents()), (std::vector<ECBase *>{s.rest, s.rest}));
    EXPECT_EQ(find.GetEventCount(), 2);

    find.Reset();
    find.Apply(s.measure);
    EXPECT_EQ(ListOf(find.GetEvents()), std::vector<ECBase *>{s.rest});
    EXPECT_EQ(find.GetEventCount(), 1);
}

TEST(ACFindEventsTest, TypeListDecidesWhatMatches)
{
    Staff s;
    const struct
    {
        const char *name;
        std::vector<int> add;
        std::vector<int> remove;
        bool removeAll;
        std::vector<ECBase *Staff::*> expected;
    } cases[] = {
        {"no types: everything", {}, {}, false,
         {&Staff::staff, &Staff::measure, &Staff::n1, &Staff::rest, &Staff::n2, &Staff::slur}},
        {"one type", {EVENT_ID_NOTE}, {}, false, {&Staff::n1, &Staff::n2}},
        {"two types", {EVENT_ID_REST, EVENT_ID_MEASURE}, {}, false, {&Staff::measure, &Staff::rest}},
        {"doubles are harmless", {EVENT_ID_REST, EVENT_ID_REST}, {}, false, {&Staff::rest}},
        {"remove takes the first match", {EVENT_ID_REST, EVENT_ID_NOTE, EVENT_ID_REST}, {EVENT_ID_REST}, false,
         {&Staff::n1, &Staff::rest, &Staff::n2}},
        {"removing the only type matches all again", {EVENT_ID_SLUR}, {EVENT_ID_SLUR}, false,
         {&Staff::staff, &Staff::measure, &Staff::n1, &Staff::rest, &Staff::n2, &Staff::slur}},
        {"removing an absent type changes nothing", {EVENT_ID_SLUR}, {EVENT_ID_NOTE}, false, {&Staff::slur}},
        {"remove all matches all", {EVENT_ID_SLUR}, {}, true,
         {&Staff::staff, &Staff::measure, &Staff::n1, &Staff::rest, &Staff::n2, &Staff::slur}},
    };
    for (const auto &tc : cases)
    {
        // Three spare slots of -1 must not count as types.
        ACFindEvents find(3);
        for (int id : tc.add)
            find.AddEvtType(id);
        for (int id : tc.remove)
            find.RemoveEvtType(id);
        if (tc.removeAll)
            find.RemoveEvtTypes();
        find.Apply(s.staff);
        std::vector<ECBase *> expected;
        for (auto member : tc.expected)
            expected.push_back(s.*member);
        EXPECT_EQ(ListOf(find.GetEvents()), expected) << tc.name;
    }
}

TEST(ACFindEventsTest, AddEvtTypesCopiesAnotherActionsTypes)
{
    Staff s;
    ACFindEvents model(0);
    model.AddEvtType(EVENT_ID_REST);
    model.AddEvtType(EVENT_ID_SLUR);
    ACFindEvents find(0);
    find.AddEvtTypes(model.GetEventTypes());
    find.AddEvtTypes(find.GetEventTypes());
    EXPECT_EQ(find.GetEventTypeCount(), 4);
    find.Apply(s.staff);
    EXPECT_EQ(ListOf(find.GetEvents()), (std::vector<ECBase *>{s.rest, s.slur}));
}

TEST(ACFindEventsTest, FoundEventsStayAliveAfterLeavingTheTree)
{
    Staff s;
    ACFindEvents find(1);
    find.AddEvtType(EVENT_ID_REST);
    find.Apply(s.staff);
    s.measure->RemoveChild(s.rest, 1);
    ASSERT_EQ(find.GetEventCount(), 1);
    EXPECT_EQ(find.GetEvents().GetHead()->GetEventId(), EVENT_ID_REST);
    EXPECT_EQ(find.GetEvents().GetHead()->GetRefCount(), 1);
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

    ACFindData byDefault(1);
    EXPECT_EQ(byDefault.GetViewCode(), 0);
    byDefault.AddEvtType(EVENT_ID_NOTE);
    byDefault.Apply(s.staff);
    EXPECT_TRUE(byDefault.GetEvents().IsEmpty());
}

std::map<ECBase *, ECBase *> &MirrorMap()
{
    static std::map<ECBase *, ECBase *> map;
    return map;
}

ECBase *ResolveForTest(ECBase *mirror)
{
    auto it = MirrorMap().find(mirror);
    return it == MirrorMap().end() ? nullptr : it->second;
}

TEST(ACFindMirrorTest, FindsTheMirrorsOfOneEventOrAll)
{
    TestTree tree(new TestTimed(EVENT_ID_CONDUCTOR_STAFF));
    ECBase *meter = tree.Timed(tree.Root(), EVENT_ID_METER);
    ECBase *key = tree.Timed(tree.Root(), EVENT_ID_KEY);
    ECBase *m1 = tree.Timed(tree.Root(), EVENT_ID_MIRROR);
    ECBase *m2 = tree.Timed(tree.Root(), EVENT_ID_MIRROR);
    ECBase *m3 = tree.Timed(tree.Root(), EVENT_ID_MIRROR);
    MirrorMap() = {{m1, meter}, {m2, key}, {m3, meter}};
    ACFindMirror::SetMirrorResolver(ResolveForTest);

    ACFindMirror ofMeter(meter);
    ofMeter.Apply(tree.Root());
    EXPECT_EQ(ListOf(ofMeter.GetEvents()), (std::vector<ECBase *>{m1, m3}));

    ACFindMirror all;
    all.Apply(tree.Root());
    EXPECT_EQ(ListOf(all.GetEvents()), (std::vector<ECBase *>{m1, m2, m3}));

    // Without a resolver a mirror mirrors nothing.
    ACFindMirror::SetMirrorResolver(nullptr);
    MirrorMap().clear();
    ACFindMirror unresolved(key);
    unresolved.Apply(tree.Root());
    EXPECT_TRUE(unresolved.GetEvents().IsEmpty());
}

TEST(ACFindVoiceTrackTest, MatchesVoiceAndTrackWithTheirWildcards)
{
    TestTree tree(new TestTimeless(EVENT_ID_MEASURE));
    TestTimed *bareNote = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    TestTimed *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    TestTimed *grace = tree.Timed(tree.Root(), EVENT_ID_GRACE_NOTE);
    TestTimed *rest = tree.Timed(tree.Root(), EVENT_ID_REST);
    TestTimed *clef = tree.Timed(tree.Root(), EVENT_ID_CLEF);
    bareNote->SetVoiceTrack(2, 5);
    note->SetVoiceTrack(2, 5);
    grace->SetVoiceTrack(3, 5);
    rest->SetVoiceTrack(2, 6);
    clef->SetVoiceTrack(14, 5);
    Attach(note, 0);
    Attach(grace, 0);

    const struct
    {
        int voice;
        int track;
        std::vector<ECBase *> expected;
    } cases[] = {
        {15, 0x7FF, {note, grace, rest, clef}},
        {14, 0x7FF, {note, grace, rest, clef}},
        {2, 0x7FF, {note, rest}},
        {15, 5, {note, grace, clef}},
        {2, 5, {note}},
        {3, 6, {}},
    };
    for (const auto &vc : cases)
    {
        ACFindVoiceTrack find(0);
        find.SetVoice(vc.voice);
        find.SetTrack(vc.track);
        find.Apply(tree.Root());
        EXPECT_EQ(ListOf(find.GetEvents()), vc.expected) << vc.voice << "/" << vc.track;
    }
}

TEST(ACFindVoiceTrackTest, OutOfRangeFilterValuesAreIgnored)
{
    ACFindVoiceTrack find;
    find.SetVoice(16);
    find.SetTrack(0x800);
    find.SetVoice(-1);
    find.SetTrack(-1);
    EXPECT_EQ(find.GetVoice(), 15);
    EXPECT_EQ(find.GetTrack(), 0x7FF);
}

TEST(ACCountTest, CountsMatchingEventsAndRestartsOnlyAfterReset)
{
    Staff s;
    ACCount count(1);
    count.AddEvtType(EVENT_ID_NOTE);
    EXPECT_EQ(count.Apply(s.staff), ACBase::ResultContinue);
    EXPECT_EQ(count.GetEventCount(), 2);
    count.Apply(s.measure);
    EXPECT_EQ(count.GetEventCount(), 4);
    count.Reset();
    count.RemoveEvtTypes();
    count.Apply(s.staff);
    EXPECT_EQ(count.GetEventCount(), 6);
}

TEST(ACFindFirstEventTest, StopsAtTheFirstMatchInWalkOrder)
{
    Staff s;
    ACFindFirstEvent find(1);
    find.AddEvtType(EVENT_ID_NOTE);
    EXPECT_EQ(find.Apply(s.staff), ACBase::ResultStop);
    EXPECT_EQ(find.GetEvent(), s.n1);

    ACFindFirstEvent none(1);
    none.AddEvtType(EVENT_ID_TIE);
    EXPECT_EQ(none.Apply(s.staff), ACBase::ResultContinue);
    EXPECT_EQ(none.GetEvent(), nullptr);

    // Walking up, the note's measure line comes first, then its slur.
    ACFindFirstEvent up(1);
    up.AddEvtType(EVENT_ID_SLUR);
    up.SetReverse(1);
    up.ClipNone();
    up.Apply(s.n2);
    EXPECT_EQ(up.GetEvent(), s.slur);
}

TEST(ACFindFirstEventTest, ResetForgetsTheEventFound)
{
    Staff s;
    ACFindFirstEvent find(1);
    find.AddEvtType(EVENT_ID_REST);
    find.Apply(s.staff);
    ASSERT_EQ(find.GetEvent(), s.rest);
    find.Reset();
    find.Apply(s.slur);
    EXPECT_EQ(find.GetEvent(), nullptr);
}

TEST(ACFindObjectsTest, TellsWhetherTheWalkMeetsAnObjectOfTheSet)
{
    Staff s;
    ACFindObjects find(s.rest);
    EXPECT_EQ(find.Apply(s.measure), ACBase::ResultStop);
    EXPECT_TRUE(find.ObjectsFound());

    // The slur is clipped and does not hold the rest; a new walk clears the flag.
    find.Reset();
    EXPECT_EQ(find.Apply(s.slur), ACBase::ResultSkip);
    EXPECT_FALSE(find.ObjectsFound());

    ACBase::EventList set;
    set.AddTail(s.n2);
    set.AddTail(s.slur);
    ACFindObjects fromList(&set);
    fromList.RemoveObject(s.n2);
    fromList.Apply(s.measure);
    EXPECT_FALSE(fromList.ObjectsFound());
    fromList.Reset();
    fromList.Apply(s.staff);
    EXPECT_TRUE(fromList.ObjectsFound());

    fromList.RemoveObjects();
    fromList.Reset();
    fromList.Apply(s.staff);
    EXPECT_FALSE(fromList.ObjectsFound());
    EXPECT_TRUE(fromList.GetObjects().IsEmpty());
}

TEST(ACGetVoiceTrackTest, WalkingUpFromAnEventWithoutAWordGivesItsOwners)
{
    TestTree tree(new TestTimed(EVENT_ID_MEASURE));
    TestTimed *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    note->SetVoiceTrack(3, 9);
    ECBase *accent = tree.Timeless(note, EVENT_ID_ACCENT);

    ACGetVoiceTrack get(1);
    EXPECT_EQ(get.Apply(accent), ACBase::ResultStop);
    EXPECT_EQ(get.GetVoiceTrack().GetVoice(), 3);
    EXPECT_EQ(get.GetVoiceTrack().GetTrack(), 9);

    ACGetVoiceTrack nothing;
    EXPECT_EQ(nothing.Apply(accent), ACBase::ResultContinue);
    EXPECT_EQ(nothing.GetVoiceTrack().GetValue(), 0x7FFF);
}
} // namespace
