#include "ACTestTree.h"

#include <scoremodel/actions/ACBase.h>

#include <gtest/gtest.h>

namespace
{
using Recorder = RecordingAction<ACBase>;

// root(44) -> A(32) -> A1(37), A2(37)
//          -> B(32)
//          -> C(32)
struct SmallTree
{
    TestTree tree{new TestTimed(EVENT_ID_PERFORMANCE)};
    ECBase *root = tree.Root();
    ECBase *a = tree.Timed(root, EVENT_ID_MEASURE);
    ECBase *a1 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *a2 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *b = tree.Timed(root, EVENT_ID_MEASURE);
    ECBase *c = tree.Timed(root, EVENT_ID_MEASURE);
};

TEST(ACBaseTest, ApplyOnNullFailsWithoutStartingTheAction)
{
    Recorder action;
    EXPECT_EQ(action.Apply(static_cast<ECBase *>(nullptr)), ACBase::ResultFailed);
    EXPECT_EQ(action.begins, 0);
    EXPECT_FALSE(action.IsBegun());
    EXPECT_EQ(action.ends, 0);
}

TEST(ACBaseTest, RefusedBeginActionFailsAndIsAskedAgainNextTime)
{
    SmallTree t;
    Recorder action;
    action.beginResult = false;
    EXPECT_EQ(action.Apply(t.root), ACBase::ResultFailed);
    EXPECT_TRUE(action.visited.empty());
    action.beginResult = true;
    EXPECT_EQ(action.Apply(t.root), ACBase::ResultContinue);
    EXPECT_EQ(action.begins, 2);
}

TEST(ACBaseTest, WalkGoesDepthFirstFromTheHead)
{
    SmallTree t;
    Recorder action;
    EXPECT_EQ(action.Apply(t.root), ACBase::ResultContinue);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{t.root, t.a, t.a1, t.a2, t.b, t.c}));
}

TEST(ACBaseTest, ReverseWalkClimbsThroughEveryParent)
{
    SmallTree t;
    // A second parent for A1: a beam hanging under B.
    ECBase *beam = t.tree.Timed(t.b, EVENT_ID_BEAM);
    beam->AddChild(t.a1, 0);
    Recorder action(1);
    action.ClipNone();
    action.Apply(t.a1);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{t.a1, t.a, t.root, beam, t.b, t.root}));
}

// What a DoAction result at A does to the walk from the root.
struct ResultCase
{
    const char *name;
    int answerAtA;
    int expectedResult;
    std::vector<int> expectedVisits; // indexes into root, a, a1, a2, b, c
};

TEST(ACBaseTest, DoActionResultSteersTheWalk)
{
    const ResultCase cases[] = {
        {"failure stops everything", -1, -1, {0, 1}},
        {"continue enters the children", 0, 0, {0, 1, 2, 3, 4, 5}},
        {"skip spares the children only", 1, 0, {0, 1, 4, 5}},
        {"stop ends the walk", 2, 2, {0, 1}},
        {"leave drops the later siblings", 3, 0, {0, 1}},
        {"an unknown result acts as skip", 7, 0, {0, 1, 4, 5}},
    };
    for (const ResultCase &rc : cases)
    {
        SmallTree t;
        ECBase *all[] = {t.root, t.a, t.a1, t.a2, t.b, t.c};
        Recorder action;
        action.answers.push_back({t.a, rc.answerAtA});
        EXPECT_EQ(action.Apply(t.root), rc.expectedResult) << rc.name;
        std::vector<ECBase *> expected;
        for (int i : rc.expectedVisits)
            expected.push_back(all[i]);
        EXPECT_EQ(action.visited, expected) << rc.name;
    }
}

TEST(ACBaseTest, LeaveDropsOnlyTheRemainingChildrenOfThatParent)
{
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *m1 = tree.Timed(tree.Root(), EVENT_ID_MEASURE);
    ECBase *n1 = tree.Timed(m1, EVENT_ID_NOTE);
    ECBase *n2 = tree.Timed(m1, EVENT_ID_NOTE);
    tree.Timed(m1, EVENT_ID_NOTE);
    ECBase *m2 = tree.Timed(tree.Root(), EVENT_ID_MEASURE);
    ECBase *n4 = tree.Timed(m2, EVENT_ID_NOTE);
    Recorder action;
    action.answers.push_back({n2, ACBase::ResultLeave});
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{tree.Root(), m1, n1, n2, m2, n4}));
}

TEST(ACBaseTest, StartEventAnswersLeaveAsItsOwnResult)
{
    SmallTree t;
    Recorder action;
    action.answers.push_back({t.root, ACBase::ResultLeave});
    EXPECT_EQ(action.Apply(t.root), ACBase::ResultLeave);
}

TEST(ACBaseTest, DefaultClipListVisitsButDoesNotEnterBeamsSlursTiesGlissandi)
{
    for (int id : {EVENT_ID_BEAM, EVENT_ID_SLUR, EVENT_ID_TIE, EVENT_ID_GLISSANDO})
    {
        TestTree tree(new TestTimed(id));
        ECBase *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
        Recorder clipped;
        EXPECT_EQ(clipped.Apply(tree.Root()), ACBase::ResultSkip) << id;
        EXPECT_EQ(clipped.visited, std::vector<ECBase *>{tree.Root()}) << id;

        Recorder open;
        open.ClipNone();
        EXPECT_EQ(open.Apply(tree.Root()), ACBase::ResultContinue) << id;
        EXPECT_EQ(open.visited, (std::vector<ECBase *>{tree.Root(), note})) << id;
    }
}

TEST(ACBaseTest, ClipSettersAppendAndSwitch)
{
    TestTree tree(new TestTimed(EVENT_ID_NOTE));
    tree.Timed(tree.Root(), EVENT_ID_ACCENT);

    Recorder action;
    action.ClipNone();
    EXPECT_FALSE(action.IsClipOn());
    // An id outside the usual range clips too.
    TestTree odd(new TestTimed(500));
    odd.Timed(odd.Root(), EVENT_ID_NOTE);
    action.ClipEvtType(500);
    action.ClipEvtType(EVENT_ID_NOTE);
    EXPECT_TRUE(action.IsClipOn());
    action.Apply(tree.Root());
    action.Apply(odd.Root());
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{tree.Root(), odd.Root()}));

    action.ClipEvtType(-1);
    EXPECT_FALSE(action.IsClipOn());
    EXPECT_EQ(action.GetClipTypes().GetSize(), 0);
}

TEST(ACBaseTest, BypassedEnvelopeIsInvisibleButItsPointsAreVisited)
{
    const int containers[] = {EVENT_ID_CHAN_PRESSURE_ENV, EVENT_ID_CONTROLLER_ENV, EVENT_ID_ENVELOPE,
                              EVENT_ID_METER_ENV,         EVENT_ID_NRPN_ENV,       EVENT_ID_PATCH_ENV,
                              EVENT_ID_PITCH_BEND_ENV,    EVENT_ID_POLY_PRESSURE_ENV, EVENT_ID_RPN_ENV,
                              EVENT_ID_TEMPO_ENV,         63,                      69,
                              79};
    for (int id : containers)
    {
        TestTree tree(new TestTimed(EVENT_ID_STAFF));
        ECBase *env = tree.Timed(tree.Root(), id);
        ECBase *p1 = tree.Timed(env, EVENT_ID_CONTROL_CHANGE, 0.0f);
        ECBase *p2 = tree.Timed(env, EVENT_ID_CONTROL_CHANGE, 1.0f);
        Recorder action;
        action.SetDepth(1);
        EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultContinue) << id;
        EXPECT_EQ(action.visited, (std::vector<ECBase *>{tree.Root(), p1, p2})) << id;

        Recorder seeing;
        seeing.BypassNone();
        seeing.SetDepth(1);
        seeing.Apply(tree.Root());
        EXPECT_EQ(seeing.visited, (std::vector<ECBase *>{tree.Root(), env})) << id;
    }
}

TEST(ACBaseTest, DepthLimitsTheLevelsBelowTheStart)
{
    const struct
    {
        int depth;
        size_t visits;
    } cases[] = {{0, 1}, {1, 4}, {2, 6}, {255, 6}, {256, 1}};
    for (const auto &dc : cases)
    {
        SmallTree t;
        Recorder action;
        action.SetDepth(dc.depth);
        action.Apply(t.root);
        EXPECT_EQ(action.visited.size(), dc.visits) << dc.depth;
        EXPECT_EQ(action.GetCurDepth(), 0) << dc.depth;
    }
}

TEST(ACBaseTest, DepthZeroReportsSkipForAnEventWithChildren)
{
    SmallTree t;
    Recorder action;
    action.SetDepth(0);
    EXPECT_EQ(action.Apply(t.root), ACBase::ResultSkip);
    EXPECT_EQ(action.Apply(t.a1), ACBase::ResultContinue);
}

TEST(ACBaseTest, EndActionRunsAtEveryEventWithoutADepthLimit)
{
    SmallTree t;
    Recorder unlimited;
    unlimited.Apply(t.root);
    EXPECT_EQ(unlimited.ends, 6);

    Recorder limited;
    limited.SetDepth(10);
    limited.Apply(t.root);
    EXPECT_EQ(limited.ends, 1);

    // An early return skips it: A answers skip, so A gets none.
    Recorder skipping;
    skipping.answers.push_back({t.a, ACBase::ResultSkip});
    skipping.Apply(t.root);
    EXPECT_EQ(skipping.ends, 3);
}

TEST(ACBaseTest, ListApplyEndsOnceAndSilencesEndActionForGood)
{
    SmallTree t;
    Recorder action;
    EXPECT_EQ(action.Apply(t.root->GetChildren(), 0), ACBase::ResultContinue);
    EXPECT_EQ(action.ends, 1);
    EXPECT_TRUE(action.IsInList());
    EXPECT_EQ(action.visited.size(), 5u);

    action.Reset();
    action.Apply(t.root);
    EXPECT_EQ(action.ends, 1);
    EXPECT_TRUE(action.IsInList());
}

TEST(ACBaseTest, ListApplyStopsOnTroubleUnlessToldToContinue)
{
    for (int answer : {-1, 2, 3})
    {
        SmallTree t;
        Recorder stopping;
        stopping.answers.push_back({t.a, answer});
        EXPECT_EQ(stopping.Apply(t.root->GetChildren(), 0), ACBase::ResultStop) << answer;
        EXPECT_EQ(stopping.visited, std::vector<ECBase *>{t.a}) << answer;

        Recorder going;
        going.answers.push_back({t.a, answer});
        EXPECT_EQ(going.Apply(t.root->GetChildren(), 1), ACBase::ResultContinue) << answer;
        EXPECT_EQ(going.visited, (std::vector<ECBase *>{t.a, t.b, t.c})) << answer;
    }
}

TEST(ACBaseTest, ListApplyRestartsTheLevelCountForEachEntry)
{
    SmallTree t;
    Recorder action;
    action.SetDepth(1);
    action.Apply(t.root->GetChildren(), 1);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{t.a, t.a1, t.a2, t.b, t.c}));
}

TEST(ACBaseTest, ListApplyOnNullFailsAndSkipsNullEntries)
{
    Recorder action;
    EXPECT_EQ(action.Apply(static_cast<ACBase::EventList *>(nullptr), 0), ACBase::ResultFailed);
    EXPECT_EQ(action.ends, 0);

    SmallTree t;
    ACBase::EventList list;
    list.AddTail(static_cast<ECBase *>(nullptr));
    list.AddTail(t.b);
    EXPECT_EQ(action.Apply(&list, 0), ACBase::ResultContinue);
    EXPECT_EQ(action.visited, std::vector<ECBase *>{t.b});
    EXPECT_EQ(action.ends, 1);
}

TEST(ACBaseTest, EmptyListStillEnds)
{
    ACBase::EventList list;
    Recorder action;
    EXPECT_EQ(action.Apply(&list, 0), ACBase::ResultContinue);
    EXPECT_EQ(action.ends, 1);
}

TEST(ACBaseTest, BeginActionRunsOnceUntilReset)
{
    SmallTree t;
    Recorder action;
    action.Apply(t.b);
    action.Apply(t.c);
    EXPECT_EQ(action.begins, 1);
    action.Reset();
    action.Apply(t.c);
    EXPECT_EQ(action.begins, 2);
}

TEST(ACBaseTest, CycleInACorruptGraphFailsInsteadOfRecursingForever)
{
    TestTree tree(new TestTimed(EVENT_ID_MEASURE));
    ECBase *a = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    a->AddChild(tree.Root(), 0);
    Recorder action;
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultFailed);
    EXPECT_EQ(action.GetCurDepth(), 0);
    // The action can walk again afterwards.
    action.Reset();
    action.SetDepth(1);
    action.visited.clear();
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(action.visited.size(), 2u);
    a->RemoveChild(tree.Root(), 0);
}

TEST(ACBaseTest, DoActionMayRemoveItsOwnEventAndTheWalkGoesOn)
{
    TestTree tree(new TestTimed(EVENT_ID_MEASURE));
    ECBase *n1 = tree.Timed(tree.Root(), EVENT_ID_NOTE, 0.0f);
    ECBase *n2 = tree.Timed(tree.Root(), EVENT_ID_REST, 1.0f);
    ECBase *n3 = tree.Timed(tree.Root(), EVENT_ID_NOTE, 2.0f);
    tree.Timed(n2, EVENT_ID_DOT);

    struct RemoveRests : ACBase
    {
        std::vector<ECBase *> seen;
        int DoAction(ECBase *e) override
        {
            seen.push_back(e);
            if (e->GetEventId() != EVENT_ID_REST)
                return ResultContinue;
            e->GetParents()->GetHead()->RemoveChild(e, 1);
            return ResultSkip;
        }
    } action;
    action.Apply(tree.Root());
    EXPECT_EQ(action.seen.size(), 4u);
    EXPECT_EQ(action.seen.back(), n3);
    EXPECT_EQ(ListOf(*tree.Root()->GetChildren()), (std::vector<ECBase *>{n1, n3}));
}

// Filter code 0: the fixed events at time zero are bypassed.
TEST(ACBaseTest, TimeZeroFilterBypassesTheFixedEventsOnly)
{
    const struct
    {
        int id;
        float time;
        BYTE flags;
        bool bypassed;
    } cases[] = {
        {EVENT_ID_BANK_LSB, 0.0f, 0, true},    {EVENT_ID_BANK_MSB, 0.0f, 0, true},
        {EVENT_ID_CLEF, 0.0f, 0, true},        {EVENT_ID_CONDUCTOR_STAFF, 0.0f, 0, true},
        {EVENT_ID_ENV_POINT, 0.0f, 0, true},   {EVENT_ID_FLOW_CONTROL, 0.0f, 0, true},
        {EVENT_ID_KEY, 0.0f, 0, true},         {EVENT_ID_METER, 0.0f, 0, true},
        {EVENT_ID_PERFORMANCE, 0.0f, 0, true}, {EVENT_ID_PROGRAM_CHANGE, 0.0f, 0, true},
        {EVENT_ID_STAFF, 0.0f, 0, true},       {EVENT_ID_TEMPO, 0.0f, 0, true},
        {EVENT_ID_TEXT, 0.0f, 0, true},        {EVENT_ID_DRAWING, 0.0f, 0, true},
        {EVENT_ID_CLEF, 1.0f, 0, false},       {EVENT_ID_NOTE, 0.0f, 0, false},
        {EVENT_ID_LYRIC, 0.0f, 0x03, true},    {EVENT_ID_LYRIC, 0.0f, 0x01, false},
        {EVENT_ID_LYRIC, 1.0f, 0x03, false},
    };
    for (const auto &fc : cases)
    {
        TestTree tree(new TestTimeless(EVENT_ID_MEASURE));
        TestTimed *e = tree.Timed(tree.Root(), fc.id, fc.time);
        e->SetFlagBits(fc.flags);
        // A child shows that a bypassed event is still entered; lyrics get
        // none, since a child would set a flag bit of its own.
        ECBase *child = fc.id == EVENT_ID_LYRIC ? nullptr : tree.Timed(e, EVENT_ID_ACCENT, 5.0f);
        Recorder action;
        action.BypassFilter(ACBase::kFilterTimeZeroFixed);
        action.Apply(tree.Root());
        std::vector<ECBase *> expected{tree.Root()};
        if (!fc.bypassed)
            expected.push_back(e);
        if (child)
            expected.push_back(child);
        EXPECT_EQ(action.visited, expected) << fc.id << " at " << fc.time;
    }
}

TEST(ACBaseTest, UnknownFilterCodesAndSwitchedOffFiltersBypassNothing)
{
    TestTree tree(new TestTimed(EVENT_ID_CLEF));
    Recorder action;
    action.BypassFilter(5);
    action.Apply(tree.Root());
    EXPECT_EQ(action.visited.size(), 1u);

    Recorder off;
    off.BypassFilter(ACBase::kFilterTimeZeroFixed);
    off.BypassFilterNone();
    EXPECT_FALSE(off.IsBypassFilterOn());
    off.Apply(tree.Root());
    EXPECT_EQ(off.visited.size(), 1u);
}

TEST(ACBaseTest, BypassedEventsDoNotCountTowardsTheDepth)
{
    // staff -> envelope -> envelope -> point: depth 1 still reaches the point.
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *outer = tree.Timed(tree.Root(), EVENT_ID_CONTROLLER_ENV);
    ECBase *inner = tree.Timed(outer, EVENT_ID_ENVELOPE);
    ECBase *point = tree.Timed(inner, EVENT_ID_CONTROL_CHANGE);
    tree.Timed(point, EVENT_ID_ACCENT);
    Recorder action;
    action.SetDepth(1);
    action.Apply(tree.Root());
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{tree.Root(), point}));
}
} // namespace
