// State records: the code word keeps its flags, and a selection record's
// lists and its Apply mark what a view will read.
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/state/MCStateMgr.h>
#include <scoremodel/state/SCSelection.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
std::vector<ECBase *> Listed(SCSelection::EventList *list)
{
    std::vector<ECBase *> out;
    for (POSITION pos = list ? list->GetHeadPosition() : nullptr; pos;)
        out.push_back(list->GetNext(pos));
    return out;
}

// Events that the test holds, so they outlive the records that list them.
struct HeldEvents
{
    std::vector<ECBase *> events;
    explicit HeldEvents(int count)
    {
        for (int i = 0; i < count; ++i)
        {
            events.push_back(CreateEventW(EVENT_ID_WITH_TIME));
            events.back()->Ref();
        }
    }
    ~HeldEvents()
    {
        for (ECBase *e : events)
            e->Unref(1);
    }
    ECBase *operator[](size_t i) const { return events[i]; }
};
} // namespace

TEST(StateRecordAccessors, CodeKeepsTwentyFourBitsAndLeavesTheFlagsAlone)
{
    const std::pair<unsigned, unsigned> codes[] = {
        {0, 0}, {500, 500}, {1600, 1600}, {0xFFFFFF, 0xFFFFFF}, {0x1000001, 1}, {0xFFFFFFFF, 0xFFFFFF},
    };
    for (const auto &[given, kept] : codes)
    {
        SCOPED_TRACE(given);
        SCBase built(given);
        EXPECT_EQ(built.GetCode(), kept);
        SCBase set;
        set.SetSynchronous(1);
        set.SetAutoDelete(0);
        set.SetCode(given);
        EXPECT_EQ(set.GetCode(), kept);
        EXPECT_EQ(set.IsSynchronous(), 1) << "the code spilled into the flags";
        EXPECT_EQ(set.IsAutoDelete(), 0) << "the code spilled into the flags";
        set.SetSynchronous(0);
        set.SetAutoDelete(1);
        EXPECT_EQ(set.GetCode(), kept) << "the flags spilled into the code";
    }
}

TEST(StateRecordAccessors, SelectionListsFollowAddRemoveAndClear)
{
    HeldEvents e(4);
    SCSelection r;
    r.AddToSelection(e[0]);
    r.AddToSelection(e[0]);
    r.AddToSelection(static_cast<ECBase *>(nullptr));
    r.RemoveFromSelection(e[1]);
    EXPECT_EQ(Listed(r.GetEvents(SCSelection::EventsAdded)), std::vector<ECBase *>{e[0]});
    EXPECT_EQ(Listed(r.GetEvents(SCSelection::EventsRemoved)), std::vector<ECBase *>{e[1]});
    EXPECT_EQ(r.GetEvents(2), nullptr);

    // An event changes sides rather than standing in both lists.
    r.AddToSelection(e[1]);
    EXPECT_EQ(Listed(r.GetEvents(SCSelection::EventsAdded)), (std::vector<ECBase *>{e[0], e[1]}));
    EXPECT_TRUE(Listed(r.GetEvents(SCSelection::EventsRemoved)).empty());

    SCSelection::EventList more;
    more.AddTail(e[2]);
    more.AddTail(e[0]);
    r.RemoveFromSelection(&more);
    EXPECT_EQ(Listed(r.GetEvents(SCSelection::EventsAdded)), std::vector<ECBase *>{e[1]});
    EXPECT_EQ(Listed(r.GetEvents(SCSelection::EventsRemoved)), (std::vector<ECBase *>{e[2], e[0]}));
    r.AddToSelection(&more);
    EXPECT_EQ(Listed(r.GetEvents(SCSelection::EventsAdded)), (std::vector<ECBase *>{e[1], e[2], e[0]}));
    more.RemoveAll();

    EXPECT_EQ(e[0]->GetRefCount(), 2) << "the record holds each listed event once";
    EXPECT_EQ(r.IsClearSelection(), 0);
    r.ClearSelection();
    EXPECT_EQ(r.IsClearSelection(), 1);
    EXPECT_TRUE(Listed(r.GetEvents(SCSelection::EventsAdded)).empty());
    EXPECT_TRUE(Listed(r.GetEvents(SCSelection::EventsRemoved)).empty());
    EXPECT_EQ(e[0]->GetRefCount(), 1);
}

TEST(StateRecordAccessors, AppliedSelectionMarksItsEventsBeforeAnyoneSeesThem)
{
    MCStateMgr::SetGlobalHandler(nullptr, nullptr); // the state window
    HeldEvents e(3);
    e[1]->SetSelected(1, 1);
    e[2]->SetSelected(1, 2); // a mark of another kind stays
    auto *r = new SCSelection;
    r->AddToSelection(e[0]);
    r->RemoveFromSelection(e[1]);
    r->RemoveFromSelection(e[2]);
    r->SetSynchronous(1);
    r->Apply(nullptr); // delivered and deleted before Apply returns
    EXPECT_NE(e[0]->IsSelected(1), 0);
    EXPECT_EQ(e[1]->IsSelected(1), 0);
    EXPECT_EQ(e[2]->IsSelected(1), 0);
    EXPECT_NE(e[2]->IsSelected(2), 0);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(e[i]->GetRefCount(), 1) << "the delivered record kept event " << i;
}
