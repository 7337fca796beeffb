// The event bases search the tree through MCEventWalk (GetAncestor,
// GetDescendant, CollapseToAncestors) because they sit below the actions.
// These tests hold the actions to the same answers on random trees and on
// random graphs where events have several parents.
#include "ACTestTree.h"

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACFindFirstEvent.h>
#include <scoremodel/events/base/MCEventWalk.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <unordered_set>

namespace
{
// Ids that matter to the walks: clipped, bypassed, plain, and one outside
// the table.
const int kIds[] = {EVENT_ID_MEASURE,    EVENT_ID_NOTE,   EVENT_ID_CHORD,       EVENT_ID_BEAM,
                    EVENT_ID_SLUR,       EVENT_ID_TIE,    EVENT_ID_GLISSANDO,   EVENT_ID_CONTROLLER_ENV,
                    EVENT_ID_TEMPO_ENV,  EVENT_ID_TEMPO,  EVENT_ID_ENVELOPE,    EVENT_ID_STAFF,
                    69,                  EVENT_ID_REST,   EVENT_ID_PERFORMANCE, 200};

// A random graph of `n` events: event i > 0 gets a parent among 0..i-1 and,
// with `extraParents`, up to two more, so edges only run from lower to higher
// indexes and there is no cycle.
struct RandomGraph
{
    std::vector<ECBase *> events;
    std::unique_ptr<TestTree> tree;

    RandomGraph(std::mt19937 &rng, int n, bool extraParents)
    {
        std::uniform_int_distribution<size_t> pickId(0, std::size(kIds) - 1);
        events.push_back(new TestTimed(kIds[pickId(rng)]));
        tree = std::make_unique<TestTree>(events[0]);
        for (int i = 1; i < n; ++i)
        {
            ECBase *e = new TestTimed(kIds[pickId(rng)]);
            std::uniform_int_distribution<int> pickParent(0, i - 1);
            events[pickParent(rng)]->AddChild(e, 0);
            if (extraParents)
            {
                int more = std::uniform_int_distribution<int>(0, 2)(rng);
                for (int k = 0; k < more; ++k)
                    events[pickParent(rng)]->AddChild(e, 0);
            }
            events.push_back(e);
        }
    }
};

ECBase *FindFirstByAction(ECBase *start, int id, int depth, bool upward)
{
    ACFindFirstEvent find(1);
    find.AddEvtType(id);
    find.BypassNone();
    if (depth != -1)
        find.SetDepth(depth);
    if (upward)
    {
        find.SetReverse(1);
        find.ClipNone();
    }
    find.Apply(start);
    return find.GetEvent();
}

// In a graph the action meets an event once per path and the walk once:
// `dedupe` keeps the first meeting. In a tree both meet each event once.
std::vector<ECBase *> CollectByAction(ECBase *start, bool dedupe)
{
    ACFindEvents find;
    find.ClipNone();
    find.Apply(start);
    std::vector<ECBase *> firsts;
    std::unordered_set<ECBase *> seen;
    for (ECBase *e : ListOf(find.GetEvents()))
        if (seen.insert(e).second || !dedupe)
            firsts.push_back(e);
    return firsts;
}

void CheckAgreement(unsigned seed, int size, bool extraParents)
{
    std::mt19937 rng(seed);
    RandomGraph graph(rng, size, extraParents);
    const int depths[] = {-2, -1, 0, 1, 2, 3, 255, 256};
    for (ECBase *start : graph.events)
    {
        for (int id : {int(EVENT_ID_NOTE), int(EVENT_ID_MEASURE), int(EVENT_ID_SLUR), int(EVENT_ID_TEMPO), int(EVENT_ID_PERFORMANCE), 200})
            for (int depth : depths)
                for (bool upward : {false, true})
                    ASSERT_EQ(FindFirstByAction(start, id, depth, upward),
                              MCEventWalk::FindFirst(start, id, depth, upward))
                        << "seed " << seed << " id " << id << " depth " << depth << " up " << upward;

        std::vector<ECBase *> walked;
        MCEventWalk::CollectAll(start, walked);
        ASSERT_EQ(CollectByAction(start, extraParents), walked) << "seed " << seed;
    }
}

// A small score with a shared note, written out by hand, so that both walks
// are held to orders worked out on paper and not only to each other:
//
//   staff
//   +- measure:  n1 (+- dot), rest, n2
//   +- slur:     n1, n2          (clipped by default)
//   +- tempo env: tempo          (bypassed by default)
struct HandTree
{
    TestTree tree{new TestTimed(EVENT_ID_STAFF)};
    ECBase *staff = tree.Root();
    ECBase *measure = tree.Timed(staff, EVENT_ID_MEASURE);
    ECBase *n1 = tree.Timed(measure, EVENT_ID_NOTE);
    ECBase *dot = tree.Timed(n1, EVENT_ID_DOT);
    ECBase *rest = tree.Timed(measure, EVENT_ID_REST);
    ECBase *n2 = tree.Timed(measure, EVENT_ID_NOTE);
    ECBase *slur = tree.Timed(staff, EVENT_ID_SLUR);
    ECBase *env = tree.Timed(staff, EVENT_ID_TEMPO_ENV);
    ECBase *tempo = tree.Timed(env, EVENT_ID_TEMPO);
    HandTree()
    {
        slur->AddChild(n1, 0);
        slur->AddChild(n2, 0);
    }
};

TEST(ACWalkAgreementTest, BothWalksVisitAHandWrittenTreeInTheOrderWorkedOutOnPaper)
{
    HandTree t;
    using V = std::vector<ECBase *>;

    // The base walk meets each event once; the action meets the shared notes
    // again under the slur, since it does not clip here.
    V walked;
    MCEventWalk::CollectAll(t.staff, walked);
    EXPECT_EQ(walked, (V{t.staff, t.measure, t.n1, t.dot, t.rest, t.n2, t.slur, t.tempo}));
    EXPECT_EQ(CollectByAction(t.staff, false), (V{t.staff, t.measure, t.n1, t.dot, t.rest, t.n2, t.slur, t.n1,
                                                   t.dot, t.n2, t.tempo}));

    // With the default lists the slur is met but not entered, and the
    // envelope is looked through.
    ACFindEvents defaults;
    defaults.Apply(t.staff);
    EXPECT_EQ(ListOf(defaults.GetEvents()), (V{t.staff, t.measure, t.n1, t.dot, t.rest, t.n2, t.slur, t.tempo}));

    // Upward from the dot: the note, then its first parent's line before the
    // slur.
    ACFindEvents up;
    up.SetReverse(1);
    up.ClipNone();
    up.Apply(t.dot);
    EXPECT_EQ(ListOf(up.GetEvents()), (V{t.dot, t.n1, t.measure, t.staff, t.slur, t.staff}));

    const struct
    {
        ECBase *start;
        int id, depth;
        bool upward;
        ECBase *expected;
    } finds[] = {
        {t.staff, EVENT_ID_NOTE, -1, false, t.n1},
        {t.staff, EVENT_ID_DOT, 1, false, nullptr},
        {t.staff, EVENT_ID_DOT, 3, false, t.dot},
        {t.staff, EVENT_ID_TEMPO, 1, false, nullptr}, // no bypass list: the envelope is a level
        {t.staff, EVENT_ID_TEMPO, 2, false, t.tempo},
        {t.slur, EVENT_ID_NOTE, -1, false, nullptr}, // met, not entered
        {t.slur, EVENT_ID_SLUR, 0, false, t.slur},
        {t.dot, EVENT_ID_STAFF, -1, true, t.staff},
        {t.dot, EVENT_ID_SLUR, 1, true, nullptr},
        {t.dot, EVENT_ID_SLUR, 2, true, t.slur},
        {t.n2, EVENT_ID_MEASURE, 0, true, nullptr},
        {t.n2, EVENT_ID_SLUR, 1, true, t.slur},
    };
    for (const auto &f : finds)
    {
        SCOPED_TRACE(::testing::Message() << "id " << f.id << " depth " << f.depth << (f.upward ? " up" : " down"));
        EXPECT_EQ(MCEventWalk::FindFirst(f.start, f.id, f.depth, f.upward), f.expected);
        EXPECT_EQ(FindFirstByAction(f.start, f.id, f.depth, f.upward), f.expected);
    }
}

TEST(ACWalkAgreementTest, ActionsAndTheBaseWalkAgreeOnRandomTreesAndGraphsWithSharedChildren)
{
    for (unsigned seed = 1; seed <= 40; ++seed)
        CheckAgreement(seed, 60, false);
    for (unsigned seed = 100; seed < 130; ++seed)
        CheckAgreement(seed, 40, true);
}
} // namespace
