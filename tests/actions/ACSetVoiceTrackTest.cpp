#include "ACTestTree.h"

#include <scoremodel/actions/ACSetVoiceTrack.h>

#include <gtest/gtest.h>

namespace
{
// Applies the action to one event holding `raw` and returns the word after.
WORD SetOn(ACSetVoiceTrack &action, WORD raw)
{
    TestTree tree(new TestTimed(EVENT_ID_NOTE));
    tree.Root()->GetVoiceTrack()->SetValue(raw);
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultContinue);
    return tree.Root()->GetVoiceTrack()->GetValue();
}

WORD Word(unsigned voice, unsigned track)
{
    return MCVoiceTrack(voice, track).GetValue();
}

TEST(ACSetVoiceTrackTest, LargeTrackIsClampedAndAllTracksIsLeftAlone)
{
    ACSetVoiceTrack action(5000, 3);
    EXPECT_EQ(SetOn(action, Word(1, 4)), Word(3, 0x7FB));
    EXPECT_EQ(SetOn(action, Word(1, 0x7FE)), Word(1, 0x7FE));
}

TEST(ACSetVoiceTrackTest, OnlyEventsInTheRangesChange)
{
    const struct
    {
        const char *name;
        int track;
        int voice;
        WORD before;
        WORD after;
    } cases[] = {
        {"track in range", 9, 15, Word(2, 4), Word(2, 9)},
        {"no track qualifies", 9, 15, Word(2, 0x7FF), Word(2, 9)},
        {"conductor track is out of range", 9, 15, Word(2, 0), Word(2, 0)},
        {"track above the range", 9, 15, Word(2, 0x7FC), Word(2, 0x7FC)},
        {"negative track clamps to 0", -5, 15, Word(2, 4), Word(2, 0)},
        {"voice in range", 0x7FF, 5, Word(2, 4), Word(5, 4)},
        {"voice 8 qualifies", 0x7FF, 5, Word(8, 4), Word(5, 4)},
        {"voice 9 does not", 0x7FF, 5, Word(9, 4), Word(9, 4)},
        {"structural voice qualifies", 0x7FF, 5, Word(14, 4), Word(5, 4)},
        {"new voice 8 is written as 7", 0x7FF, 8, Word(2, 4), Word(7, 4)},
        {"new voice 14 is written as 7", 0x7FF, 14, Word(2, 4), Word(7, 4)},
        {"a refused track leaves the voice too", 9, 5, Word(2, 0), Word(2, 0)},
        {"both at once", 9, 5, Word(2, 4), Word(5, 9)},
        {"a converted word reads as no track and becomes unconverted", 9, 15, 0x8123, Word(3, 9)},
        {"no change by default", 0x7FF, 15, Word(2, 4), Word(2, 4)},
    };
    for (const auto &vc : cases)
    {
        ACSetVoiceTrack action(vc.track, vc.voice);
        EXPECT_EQ(SetOn(action, vc.before), vc.after) << vc.name;
    }
}

TEST(ACSetVoiceTrackTest, RangesCanBeWidened)
{
    ACSetVoiceTrack action;
    action.SetTrack(9);
    action.SetVoice(1);
    action.SetTrackRange(0, 0x7FF);
    action.SetVoiceRange(0, 13);
    EXPECT_EQ(SetOn(action, Word(12, 0)), Word(1, 9));
    EXPECT_EQ(action.GetTrackMin(), 0);
    EXPECT_EQ(action.GetVoiceMax(), 13);
}

TEST(ACSetVoiceTrackTest, EventsWithoutAWordAreSkippedAndTheirChildrenSet)
{
    TestTree tree(new TestTimeless(EVENT_ID_CHORD));
    TestTimed *note = tree.Timed(tree.Root(), EVENT_ID_NOTE);
    note->SetVoiceTrack(1, 2);
    ACSetVoiceTrack action(3, 15);
    EXPECT_EQ(action.Apply(tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(note->GetTrack(), 3);
    EXPECT_EQ(note->GetVoice(), 1);
}
} // namespace
