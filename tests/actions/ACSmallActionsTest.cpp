// The small actions (count, voice/track reader, object finder), the range
// setters of the time actions, and the clip and bypass lists for ids beyond
// the bit mask, which take the list path.
#include "ACTestTree.h"

#include <scoremodel/actions/ACCount.h>
#include <scoremodel/actions/ACDeltaTime.h>
#include <scoremodel/actions/ACFindObjects.h>
#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/actions/ACGetVoiceTrack.h>

#include <gtest/gtest.h>

#include <functional>

namespace
{
// staff -> one container per id, each holding a plain note.
struct IdTree
{
    TestTree tree{new TestTimeless(EVENT_ID_STAFF)};
    std::vector<ECBase *> containers;
    std::vector<ECBase *> leaves;
    explicit IdTree(std::initializer_list<int> ids)
    {
        for (int id : ids)
        {
            containers.push_back(tree.Timed(tree.Root(), id));
            leaves.push_back(tree.Timed(containers.back(), EVENT_ID_NOTE));
        }
    }
};

TEST(ACBaseListsTest, ClipAndBypassIdsAtAndBeyondTheMaskEdge)
{
    const std::initializer_list<int> ids = {126, 127, 128, 129, 200, -5};
    struct Case
    {
        const char *what;
        std::function<void(ACBase &)> setUp;
        std::vector<int> clipped;  // containers visited but not entered
        std::vector<int> bypassed; // containers not visited, children visited
    };
    const Case cases[] = {
        {"clip the last id of the mask", [](ACBase &a) { a.ClipEvtType(127); }, {127}, {}},
        {"clip the first id past it", [](ACBase &a) { a.ClipEvtType(128); }, {128}, {}},
        {"clip two past it and a negative one",
         [](ACBase &a) {
             a.ClipEvtType(200);
             a.ClipEvtType(-5);
             a.ClipEvtType(128);
         },
         {128, 200, -5}, {}},
        {"ClipNone forgets ids past the mask",
         [](ACBase &a) {
             a.ClipEvtType(128);
             a.ClipNone();
             a.ClipEvtType(126);
         },
         {126}, {}},
        {"bypass the last id of the mask", [](ACBase &a) { a.BypassEvtType(127); }, {}, {127}},
        {"bypass ids past it", [](ACBase &a) {
             a.BypassEvtType(129);
             a.BypassEvtType(200);
         }, {}, {129, 200}},
        {"BypassNone forgets ids past the mask",
         [](ACBase &a) {
             a.BypassEvtType(128);
             a.BypassNone();
             a.BypassEvtType(126);
         },
         {}, {126}},
        {"-1 is none, not an id",
         [](ACBase &a) {
             a.ClipEvtType(128);
             a.ClipEvtType(-1);
             a.BypassEvtType(128);
             a.BypassEvtType(-1);
         },
         {}, {}},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        IdTree t(ids);
        RecordingAction<ACBase> walk;
        walk.ClipNone();
        walk.BypassNone();
        c.setUp(walk);
        walk.Apply(t.tree.Root());

        std::vector<ECBase *> expected = {t.tree.Root()};
        size_t i = 0;
        for (int id : ids)
        {
            const bool clipped = std::find(c.clipped.begin(), c.clipped.end(), id) != c.clipped.end();
            const bool bypassed = std::find(c.bypassed.begin(), c.bypassed.end(), id) != c.bypassed.end();
            if (!bypassed)
                expected.push_back(t.containers[i]);
            if (!clipped)
                expected.push_back(t.leaves[i]);
            ++i;
        }
        EXPECT_EQ(walk.visited, expected);
    }
}

TEST(ACCountTest, CountsMatchingEventsAndStartsOverOnlyAfterReset)
{
    IdTree t({EVENT_ID_MEASURE, EVENT_ID_MEASURE, EVENT_ID_REST});
    ACCount all;
    EXPECT_EQ(all.Apply(t.tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(all.GetEventCount(), 7) << "the staff, three containers, three notes";

    ACCount some(1);
    some.AddEvtType(EVENT_ID_MEASURE);
    some.AddEvtType(EVENT_ID_NOTE);
    some.Apply(t.tree.Root());
    EXPECT_EQ(some.GetEventCount(), 5);
    some.Apply(t.containers[2]);
    EXPECT_EQ(some.GetEventCount(), 6) << "without Reset the count goes on";
    some.Reset();
    some.Apply(t.containers[2]);
    EXPECT_EQ(some.GetEventCount(), 1);
    some.RemoveEvtType(EVENT_ID_NOTE);
    some.Reset();
    some.Apply(t.tree.Root());
    EXPECT_EQ(some.GetEventCount(), 2);
    EXPECT_EQ(some.DoAction(nullptr), ACBase::ResultFailed);
    EXPECT_EQ(some.Apply(static_cast<ECBase *>(nullptr)), ACBase::ResultFailed);
}

TEST(ACGetVoiceTrackTest, TakesTheFirstWordInWalkOrderAndKeepsTheLastOneFound)
{
    // staff (no word) -> note (voice 2, track 5) -> accent (no word)
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    TestTimed *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    note->SetVoiceTrack(2, 5);
    TestTimeless *accent = tree.Timeless(note, EVENT_ID_ACCENT);
    TestTimed *second = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    second->SetVoiceTrack(3, 6);

    ACGetVoiceTrack up(1);
    EXPECT_EQ(up.GetVoiceTrack().GetValue(), 0x7FFF) << "voice 15, track 0x7FF before any walk";
    EXPECT_EQ(up.Apply(accent), ACBase::ResultStop);
    EXPECT_EQ(up.GetVoiceTrack().GetVoice(), 2);
    EXPECT_EQ(up.GetVoiceTrack().GetTrack(), 5);

    ACGetVoiceTrack down;
    EXPECT_EQ(down.Apply(tree.Root()), ACBase::ResultStop);
    EXPECT_EQ(down.GetVoiceTrack().GetTrack(), 5) << "the first note, not the second";

    // A walk that meets no word leaves the last one found.
    down.Reset();
    EXPECT_EQ(down.Apply(accent), ACBase::ResultContinue);
    EXPECT_EQ(down.GetVoiceTrack().GetTrack(), 5);
    EXPECT_EQ(down.DoAction(nullptr), ACBase::ResultFailed);
}

TEST(ACFindObjectsTest, TheSetGrowsAndShrinksByOccurrenceAlsoPastTheIndexedSize)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    std::vector<ECBase *> notes;
    for (int i = 0; i < 100; ++i)
        notes.push_back(tree.Timed(tree.Root(), EVENT_ID_NOTE, float(i)));
    auto found = [&](ACFindObjects &find, ECBase *from) {
        find.Reset();
        find.Apply(from);
        return find.ObjectsFound();
    };

    // 80 events: the list keeps an index from 64 on.
    ACBase::EventList some;
    for (int i = 0; i < 80; ++i)
        some.AddTail(notes[i]);
    ACFindObjects find(&some);
    EXPECT_EQ(find.GetObjects().GetCount(), 80);
    EXPECT_TRUE(found(find, notes[79]));
    EXPECT_FALSE(found(find, notes[80]));

    find.AddObject(notes[90]);
    find.AddObject(notes[90]);
    find.AddObject(nullptr);
    EXPECT_EQ(find.GetObjects().GetCount(), 82);
    find.RemoveObject(notes[90]);
    EXPECT_TRUE(found(find, notes[90])) << "one of two occurrences removed";
    find.RemoveObject(notes[90]);
    EXPECT_FALSE(found(find, notes[90]));
    find.RemoveObject(notes[95]); // not in the set
    find.RemoveObject(nullptr);
    EXPECT_EQ(find.GetObjects().GetCount(), 80);
    for (int i = 0; i < 70; ++i)
        find.RemoveObject(notes[i]);
    EXPECT_FALSE(found(find, notes[3]));
    EXPECT_TRUE(found(find, notes[75]));
    EXPECT_EQ(find.Apply(tree.Root()), ACBase::ResultStop);

    find.AddObjects(&find.GetObjects()); // itself: nothing
    find.AddObjects(nullptr);
    EXPECT_EQ(find.GetObjects().GetCount(), 10);
    find.AddObjects(&some);
    EXPECT_EQ(find.GetObjects().GetCount(), 90);
    find.RemoveObjects();
    EXPECT_TRUE(find.GetObjects().IsEmpty());
    EXPECT_FALSE(found(find, tree.Root()));
    EXPECT_EQ(notes[0]->GetRefCount(), 2) << "the tree and the test's list hold it, the emptied set no more";

    ACFindObjects none(static_cast<ECBase *>(nullptr));
    EXPECT_TRUE(none.GetObjects().IsEmpty());
    ACFindObjects noList(static_cast<ACBase::EventList *>(nullptr));
    EXPECT_TRUE(noList.GetObjects().IsEmpty());
    EXPECT_EQ(none.DoAction(nullptr), ACBase::ResultFailed);
    some.RemoveAll();
}

} // namespace
