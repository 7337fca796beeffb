#include "ACTestTree.h"

#include <scoremodel/actions/ACDeltaTime.h>
#include <scoremodel/actions/ACSortChildren.h>

#include <gtest/gtest.h>

namespace
{
std::vector<float> TimesOf(ECBase *parent)
{
    std::vector<float> out;
    for (ECBase *e : ListOf(*parent->GetChildren()))
        out.push_back(e->GetTime()->GetSeconds());
    return out;
}

TestTimed *MeasureAt(TestTree &tree, std::initializer_list<float> times)
{
    TestTimed *measure = tree.Timed(tree.Root(), EVENT_ID_MEASURE, 0.0f);
    for (float t : times)
        tree.Timed(measure, EVENT_ID_NOTE, t);
    return measure;
}

TEST(ACDeltaTimeTest, NegativeDeltaNeverMovesAnEventBeforeZero)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    TestTimed *measure = MeasureAt(tree, {0.5f, 1.0f, 3.0f});
    ACDeltaTime shift(MCTime(-2.0f), MCTime(0.0f), MCTime(10.0f));
    shift.Apply(tree.Root());
    EXPECT_EQ(TimesOf(measure), (std::vector<float>{0.0f, 0.0f, 1.0f}));
    // The measure at 0 was in range too and stays at 0.
    EXPECT_EQ(measure->GetTime()->GetSeconds(), 0.0f);
}

TEST(ACDeltaTimeTest, OnlyEventsInRangeMoveAndThoseAfterAPastEndEventStay)
{
    const struct
    {
        int mode;
        std::vector<float> expected;
    } cases[] = {
        {ACRangeClosed, {1.0f, 12.0f, 13.0f, 14.0f, 7.0f, 3.0f}},
        {ACRangeOpen, {1.0f, 2.0f, 13.0f, 4.0f, 7.0f, 3.0f}},
        {ACRangeOpenStart, {1.0f, 2.0f, 13.0f, 14.0f, 7.0f, 3.0f}},
        {ACRangeOpenEnd, {1.0f, 12.0f, 13.0f, 4.0f, 7.0f, 3.0f}},
    };
    for (const auto &dc : cases)
    {
        TestTree tree(new TestTimeless(EVENT_ID_STAFF));
        // Out of order on purpose: the event at 7 ends the walk of this list,
        // so the one at 3 behind it is not moved.
        TestTimed *measure = MeasureAt(tree, {1.0f, 2.0f, 3.0f, 4.0f, 7.0f, 3.0f});
        ACDeltaTime shift(MCTime(10.0f), MCTime(2.0f), MCTime(4.0f), dc.mode);
        shift.Apply(tree.Root());
        EXPECT_EQ(TimesOf(measure), dc.expected) << "mode " << dc.mode;
    }
}

TEST(ACDeltaTimeTest, DefaultMovesNothingUntilGivenADelta)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    TestTimed *measure = MeasureAt(tree, {1.0f, 2.0f});
    ACDeltaTime shift;
    shift.Apply(tree.Root());
    EXPECT_EQ(TimesOf(measure), (std::vector<float>{1.0f, 2.0f}));

    shift.SetTimeDelta(MCTime(0.5f));
    shift.SetTimeRange(MCTime(1.5f), MCTime(5.0f), ACRangeOpenEnd);
    shift.SetRangeMode(42);
    EXPECT_EQ(shift.GetRangeMode(), ACRangeOpenEnd);
    shift.Apply(tree.Root());
    EXPECT_EQ(TimesOf(measure), (std::vector<float>{1.0f, 2.5f}));
}

TEST(ACSortChildrenTest, PutsTheChildrenOfMatchingEventsBackInTimeOrder)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    TestTimed *m1 = MeasureAt(tree, {3.0f, 1.0f, 2.0f});
    TestTimed *m2 = MeasureAt(tree, {9.0f, 8.0f});
    // A chord inside the first measure, its notes out of order.
    TestTimed *chord = tree.Timed(m1, EVENT_ID_CHORD, 4.0f);
    tree.Timed(chord, EVENT_ID_NOTE, 6.0f);
    tree.Timed(chord, EVENT_ID_NOTE, 5.0f);

    ACSortChildren sortMeasures(1);
    sortMeasures.AddEvtType(EVENT_ID_MEASURE);
    EXPECT_EQ(sortMeasures.Apply(tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(TimesOf(m1), (std::vector<float>{1.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_EQ(TimesOf(m2), (std::vector<float>{8.0f, 9.0f}));
    EXPECT_EQ(TimesOf(chord), (std::vector<float>{6.0f, 5.0f}));

    ACSortChildren sortAll;
    sortAll.Apply(tree.Root());
    EXPECT_EQ(TimesOf(chord), (std::vector<float>{5.0f, 6.0f}));
}

TEST(ACSortChildrenTest, ShiftThenSortKeepsAMeasureInOrder)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    TestTimed *measure = MeasureAt(tree, {1.0f, 2.0f, 3.0f});
    ACDeltaTime shift(MCTime(5.0f), MCTime(0.0f), MCTime(1.5f));
    shift.Apply(measure);
    ACSortChildren sort;
    sort.Apply(measure);
    EXPECT_EQ(TimesOf(measure), (std::vector<float>{2.0f, 3.0f, 6.0f}));
}
} // namespace
