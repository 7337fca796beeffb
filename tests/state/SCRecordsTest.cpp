// Each state record gives back through its getters what its setters stored;
// a view that reads a record sees what the model wrote into it.
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/state/MCStateMgr.h>
#include <scoremodel/state/SCEdit.h>
#include <scoremodel/state/SCFile.h>
#include <scoremodel/state/SCPiano.h>
#include <scoremodel/state/SCSelection.h>
#include <scoremodel/state/SCStatus.h>
#include <scoremodel/state/SCTime.h>

#include <gtest/gtest.h>

#include <functional>
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

TEST(StateRecordAccessors, EachRecordReturnsWhatItsSettersStored)
{
    const std::pair<const char *, std::function<void()>> records[] = {
        {"SCBase",
         [] {
             SCBase r(7);
             EXPECT_EQ(r.IsAutoDelete(), 1);
             EXPECT_EQ(r.IsSynchronous(), 0);
             EXPECT_EQ(r.GetTarget(), nullptr);
             auto *doc = reinterpret_cast<ECPerformance *>(&r);
             for (int page : {-1, 0, 3, 0x7FFFFFFF})
             {
                 r.SetPage(page);
                 EXPECT_EQ(r.GetPage(), page);
             }
             r.SetTarget(doc);
             EXPECT_EQ(r.GetTarget(), doc);
             EXPECT_EQ(r.GetCode(), 7u);
         }},
        {"SCEdit",
         [] {
             SCEdit r(3);
             for (unsigned char pitch : {0, 60, 127, 255})
             {
                 r.SetPitch(pitch);
                 EXPECT_EQ(r.GetPitch(), pitch);
             }
             EXPECT_EQ(r.GetCode(), 3u);
         }},
        {"SCFile",
         [] {
             SCFile r;
             HeldEvents e(1);
             r.SetDocument(e[0]);
             EXPECT_EQ(r.GetDocument(), e[0]);
             r.SetDocument(nullptr);
             EXPECT_EQ(r.GetDocument(), nullptr);
         }},
        {"SCPiano",
         [] {
             SCPiano r;
             for (unsigned char pitch : {64, 60, 67})
                 r.AddPitchOn(pitch);
             r.AddPitchOff(60);
             ASSERT_EQ(r.GetPitchesOn().GetSize(), 3);
             EXPECT_EQ(r.GetPitchesOn()[0], 64);
             EXPECT_EQ(r.GetPitchesOn()[2], 67);
             ASSERT_EQ(r.GetPitchesOff().GetSize(), 1);
             EXPECT_EQ(r.GetPitchesOff()[0], 60);
             r.SetLabels(2);
             EXPECT_EQ(r.GetLabels(), 2);
         }},
        {"SCStatus",
         [] {
             SCStatus r;
             CString text(L"Saving \u00e9t\u00e9");
             r.SetMessage(text);
             EXPECT_EQ(r.GetMessageW(), text);
             EXPECT_EQ(r.GetMessageId(), 0u);
             r.SetMessage(4711u);
             EXPECT_EQ(r.GetMessageId(), 4711u);
             EXPECT_TRUE(r.GetMessageW().IsEmpty()) << "the older text still shows";
             r.SetMessage(text);
             EXPECT_EQ(r.GetMessageId(), 0u) << "the older resource still shows";
             r.SetProgressRange(200);
             r.SetProgressStep(150);
             EXPECT_EQ(r.GetProgressRange(), 200);
             EXPECT_EQ(r.GetProgressStep(), 150);
         }},
        {"SCTime",
         [] {
             SCTime r;
             EXPECT_TRUE(r.GetTime() == MCTime::TimeNull());
             const MCTime times[] = {MCTime(2.5f), MCTime(3, 2, 120, 480), MCTime::TimeZero()};
             for (const MCTime &t : times)
             {
                 r.SetTime(t);
                 EXPECT_TRUE(r.GetTime() == t);
             }
             r.SetLeadIn(2, 3);
             EXPECT_EQ(r.GetLeadInMeasure(), 2);
             EXPECT_EQ(r.GetLeadInPulse(), 3);
         }},
        {"SCSelection flags",
         [] {
             SCSelection r;
             r.SetDynamic(1);
             r.SetAutoScroll(1);
             auto *wnd = reinterpret_cast<HWND>(&r);
             r.SetFocusWnd(wnd);
             EXPECT_EQ(r.IsDynamic(), 1);
             EXPECT_EQ(r.GetAutoScroll(), 1);
             EXPECT_EQ(r.GetFocusWnd(), wnd);
             EXPECT_EQ(r.IsUpdateSelection(), 0);
             r.UpdateSelection();
             EXPECT_EQ(r.IsUpdateSelection(), 1);
             const COLORREF color = SCSelection::GetColor();
             SCSelection::SetColor(0x00AABBCC);
             EXPECT_EQ(SCSelection::GetColor(), 0x00AABBCCu);
             SCSelection::SetColor(color);
         }},
    };
    for (const auto &[name, check] : records)
    {
        SCOPED_TRACE(name);
        check();
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
