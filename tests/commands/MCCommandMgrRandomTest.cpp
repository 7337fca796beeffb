// Random sequences of track commands, brackets (sent and posted), undo, redo
// and handler refusals, checked after every step against plain lists of the
// staves and wave tracks expected. Each run ends by checking that nothing
// outlives the history it was kept for: no track command after ClearUndo and
// OnIdle, no removed track, and nothing at all once the document is gone.
#include "CommandTestSupport.h"

#include <events/structure/TrackTestSupport.h>

#include <scoremodel/commands/CCRemoveTrack.h>

#include <algorithm>
#include <random>

namespace
{
int g_liveCommands = 0;
int g_liveDocuments = 0;

class CountedAdd : public CCAddTrack
{
public:
    CountedAdd(ECTrack *track, int index) : CCAddTrack(track, index) { ++g_liveCommands; }

protected:
    ~CountedAdd() override { --g_liveCommands; }
};

class CountedRemove : public CCRemoveTrack
{
public:
    explicit CountedRemove(ECTrack *track) : CCRemoveTrack(track) { ++g_liveCommands; }

protected:
    ~CountedRemove() override { --g_liveCommands; }
};

class CountedPerformance : public ECPerformance
{
public:
    CountedPerformance() { ++g_liveDocuments; }

protected:
    ~CountedPerformance() override { --g_liveDocuments; }
};

// The two kinds of numbered track, as indexes of the model.
enum Kind : int
{
    Staves = 0,
    Waves = 1
};

// One command as the model sees it. For an add, `index` is the argument the
// command was given: a staff number (1-based) or a wave track index
// (0-based), -1 for the end. For a remove, it is the place the command
// noted when it last ran, in the same terms, which its undo puts back.
struct ModelOp
{
    bool add;
    int kind;
    ECTrack *track;
    int index;
};

class RandomTracks : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_liveTracks = 0;
        g_liveCommands = 0;
        g_liveDocuments = 0;
        m_levels = MCCommandMgr::GetUndoLevels();
        MCCommandMgr::SetUndoLevels(MCCommandMgr::DefaultUndoLevels);
    }
    void TearDown() override { MCCommandMgr::SetUndoLevels(m_levels); }

    void NewDocument()
    {
        m_doc = new CountedPerformance;
        m_doc->Ref();
        m_doc->AddChild(new ECConductor, 0);
        // Made outside any bracket, so no undo step holds it.
        ASSERT_NE(m_doc->GetConductor()->GetConductorStaff(), nullptr);
        m_doc->AddCommandHandler(&RandomTracks::Handler, this);
        for (auto &tracks : m_model)
            tracks.clear();
        m_history.clear();
        m_undone = 0;
    }

    void DestroyDocument()
    {
        m_doc->RemoveChildren(1);
        m_doc->Unref(1);
        m_doc = nullptr;
    }

    // Phase 0: a veto cancels, a re-pass asks for another round. Phase 1:
    // a refusal leaves the change in the tree and files nothing.
    static int Handler(ECBase *, int phase, void *, void *user)
    {
        auto *self = static_cast<RandomTracks *>(user);
        if (phase == 1)
            return self->m_refuseProcess ? 0 : 1;
        if (self->m_veto)
            return -1;
        if (self->m_repasses > 0)
        {
            --self->m_repasses;
            return 0;
        }
        return 1;
    }

    std::vector<ECTrack *> Tracks(int kind)
    {
        const int conductorKind = kind == Staves ? ECConductor::TrackStaff : ECConductor::TrackWave;
        ECConductor *conductor = m_doc->GetConductor();
        std::vector<ECTrack *> tracks;
        for (int n = 1; n <= conductor->GetMaxTrackNumber(conductorKind); ++n)
            tracks.push_back(conductor->GetTrack(conductorKind, n, 0));
        return tracks;
    }

    // Where InsertTrack puts a track given `index`: past either end is the end.
    size_t InsertAt(int kind, int index) const
    {
        const size_t size = m_model[kind].size();
        const int first = kind == Staves ? 1 : 0;
        if (index < first || static_cast<size_t>(index - first) > size)
            return size;
        return static_cast<size_t>(index - first);
    }

    void Do(ModelOp &op)
    {
        auto &tracks = m_model[op.kind];
        if (op.add)
        {
            tracks.insert(tracks.begin() + static_cast<long>(InsertAt(op.kind, op.index)), op.track);
            return;
        }
        const auto it = std::find(tracks.begin(), tracks.end(), op.track);
        ASSERT_NE(it, tracks.end()) << "the model removes a track it does not hold";
        op.index = static_cast<int>(it - tracks.begin()) + (op.kind == Staves ? 1 : 0);
        tracks.erase(it);
    }

    void Undo(const ModelOp &op)
    {
        auto &tracks = m_model[op.kind];
        if (op.add)
            tracks.erase(std::remove(tracks.begin(), tracks.end(), op.track), tracks.end());
        else
            tracks.insert(tracks.begin() + static_cast<long>(InsertAt(op.kind, op.index)), op.track);
    }

    // Applies an add of a new track, sent or posted.
    ModelOp RandomAdd(std::mt19937 &rng, bool posted)
    {
        const int kind = rng() % 3 == 0 ? Waves : Staves;
        const size_t count = m_model[kind].size();
        // count + 2 choices: every place, then -1 for the end.
        const size_t pick = rng() % (count + 2);
        int index = pick == count + 1 ? -1 : static_cast<int>(pick) + (kind == Staves ? 1 : 0);
        ECTrack *track = kind == Staves ? static_cast<ECTrack *>(new CountedStaff) : new CountedWaveTrack;
        auto *add = new CountedAdd(track, index);
        add->SetSynchronous(posted ? 0 : 1);
        add->Apply(m_doc);
        return {true, kind, track, index};
    }

    // Applies an add or the remove of a placed track, sent or posted.
    ModelOp RandomCommand(std::mt19937 &rng, bool posted)
    {
        const int kind = m_model[Waves].empty() ? Staves : m_model[Staves].empty() ? Waves : static_cast<int>(rng() % 2);
        if (m_model[kind].empty() || rng() % 2)
            return RandomAdd(rng, posted);
        ECTrack *track = m_model[kind][rng() % m_model[kind].size()];
        auto *remove = new CountedRemove(track);
        remove->SetSynchronous(posted ? 0 : 1);
        remove->Apply(m_doc);
        return {false, kind, track, -1};
    }

    void CheckModel(int step)
    {
        ASSERT_EQ(Tracks(Staves), m_model[Staves]) << "staves after step " << step;
        ASSERT_EQ(Tracks(Waves), m_model[Waves]) << "wave tracks after step " << step;
        ASSERT_EQ(m_doc->GetUndoCount(), static_cast<int>(m_history.size()));
        ASSERT_EQ(m_doc->GetUndoIndex(), m_history.empty() ? -1 : static_cast<int>(m_undone));
    }

    size_t Placed() const { return m_model[Staves].size() + m_model[Waves].size(); }

    ECPerformance *m_doc = nullptr;
    std::vector<ECTrack *> m_model[2];
    std::vector<std::vector<ModelOp>> m_history; // newest first
    size_t m_undone = 0;
    bool m_veto = false;
    bool m_refuseProcess = false;
    int m_repasses = 0;
    int m_levels = 0;
};
} // namespace

TEST_F(RandomTracks, TrackListFollowsTheModelThroughEveryStepAndNothingLeaks)
{
    for (unsigned seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        NewDocument();
        for (int step = 0; step < 60; ++step)
        {
            const unsigned what = rng() % 20;
            if (what < 9)
            {
                // A bracket of one to three commands, filed as one step. A
                // posted bracket stays open after EndUndo until the message
                // loop has run its commands.
                const bool posted = rng() % 3 == 0;
                m_repasses = rng() % 4 == 0 ? 1 + static_cast<int>(rng() % 2) : 0;
                CString name(L"tracks");
                MCCommandMgr::BeginUndo(m_doc, name);
                std::vector<ModelOp> ops;
                for (unsigned n = 1 + rng() % 3; n > 0; --n)
                {
                    ops.push_back(RandomCommand(rng, posted));
                    Do(ops.back());
                }
                MCCommandMgr::EndUndo(m_doc);
                if (posted)
                {
                    ASSERT_EQ(m_doc->GetUndoCount(), static_cast<int>(m_history.size())) << "filed before it ran";
                    ASSERT_EQ(m_doc->Undo(1), 0) << "undo while the step's commands wait";
                    MCMessageLoop::ProcessPending();
                }
                EXPECT_EQ(m_repasses, 0) << "the handler was not asked again";
                m_repasses = 0;
                m_history.erase(m_history.begin(), m_history.begin() + static_cast<long>(m_undone));
                m_history.insert(m_history.begin(), ops);
                m_undone = 0;
            }
            else if (what < 13)
            {
                const bool can = m_undone < m_history.size();
                EXPECT_EQ(m_doc->Undo(1), can ? 1 : 0);
                if (can)
                {
                    const auto &ops = m_history[m_undone++];
                    for (auto it = ops.rbegin(); it != ops.rend(); ++it)
                        Undo(*it);
                }
            }
            else if (what < 17)
            {
                // A redo runs the same commands again, posted ones posted.
                const bool can = m_undone > 0;
                EXPECT_EQ(m_doc->Redo(1), can ? 1 : 0);
                MCMessageLoop::ProcessPending();
                if (can)
                    for (ModelOp &op : m_history[--m_undone])
                        Do(op);
            }
            else if (what < 18)
            {
                // Vetoed at phase 0 outside any bracket: nothing changes.
                m_veto = true;
                RandomCommand(rng, false);
                m_veto = false;
            }
            else
            {
                // Refused at phase 1 outside any bracket: the new track
                // stays, nothing is filed. Only adds, so every track the
                // history knows is still placed exactly when it expects.
                m_refuseProcess = true;
                ModelOp op = RandomAdd(rng, false);
                m_refuseProcess = false;
                Do(op);
            }
            CheckModel(step);
        }

        m_doc->ClearUndo();
        MCCommandMgr::OnIdle();
        m_history.clear();
        m_undone = 0;
        EXPECT_EQ(g_liveCommands, 0) << "a track command outlived the history";
        EXPECT_EQ(g_liveTracks, static_cast<int>(Placed())) << "a removed track outlived the history";

        // A veto inside a bracket: the commands before it ran, and the
        // refused one stays counted, so the step never closes and undo
        // answers 0 from then on.
        CString name(L"vetoed");
        MCCommandMgr::BeginUndo(m_doc, name);
        ModelOp done = RandomAdd(rng, false);
        Do(done);
        m_veto = true;
        RandomCommand(rng, false);
        m_veto = false;
        MCCommandMgr::EndUndo(m_doc);
        EXPECT_EQ(Tracks(Staves), m_model[Staves]);
        EXPECT_EQ(Tracks(Waves), m_model[Waves]);
        EXPECT_EQ(m_doc->GetUndoCount(), 0);
        EXPECT_EQ(m_doc->Undo(1), 0);
        // The next bracket files the stuck step as it opens, and stays open
        // itself.
        MCCommandMgr::BeginUndo(m_doc, name);
        ModelOp next = RandomAdd(rng, false);
        Do(next);
        MCCommandMgr::EndUndo(m_doc);
        EXPECT_EQ(Tracks(Staves), m_model[Staves]);
        EXPECT_EQ(Tracks(Waves), m_model[Waves]);
        EXPECT_EQ(m_doc->GetUndoCount(), 1);
        EXPECT_EQ(m_doc->Undo(1), 0);

        DestroyDocument();
        MCCommandMgr::OnIdle();
        EXPECT_EQ(g_liveDocuments, 0) << "the document outlived its last holder";
        EXPECT_EQ(g_liveCommands, 0) << "a track command outlived its document";
        EXPECT_EQ(g_liveTracks, 0) << "a track outlived its document";
        if (HasFatalFailure())
            return;
    }
}
