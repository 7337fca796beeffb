// How long a chord symbol lasts: up to the next chord symbol of the active
// document, or to the end of the last measure.
#include "events/structure/TrackTestSupport.h"

#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <gtest/gtest.h>

namespace
{
class ChordDurationTest : public TrackTest
{
protected:
    void SetUp() override
    {
        TrackTest::SetUp();
        m_previous = ECPerformance::SetActivePerformance(m_doc);
        ECConductorStaff *staff = m_conductor->GetConductorStaff();
        ASSERT_NE(staff, nullptr);
        m_staff = AddStaff();
        MCTime last(15.0f); // four bars of 4.0, each with the staff's measure
        ASSERT_NE(staff->GetConductorMeasureAtTime(last, 1, 1), nullptr);
        ASSERT_EQ(staff->GetMaxMeasureEndTime(), MCTime(16.0f));
    }
    void TearDown() override
    {
        ECPerformance::SetActivePerformance(m_previous);
        TrackTest::TearDown();
    }

    // A chord symbol in the staff's measure that covers its time.
    ECChordSymbol *AddChord(float at)
    {
        auto *chord = new ECChordSymbol(1, 0, 8, 1);
        MCTime time(at);
        chord->SetTime(&time);
        const int track = m_conductor->GetConductorStaff()->GetStaffNumber(m_staff);
        ECMeasure *measure = m_conductor->GetMeasure(track, time, 0, 1);
        EXPECT_NE(measure, nullptr);
        measure->AddChild(chord, 1);
        return chord;
    }
    ECPerformance *m_previous = nullptr;
    ECStaff *m_staff = nullptr;
};
} // namespace

TEST_F(ChordDurationTest, EachChordLastsUntilTheNextOrItsBarLine)
{
    ECChordSymbol *first = AddChord(0.0f);
    ECChordSymbol *second = AddChord(2.0f);
    ECChordSymbol *third = AddChord(5.0f);
    ECChordSymbol *last = AddChord(13.0f);
    EXPECT_FLOAT_EQ(first->GetDuration()->GetSeconds(), 2.0f) << "to the next chord";
    EXPECT_FLOAT_EQ(second->GetDuration()->GetSeconds(), 2.0f) << "to the bar line before the next chord";
    EXPECT_FLOAT_EQ(third->GetDuration()->GetSeconds(), 3.0f);
    EXPECT_FLOAT_EQ(last->GetDuration()->GetSeconds(), 3.0f) << "the last lasts to the end of the last measure";
    EXPECT_EQ(first->GetDuration(), first->GetDuration()) << "the caller owns nothing: the same member each call";
}

TEST_F(ChordDurationTest, ASymbolOutsideTheTreeStillMeasuresToTheDocumentsNext)
{
    AddChord(8.0f);
    auto *loose = new ECChordSymbol();
    loose->Ref();
    MCTime at(5.0f);
    loose->SetTime(&at);
    EXPECT_FLOAT_EQ(loose->GetDuration()->GetSeconds(), 3.0f);
    loose->Unref(1);
}

TEST_F(ChordDurationTest, NoActiveDocumentGivesZero)
{
    ECChordSymbol *chord = AddChord(2.0f);
    ECPerformance::SetActivePerformance(nullptr);
    EXPECT_FLOAT_EQ(chord->GetDuration()->GetSeconds(), 0.0f);
}
