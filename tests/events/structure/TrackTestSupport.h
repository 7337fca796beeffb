// A document with a conductor, and tracks that count how many of them live,
// for the tests of the conductor and of the track commands.
#pragma once

#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/media/ECWaveTrack.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <gtest/gtest.h>

#include <vector>

inline int g_liveTracks = 0;

class CountedStaff : public ECStaff
{
public:
    explicit CountedStaff(BYTE type = 0) : ECStaff(type) { ++g_liveTracks; }

protected:
    ~CountedStaff() override { --g_liveTracks; }
};

class CountedWaveTrack : public ECWaveTrack
{
public:
    CountedWaveTrack() { ++g_liveTracks; }

protected:
    ~CountedWaveTrack() override { --g_liveTracks; }
};

// Every test ends with the document, its history and its trash gone, and
// checks that no counted track outlived them.
class TrackTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_liveTracks = 0;
        m_doc = new ECPerformance;
        m_doc->Ref();
        m_conductor = new ECConductor;
        m_doc->AddChild(m_conductor, 0);
    }

    void TearDown() override
    {
        m_doc->ClearUndo();
        m_doc->RemoveChildren(1);
        m_doc->Unref(1);
        MCCommandMgr::OnIdle();
        EXPECT_EQ(g_liveTracks, 0) << "a track outlived its document";
    }

    // A staff placed at `index` by a synchronous add.
    CountedStaff *AddStaff(int index = -1)
    {
        return static_cast<CountedStaff *>(CCAddTrack::AddNow(m_doc, new CountedStaff, index));
    }
    CountedWaveTrack *AddWave(int index = -1)
    {
        return static_cast<CountedWaveTrack *>(CCAddTrack::AddNow(m_doc, new CountedWaveTrack, index));
    }

    // The tracks of a kind in number order.
    std::vector<ECTrack *> Tracks(int kind)
    {
        std::vector<ECTrack *> tracks;
        for (int n = 1; n <= m_conductor->GetMaxTrackNumber(kind); ++n)
            tracks.push_back(m_conductor->GetTrack(kind, n, 0));
        return tracks;
    }
    std::vector<ECBase *> Children()
    {
        std::vector<ECBase *> children;
        for (POSITION pos = m_conductor->GetChildren()->GetHeadPosition(); pos;)
            children.push_back(m_conductor->GetChildren()->GetNext(pos));
        return children;
    }

    void BeginUndo()
    {
        CString name(L"edit");
        MCCommandMgr::BeginUndo(m_doc, name);
    }
    void EndUndo() { MCCommandMgr::EndUndo(m_doc); }

    ECPerformance *m_doc = nullptr;
    ECConductor *m_conductor = nullptr;
};
