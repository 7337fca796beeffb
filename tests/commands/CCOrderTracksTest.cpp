// Reordering staves: the same staff objects renumbered, undo and redo of the
// permutation, and the orders that must be refused without touching the
// document.
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/commands/CCOrderTracks.h>

namespace
{
// Runs a synchronous reorder in its own undo step; whether it got through
// Process.
int Order(ECPerformance *doc, std::initializer_list<int> numbers)
{
    CArray<int, int> order;
    for (int n : numbers)
        order.Add(n);
    auto *command = new CCOrderTracks(order);
    command->Ref();
    command->SetSynchronous(1);
    CString name(L"order");
    MCCommandMgr::BeginUndo(doc, name);
    command->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    const int done = command->GetCommandPhase() == CCBase::PhaseFinish;
    command->Unref(1);
    return done;
}
} // namespace

using OrderTracks = TrackTest;

TEST_F(OrderTracks, StavesTakeTheirNewNumbersAndUndoAndRedoFollow)
{
    CountedStaff *a = AddStaff();
    CountedStaff *b = AddStaff();
    CountedStaff *c = AddStaff();
    ASSERT_TRUE(Order(m_doc, {2, 3, 1}));
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{b, c, a}));
    EXPECT_EQ(b->GetTrack(), 1);
    EXPECT_EQ(c->GetTrack(), 2);
    EXPECT_EQ(a->GetTrack(), 3);

    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b, c}));
    EXPECT_EQ(a->GetTrack(), 1);
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{b, c, a}));
    EXPECT_EQ(g_liveTracks, 3) << "no staff is lost or doubled on the way";

    // The identity is a valid order too.
    ASSERT_TRUE(Order(m_doc, {1, 2, 3}));
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{b, c, a}));
}

TEST_F(OrderTracks, AnOrderThatIsNotAPermutationIsRefusedAndChangesNothing)
{
    CountedStaff *a = AddStaff();
    CountedStaff *b = AddStaff();
    CountedStaff *c = AddStaff();
    const std::initializer_list<int> bad[] = {{}, {1, 2}, {1, 2, 3, 4}, {1, 1, 2}, {0, 1, 2}, {1, 2, 4}, {-1, 2, 3}};
    for (const auto &order : bad)
    {
        EXPECT_FALSE(Order(m_doc, order)) << "an order of " << order.size();
        EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b, c}));
    }
    EXPECT_EQ(g_liveTracks, 3);
}
