#include "ACTestTree.h"

#include <scoremodel/actions/ACRelativesFirst.h>

#include <gtest/gtest.h>

namespace
{
using Recorder = RecordingAction<ACRelativesFirst>;

// root(55) -> A(32) -> A1(37), A2(37)
//          -> B(32)
struct SmallTree
{
    TestTree tree{new TestTimed(EVENT_ID_STAFF)};
    ECBase *root = tree.Root();
    ECBase *a = tree.Timed(root, EVENT_ID_MEASURE);
    ECBase *a1 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *a2 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *b = tree.Timed(root, EVENT_ID_MEASURE);
};

TEST(ACRelativesFirstTest, ChildrenAreVisitedBeforeTheirParent)
{
    SmallTree t;
    Recorder action;
    EXPECT_EQ(action.Apply(t.root), ACBase::ResultContinue);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{t.a1, t.a2, t.a, t.b, t.root}));
    // EndAction at every event, whatever the depth.
    EXPECT_EQ(action.ends, 5);
}

TEST(ACRelativesFirstTest, ReverseVisitsTheParentsFirst)
{
    SmallTree t;
    Recorder action(1);
    action.Apply(t.a1);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{t.root, t.a, t.a1}));
}

TEST(ACRelativesFirstTest, ChildResultDecidesWhetherTheParentRuns)
{
    const struct
    {
        int answerAtA1;
        int expected;
        std::vector<int> visits; // indexes into a1, a2, a, b, root
    } cases[] = {
        {-1, -1, {0}},
        {2, 2, {0}},
        {3, 0, {0, 2, 3, 4}},
        {1, 0, {0, 1, 2, 3, 4}},
    };
    for (const auto &rc : cases)
    {
        SmallTree t;
        ECBase *all[] = {t.a1, t.a2, t.a, t.b, t.root};
        Recorder action;
        action.answers.push_back({t.a1, rc.answerAtA1});
        EXPECT_EQ(action.Apply(t.root), rc.expected) << rc.answerAtA1;
        std::vector<ECBase *> expected;
        for (int i : rc.visits)
            expected.push_back(all[i]);
        EXPECT_EQ(action.visited, expected) << rc.answerAtA1;
    }
}

TEST(ACRelativesFirstTest, ClippedEventsAreEnteredAndAnswerSkip)
{
    TestTree tree(new TestTimed(EVENT_ID_SLUR));
    ECBase *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    Recorder action;
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultSkip);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{note, tree.Root()}));
}

TEST(ACRelativesFirstTest, BypassedEventsStillGetDoActionAndDoNotCountAsALevel)
{
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *env = tree.Timed(tree.Root(), EVENT_ID_TEMPO_ENV);
    ECBase *point = tree.Timed(env, EVENT_ID_TEMPO);
    ECBase *deep = tree.Timed(point, EVENT_ID_TEXT);
    Recorder action;
    action.SetDepth(1);
    action.Apply(tree.Root());
    // Past the limit the point's list is skipped, but the point still runs.
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{point, env, tree.Root()}));
    EXPECT_EQ(std::count(action.visited.begin(), action.visited.end(), deep), 0);
    EXPECT_EQ(action.GetCurDepth(), 0);
}

TEST(ACRelativesFirstTest, NullFailsAfterTheActionHasBegun)
{
    Recorder action;
    EXPECT_EQ(action.Apply(static_cast<ECBase *>(nullptr)), ACBase::ResultFailed);
    EXPECT_EQ(action.begins, 1);
}

TEST(ACRelativesFirstTest, ListApplyWalksEachEntryChildrenFirst)
{
    SmallTree t;
    Recorder action;
    EXPECT_EQ(action.Apply(t.root->GetChildren(), 0), ACBase::ResultContinue);
    EXPECT_EQ(action.visited, (std::vector<ECBase *>{t.a1, t.a2, t.a, t.b}));
    EXPECT_EQ(action.ends, 1);
}
} // namespace
