// The meter and measure commands: bars re-cut with every event handed to
// the bar that covers it, the score's matrix whole, and undo and redo giving
// back exactly the tree before and after (the same objects, times and
// order), also for random sequences of edits.
#include "ScoreChecks.h"
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/commands/CCAddMeasure.h>
#include <scoremodel/commands/CCAddMeter.h>
#include <scoremodel/commands/CCRemoveMeasure.h>
#include <scoremodel/commands/CCRemoveMeter.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <random>
#include <string>

using score_checks::Members;
using score_checks::TreeShape;

namespace
{
float Seconds(ECBase *event)
{
    return event->GetTime()->GetSeconds();
}
} // namespace

class MeasureCommands : public TrackTest
{
protected:
    ECConductorStaff *Score() { return m_conductor->GetConductorStaff(); }

    ECMeter *Meter(int numerator, int denominator, float time)
    {
        auto *meter = new ECMeter(static_cast<unsigned char>(numerator), static_cast<unsigned char>(denominator), 255);
        MCTime t(time);
        meter->SetTime(&t);
        return meter;
    }

    // Two staves, `bars` bars of 4/4, a tempo at 0 and at 20, a clef and a
    // key at the start of each staff, half notes on staff 1 every two
    // beats, a whole note per bar on staff 2.
    void Build(int bars)
    {
        AddStaff();
        AddStaff();
        Score()->GetMeterEnv()->AddChild(Meter(4, 4, 0.0f), 1);
        MCTime last(4.0f * static_cast<float>(bars) - 1.0f);
        ASSERT_NE(Score()->GetConductorMeasureAtTime(last, 1, 1), nullptr);
        for (float at : {0.0f, 20.0f})
        {
            auto *tempo = new ECTempo;
            MCTime t(at);
            tempo->SetTime(&t);
            tempo->SetTempo(at == 0.0f ? 120 : 90, 1);
            Score()->GetTempoEnv()->AddChild(tempo, 1);
        }
        for (int track = 1; track <= 2; ++track)
        {
            ECMeasure *first = m_conductor->GetMeasure(track, MCTime(0.0f), 0, 1);
            MCTime zero(0.0f);
            ECBase *clef = new ECClef(static_cast<unsigned char>(track));
            clef->SetTime(&zero);
            first->AddChild(clef, 1);
            ECBase *key = new ECKey(1, 0, 0);
            key->SetTime(&zero);
            first->AddChild(key, 1);
        }
        Score()->RebuildStaffCaches();
        for (int i = 0; i < bars * 2; ++i)
            AddNote(1, 2.0f * static_cast<float>(i), 2.0f);
        for (int i = 0; i < bars; ++i)
            AddNote(2, 4.0f * static_cast<float>(i), 4.0f);
    }

    ECBase *AddNote(int track, float time, float length)
    {
        ECBase *note = CreateEventW(EVENT_ID_NOTE);
        MCTime t(time), d(length);
        note->SetTime(&t);
        note->SetDuration(&d);
        m_conductor->GetMeasure(track, t, 1, 1)->AddChild(note, 1);
        return note;
    }

    bool Step(CCBase *command)
    {
        return score_checks::RunStep(m_doc, command, L"edit " + std::to_wstring(++m_steps));
    }

    TreeShape Shape() { return score_checks::ShapeOf(m_doc); }

    std::vector<ECMeter *> Meters()
    {
        std::vector<ECMeter *> meters;
        for (ECBase *m : Members(Score()->GetMeterEnv()->GetChildren()))
            meters.push_back(static_cast<ECMeter *>(m));
        return meters;
    }

    std::vector<float> ColumnTimes()
    {
        std::vector<float> times;
        ECConductorStaff::MeasureArray &columns = Score()->GetConductorMeasures();
        for (int i = 0; i < columns.GetSize(); ++i)
            times.push_back(Seconds(columns.GetAt(i)));
        return times;
    }

    void ExpectWhole(const std::string &where) { EXPECT_EQ(score_checks::CheckWhole(m_conductor), "") << where; }

    // Undo gives back `before` exactly, redo `after`, and the step ends done.
    void ExpectUndoRedo(const TreeShape &before, const TreeShape &after, const std::string &where)
    {
        ASSERT_EQ(m_doc->Undo(1), 1) << where;
        EXPECT_TRUE(Shape() == before) << "undo of " << where;
        ASSERT_EQ(m_doc->Redo(1), 1) << where;
        EXPECT_TRUE(Shape() == after) << "redo of " << where;
    }

    int m_steps = 0;
};

TEST_F(MeasureCommands, ThreeFourOverEightBarsMovesTheBarsCloserAndTheRestEarlier)
{
    Build(10);
    ExpectWhole("built");
    ASSERT_TRUE(Step(new CCAddMeter(Meter(2, 4, 32.0f), nullptr)));
    ECBase *behind = AddNote(1, 33.0f, 0.5f);
    const TreeShape before = Shape();

    ASSERT_TRUE(Step(new CCAddMeter(Meter(3, 4, 0.0f), nullptr)));
    ExpectWhole("after 3/4");
    const std::vector<float> times = ColumnTimes();
    ASSERT_GE(times.size(), 9u);
    for (int i = 0; i < 8; ++i)
        EXPECT_FLOAT_EQ(times[static_cast<size_t>(i)], 3.0f * static_cast<float>(i));
    EXPECT_FLOAT_EQ(Seconds(behind), 25.0f) << "eight bars a quarter shorter each";
    EXPECT_EQ(behind->GetDuration()->GetSeconds(), 0.5f) << "no note is cut";
    ASSERT_EQ(Meters().size(), 2u) << "the new meter replaced the one at its time";
    EXPECT_EQ(Meters()[0]->GetNumerator(), 3);
    EXPECT_FLOAT_EQ(Seconds(Meters()[1]), 24.0f);
    const TreeShape after = Shape();
    ExpectUndoRedo(before, after, "3/4");
    ExpectWhole("redone");
}

TEST_F(MeasureCommands, MeterEdgeCases)
{
    struct Case
    {
        const char *what;
        std::vector<std::tuple<int, int, float>> meters; // in the score first
        std::tuple<int, int, float> added;
        std::vector<std::tuple<int, int, float>> expected;
        bool columnsMove;
    };
    const Case cases[] = {
        {"a meter equal to the one in force changes no bar", {}, {4, 4, 16.0f}, {{4, 4, 0}, {4, 4, 16}}, false},
        {"the next meter repeats the new one and goes",
         {{3, 4, 16.0f}},
         {3, 4, 8.0f},
         {{4, 4, 0}, {3, 4, 8}},
         true},
        {"a meter at the time of another replaces it", {{3, 4, 16.0f}}, {2, 4, 16.0f}, {{4, 4, 0}, {2, 4, 16}}, true},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        TearDown();
        SetUp();
        Build(8);
        for (auto [n, d, t] : c.meters)
            ASSERT_TRUE(Step(new CCAddMeter(Meter(n, d, t), nullptr)));
        const TreeShape before = Shape();
        const std::vector<float> columns = ColumnTimes();
        auto [n, d, t] = c.added;
        ASSERT_TRUE(Step(new CCAddMeter(Meter(n, d, t), nullptr)));
        ExpectWhole(c.what);
        std::vector<std::tuple<int, int, float>> meters;
        for (ECMeter *m : Meters())
            meters.emplace_back(m->GetNumerator(), m->GetDenominator(), Seconds(m));
        EXPECT_EQ(meters, c.expected);
        EXPECT_EQ(ColumnTimes() != columns, c.columnsMove);
        ExpectUndoRedo(before, Shape(), c.what);
    }
}

TEST_F(MeasureCommands, TheFirstMeterStaysAndAnotherGoesWithItsBarsReCut)
{
    Build(8);
    ECMeter *first = Meters()[0];
    const TreeShape untouched = Shape();
    // Outside an undo step: a refused command would keep one open for good.
    auto *refused = new CCRemoveMeter(first);
    refused->Ref();
    refused->SetSynchronous(1);
    refused->Apply(m_doc);
    EXPECT_NE(refused->GetCommandPhase(), CCBase::PhaseFinish);
    refused->Unref(1);
    EXPECT_TRUE(Shape() == untouched) << "a refused removal changes nothing";

    ASSERT_TRUE(Step(new CCAddMeter(Meter(3, 4, 8.0f), nullptr)));
    const TreeShape before = Shape();
    ASSERT_TRUE(Step(new CCRemoveMeter(Meters()[1])));
    ExpectWhole("removed");
    ASSERT_EQ(Meters().size(), 1u);
    const std::vector<float> times = ColumnTimes();
    for (size_t i = 0; i < times.size(); ++i)
        EXPECT_FLOAT_EQ(times[i], 4.0f * static_cast<float>(i));
    ExpectUndoRedo(before, Shape(), "remove meter");

    // A meter whose removal leaves the next one repeating the previous one
    // takes that one along, in the same step.
    ASSERT_TRUE(Step(new CCAddMeter(Meter(3, 4, 8.0f), nullptr)));
    ASSERT_TRUE(Step(new CCAddMeter(Meter(4, 4, ColumnTimes()[4]), nullptr)));
    ASSERT_EQ(Meters().size(), 3u);
    const TreeShape three = Shape();
    const int steps = m_doc->GetUndoCount();
    ASSERT_TRUE(Step(new CCRemoveMeter(Meters()[1])));
    ExpectWhole("both gone");
    EXPECT_EQ(Meters().size(), 1u);
    EXPECT_EQ(m_doc->GetUndoCount(), steps + 1) << "the nested removal joined no step of its own";
    ExpectUndoRedo(three, Shape(), "remove meter and the redundant one");
}

TEST_F(MeasureCommands, InsertedBarsMoveTheMusicAndLeaveTheStartOfTheScoreInPlace)
{
    Build(4);
    ECMeter *first = Meters()[0];
    ECTrack *staff = m_conductor->GetTrack(ECConductor::TrackStaff, 1, 0);
    ECMeasure *opening = m_conductor->GetMeasure(1, MCTime(0.0f), 0, 1);
    ECBase *clef = opening->GetChildren()->GetHead();
    ECBase *note = Members(opening->GetChildren()).back();
    const TreeShape before = Shape();

    ASSERT_TRUE(Step(new CCAddMeasure(2, 0)));
    ExpectWhole("two bars at the start");
    EXPECT_EQ(Score()->GetMaxMeasureNumber(), 5);
    EXPECT_FLOAT_EQ(Seconds(note), 8.0f + 2.0f) << "the music moved behind the new bars";
    EXPECT_FLOAT_EQ(Seconds(first), 0.0f);
    EXPECT_FLOAT_EQ(Seconds(staff), 0.0f);
    EXPECT_FLOAT_EQ(Seconds(Score()->GetTempoEnv()->GetChildren()->GetHead()), 0.0f);
    EXPECT_EQ(clef->GetParents()->GetHead(), m_conductor->GetMeasure(1, MCTime(0.0f), 0, 1))
        << "the clef opens the new first bar";
    ExpectUndoRedo(before, Shape(), "insert at 0");

    // Behind a pickup bar, index 0 inserts after it.
    ASSERT_TRUE(Step(new CCAddMeter(Meter(4, 4, 4.0f), nullptr)));
    first->SetPickupRole(2);
    const float pickupEnd = ColumnTimes()[1];
    ASSERT_TRUE(Step(new CCAddMeasure(1, 0)));
    EXPECT_FLOAT_EQ(ColumnTimes()[0], 0.0f);
    EXPECT_FLOAT_EQ(ColumnTimes()[1], pickupEnd);
    EXPECT_FLOAT_EQ(Seconds(clef), 0.0f);
}

TEST_F(MeasureCommands, RemovedBarsTakeWhatTheyHoldAndTheScoreKeepsOne)
{
    Build(6);
    ASSERT_TRUE(Step(new CCAddMeter(Meter(3, 4, 8.0f), nullptr))); // bar 3 on in 3/4
    const TreeShape before = Shape();
    // Bars 3 and 4 hold the change to 3/4: the bars behind take 4/4 again.
    ASSERT_TRUE(Step(new CCRemoveMeasure(2, 2)));
    ExpectWhole("two bars out");
    ASSERT_EQ(Meters().size(), 1u) << "the change went with its bars, and the copy again";
    const std::vector<float> times = ColumnTimes();
    for (size_t i = 0; i < times.size(); ++i)
        EXPECT_FLOAT_EQ(times[i], 4.0f * static_cast<float>(i));
    ExpectUndoRedo(before, Shape(), "remove bars");

    // Behind a pickup bar, index 0 names the first full bar.
    Meters()[0]->SetPickupRole(2);
    const std::vector<float> columns = ColumnTimes();
    ECBase *pickup = Score()->GetConductorMeasures().GetAt(0);
    ECBase *second = Score()->GetConductorMeasures().GetAt(2);
    const TreeShape withPickup = Shape();
    ASSERT_TRUE(Step(new CCRemoveMeasure(1, 0)));
    ExpectWhole("the first full bar out");
    EXPECT_EQ(Score()->GetConductorMeasures().GetAt(0), pickup);
    EXPECT_EQ(Score()->GetConductorMeasures().GetAt(1), second);
    EXPECT_EQ(ColumnTimes().size(), columns.size() - 1);
    ExpectUndoRedo(withPickup, Shape(), "remove behind a pickup");
    Meters()[0]->SetPickupRole(0);

    ASSERT_TRUE(Step(new CCRemoveMeasure(1000, 0)));
    ExpectWhole("all but one");
    EXPECT_EQ(Score()->GetMaxMeasureNumber(), 0);
    const TreeShape one = Shape();
    ASSERT_TRUE(Step(new CCRemoveMeasure(1, 7)));
    EXPECT_TRUE(Shape() == one) << "an index past the last bar takes nothing";
}

TEST_F(MeasureCommands, RandomEditsKeepTheScoreWholeAndUndoAndRedoExactly)
{
    const std::tuple<int, int> signatures[] = {{2, 4}, {3, 4}, {4, 4}, {6, 8}, {5, 4}, {3, 8}, {7, 8}};
    int changed = 0;
    for (unsigned seed = 1; seed <= 6; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        TearDown();
        SetUp();
        Build(10);
        std::mt19937 rng(seed);
        std::vector<TreeShape> history{Shape()};
        for (int step = 0; step < 30; ++step)
        {
            const std::string what = "step " + std::to_string(step);
            const std::vector<float> columns = ColumnTimes();
            const int bar = static_cast<int>(rng() % columns.size());
            CCBase *command = nullptr;
            switch (rng() % 4)
            {
            case 0: {
                auto [n, d] = signatures[rng() % std::size(signatures)];
                command = new CCAddMeter(Meter(n, d, columns[static_cast<size_t>(bar)]), nullptr);
                break;
            }
            case 1: {
                const std::vector<ECMeter *> meters = Meters();
                if (meters.size() < 2)
                    continue;
                command = new CCRemoveMeter(meters[1 + rng() % (meters.size() - 1)]);
                break;
            }
            case 2:
                command = new CCAddMeasure(1 + static_cast<int>(rng() % 3), bar - 1 + static_cast<int>(rng() % 3));
                break;
            default:
                command = new CCRemoveMeasure(1 + static_cast<int>(rng() % 3), bar);
                break;
            }
            if (!Step(command))
                continue;
            ExpectWhole(what);
            const TreeShape after = Shape();
            if (after == history.back())
            {
                // Nothing changed, but the step is in the history all the same.
                history.push_back(after);
                continue;
            }
            ExpectUndoRedo(history.back(), after, what);
            history.push_back(after);
            ++changed;
            if (HasFatalFailure() || HasFailure())
                return;
        }
        for (size_t i = history.size() - 1; i > 0; --i)
        {
            ASSERT_EQ(m_doc->Undo(1), 1);
            ASSERT_TRUE(Shape() == history[i - 1]) << "undoing back to " << i - 1;
        }
        for (size_t i = 1; i < history.size(); ++i)
        {
            ASSERT_EQ(m_doc->Redo(1), 1);
            ASSERT_TRUE(Shape() == history[i]) << "redoing to " << i;
        }
        ExpectWhole("all redone");
    }
    EXPECT_GT(changed, 100) << "the edits did something";
}
