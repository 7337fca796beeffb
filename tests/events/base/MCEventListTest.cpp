// The event list: reference counting of its nodes, time-ordered insertion,
// the searches, the exchange sort's exact order, and the list clean-ups.
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/base/MCEventList.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace
{
using EventList = CTypedPtrList<MCEventList, ECBase *>;

// Events that outlive one list: the fixture holds one reference on each.
class MCEventListTest : public ::testing::Test
{
protected:
    ~MCEventListTest() override
    {
        for (ECBase *e : m_held)
            e->Unref(1);
    }

    TestLeaf *Leaf(float time, int id = EVENT_ID_WITH_TIME)
    {
        TestLeaf *leaf = TestLeaf::Make(time);
        leaf->SetId(id);
        Hold(leaf);
        return leaf;
    }
    // An event without a time.
    ECBase *Timeless()
    {
        ECBase *e = new ECBase;
        Hold(e);
        return e;
    }
    void Hold(ECBase *e)
    {
        e->Ref();
        m_held.push_back(e);
    }

    std::vector<ECBase *> m_held;
};

// The exchange sort exactly as documents have always been sorted, on a copy.
std::vector<ECBase *> LiteralExchangeSort(std::vector<ECBase *> v, MCEventList::COMPAREFUNC compare)
{
    for (size_t i = 0; i < v.size(); ++i)
        for (size_t j = i + 1; j < v.size(); ++j)
            if (compare(v[i], v[j]) > 0)
                std::swap(v[i], v[j]);
    return v;
}
} // namespace

TEST_F(MCEventListTest, NodesHoldOneReferenceEach)
{
    TestLeaf *a = Leaf(0);
    {
        EventList list;
        list.AddTail(a);
        list.AddTail(a);
        EXPECT_EQ(a->GetRefCount(), 3);
        list.RemoveHead();
        EXPECT_EQ(a->GetRefCount(), 2);
    }
    EXPECT_EQ(a->GetRefCount(), 1) << "the list's destructor releases its elements";

    int before = TestLeaf::s_alive;
    EventList list;
    list.AddTail(TestLeaf::Make(0));
    list.RemoveAll();
    EXPECT_EQ(TestLeaf::s_alive, before) << "the last node releases an event nobody else holds";
}

TEST_F(MCEventListTest, SetAtRefsTheNewElementBeforeReleasingTheOld)
{
    TestLeaf *a = Leaf(0);
    TestLeaf *b = Leaf(1);
    EventList list;
    POSITION pos = list.AddTail(a);
    list.SetAt(pos, b);
    EXPECT_EQ(a->GetRefCount(), 1);
    EXPECT_EQ(b->GetRefCount(), 2);
    list.SetAt(pos, b); // the same element again must not die in between
    EXPECT_EQ(b->GetRefCount(), 2);
    list.SetAt(pos, nullptr);
    EXPECT_EQ(b->GetRefCount(), 1);
    EXPECT_EQ(list.GetCount(), 1);
}

// Equal times keep their order of adding; events without a time go to the
// head and never match a time search.
TEST_F(MCEventListTest, AddEventOrdersByTimeStably)
{
    EventList list;
    TestLeaf *first = Leaf(1), *second = Leaf(1), *early = Leaf(0.5f), *third = Leaf(1);
    ECBase *none1 = Timeless(), *none2 = Timeless();
    for (ECBase *e : {static_cast<ECBase *>(first), static_cast<ECBase *>(second), static_cast<ECBase *>(early),
                      static_cast<ECBase *>(third), none1, none2})
        list.AddEvent(e, 1);
    EXPECT_EQ(Elements(list), (std::vector<ECBase *>{none2, none1, early, first, second, third}));
    MCTime veryEarly = MCTime::TimeNull();
    EXPECT_EQ(list.GetAt(list.FindTime(&veryEarly)), early);
    MCTime late(5);
    EXPECT_EQ(list.FindTime(&late), nullptr);
    EXPECT_EQ(list.FindTimeReverse(&veryEarly), nullptr) << "TimeNull is before every time";
}

TEST_F(MCEventListTest, FindTimeLooksStrictlyLaterAndReverseNotLater)
{
    EventList list;
    TestLeaf *t0 = Leaf(0), *t1 = Leaf(1), *t2 = Leaf(2);
    for (ECBase *e : {t0, t1, t2})
        list.AddEvent(e, 1);
    MCTime one(1);
    EXPECT_EQ(list.GetAt(list.FindTime(&one)), t2);
    EXPECT_EQ(list.GetAt(list.FindTimeReverse(&one)), t1);
    POSITION p1 = list.Find(t1);
    EXPECT_EQ(list.GetAt(list.FindTimeReverse(&one, p1)), t0) << "searches before the given position";
    MCTime zero(0);
    EXPECT_EQ(list.GetAt(list.FindTime(&zero, list.Find(t1))), t2) << "searches after the given position";
    EXPECT_EQ(list.FindTime(nullptr), nullptr);
}

TEST_F(MCEventListTest, FindEventInBothDirections)
{
    EventList list;
    TestLeaf *a = Leaf(0, EVENT_ID_NOTE), *b = Leaf(1, EVENT_ID_REST), *c = Leaf(2, EVENT_ID_NOTE);
    for (ECBase *e : {a, b, c})
        list.AddTail(e);
    EXPECT_EQ(list.GetAt(list.FindEvent(EVENT_ID_NOTE)), a);
    EXPECT_EQ(list.GetAt(list.FindEvent(EVENT_ID_NOTE, list.Find(a))), c);
    EXPECT_EQ(list.GetAt(list.FindEventReverse(EVENT_ID_NOTE)), c);
    EXPECT_EQ(list.GetAt(list.FindEventReverse(EVENT_ID_NOTE, list.Find(c))), a);
    EXPECT_EQ(list.FindEvent(EVENT_ID_CLEF), nullptr);
    EXPECT_EQ(list.ContainsEventType(EVENT_ID_REST), 1);
    EXPECT_EQ(list.ContainsEventType(EVENT_ID_CLEF), 0);
}

TEST_F(MCEventListTest, GetEventTypeCanLookPastMeasures)
{
    struct Case
    {
        std::vector<int> ids;
        int plain;
        int ignoringMeasures;
    };
    const Case cases[] = {
        {{}, -1, -1},
        {{EVENT_ID_NOTE, EVENT_ID_NOTE, EVENT_ID_NOTE, EVENT_ID_MEASURE}, -2, EVENT_ID_NOTE},
        {{EVENT_ID_MEASURE, EVENT_ID_MEASURE}, EVENT_ID_MEASURE, -1},
        {{EVENT_ID_NOTE, EVENT_ID_REST}, -2, -2},
        {{EVENT_ID_CLEF}, EVENT_ID_CLEF, EVENT_ID_CLEF},
    };
    for (const Case &c : cases)
    {
        EventList list;
        for (int id : c.ids)
            list.AddTail(Leaf(0, id));
        EXPECT_EQ(list.GetEventType(0), c.plain);
        EXPECT_EQ(list.GetEventType(1), c.ignoringMeasures);
    }
}

TEST_F(MCEventListTest, GetEventTypesAppendsNewIdsInListOrder)
{
    EventList list;
    for (int id : {EVENT_ID_REST, EVENT_ID_NOTE, EVENT_ID_REST, EVENT_ID_CLEF})
        list.AddTail(Leaf(0, id));
    CArray<int, int> ids;
    ids.Add(EVENT_ID_NOTE);
    EXPECT_EQ(list.GetEventTypes(ids), 3);
    EXPECT_EQ(ids[1], EVENT_ID_REST);
    EXPECT_EQ(ids[2], EVENT_ID_CLEF);
}

TEST_F(MCEventListTest, RemoveEventTypeMovesInOrderWithoutLosingAnEvent)
{
    int before = TestLeaf::s_alive;
    EventList list;
    TestLeaf *n1 = TestLeaf::Make(0), *r = TestLeaf::Make(1), *n2 = TestLeaf::Make(2);
    n1->SetId(EVENT_ID_NOTE);
    n2->SetId(EVENT_ID_NOTE);
    r->SetId(EVENT_ID_REST);
    for (ECBase *e : {n1, r, n2})
        list.AddTail(e); // the list is their only holder
    EventList *notes = list.RemoveEventType(EVENT_ID_NOTE);
    ASSERT_NE(notes, nullptr);
    EXPECT_EQ(Elements(*notes), (std::vector<ECBase *>{n1, n2}));
    EXPECT_EQ(Elements(list), (std::vector<ECBase *>{r}));
    EXPECT_EQ(n1->GetRefCount(), 1);
    delete notes;
    list.RemoveAll();
    EXPECT_EQ(TestLeaf::s_alive, before);
}

TEST_F(MCEventListTest, RemoveDuplicatesKeepsTheLastOccurrence)
{
    TestLeaf *a = Leaf(0), *b = Leaf(1), *c = Leaf(2);
    EventList list;
    for (ECBase *e : {a, b, a, c, b, a})
        list.AddTail(e);
    list.RemoveDuplicates();
    EXPECT_EQ(Elements(list), (std::vector<ECBase *>{c, b, a}));
    EXPECT_EQ(a->GetRefCount(), 2);
}

TEST_F(MCEventListTest, AddEventsAndRemoveEvents)
{
    TestLeaf *a = Leaf(2), *b = Leaf(0), *c = Leaf(1);
    EventList source;
    for (ECBase *e : {a, b, c})
        source.AddTail(e);
    EventList sorted;
    sorted.AddEvents(&source, 1);
    EXPECT_EQ(Elements(sorted), (std::vector<ECBase *>{b, c, a}));
    EventList plain;
    plain.AddEvents(&source, 0);
    EXPECT_EQ(Elements(plain), (std::vector<ECBase *>{a, b, c}));
    plain.AddEvents(&plain, 0);
    EXPECT_EQ(plain.GetCount(), 6) << "adding a list to itself doubles it once";
    plain.RemoveEvents(&source);
    EXPECT_EQ(Elements(plain), (std::vector<ECBase *>{a, b, c}));
    EXPECT_EQ(plain.RemoveEvent(a), 1);
    EXPECT_EQ(plain.RemoveEvent(a), 0);
}

// The sort must give the exchange sort's order in every case: ties, events
// without a time, bar/pulse/tick times and NaN (where the comparison is not
// an order at all) included, and with a comparison of the caller's. Round 0
// is a long list already sorted, with ties.
TEST_F(MCEventListTest, SortMatchesTheLiteralExchangeSortOnRandomInput)
{
    std::mt19937 rng(7);
    auto byIdDescending = [](ECBase *a, ECBase *b) { return b->GetEventId() - a->GetEventId(); };
    for (int round = 0; round < 300; ++round)
    {
        SCOPED_TRACE("round " + std::to_string(round));
        int n = round == 0 ? 1000 : std::uniform_int_distribution<int>(0, 60)(rng);
        int kinds = round % 4; // 0: floats, 1: + timeless, 2: + NaN, 3: + bar/pulse/tick
        bool nearlySorted = round % 3 == 0;
        std::vector<ECBase *> events;
        for (int i = 0; i < n; ++i)
        {
            int pick = std::uniform_int_distribution<int>(0, 9)(rng);
            if (kinds >= 1 && pick == 0)
                events.push_back(Timeless());
            else if (kinds >= 2 && pick == 1)
                events.push_back(Leaf(std::numeric_limits<float>::quiet_NaN()));
            else if (kinds >= 3 && pick == 2)
            {
                TestLeaf *e = Leaf(0);
                MCTime bpt(static_cast<int>(rng() % 3), static_cast<int>(rng() % 3), 0, 480);
                e->SetTime(&bpt);
                events.push_back(e);
            }
            else
            {
                float t = nearlySorted ? static_cast<float>(i / 2) : static_cast<float>(rng() % 6);
                events.push_back(Leaf(t, static_cast<int>(rng() % 4)));
            }
        }
        if (nearlySorted && n > 2 && round > 0)
            std::swap(events[rng() % n], events[rng() % n]);

        EventList list;
        for (ECBase *e : events)
            list.AddTail(e);
        list.Sort();
        std::vector<ECBase *> byTime = LiteralExchangeSort(events, &MCEventList::CompareTime);
        ASSERT_EQ(Elements(list), byTime);
        list.Sort(byIdDescending);
        ASSERT_EQ(Elements(list), LiteralExchangeSort(byTime, byIdDescending));
    }
}

TEST_F(MCEventListTest, DefaultComparisonPutsTimelessEventsFirst)
{
    ECBase *none = Timeless();
    TestLeaf *early = Leaf(0), *late = Leaf(1);
    EXPECT_EQ(MCEventList::CompareTime(none, Timeless()), 0);
    EXPECT_EQ(MCEventList::CompareTime(early, none), 1);
    EXPECT_EQ(MCEventList::CompareTime(none, early), -1);
    EXPECT_EQ(MCEventList::CompareTime(late, early), 1);
    EXPECT_EQ(MCEventList::CompareTime(early, late), -1);
    EXPECT_EQ(MCEventList::CompareTime(early, Leaf(0)), 0);
}

TEST_F(MCEventListTest, LongListStillRefusesAndFindsExactly)
{
    // Past the index threshold the membership index answers; it must agree
    // with the list through every kind of change.
    EventList list;
    std::vector<TestLeaf *> leaves;
    for (int i = 0; i < 300; ++i)
        leaves.push_back(Leaf(static_cast<float>(i)));
    for (TestLeaf *e : leaves)
        list.AddTail(e);
    EXPECT_TRUE(list.Contains(leaves[150]));
    list.AddTail(leaves[150]); // a second occurrence
    EXPECT_EQ(list.Find(leaves[150]), list.FindIndex(150)) << "Find gives the first occurrence";
    list.RemoveAt(list.FindIndex(150));
    EXPECT_EQ(list.Find(leaves[150]), list.GetTailPosition());
    list.SetAt(list.GetTailPosition(), leaves[0]);
    EXPECT_FALSE(list.Contains(leaves[150]));
    EXPECT_EQ(list.Find(leaves[0]), list.GetHeadPosition());
    list.Sort(); // moves elements between nodes
    for (TestLeaf *e : leaves)
    {
        if (e != leaves[150])
        {
            ASSERT_EQ(list.GetAt(list.Find(e)), e);
        }
    }
    while (list.GetCount() > 3)
        list.RemoveHead();
    EXPECT_TRUE(list.Contains(leaves[299]));
    EXPECT_FALSE(list.Contains(leaves[10]));
}

TEST_F(MCEventListTest, CollapseToAncestorsKeepsTheTopmostEvents)
{
    TestNode *measure = TestNode::Make(0);
    Hold(measure);
    TestNode *chord = TestNode::Make(0);
    chord->SetId(EVENT_ID_CHORD);
    TestLeaf *note = TestLeaf::Make(0);
    note->SetId(EVENT_ID_NOTE);
    TestLeaf *other = Leaf(1, EVENT_ID_NOTE);
    measure->AddChild(chord, 1);
    chord->AddChild(note, 1);

    EventList selection;
    for (ECBase *e : {static_cast<ECBase *>(note), static_cast<ECBase *>(measure), static_cast<ECBase *>(other),
                      static_cast<ECBase *>(chord)})
        selection.AddTail(e);
    selection.CollapseToAncestors(nullptr);
    EXPECT_EQ(Elements(selection), (std::vector<ECBase *>{measure, other}));

    EventList kept;
    for (ECBase *e : {static_cast<ECBase *>(note), static_cast<ECBase *>(measure), static_cast<ECBase *>(chord)})
        kept.AddTail(e);
    CArray<int, int> keepIds;
    keepIds.Add(EVENT_ID_WITH_TIME_CHILD); // the measure's id: it collapses nothing
    kept.CollapseToAncestors(&keepIds);
    EXPECT_EQ(Elements(kept), (std::vector<ECBase *>{measure, chord})) << "the chord still swallows its note";

    measure->RemoveChildren(1);
}
