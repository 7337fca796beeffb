#include "events/structure/TrackTestSupport.h"

#include <scoremodel/commands/CCAddTrack.h>

using CCAddTrackTest = TrackTest;

TEST_F(CCAddTrackTest, UndoTakesTheTrackOutAndRedoPutsTheSameObjectBackAtItsNumber)
{
    CountedStaff *a = AddStaff();
    CountedStaff *b = AddStaff();
    auto *staff = new CountedStaff;
    auto *add = new CCAddTrack(staff, 1);
    add->Ref();
    add->SetSynchronous(1);
    EXPECT_EQ(add->GetCommandId(), 11);
    BeginUndo();
    add->Apply(m_doc);
    EndUndo();
    EXPECT_EQ(add->GetTrackNumber(), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{staff, a, b}));

    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a, b}));
    EXPECT_EQ(a->GetTrack(), 1);
    EXPECT_EQ(staff->GetParents()->GetCount(), 0);
    EXPECT_EQ(g_liveTracks, 3) << "the command keeps the track alive";

    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{staff, a, b}));
    EXPECT_EQ(staff->GetTrack(), 1);
    add->Unref(1);
}

TEST_F(CCAddTrackTest, WaveTracksCarryNoInstrumentAndComeBackAtTheirIndex)
{
    CountedWaveTrack *w1 = AddWave();
    BeginUndo();
    ECTrack *w0 = m_conductor->GetTrack(3, 5, 1);
    EndUndo();
    ASSERT_NE(w0, nullptr);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1, w0})) << "a missing wave track is made at the end";
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1}));
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(Tracks(3), (std::vector<ECTrack *>{w1, w0}));
    EXPECT_EQ(w0->GetTrack(), 2);
}

TEST_F(CCAddTrackTest, ATrackThatCannotBePlacedIsRefusedAndNotLeaked)
{
    CountedStaff *a = AddStaff();
    // Placed already, no track at all, not a track the conductor takes.
    EXPECT_EQ(CCAddTrack::AddNow(m_doc, a, -1), nullptr);
    EXPECT_EQ(Tracks(2), (std::vector<ECTrack *>{a}));
    EXPECT_EQ(CCAddTrack::AddNow(m_doc, nullptr, -1), nullptr);
    EXPECT_EQ(CCAddTrack::AddNow(m_doc, static_cast<ECTrack *>(RUNTIME_CLASS(ECTrack)->CreateObject()), -1), nullptr);
    EXPECT_EQ(CCAddTrack::AddNow(nullptr, new CountedStaff, -1), nullptr);
    EXPECT_EQ(g_liveTracks, 1);
}
