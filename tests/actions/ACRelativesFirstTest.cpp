#include "ACTestTree.h"

#include <scoremodel/actions/ACRelativesFirst.h>

#include <gtest/gtest.h>

namespace
{
using Recorder = RecordingAction<ACRelativesFirst>;

// root -> A -> A1, A2;  root -> B
struct SmallTree
{
    TestTree tree{new TestTimed(EVENT_ID_STAFF)};
    ECBase *root = tree.Root();
    ECBase *a = tree.Timed(root, EVENT_ID_MEASURE);
    ECBase *a1 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *a2 = tree.Timed(a, EVENT_ID_NOTE);
    ECBase *b = tree.Timed(root, EVENT_ID_MEASURE);
};

TEST(ACRelativesFirstTest, ChildResultDecidesWhetherTheParentRuns)
{
    const struct
    {
        int answerAtA1, expected;
        std::vector<int> visits; // a1, a2, a, b, root
        int ends;                // every event entered ends, DoAction or not
    } cases[] = {
        {0, 0, {0, 1, 2, 3, 4}, 5}, {-1, -1, {0}, 3},          {2, 2, {0}, 3},
        {3, 0, {0, 2, 3, 4}, 4},    {1, 0, {0, 1, 2, 3, 4}, 5},
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
        EXPECT_EQ(action.ends, rc.ends) << rc.answerAtA1;
    }
}

TEST(ACRelativesFirstTest, ClipBypassAndDepthDoNotSpareDoAction)
{
    // staff -> tempo env -> tempo -> slur -> note
    TestTree tree(new TestTimed(EVENT_ID_STAFF));
    ECBase *env = tree.Timed(tree.Root(), EVENT_ID_TEMPO_ENV);
    ECBase *point = tree.Timed(env, EVENT_ID_TEMPO);
    ECBase *slur = tree.Timed(point, EVENT_ID_SLUR);
    ECBase *note = tree.Timed(slur, EVENT_ID_NOTE);
    Recorder all;
    EXPECT_EQ(all.Apply(slur), ACBase::ResultSkip);
    all.Apply(tree.Root());
    EXPECT_EQ(all.visited, (std::vector<ECBase *>{note, slur, note, slur, point, env, tree.Root()}));

    // The bypassed envelope is no level: depth 1 reaches the point, whose
    // own list is skipped.
    Recorder limited;
    limited.SetDepth(1);
    limited.Apply(tree.Root());
    EXPECT_EQ(limited.visited, (std::vector<ECBase *>{point, env, tree.Root()}));
}
} // namespace
