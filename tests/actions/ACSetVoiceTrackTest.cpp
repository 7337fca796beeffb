#include "ACTestTree.h"

#include <scoremodel/actions/ACSetVoiceTrack.h>

#include <gtest/gtest.h>

namespace
{
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
