#include "events/structure/TrackTestSupport.h"

#include <scoremodel/commands/CCRemoveTrack.h>

namespace
{
// Runs a synchronous removal of `track` in its own undo step; returns
// whether the command got through Process.
int Remove(ECPerformance *doc, ECTrack *track)
{
    auto *remove = new CCRemoveTrack(track);
    remove->Ref();
    remove->SetSynchronous(1);
    EXPECT_EQ(remove->GetCommandId(), 44);
    CString name(L"remove");
    MCCommandMgr::BeginUndo(doc, name);
    remove->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    const int removed = remove->GetCommandPhase() == CCBase::PhaseFinish;
    remove->Unref(1);
    return removed;
}
} // namespace

using CCRemoveTrackTest = TrackTest;

TEST_F(CCRemoveTrackTest, TheStavesBehindMoveDownAndUndoRestoresTheSameStaffAtItsNumber)
{
    CountedStaff *a = AddStaff();
    CountedStaff *b = AddStaff();
    CountedStaff *c = AddStaff();

    ASSERT_TRUE(Remove(m_doc, a));
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{b, c}));
    EXPECT_EQ(b->GetTrack(), 1);
    EXPECT_EQ(c->GetTrack(), 2);
    EXPECT_EQ(a->GetParents()->GetCount(), 0);

    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b, c}));
    EXPECT_EQ(c->GetTrack(), 3);
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{b, c}));

    // Once the history lets go, the removed staff dies.
    m_doc->ClearUndo();
    MCCommandMgr::OnIdle();
    EXPECT_EQ(g_liveTracks, 2);
}

TEST_F(CCRemoveTrackTest, WaveTracksAndTheChordStaffComeBackWhereTheyWere)
{
    CountedWaveTrack *w1 = AddWave();
    CountedWaveTrack *w2 = AddWave();
    ECStaff *chord = m_conductor->GetChordStaff();
    ASSERT_TRUE(Remove(m_doc, w1));
    EXPECT_EQ(w2->GetTrack(), 1);
    ASSERT_TRUE(Remove(m_doc, chord));
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1, w2}));
    EXPECT_EQ(w2->GetTrack(), 2);
    EXPECT_EQ(m_conductor->GetChordStaff(), chord);
}

TEST_F(CCRemoveTrackTest, ATrackThatIsNotPlacedIsRefused)
{
    CountedStaff *a = AddStaff();
    auto *stranger = new CountedStaff;
    stranger->Ref();
    EXPECT_FALSE(Remove(m_doc, stranger));
    EXPECT_FALSE(Remove(m_doc, nullptr));
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a}));
    EXPECT_EQ(m_doc->GetUndoCount(), 0);
    stranger->Unref(1);
}
