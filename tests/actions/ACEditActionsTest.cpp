// The actions that change the events they walk: times, child order and
// voice/track words.
#include "ACTestTree.h"

#include <scoremodel/actions/ACDeltaTime.h>
#include <scoremodel/actions/ACSetVoiceTrack.h>
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

ECBase *Measure(TestTree &tree, ECBase *parent, std::initializer_list<float> times, int id = EVENT_ID_MEASURE)
{
    ECBase *measure = tree.Timed(parent, id, 0.0f);
    for (float t : times)
        tree.Timed(measure, EVENT_ID_NOTE, t);
    return measure;
}

TEST(ACDeltaTimeTest, NegativeDeltaNeverMovesAnEventBeforeZero)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    ECBase *measure = Measure(tree, tree.Root(), {0.5f, 1.0f, 3.0f});
    ACDeltaTime shift(MCTime(-2.0f), MCTime(0.0f), MCTime(10.0f));
    shift.Apply(tree.Root());
    EXPECT_EQ(TimesOf(measure), (std::vector<float>{0.0f, 0.0f, 1.0f}));
}

TEST(ACDeltaTimeTest, OnlyEventsInRangeMoveAndThoseBehindAPastEndEventStay)
{
    const std::pair<int, std::vector<float>> cases[] = {
        {ACRangeClosed, {1, 12, 13, 14, 7, 3}},
        {ACRangeOpen, {1, 2, 13, 4, 7, 3}},
        {ACRangeOpenStart, {1, 2, 13, 14, 7, 3}},
        {ACRangeOpenEnd, {1, 12, 13, 4, 7, 3}},
    };
    for (const auto &[mode, expected] : cases)
    {
        TestTree tree(new TestTimeless(EVENT_ID_STAFF));
        // The event at 7 ends the walk of this list: the 3 behind it stays.
        ECBase *measure = Measure(tree, tree.Root(), {1, 2, 3, 4, 7, 3});
        ACDeltaTime shift(MCTime(10.0f), MCTime(2.0f), MCTime(4.0f), mode);
        shift.Apply(tree.Root());
        EXPECT_EQ(TimesOf(measure), expected) << "mode " << mode;
    }
}

TEST(ACSortChildrenTest, SortsTheChildrenOfMatchingEventsOnly)
{
    TestTree tree(new TestTimeless(EVENT_ID_STAFF));
    ECBase *measure = Measure(tree, tree.Root(), {3, 1, 2});
    ECBase *chord = Measure(tree, measure, {6, 5}, EVENT_ID_CHORD);
    ACSortChildren sortMeasures(1);
    sortMeasures.AddEvtType(EVENT_ID_MEASURE);
    sortMeasures.Apply(tree.Root());
    EXPECT_EQ(TimesOf(measure), (std::vector<float>{0, 1, 2, 3}));
    EXPECT_EQ(TimesOf(chord), (std::vector<float>{6, 5}));
    ACSortChildren sortAll;
    sortAll.Apply(tree.Root());
    EXPECT_EQ(TimesOf(chord), (std::vector<float>{5, 6}));
}

WORD Word(unsigned voice, unsigned track)
{
    return MCVoiceTrack(voice, track).GetValue();
}

TEST(ACSetVoiceTrackTest, OnlyEventsInTheRangesChangeAndNewValuesAreClamped)
{
    const struct
    {
        const char *name;
        int track, voice;
        WORD before, after;
    } cases[] = {
        {"huge track clamps to 0x7FB", 5000, 3, Word(1, 4), Word(3, 0x7FB)},
        {"all tracks is left alone", 5000, 3, Word(1, 0x7FE), Word(1, 0x7FE)},
        {"no track qualifies", 9, 15, Word(2, 0x7FF), Word(2, 9)},
        {"conductor track is out of range", 9, 15, Word(2, 0), Word(2, 0)},
        {"a refused track leaves the voice too", 9, 5, Word(2, 0), Word(2, 0)},
        {"track above the range", 9, 15, Word(2, 0x7FC), Word(2, 0x7FC)},
        {"negative track clamps to 0", -5, 15, Word(2, 4), Word(2, 0)},
        {"voice 8 qualifies", 0x7FF, 5, Word(8, 4), Word(5, 4)},
        {"voice 9 does not", 0x7FF, 5, Word(9, 4), Word(9, 4)},
        {"structural voice qualifies", 0x7FF, 5, Word(14, 4), Word(5, 4)},
        {"new voice 8 is written as 7", 0x7FF, 8, Word(2, 4), Word(7, 4)},
        {"a converted word becomes unconverted", 9, 15, 0x8123, Word(3, 9)},
        {"no change by default", 0x7FF, 15, Word(2, 4), Word(2, 4)},
    };
    for (const auto &vc : cases)
    {
        // The timeless root has no word and is passed over.
        TestTree tree(new TestTimeless(EVENT_ID_CHORD));
        TestTimed *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
        note->GetVoiceTrack()->SetValue(vc.before);
        ACSetVoiceTrack action(vc.track, vc.voice);
        EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultContinue) << vc.name;
        EXPECT_EQ(note->GetVoiceTrack()->GetValue(), vc.after) << vc.name;
    }
}
} // namespace
