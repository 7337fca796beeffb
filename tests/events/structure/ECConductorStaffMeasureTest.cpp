// The score matrix of the conductor staff: columns made by lookups, the
// lookup cursor, measure numbers, selections of measures, and the measure
// and staff insertions that the commands run.
#include "events/structure/ScoreTestSupport.h"

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/signatures/ECMeter.h>

#include <cmath>

using ScoreMatrix = ScoreTest;

TEST_F(ScoreMatrix, ANewScoreHasNoColumnsAndAsksMakeNone)
{
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), -1);
    EXPECT_EQ(m_conductor->GetMaxMeasureNumber(), 0);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(0.0f));
    MCTime zero(0.0f);
    EXPECT_EQ(m_score->GetConductorMeasureAtTime(zero, 0, 0), nullptr);
    EXPECT_EQ(m_score->GetMeasure(0, 1), nullptr);
    EventList list;
    EXPECT_EQ(m_score->GetMeasures(0x7FE, 1, 5, list), 0);
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), -1);
    EXPECT_EQ(m_score->ManageEndMeasure(), 1);
    EXPECT_EQ(m_score->GetPickupFraction()->GetNum(), 0);
    EXPECT_EQ(m_score->GetPickupFraction()->GetDen(), 1u);
}

TEST_F(ScoreMatrix, ALookupBeyondTheEndAppendsMeasuresOfFourUntilTheTimeIsCovered)
{
    Build(2, 0);
    const struct
    {
        float time;
        int count;
        int maxMeasure;
        float end;
        int answer;
    } steps[] = {
        {0.0f, 1, 0, 4.0f, 0},   {9.5f, 1, 2, 12.0f, 2}, {12.0f, 0, 3, 16.0f, 3},
        {16.0f, 3, 6, 28.0f, 4}, {2.0f, 1, 6, 28.0f, 0},
    };
    for (const auto &s : steps)
    {
        SCOPED_TRACE(s.time);
        MCTime t(s.time);
        ECConductorMeasure *column = m_score->GetConductorMeasureAtTime(t, 1, s.count);
        ASSERT_NE(column, nullptr);
        EXPECT_EQ(m_score->GetMaxMeasureNumber(), s.maxMeasure);
        EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(s.end));
        EXPECT_EQ(column, Column(s.answer));
        EXPECT_EQ(m_score->GetCurrentMeasure(), s.answer) << "the cursor stays on the answer";
    }
    ExpectMatrix();
    EXPECT_EQ(m_conductor->GetMaxMeasureNumber(), 7);
}

TEST_F(ScoreMatrix, NumbersAtAndBeforeATimeFollowTheBarLines)
{
    Build(1, 3); // bars at 0, 4, 8; end 12
    const struct
    {
        float time;
        int at;
        int before;
    } rows[] = {
        {-1.0f, 0, 0}, {0.0f, 1, 0}, {2.0f, 1, 1}, {4.0f, 2, 1}, {5.0f, 2, 2},
        {8.0f, 3, 2},  {11.0f, 3, 3}, {13.0f, 3, 3},
    };
    for (const auto &r : rows)
    {
        SCOPED_TRACE(r.time);
        MCTime t(r.time);
        EXPECT_EQ(m_score->GetMeasureNumberAtTime(t), r.at);
        EXPECT_EQ(m_score->GetMeasureNumberBeforeTime(t), r.before);
        EXPECT_EQ(m_conductor->GetMeasureNumberAtTime(t), r.at) << "the conductor forwards";
    }
    // At exactly the end no column answers: the unchanged cursor plus 1.
    for (float from : {1.0f, 9.0f})
    {
        MCTime place(from);
        m_score->GetConductorMeasureAtTime(place, 0, 0);
        const int cursor = m_score->GetCurrentMeasure();
        MCTime end(12.0f);
        EXPECT_EQ(m_score->GetMeasureNumberAtTime(end), cursor + 1);
        EXPECT_EQ(m_score->GetMeasureNumberBeforeTime(end), 3);
    }
    // A measure knows its own number through the conductor.
    EXPECT_EQ(m_score->GetMeasure(1, 3)->GetMeasureNumber(), 3);
    EXPECT_EQ(Column(1)->GetPreviousCondMeasure(), Column(0));
    EXPECT_EQ(Column(0)->GetPreviousCondMeasure(), nullptr);
}

TEST_F(ScoreMatrix, BadTimesNeverAppendForEverNorMoveTheCursor)
{
    Build(1, 2);
    MCTime place(5.0f);
    m_score->GetConductorMeasureAtTime(place, 0, 0);
    for (float bad : {-0.5f, std::nanf(""), 3.0e38f})
    {
        SCOPED_TRACE(bad);
        MCTime t(bad);
        EXPECT_EQ(m_score->GetConductorMeasureAtTime(t, 1, 1), nullptr);
        EXPECT_EQ(m_score->GetMaxMeasureNumber(), 1) << "nothing appended";
        EXPECT_EQ(m_score->GetCurrentMeasure(), 1);
    }
    ExpectMatrix();
}

TEST_F(ScoreMatrix, MeasuresByNumberAndSelectionsRowByRow)
{
    Build(2, 3);
    EXPECT_EQ(m_score->GetMeasure(0, 1), Column(0)) << "row 0 is the column itself";
    EXPECT_EQ(m_score->GetMeasure(2, 3), Column(2)->GetMeasureOnTrack(2));
    for (auto [track, number] : {std::pair{-1, 1}, {3, 1}, {1, 0}, {1, 4}})
        EXPECT_EQ(m_score->GetMeasure(track, number), nullptr) << track << " " << number;
    MCTime six(6.0f);
    EXPECT_EQ(m_score->GetMeasure(2, six, 0, 0), Column(1)->GetMeasureOnTrack(2));
    EXPECT_EQ(m_conductor->GetMeasure(2, six, 0, 0), Column(1)->GetMeasureOnTrack(2));
    EXPECT_EQ(m_score->GetMeasure(5, six, 0, 0), nullptr);

    EventList list;
    const struct
    {
        int track, first, last, count;
    } rows[] = {
        {0x7FE, 1, 1, 3}, {0x7FE, 1, 3, 9}, {1, 0, 99, 3}, {2, 3, 1, 1}, {0, 2, 3, 2}, {3, 1, 3, 0},
    };
    for (const auto &r : rows)
    {
        SCOPED_TRACE(::testing::Message() << r.track << " " << r.first << "-" << r.last);
        list.AddTail(Column(0)); // emptied first
        EXPECT_EQ(m_score->GetMeasures(r.track, r.first, r.last, list), r.count);
        EXPECT_EQ(list.GetCount(), r.count);
    }
    // Row by row: all of row 0, then row 1, then row 2.
    m_score->GetMeasures(0x7FE, 2, 3, list);
    std::vector<ECBase *> got;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        got.push_back(list.GetNext(pos));
    EXPECT_EQ(got, (std::vector<ECBase *>{Column(1), Column(2), Column(1)->GetMeasureOnTrack(1),
                                          Column(2)->GetMeasureOnTrack(1), Column(1)->GetMeasureOnTrack(2),
                                          Column(2)->GetMeasureOnTrack(2)}));
    // By time: the columns from the one at the start to the one before a bar
    // line at the end.
    const struct
    {
        float start, end;
        int count;
    } spans[] = {{0.0f, 8.0f, 2}, {1.0f, 8.5f, 3}, {4.0f, 4.0f, 1}, {0.0f, 100.0f, 3}};
    for (const auto &s : spans)
        EXPECT_EQ(m_score->GetMeasures(1, MCTime(s.start), MCTime(s.end), list), s.count) << s.start << "-" << s.end;
}

TEST_F(ScoreMatrix, AppendedMeasuresAreTakenAwayByTheSameCount)
{
    Build(2, 2);
    std::vector<ECConductorMeasure *> before{Column(0), Column(1)};
    MatrixAccess::Insert(m_score, -1, 2, m_score->GetMaxMeasureEndTime());
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 3);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(16.0f));
    ECConductorMeasure *added = Column(3);
    added->Ref();
    ECMeasure *addedRow = added->GetMeasureOnTrack(2);
    addedRow->Ref();
    ExpectMatrix();

    MatrixAccess::Remove(m_score, -1, 2);
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 1);
    EXPECT_EQ(Column(0), before[0]);
    EXPECT_EQ(Column(1), before[1]);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(8.0f));
    EXPECT_LE(m_score->GetCurrentMeasure(), 1);
    ExpectMatrix();
    // Out of the tree, held by nobody but this test.
    EXPECT_EQ(added->GetParents()->GetCount(), 0);
    EXPECT_EQ(addedRow->GetParents()->GetCount(), 0);
    EXPECT_EQ(added->GetRefCount(), 1);
    EXPECT_EQ(addedRow->GetRefCount(), 1);
    addedRow->Unref(1);
    added->Unref(1);

    // Counts below zero insert and remove nothing; too many is cut.
    MatrixAccess::Insert(m_score, 0, -3, MCTime(0.0f));
    MatrixAccess::Remove(m_score, 0, -3);
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 1);
    MatrixAccess::Remove(m_score, 1, 50);
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 0);
    ExpectMatrix();
}

TEST_F(ScoreMatrix, AColumnInsertedInTheMiddleKeepsTheColumnsBehindItWhereTheyAre)
{
    Build(1, 3);
    ECConductorMeasure *third = Column(2);
    MatrixAccess::Insert(m_score, 1, 1, MCTime(4.0f));
    EXPECT_EQ(Column(3), third);
    EXPECT_TRUE(*third->GetTime() == MCTime(8.0f)) << "the commands shift the columns behind";
    EXPECT_EQ(m_score->GetCurrentMeasure(), 2) << "at + count";
    // The command's shift moves whole columns.
    MCTime twelve(12.0f);
    Column(2)->SetMeasureTime(&twelve);
    EXPECT_TRUE(*Column(2)->GetMeasureOnTrack(1)->GetTime() == twelve);
    ExpectMatrix();
}

TEST_F(ScoreMatrix, TheListFormPutsBackTheColumnsARemovalTookOut)
{
    Build(2, 4);
    // What an undo keeps: the columns and their rows, as GetMeasures lists
    // them row by row.
    EventList taken;
    m_score->GetMeasures(0x7FE, 2, 3, taken);
    ASSERT_EQ(taken.GetCount(), 6);
    std::vector<ECBase *> kept;
    for (POSITION pos = taken.GetHeadPosition(); pos;)
        kept.push_back(taken.GetNext(pos));
    MatrixAccess::Remove(m_score, 1, 2);
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 1);
    for (ECBase *e : kept)
        EXPECT_EQ(e->GetParents()->GetCount(), 0);

    MatrixAccess::InsertList(m_score, 1, taken, MCTime(4.0f));
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 3);
    EXPECT_EQ(Column(1), kept[0]);
    EXPECT_EQ(Column(2), kept[1]);
    EXPECT_EQ(Column(1)->GetMeasureOnTrack(1), kept[2]) << "the same rows, not new ones";
    EXPECT_EQ(Column(2)->GetMeasureOnTrack(2), kept[5]);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(16.0f));
    ExpectMatrix();
    // A column already in the score is passed over.
    EventList again;
    again.AddTail(Column(1));
    MatrixAccess::InsertList(m_score, -1, again, MCTime(16.0f));
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 3);
}

TEST_F(ScoreMatrix, AStaffInsertedInTheMiddleGetsARowInEveryColumnAndRenumbersTheRest)
{
    Build(3, 3);
    ECStaff *second = m_score->GetStaff(2, 0);
    ECStaff *third = m_score->GetStaff(3, 0);
    ECMeasure *thirdRow = Column(1)->GetMeasureOnTrack(3);
    CountedStaff *inserted = AddStaff(2);
    EXPECT_EQ(inserted->GetTrack(), 2);
    EXPECT_EQ(second->GetTrack(), 3);
    EXPECT_EQ(third->GetTrack(), 4);
    EXPECT_EQ(thirdRow->GetTrack(), 4) << "the whole staff moves up";
    EXPECT_EQ(Column(1)->GetMeasureOnTrack(4), thirdRow);
    ExpectMatrix();

    // Removed, its rows leave the columns but stay its measures, so that it
    // comes back whole.
    ECMeasure *ownRow = Column(2)->GetMeasureOnTrack(2);
    inserted->Ref();
    m_score->RemoveStaff(inserted);
    m_conductor->GetChildren(); // nothing else to do
    EXPECT_EQ(third->GetTrack(), 3);
    EXPECT_EQ(Column(1)->GetMeasureOnTrack(3), thirdRow);
    EXPECT_NE(ownRow->GetParents()->Find(inserted), nullptr);
    ExpectMatrix();
    EXPECT_EQ(m_score->InsertStaff(inserted, 1), 1);
    EXPECT_EQ(Column(2)->GetMeasureOnTrack(1), ownRow);
    ExpectMatrix();
    inserted->Unref(1);
}

TEST_F(ScoreMatrix, OrderingPutsStavesAndRowsBackInTrackOrder)
{
    Build(2, 2);
    ECStaff *a = m_score->GetStaff(1, 0);
    ECStaff *b = m_score->GetStaff(2, 0);
    // Swap the numbers behind the arrays' backs, as a reordering command does.
    a->SetVoiceTrack(14, 2);
    b->SetVoiceTrack(14, 1);
    for (int c = 0; c < 2; ++c)
    {
        Column(c)->GetMeasureOnTrack(1)->SetVoiceTrack(14, 2);
        Column(c)->GetMeasureOnTrack(2)->SetVoiceTrack(14, 1);
    }
    ECMeasure *bRow = Column(1)->GetMeasureOnTrack(2);
    m_score->OrderStaves();
    EXPECT_EQ(m_score->GetStaff(1, 0), b);
    EXPECT_EQ(Column(1)->GetMeasureOnTrack(1), bRow);
    ExpectMatrix();
}

TEST_F(ScoreMatrix, TheColumnListsTheEventsOfItsRows)
{
    Build(2, 1);
    ECBase *note = CreateEventW(EVENT_ID_NOTE);
    MCTime one(1.0f);
    note->SetTime(&one);
    ASSERT_TRUE(Column(0)->GetMeasureOnTrack(2)->AddChild(note, 1));
    EventList events;
    EXPECT_EQ(Column(0)->GetMeasureEvents(1, events), 0);
    EXPECT_EQ(Column(0)->GetMeasureEvents(2, events), 1);
    ASSERT_EQ(events.GetCount(), 1);
    EXPECT_EQ(events.GetHead(), note);
    EXPECT_EQ(Column(0)->GetMeasureEvents(0x7FE, events), 1);
    EXPECT_EQ(events.GetCount(), 1);
    Column(0)->GetMeasureOnTrack(2)->GetChildrenForSelection(events);
    EXPECT_EQ(events.GetCount(), 1);
    Column(0)->SetCollapseMeasure(7);
    EXPECT_EQ(Column(0)->GetCollapseMeasure(), 7);
}

TEST_F(ScoreMatrix, TheMeterEnvelopeIsMadeAtFirstUseAndForgottenWhenRemoved)
{
    EXPECT_EQ(m_score->FindMeterEnv(), nullptr);
    ECMeterEnv *meters = m_score->GetMeterEnv();
    ASSERT_NE(meters, nullptr);
    EXPECT_EQ(m_score->GetMeterEnv(), meters);
    EXPECT_EQ(meters->GetTrack(), 0);
    EXPECT_EQ(meters->GetVoice(), 14);
    EXPECT_TRUE(m_score->RemoveChild(meters, 1));
    EXPECT_EQ(m_score->FindMeterEnv(), nullptr);
}

TEST_F(ScoreMatrix, AppendedMeasuresTakeTheLengthOfTheMeterInForceAtTheEnd)
{
    Build(1, 0);
    auto *threeFour = new ECMeter(3, 4, 0);
    MCTime zero(0.0f);
    threeFour->SetTime(&zero);
    ASSERT_TRUE(m_score->GetMeterEnv()->AddChild(threeFour, 1));
    MCTime seven(7.0f);
    ASSERT_NE(m_score->GetConductorMeasureAtTime(seven, 1, 1), nullptr);
    EXPECT_EQ(m_score->GetMaxMeasureNumber(), 2);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(9.0f));
    EXPECT_TRUE(*Column(2)->GetTime() == MCTime(6.0f));
    // A meter whose length wraps to zero (64/1) still advances by 4.0, and
    // removal takes the same length back.
    auto *wrapped = new ECMeter(64, 1, 0);
    MCTime nine(9.0f);
    wrapped->SetTime(&nine);
    ASSERT_TRUE(m_score->GetMeterEnv()->AddChild(wrapped, 1));
    MCTime ten(10.0f);
    ASSERT_NE(m_score->GetConductorMeasureAtTime(ten, 1, 1), nullptr);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(13.0f));
    MatrixAccess::Remove(m_score, -1, 1);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(9.0f));
    MatrixAccess::Remove(m_score, -1, 1);
    EXPECT_TRUE(m_score->GetMaxMeasureEndTime() == MCTime(6.0f));
    ExpectMatrix();
}
