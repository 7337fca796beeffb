// Random sequences of track commands, brackets, undo, redo and vetoes,
// checked after every step against a plain list of the staves expected.
#include "CommandTestSupport.h"

#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/CCRemoveTrack.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <random>

namespace
{
// One command of a step as the model sees it: a staff added at a position
// (0-based) or removed from one.
struct ModelOp
{
    bool add;
    ECTrack *staff;
    size_t at;
};

class RandomTracks : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        // Made outside any bracket, so no undo step holds it.
        ASSERT_NE(m_doc->GetConductor()->GetConductorStaff(), nullptr);
        m_doc->AddCommandHandler(&RandomTracks::Veto, this);
    }

    static int Veto(ECBase *, int phase, void *, void *user)
    {
        return phase == 0 && static_cast<RandomTracks *>(user)->m_veto ? -1 : 1;
    }

    std::vector<ECTrack *> Staves()
    {
        ECConductor *conductor = m_doc->GetConductor();
        std::vector<ECTrack *> staves;
        for (int n = 1; n <= conductor->GetMaxTrackNumber(ECConductor::TrackStaff); ++n)
            staves.push_back(conductor->GetTrack(ECConductor::TrackStaff, n, 0));
        return staves;
    }

    // Applies one random command synchronously; returns what the model
    // must do when it runs.
    ModelOp RandomCommand(std::mt19937 &rng)
    {
        const size_t count = m_model.size();
        if (count == 0 || rng() % 2)
        {
            const size_t at = rng() % (count + 2); // count + 1: the end
            auto *staff = new ECStaff;
            auto *add = new CCAddTrack(staff, at == count + 1 ? -1 : static_cast<int>(at) + 1);
            add->SetSynchronous(1);
            add->Apply(m_doc);
            return {true, staff, at > count ? count : at};
        }
        const size_t at = rng() % count;
        auto *remove = new CCRemoveTrack(m_model[at]);
        remove->SetSynchronous(1);
        remove->Apply(m_doc);
        return {false, m_model[at], at};
    }

    void Do(const ModelOp &op)
    {
        if (op.add)
            m_model.insert(m_model.begin() + static_cast<long>(op.at), op.staff);
        else
            m_model.erase(m_model.begin() + static_cast<long>(op.at));
    }
    void Undo(const ModelOp &op) { Do({!op.add, op.staff, op.at}); }

    std::vector<ECTrack *> m_model;
    std::vector<std::vector<ModelOp>> m_history; // newest first
    size_t m_undone = 0;
    bool m_veto = false;
};
} // namespace

TEST_F(RandomTracks, TrackListFollowsTheModelThroughEveryStep)
{
    for (unsigned seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        for (int step = 0; step < 60; ++step)
        {
            const unsigned what = rng() % 10;
            if (what < 5)
            {
                // A bracket of one to three commands, filed as one step.
                CString name(L"tracks");
                MCCommandMgr::BeginUndo(m_doc, name);
                std::vector<ModelOp> ops;
                for (unsigned n = 1 + rng() % 3; n > 0; --n)
                {
                    ModelOp op = RandomCommand(rng);
                    Do(op);
                    ops.push_back(op);
                }
                MCCommandMgr::EndUndo(m_doc);
                m_history.erase(m_history.begin(), m_history.begin() + static_cast<long>(m_undone));
                m_history.insert(m_history.begin(), ops);
                m_undone = 0;
            }
            else if (what < 7)
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
            else if (what < 9)
            {
                const bool can = m_undone > 0;
                EXPECT_EQ(m_doc->Redo(1), can ? 1 : 0);
                if (can)
                    for (const ModelOp &op : m_history[--m_undone])
                        Do(op);
            }
            else
            {
                // A vetoed command outside any bracket changes nothing.
                m_veto = true;
                RandomCommand(rng);
                m_veto = false;
            }
            ASSERT_EQ(Staves(), m_model) << "after step " << step;
            ASSERT_EQ(m_doc->GetUndoCount(), static_cast<int>(m_history.size()));
            ASSERT_EQ(m_doc->GetUndoIndex(), m_history.empty() ? -1 : static_cast<int>(m_undone));
        }
        m_doc->ClearUndo();
        m_history.clear();
        m_undone = 0;
        MCCommandMgr::OnIdle();
    }
}
