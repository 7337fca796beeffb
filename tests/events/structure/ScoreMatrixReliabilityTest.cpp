// Random measure and staff insertions and removals against a plain model of
// the matrix: after every step every column has a measure in every row at
// its time, the columns and rows are the same objects in the same order as
// the model says, a lookup from wherever the cursor stands answers like a
// fresh search, and what was taken out dies with the last hold on it.
#include "events/structure/ScoreTestSupport.h"

#include <map>
#include <random>
#include <utility>
#include <vector>

namespace
{
class ScoreMatrixReliability : public ScoreTest
{
protected:
    // The commands' share of a measure insertion or removal: the columns
    // behind move by the change.
    void Retime()
    {
        for (int c = 0; c <= m_score->GetMaxMeasureNumber(); ++c)
        {
            MCTime t(4.0f * c);
            Column(c)->SetMeasureTime(&t);
        }
    }

    void Check(int step)
    {
        SCOPED_TRACE(::testing::Message() << "step " << step);
        ExpectMatrix();
        ASSERT_EQ(m_score->GetMaxMeasureNumber() + 1, static_cast<int>(m_columns.size()));
        ASSERT_EQ(m_score->GetMaxStaffNumber(), static_cast<int>(m_staves.size()));
        EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(4.0f * m_columns.size()));
        for (size_t s = 0; s < m_staves.size(); ++s)
            ASSERT_EQ(m_score->GetStaff(static_cast<int>(s) + 1, 0), m_staves[s]);
        for (size_t c = 0; c < m_columns.size(); ++c)
        {
            ASSERT_EQ(Column(static_cast<int>(c)), m_columns[c]) << "column " << c;
            for (size_t s = 0; s < m_staves.size(); ++s)
            {
                ECMeasure *row = m_columns[c]->GetMeasureOnTrack(static_cast<int>(s) + 1);
                auto [it, added] = m_rows.try_emplace({m_columns[c], m_staves[s]}, row);
                ASSERT_EQ(row, it->second) << "column " << c << " staff " << s << ": the row was replaced";
            }
        }
        // Lookups from a random cursor agree with a search from the start.
        const int cursor = m_score->GetCurrentMeasure();
        ASSERT_GE(cursor, 0);
        ASSERT_LE(cursor, std::max(0, m_score->GetMaxMeasureNumber()));
        for (int k = 0; k < 6; ++k)
        {
            const float time = static_cast<float>(m_rng() % (4 * m_columns.size() + 6)) - 1.0f;
            MCTime t(time);
            ECConductorMeasure *expected = nullptr;
            if (time >= 0.0f && time < 4.0f * m_columns.size())
                expected = m_columns[static_cast<size_t>(time / 4.0f)];
            ASSERT_EQ(m_score->GetConductorMeasureAtTime(t, 0, 0), expected) << "time " << time;
            if (expected)
                ASSERT_EQ(m_score->GetMeasureNumberAtTime(t), static_cast<int>(time / 4.0f) + 1);
        }
    }

    // Holds what a step takes out; each must be out of the tree and held
    // by nothing else.
    void Hold(ECBase *e)
    {
        e->Ref();
        m_held.push_back(e);
    }
    void ReleaseHeld()
    {
        for (ECBase *e : m_held)
        {
            EXPECT_EQ(e->GetParents()->GetCount(), 0);
            EXPECT_EQ(e->GetRefCount(), 1) << "something else still holds a removed measure";
            e->Unref(1);
        }
        m_held.clear();
    }

    std::mt19937 m_rng{20261125};
    std::vector<ECConductorMeasure *> m_columns;
    std::vector<ECStaff *> m_staves;
    std::map<std::pair<ECBase *, ECBase *>, ECMeasure *> m_rows;
    std::vector<ECBase *> m_held;
};

TEST_F(ScoreMatrixReliability, RandomInsertionsAndRemovalsKeepTheMatrixWhole)
{
    Build(2, 3);
    for (int c = 0; c < 3; ++c)
        m_columns.push_back(Column(c));
    m_staves = {m_score->GetStaff(1, 0), m_score->GetStaff(2, 0)};
    Check(-1);

    for (int step = 0; step < 600; ++step)
    {
        const int columns = static_cast<int>(m_columns.size());
        switch (m_rng() % 6)
        {
        case 0: // append through a lookup
        {
            MCTime t(4.0f * columns + static_cast<float>(m_rng() % 12));
            ASSERT_NE(m_score->GetConductorMeasureAtTime(t, 1, 1 + static_cast<int>(m_rng() % 2)), nullptr);
            for (int c = columns; c <= m_score->GetMaxMeasureNumber(); ++c)
                m_columns.push_back(Column(c));
            break;
        }
        case 1: // insert inside or at the end (-1)
        {
            const int count = static_cast<int>(m_rng() % 3);
            const int at = static_cast<int>(m_rng() % (columns + 2)) - 1;
            const int place = at < 0 || at >= columns ? columns : at;
            MatrixAccess::Insert(m_score, at, count, MCTime(4.0f * place));
            Retime();
            for (int i = 0; i < count; ++i)
                m_columns.insert(m_columns.begin() + place + i, Column(place + i));
            break;
        }
        case 2: // remove inside or the last ones (-1)
        {
            if (columns == 0)
                break;
            const int count = static_cast<int>(m_rng() % 3);
            const int at = static_cast<int>(m_rng() % (columns + 1)) - 1;
            int first = at < 0 ? columns - count : at;
            int n = count;
            if (first < 0)
            {
                n += first;
                first = 0;
            }
            n = std::min(n, columns - first);
            for (int c = first; c < first + n; ++c)
            {
                Hold(m_columns[c]);
                for (int s = 1; s <= static_cast<int>(m_staves.size()); ++s)
                    Hold(m_columns[c]->GetMeasureOnTrack(s));
            }
            MatrixAccess::Remove(m_score, at, count);
            Retime();
            for (int c = first; c < first + n; ++c)
                for (ECStaff *staff : m_staves)
                    m_rows.erase({m_columns[c], staff});
            m_columns.erase(m_columns.begin() + first, m_columns.begin() + first + n);
            ReleaseHeld();
            break;
        }
        case 3: // a staff at a random place
        case 4:
        {
            if (m_staves.size() >= 6)
                break;
            const int at = 1 + static_cast<int>(m_rng() % (m_staves.size() + 1));
            CountedStaff *staff = AddStaff(at);
            ASSERT_EQ(staff->GetTrack(), at);
            m_staves.insert(m_staves.begin() + at - 1, staff);
            break;
        }
        case 5: // a staff removed and let go: it dies with its measures
        {
            if (m_staves.empty())
                break;
            const size_t pick = m_rng() % m_staves.size();
            ECStaff *staff = m_staves[pick];
            const int live = g_liveTracks;
            staff->Ref();
            m_score->RemoveStaff(staff);
            EXPECT_EQ(staff->GetParents()->GetCount(), 0);
            for (ECConductorMeasure *column : m_columns)
                m_rows.erase({column, staff});
            staff->ReleaseHold();
            EXPECT_EQ(g_liveTracks, live - 1) << "a removed staff outlived its last hold";
            m_staves.erase(m_staves.begin() + static_cast<long>(pick));
            break;
        }
        }
        Check(step);
        if (HasFatalFailure())
            return;
    }
}
} // namespace
