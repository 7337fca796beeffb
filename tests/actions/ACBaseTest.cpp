#include "ACTestTree.h"

#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

#include <tuple>

namespace
{
using Recorder = RecordingAction<ACBase>;

// root -> A -> A1, A2;  root -> B;  root -> C
struct SmallTree
{
    TestTree tree{new TestTimed(EVENT_ID_PERFORMANCE)};
    ECBase *root = tree.Root();
    ECBase *a = tree.Timed(root, EVENT_ID_MEASURE);
    ECBase *a1 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *a2 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *b = tree.Timed(root, EVENT_ID_MEASURE);
    ECBase *c = tree.Timed(root, EVENT_ID_MEASURE);
    std::vector<ECBase *> Pick(std::initializer_list<int> indexes) const
    {
        ECBase *all[] = {root, a, a1, a2, b, c};
        std::vector<ECBase *> out;
        for (int i : indexes)
            out.push_back(all[i]);
        return out;
    }
};

TEST(ACBaseTest, DoActionResultSteersTheWalk)
{
    const struct
    {
        int at, answer, expected; // at: index into root, a, a1, a2, b, c
        std::initializer_list<int> visits;
    } cases[] = {
        {1, -1, -1, {0, 1}}, {1, 0, 0, {0, 1, 2, 3, 4, 5}}, {1, 1, 0, {0, 1, 4, 5}},
        {1, 2, 2, {0, 1}},   {1, 3, 0, {0, 1}},             {1, 7, 0, {0, 1, 4, 5}},
        {2, 3, 0, {0, 1, 2, 4, 5}}, // leaving drops only the rest of that parent's children
    };
    for (const auto &rc : cases)
    {
        SmallTree t;
        Recorder action;
        action.answers.push_back({t.Pick({rc.at})[0], rc.answer});
        EXPECT_EQ(action.Apply(t.root), rc.expected) << rc.at << ": " << rc.answer;
        EXPECT_EQ(action.visited, t.Pick(rc.visits)) << rc.at << ": " << rc.answer;
    }
    Recorder action;
    EXPECT_EQ(action.Apply(static_cast<ECBase *>(nullptr)), ACBase::ResultFailed);
    EXPECT_EQ(action.begins, 0);
}

TEST(ACBaseTest, ClippedEventsAreVisitedButNotEntered)
{
    for (int id : {EVENT_ID_BEAM, EVENT_ID_SLUR, EVENT_ID_TIE, EVENT_ID_GLISSANDO, EVENT_ID_NOTE})
    {
        TestTree tree(new TestTimed(id));
        ECBase *child = tree.Timed(tree.Root(), EVENT_ID_ACCENT);
        Recorder action;
        if (id == EVENT_ID_NOTE)
            action.ClipEvtType(id);
        EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultSkip) << id;
        EXPECT_EQ(action.visited, std::vector<ECBase *>{tree.Root()}) << id;

        Recorder open;
        open.ClipEvtType(-1);
        open.Apply(tree.Root());
        EXPECT_EQ(open.visited, (std::vector<ECBase *>{tree.Root(), child})) << id;
    }
}

TEST(ACBaseTest, BypassedEnvelopeIsInvisibleButItsPointsAreVisitedAtDepthOne)
{
    for (int id : {EVENT_ID_CHAN_PRESSURE_ENV, EVENT_ID_CONTROLLER_ENV, EVENT_ID_ENVELOPE, EVENT_ID_METER_ENV,
                   EVENT_ID_NRPN_ENV, EVENT_ID_PATCH_ENV, EVENT_ID_PITCH_BEND_ENV, EVENT_ID_POLY_PRESSURE_ENV,
                   EVENT_ID_RPN_ENV, EVENT_ID_TEMPO_ENV, EventId(63), EventId(69), EventId(79)})
    {
        // staff -> envelope -> envelope -> point -> accent
        TestTree tree(new TestTimed(EVENT_ID_STAFF));
        ECBase *env = tree.Timed(tree.Root(), id);
        ECBase *inner = tree.Timed(env, EVENT_ID_ENVELOPE);
        ECBase *point = tree.Timed(inner, EVENT_ID_CONTROL_CHANGE);
        tree.Timed(point, EVENT_ID_ACCENT);
        Recorder action;
        action.SetDepth(1);
        action.Apply(tree.Root());
        EXPECT_EQ(action.visited, (std::vector<ECBase *>{tree.Root(), point})) << id;

        Recorder seeing;
        seeing.BypassNone();
        seeing.SetDepth(1);
        seeing.Apply(tree.Root());
        EXPECT_EQ(seeing.visited, (std::vector<ECBase *>{tree.Root(), env})) << id;
    }
}

TEST(ACBaseTest, DepthLimitsTheLevelsBelowTheStartAndAnOutOfRangeDepthChangesNothing)
{
    // Each depth is set over a depth of 1 already in force.
    const struct
    {
        int depth, kept;
        size_t visits;
    } cases[] = {{0, 0, 1},   {1, 1, 4},     {2, 2, 6},    {255, 255, 6},
                 {256, 1, 4}, {511, 1, 4}, {-1, 1, 4}, {-255, 1, 4}};
    for (const auto &c : cases)
    {
        SmallTree t;
        Recorder action;
        action.SetDepth(1);
        action.SetDepth(c.depth);
        EXPECT_EQ(action.GetDepth(), c.kept) << c.depth;
        EXPECT_EQ(action.Apply(t.root), c.kept == 0 ? ACBase::ResultSkip : ACBase::ResultContinue) << c.depth;
        EXPECT_EQ(action.visited.size(), c.visits) << c.depth;
    }
}

TEST(ACBaseTest, EndActionRunsAtEveryEventUnlessLimitedOrReturnedEarlyAndAListApplySilencesItForGood)
{
    SmallTree t;
    Recorder unlimited, limited, skipping, listed;
    unlimited.Apply(t.root);
    EXPECT_EQ(unlimited.ends, 6);
    limited.SetDepth(10);
    limited.Apply(t.root);
    EXPECT_EQ(limited.ends, 1);
    skipping.answers.push_back({t.a, ACBase::ResultSkip});
    skipping.Apply(t.root);
    EXPECT_EQ(skipping.ends, 3);

    EXPECT_EQ(listed.Apply(t.root->GetChildren(), 0), ACBase::ResultContinue);
    EXPECT_EQ(listed.ends, 1);
    listed.Reset();
    listed.Apply(t.root);
    EXPECT_EQ(listed.ends, 1);
    EXPECT_EQ(listed.Apply(static_cast<ACBase::EventList *>(nullptr), 0), ACBase::ResultFailed);
}

TEST(ACBaseTest, ListApplyStopsOnTroubleUnlessToldToContinue)
{
    for (int answer : {-1, 2, 3})
    {
        SmallTree t;
        Recorder stopping, going;
        stopping.answers.push_back({t.a, answer});
        going.answers.push_back({t.a, answer});
        EXPECT_EQ(stopping.Apply(t.root->GetChildren(), 0), ACBase::ResultStop) << answer;
        EXPECT_EQ(stopping.visited, t.Pick({1})) << answer;
        EXPECT_EQ(going.Apply(t.root->GetChildren(), 1), ACBase::ResultContinue) << answer;
        EXPECT_EQ(going.visited, t.Pick({1, 4, 5})) << answer;
    }
}

TEST(ACBaseTest, CycleInACorruptGraphFailsInsteadOfOverflowingTheStack)
{
    TestTree tree(new TestTimed(EVENT_ID_MEASURE));
    ECBase *a = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    a->AddChild(tree.Root(), 0);
    Recorder action;
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultFailed);
    a->RemoveChild(tree.Root(), 0);
}

TEST(ACBaseTest, ExceptionFromDoActionLeavesTheLevelCountsClean)
{
    SmallTree t;
    struct Throwing : Recorder
    {
        ECBase *bad = nullptr;
        int DoAction(ECBase *e) override
        {
            if (e == bad)
                throw CInvalidArgException();
            return Recorder::DoAction(e);
        }
    } action;
    action.bad = t.a1;
    action.SetDepth(2);
    EXPECT_THROW(action.Apply(t.root), CInvalidArgException);
    EXPECT_EQ(action.GetCurDepth(), 0);
    action.bad = nullptr;
    action.visited.clear();
    action.Apply(t.root);
    EXPECT_EQ(action.visited.size(), 6u);
}

TEST(ACBaseTest, DoActionMayRemoveItsOwnEventAndTheWalkGoesOn)
{
    SmallTree t;
    t.tree.Timed(t.b, EVENT_ID_DOT);
    struct RemoveB : Recorder
    {
        int DoAction(ECBase *e) override
        {
            Recorder::DoAction(e);
            if (e->GetEventId() != EVENT_ID_MEASURE || e->GetChildren()->IsEmpty() ||
                e->GetChildren()->GetHead()->GetEventId() != EVENT_ID_DOT)
                return ResultContinue;
            e->GetParents()->GetHead()->RemoveChild(e, 1);
            return ResultSkip;
        }
    } action;
    action.Apply(t.root);
    EXPECT_EQ(action.visited.back(), t.c);
    EXPECT_EQ(ListOf(*t.root->GetChildren()), t.Pick({1, 5}));
}

TEST(ACBaseTest, TimeZeroFilterBypassesTheFixedEventsOnly)
{
    // id, time, flag bits, bypassed
    const std::tuple<int, float, BYTE, bool> cases[] = {
        {EVENT_ID_BANK_LSB, 0, 0, true}, {EVENT_ID_BANK_MSB, 0, 0, true},        {EVENT_ID_CLEF, 0, 0, true},
        {EVENT_ID_KEY, 0, 0, true},      {EVENT_ID_CONDUCTOR_STAFF, 0, 0, true}, {EVENT_ID_ENV_POINT, 0, 0, true},
        {EVENT_ID_METER, 0, 0, true},    {EVENT_ID_FLOW_CONTROL, 0, 0, true},    {EVENT_ID_PERFORMANCE, 0, 0, true},
        {EVENT_ID_STAFF, 0, 0, true},    {EVENT_ID_PROGRAM_CHANGE, 0, 0, true},  {EVENT_ID_TEMPO, 0, 0, true},
        {EVENT_ID_TEXT, 0, 0, true},     {EVENT_ID_DRAWING, 0, 0, true},         {EVENT_ID_CLEF, 1, 0, false},
        {EVENT_ID_NOTE, 0, 0, false},    {EVENT_ID_LYRIC, 0, 0x03, true},        {EVENT_ID_LYRIC, 0, 0x01, false},
    };
    for (auto [id, time, flags, bypassed] : cases)
    {
        TestTree tree(new TestTimeless(EVENT_ID_MEASURE));
        tree.Timed(tree.Root(), id, time)->SetFlagBits(flags);
        Recorder action;
        action.BypassFilter(ACBase::kFilterTimeZeroFixed);
        action.BypassFilter(5); // unknown codes select nothing
        action.Apply(tree.Root());
        EXPECT_EQ(action.visited.size(), bypassed ? 1u : 2u) << id << " at " << time;
    }
}
} // namespace
