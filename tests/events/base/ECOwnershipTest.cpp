// Reliability of the reference-counted tree: who holds what, and exactly when
// an event dies. Every test ends with nothing alive, and the sanitizer build
// checks that nothing was touched after it died.
#include "events/base/EventTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>

namespace
{
class ECOwnershipTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_nodesBefore = TestNode::s_alive;
        m_leavesBefore = TestLeaf::s_alive;
    }
    void TearDown() override
    {
        EXPECT_EQ(TestNode::s_alive, m_nodesBefore) << "a container outlived its holders";
        EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore) << "a leaf outlived its holders";
    }

    int m_nodesBefore = 0;
    int m_leavesBefore = 0;
};

// root -> measure -> {note1 -> accent, note2}
struct SmallScore
{
    TestNode *root = TestNode::Make(0);
    TestNode *measure = TestNode::Make(0);
    TestNode *note1 = TestNode::Make(0);
    TestNode *note2 = TestNode::Make(1);
    TestLeaf *accent = TestLeaf::Make(0);

    SmallScore()
    {
        root->Ref(); // the test holds the root, as a host holds its document
        root->AddChild(measure, 1);
        measure->AddChild(note1, 1);
        measure->AddChild(note2, 1);
        note1->AddChild(accent, 1);
    }
};
} // namespace

TEST_F(ECOwnershipTest, DeepRemovalKillsTheSubtreeExceptWhatSomethingElseHolds)
{
    for (bool noteHeld : {false, true})
    {
        SCOPED_TRACE(noteHeld ? "a command holds a note" : "nothing else holds");
        SmallScore s;
        EXPECT_EQ(TestNode::s_alive, m_nodesBefore + 4);
        if (noteHeld)
            s.note1->Ref(); // kept for undo
        EXPECT_EQ(s.root->RemoveChild(s.measure, 1), 1);
        EXPECT_EQ(TestNode::s_alive, m_nodesBefore + (noteHeld ? 2 : 1)) << "the root and a held note remain";
        EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore) << "a deep removal detaches even a held note's accent";
        EXPECT_TRUE(s.root->GetChildren()->IsEmpty());
        EXPECT_FALSE(s.root->GetFlags() & ECBase::FlagHasChildren);
        EXPECT_EQ(s.root->GetRefCount(), 1) << "only the test holds the root now";
        if (noteHeld)
        {
            EXPECT_TRUE(s.note1->GetParents()->IsEmpty()) << "the note must not point at its dead measure";
            EXPECT_TRUE(s.note1->GetChildren()->IsEmpty());
            EXPECT_EQ(s.note1->GetRefCount(), 1);
            s.note1->Unref(1);
        }
        s.root->Unref(1);
    }
}

// Events at count 0 or held only by links: each dies with its last holder,
// and not while an operation on it still runs.
TEST_F(ECOwnershipTest, UnheldEventsDieWithTheirLastHolderAndNotBefore)
{
    TestNode *parent = TestNode::Make();
    parent->Ref();
    TestLeaf *leaf = TestLeaf::Make();
    parent->AddChild(leaf, 0);
    EXPECT_EQ(leaf->GetRefCount(), 1);
    EXPECT_EQ(parent->GetRefCount(), 2) << "the child holds its parent";
    parent->RemoveChild(leaf, 0);
    EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore) << "a child held only by the list dies inside RemoveChild";
    EXPECT_EQ(parent->GetRefCount(), 1);
    parent->Unref(1);

    // Nobody took a reference on this parent: its child was its only holder.
    parent = TestNode::Make();
    parent->AddChild(TestLeaf::Make(), 0);
    EXPECT_EQ(parent->RemoveChild(parent->GetChildren()->GetHead(), 0), 1);
    EXPECT_EQ(TestNode::s_alive, m_nodesBefore);

    // Emptying a container nobody holds must not destroy it under its
    // creator's hands.
    TestNode *box = TestNode::Make();
    box->GetChildren()->AddTail(TestLeaf::Make());
    box->RemoveChildren(1);
    EXPECT_EQ(TestNode::s_alive, m_nodesBefore + 1);
    EXPECT_EQ(box->GetRefCount(), 0);
    EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore);
    EXPECT_EQ(box->Unref(1), 0);

    EXPECT_EQ(TestLeaf::Make()->Unref(1), 0) << "a fresh event goes by Unref alone";
    EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore);
    TestLeaf *kept = TestLeaf::Make();
    EXPECT_EQ(kept->Unref(0), 0) << "without the flag nothing dies and the count stays at 0";
    EXPECT_EQ(kept->Ref(), 1);
    EXPECT_EQ(kept->Unref(1), 0);
}

TEST_F(ECOwnershipTest, ChildWithExtraReferenceSurvivesWithoutThatParent)
{
    TestNode *parent = TestNode::Make();
    TestNode *other = TestNode::Make();
    parent->Ref();
    other->Ref();
    TestLeaf *leaf = TestLeaf::Make();
    parent->AddChild(leaf, 0);
    other->AddChild(leaf, 0);
    leaf->Ref();
    parent->RemoveChild(leaf, 0);
    EXPECT_EQ(Elements(leaf->GetParents()), std::vector<ECBase *>{other});
    EXPECT_EQ(leaf->GetRefCount(), 2) << "the other parent's list and the extra reference";
    other->RemoveChild(leaf, 0);
    EXPECT_EQ(leaf->GetRefCount(), 1);
    leaf->Unref(1);
    parent->Unref(1);
    other->Unref(1);
}

TEST_F(ECOwnershipTest, RefusedLinksAndRemovalsTouchNoCount)
{
    TestNode *parent = TestNode::Make();
    parent->Ref();
    TestLeaf *stranger = TestLeaf::Make();
    stranger->Ref();
    EXPECT_EQ(parent->RemoveChild(stranger, 1), 0);
    EXPECT_EQ(parent->RemoveChild(nullptr, 1), 0);
    EXPECT_EQ(stranger->GetRefCount(), 1);
    EXPECT_EQ(parent->GetRefCount(), 1);
    stranger->Unref(1);

    TestLeaf *leaf = TestLeaf::Make();
    ASSERT_EQ(parent->AddChild(leaf, 1), 1);
    EXPECT_EQ(parent->AddChild(leaf, 1), 0) << "a child is added once";
    EXPECT_EQ(parent->AddChild(leaf, 0), 0);
    EXPECT_EQ(parent->GetChildren()->GetCount(), 1);
    EXPECT_EQ(leaf->GetParents()->GetCount(), 1);
    EXPECT_EQ(leaf->GetRefCount(), 1);
    EXPECT_EQ(parent->AddChild(parent, 0), 0) << "an event cannot be its own child";
    EXPECT_EQ(parent->AddChild(nullptr, 0), 0);
    EXPECT_EQ(parent->GetRefCount(), 2);
    parent->RemoveChildren(1);
    parent->Unref(1);
}

// A note held by its measure, its beam and its tuplet comes apart cleanly
// whatever the order in which the three let go: each parent either removes
// the note shallowly or goes itself, taking its subtree down deeply.
TEST_F(ECOwnershipTest, NoteWithThreeParentsComesApartInAnyOrder)
{
    for (bool parentsDie : {false, true})
    {
        std::array<int, 3> order = {0, 1, 2};
        do
        {
            SCOPED_TRACE(::testing::Message() << (parentsDie ? "parents die" : "parents let go") << ", order "
                                              << order[0] << order[1] << order[2]);
            std::array<TestNode *, 3> parents = {TestNode::Make(), TestNode::Make(), TestNode::Make()};
            for (TestNode *p : parents)
                p->Ref();
            TestNode *note = TestNode::Make(2.0f);
            note->AddChild(TestLeaf::Make(2.0f), 1);
            for (TestNode *p : parents)
                ASSERT_EQ(p->AddChild(note, 1), 1);
            EXPECT_EQ(note->GetRefCount(), 4) << "three lists and the dot's parent link";

            for (int step = 0; step < 3; ++step)
            {
                TestNode *leaving = parents[order[step]];
                if (parentsDie)
                {
                    leaving->RemoveChildren(1);
                    leaving->Unref(1);
                }
                else
                {
                    leaving->RemoveChild(note, 0);
                    EXPECT_TRUE(leaving->GetChildren()->IsEmpty());
                }
                if (step < 2)
                {
                    ASSERT_EQ(TestNode::s_alive, m_nodesBefore + 4 - (parentsDie ? step + 1 : 0))
                        << "the note lives while a parent holds it";
                    EXPECT_EQ(note->GetParents()->GetCount(), 2 - step);
                    if (!parentsDie)
                    {
                        EXPECT_FALSE(Holds(note->GetParents(), leaving));
                    }
                    for (int later = step + 1; later < 3; ++later)
                        EXPECT_TRUE(Holds(parents[order[later]]->GetChildren(), note));
                }
            }
            if (!parentsDie)
            {
                // A shallow removal leaves the note held by its own dot: the
                // last holder tears it down as a command's trash would.
                EXPECT_EQ(TestNode::s_alive, m_nodesBefore + 4);
                note->Ref();
                note->RemoveChildren(1);
                EXPECT_EQ(note->Unref(1), 0);
                for (TestNode *p : parents)
                    p->Unref(1);
            }
            EXPECT_EQ(TestNode::s_alive, m_nodesBefore);
            EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore);
        } while (std::next_permutation(order.begin(), order.end()));
    }
}

TEST_F(ECOwnershipTest, RemoveFromParentsDetachesFromEveryParent)
{
    std::array<TestNode *, 3> parents = {TestNode::Make(), TestNode::Make(), TestNode::Make()};
    for (TestNode *p : parents)
        p->Ref();
    TestLeaf *note = TestLeaf::Make();
    for (TestNode *p : parents)
        p->AddChild(note, 0);
    note->Ref(); // a remove command keeps it for undo
    EXPECT_EQ(note->RemoveFromParents(), 1);
    EXPECT_TRUE(note->GetParents()->IsEmpty());
    for (TestNode *p : parents)
    {
        EXPECT_TRUE(p->GetChildren()->IsEmpty());
        EXPECT_EQ(p->GetRefCount(), 1);
    }
    EXPECT_EQ(note->GetRefCount(), 1);
    note->Unref(1);
    for (TestNode *p : parents)
        p->Unref(1);
}

TEST_F(ECOwnershipTest, ContainerDestroyedWithChildrenReleasesThem)
{
    // A child entered in the list directly holds no link back, so the
    // container can die with the child still listed; the destructor must
    // take it down.
    TestNode *box = TestNode::Make();
    box->Ref();
    TestNode *inner = TestNode::Make();
    box->GetChildren()->AddTail(inner);
    inner->AddChild(TestLeaf::Make(), 0);
    EXPECT_EQ(box->Unref(1), 0);
    EXPECT_EQ(TestNode::s_alive, m_nodesBefore);
    EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore);
}

TEST_F(ECOwnershipTest, CyclicGraphCanStillBeTornDown)
{
    // Only a corrupt document makes a cycle, but tearing it down must end.
    TestNode *a = TestNode::Make();
    TestNode *b = TestNode::Make();
    a->Ref();
    a->AddChild(b, 0);
    b->AddChild(a, 0);
    a->RemoveChildren(1);
    a->RemoveFromParents();
    EXPECT_EQ(a->Unref(1), 0);
    EXPECT_EQ(TestNode::s_alive, m_nodesBefore);
}

TEST_F(ECOwnershipTest, ParentOfManyChildrenKeepsAnExactCount)
{
    // More children than a 16-bit count could hold references for.
    TestNode *parent = TestNode::Make();
    parent->Ref();
    const int n = 70000;
    for (int i = 0; i < n; ++i)
        parent->AddChild(TestLeaf::Make(static_cast<float>(i)), 1);
    EXPECT_EQ(parent->GetRefCount(), n + 1);
    parent->RemoveChildren(0);
    EXPECT_EQ(parent->GetRefCount(), 1);
    EXPECT_EQ(TestLeaf::s_alive, m_leavesBefore);
    parent->Unref(1);
}

// Random trees with shared children and extra holders, built and torn down.
// After every step each living event's count equals what holds it, and no
// event is alive at count 0.
TEST_F(ECOwnershipTest, RandomTreesKeepCountsExactAndLeaveNothingBehind)
{
    std::mt19937 rng(20240611);
    for (int round = 0; round < 40; ++round)
    {
        std::map<TestNode *, int> order;  // creation order: parents come first
        std::map<TestNode *, int> held;   // references the test holds
        int serial = 0;
        auto pick = [&](auto &&pred) -> TestNode * {
            std::vector<TestNode *> candidates;
            for (TestNode *n : TestNode::Live())
                if (order.count(n) && pred(n))
                    candidates.push_back(n);
            if (candidates.empty())
                return nullptr;
            return candidates[std::uniform_int_distribution<size_t>(0, candidates.size() - 1)(rng)];
        };
        auto any = [](TestNode *) { return true; };

        for (int step = 0; step < 300; ++step)
        {
            int op = std::uniform_int_distribution<int>(0, 9)(rng);
            if (op <= 2 || TestNode::Live().size() < 3)
            {
                TestNode *n = TestNode::Make(static_cast<float>(rng() % 8));
                order[n] = serial++;
                TestNode *parent = pick([&](TestNode *p) { return p != n; });
                if (parent && rng() % 4)
                {
                    parent->Ref();
                    parent->AddChild(n, static_cast<int>(rng() % 2));
                    parent->Unref(1);
                }
                else
                {
                    n->Ref();
                    ++held[n];
                }
            }
            else if (op == 3)
            {
                // Share an existing event under a later parent, as a beam
                // shares a measure's notes.
                TestNode *child = pick(any);
                TestNode *parent = pick([&](TestNode *p) { return order[p] < order[child]; });
                if (parent)
                {
                    parent->Ref();
                    parent->AddChild(child, 1);
                    parent->Unref(1);
                }
            }
            else if (op == 4 || op == 5)
            {
                TestNode *parent = pick([](TestNode *p) { return !p->GetChildren()->IsEmpty(); });
                if (parent)
                {
                    auto children = Elements(parent->GetChildren());
                    ECBase *child = children[rng() % children.size()];
                    parent->Ref();
                    parent->RemoveChild(child, static_cast<int>(rng() % 2));
                    parent->Unref(1);
                }
            }
            else if (op == 6)
            {
                TestNode *child = pick([](TestNode *c) { return !c->GetParents()->IsEmpty(); });
                if (child)
                {
                    child->Ref();
                    child->RemoveFromParents();
                    child->Unref(1);
                }
            }
            else if (op == 7)
            {
                TestNode *n = pick(any);
                n->Ref();
                ++held[n];
            }
            else if (op == 8)
            {
                TestNode *n = pick([&](TestNode *c) { return held[c] > 0; });
                if (n)
                {
                    --held[n];
                    n->Unref(1);
                }
            }
            else
            {
                TestNode *parent = pick(any);
                parent->Ref();
                parent->RemoveChildren(static_cast<int>(rng() % 2));
                parent->Unref(1);
            }

            // Counts: held by the test, by child lists and by parent lists.
            std::map<ECBase *, int> expected;
            for (TestNode *n : TestNode::Live())
            {
                if (!order.count(n))
                    continue;
                expected[n] += held.count(n) ? held[n] : 0;
                for (ECBase *c : Elements(n->GetChildren()))
                    ++expected[c];
                for (ECBase *p : Elements(n->GetParents()))
                    ++expected[p];
            }
            for (TestNode *n : TestNode::Live())
            {
                if (!order.count(n))
                    continue;
                ASSERT_EQ(n->GetRefCount(), expected[n]) << "round " << round << " step " << step;
                ASSERT_GT(n->GetRefCount(), 0) << "an event nobody holds is alive";
                for (ECBase *c : Elements(n->GetChildren()))
                    ASSERT_TRUE(Holds(c->GetParents(), n)) << "a child lost its parent link";
            }
            for (auto it = held.begin(); it != held.end();)
                it = (it->second == 0) ? held.erase(it) : std::next(it);
        }

        // Tear down: the holders detach everything and let go.
        std::vector<TestNode *> alive(TestNode::Live().begin(), TestNode::Live().end());
        for (TestNode *n : alive)
            n->Ref();
        for (TestNode *n : alive)
        {
            n->RemoveChildren(0);
            n->RemoveFromParents();
        }
        for (TestNode *n : alive)
            n->Unref(1);
        for (auto &[n, count] : held)
            for (int i = 0; i < count; ++i)
                n->Unref(1);
        ASSERT_EQ(TestNode::s_alive, m_nodesBefore) << "round " << round;
    }
}
