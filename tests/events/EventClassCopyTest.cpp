// Copy goes through operator=, which copies the voice/track word and the
// value fields but never the time: whoever clones an event sets the time
// himself. A class that copied the time here would move pasted events.
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/core/MCTime.h>

#include <gtest/gtest.h>

namespace
{
struct CopyCase
{
    int id;
    // Whether operator= carries the duration (a note and a tempo keep their own).
    bool copiesDuration;
};

ECBase *MakeTimed(int id, float time, float duration)
{
    ECBase *e = CreateEventW(id);
    e->Ref();
    MCTime t(time), d(duration);
    e->SetTime(&t);
    e->SetDuration(&d);
    return e;
}
} // namespace

TEST(EventClassCopyTest, CopyLeavesTheDestinationTime)
{
    const CopyCase cases[] = {{EVENT_ID_NOTE, false},  {EVENT_ID_GRACE_NOTE, false}, {EVENT_ID_CHORD, false},
                              {EVENT_ID_TEMPO, false}, {EVENT_ID_LYRIC, true},       {EVENT_ID_WAVE, true},
                              {EVENT_ID_TEXT, false},  {EVENT_ID_METER, false},      {EVENT_ID_WITH_TIME, false},
                              {EVENT_ID_WITH_TIME_CHILD, false}};
    for (const CopyCase &c : cases)
    {
        SCOPED_TRACE(GetEventClassName(c.id));
        ECBase *dst = MakeTimed(c.id, 1.0f, 0.5f);
        ECBase *src = MakeTimed(c.id, 7.0f, 3.0f);
        src->SetVoiceTrack(2, 9);

        EXPECT_EQ(dst->Copy(src), dst);

        EXPECT_TRUE(*dst->GetTime() == MCTime(1.0f));
        EXPECT_EQ(dst->GetVoice(), 2);
        EXPECT_EQ(dst->GetTrack(), 9);
        if (MCTime *duration = dst->GetDuration())
            EXPECT_TRUE(*duration == MCTime(c.copiesDuration ? 3.0f : 0.5f));
        else
            EXPECT_FALSE(c.copiesDuration) << "a class that copies a duration must have one";
        src->Unref(1);
        dst->Unref(1);
    }
}

TEST(EventClassCopyTest, CopyFromAnotherClassChangesNothing)
{
    ECBase *note = MakeTimed(EVENT_ID_NOTE, 1.0f, 0.5f);
    ECBase *rest = MakeTimed(EVENT_ID_REST, 2.0f, 0.0f);
    rest->SetVoiceTrack(3, 4);
    EXPECT_EQ(note->Copy(rest), note);
    EXPECT_EQ(note->GetVoice(), 15);
    EXPECT_EQ(note->GetTrack(), 0x7FF);
    rest->Unref(1);
    note->Unref(1);
}
