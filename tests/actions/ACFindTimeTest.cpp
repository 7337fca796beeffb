#include "ACTestTree.h"

#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/actions/ACSelect.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
// A measure of notes at 1, 2, 3, 4 and 5, under a timeless parent.
struct Notes
{
    TestTree tree{new TestTimeless(EVENT_ID_STAFF)};
    ECBase *measure = tree.Timeless(tree.Root(), EVENT_ID_MEASURE);
    std::vector<ECBase *> notes;

    Notes()
    {
        for (float t : {1.0f, 2.0f, 3.0f, 4.0f, 5.0f})
            notes.push_back(tree.Timed(measure, EVENT_ID_NOTE, t));
    }
    std::vector<ECBase *> At(std::initializer_list<int> times) const
    {
        std::vector<ECBase *> out;
        for (int t : times)
            out.push_back(notes[t - 1]);
        return out;
    }
};

TEST(ACFindTimeTest, RangeModesDecideWhichEndsAreIncluded)
{
    const struct
    {
        int mode;
        float start;
        float end;
        std::initializer_list<int> expected;
    } cases[] = {
        {ACRangeClosed, 2, 4, {2, 3, 4}},
        {ACRangeOpen, 2, 4, {3}},
        {ACRangeOpenStart, 2, 4, {3, 4}},
        {ACRangeOpenEnd, 2, 4, {2, 3}},
        {ACRangeClosed, 3, 3, {3}},
        {ACRangeOpen, 3, 3, {}},
        {ACRangeOpenStart, 3, 3, {}},
        {ACRangeOpenEnd, 3, 3, {}},
        {ACRangeClosed, 4, 2, {}},
        {ACRangeClosed, 0, 100, {1, 2, 3, 4, 5}},
    };
    for (const auto &rc : cases)
    {
        Notes n;
        ACFindTime find(MCTime(rc.start), MCTime(rc.end), rc.mode);
        find.Apply(n.tree.Root());
        EXPECT_EQ(ListOf(find.GetEvents()), n.At(rc.expected))
            << "mode " << rc.mode << " [" << rc.start << ", " << rc.end << "]";
    }
}

TEST(ACFindTimeTest, EventPastTheEndDropsTheRestOfItsParentOnly)
{
    // Two staves, each a measure of notes at 0, 1, 2, 3, in one timeless root.
    TestTree tree(new TestTimeless(EVENT_ID_PERFORMANCE));
    std::vector<ECBase *> notes[2];
    for (auto &staffNotes : notes)
    {
        ECBase *staff = tree.Timed(tree.Root(), EVENT_ID_STAFF, 0.0f);
        ECBase *measure = tree.Timed(staff, EVENT_ID_MEASURE, 0.0f);
        for (float t : {0.0f, 1.0f, 2.0f, 3.0f})
            staffNotes.push_back(tree.Timed(measure, EVENT_ID_NOTE, t));
    }
    RecordingAction<ACFindTime> find(MCTime(0.0f), MCTime(1.0f), ACRangeClosed);
    find.AddEvtType(EVENT_ID_NOTE);
    EXPECT_EQ(find.Apply(tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(ListOf(find.GetEvents()),
              (std::vector<ECBase *>{notes[0][0], notes[0][1], notes[1][0], notes[1][1]}));
    // The note at 2 is met and ends its measure; the one at 3 never is.
    for (auto &staffNotes : notes)
    {
        EXPECT_NE(std::find(find.visited.begin(), find.visited.end(), staffNotes[2]), find.visited.end());
        EXPECT_EQ(std::find(find.visited.begin(), find.visited.end(), staffNotes[3]), find.visited.end());
    }
}

TEST(ACFindTimeTest, TimelessEventsAreEnteredButNeverListed)
{
    Notes n;
    ACFindTime find(MCTime(0.0f), MCTime(10.0f));
    find.Apply(n.tree.Root());
    EXPECT_EQ(ListOf(find.GetEvents()), n.notes);
}

TEST(ACFindTimeTest, IgnoresTheMaximumAndLeavesTheFoundCountAlone)
{
    Notes n;
    ACFindTime find(MCTime(0.0f), MCTime(10.0f));
    find.SetMaxEventCount(1);
    EXPECT_EQ(find.Apply(n.tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(find.GetEvents().GetCount(), 5);
    EXPECT_EQ(find.GetEventCount(), 0);
}

TEST(ACFindTimeTest, TypesFilterWhatIsInRange)
{
    Notes n;
    ECBase *rest = n.tree.Timed(n.measure, EVENT_ID_REST, 6.0f);
    ACFindTime find(MCTime(0.0f), MCTime(10.0f));
    find.AddEvtType(EVENT_ID_REST);
    find.Apply(n.tree.Root());
    EXPECT_EQ(ListOf(find.GetEvents()), std::vector<ECBase *>{rest});
}

TEST(ACFindTimeTest, SettersKeepTheModeWhenGivenABadOne)
{
    ACFindTime find(MCTime(0.0f), MCTime(1.0f), 9);
    EXPECT_EQ(find.GetRangeMode(), ACRangeClosed);
    find.SetTimeRange(MCTime(2.0f), MCTime(3.0f), ACRangeOpen);
    find.SetRangeMode(-1);
    EXPECT_EQ(find.GetRangeMode(), ACRangeOpen);
    EXPECT_TRUE(find.GetStartTime() == MCTime(2.0f));
    EXPECT_TRUE(find.GetEndTime() == MCTime(3.0f));

    Notes n;
    find.Apply(n.tree.Root());
    EXPECT_TRUE(find.GetEvents().IsEmpty());
}

// staff (track 2) -> measure -> notes of voices 0 and 1 on track 2;
// staff (track 3) -> measure -> note of voice 0 on track 3; a conductor
// event on track 0 and a timeless event on no track. The root is timeless
// too, so every selection lists it.
struct Tracks
{
    TestTree tree{new TestTimeless(EVENT_ID_PERFORMANCE)};
    ECBase *root = tree.Root();
    TestTimed *staff2 = tree.Timed(tree.Root(), EVENT_ID_STAFF, 0.0f);
    TestTimed *m2 = tree.Timed(staff2, EVENT_ID_MEASURE, 0.0f);
    TestTimed *v0 = tree.Timed(m2, EVENT_ID_NOTE, 0.0f);
    TestTimed *v1 = tree.Timed(m2, EVENT_ID_NOTE, 1.0f);
    TestTimed *staff3 = tree.Timed(tree.Root(), EVENT_ID_STAFF, 0.0f);
    TestTimed *m3 = tree.Timed(staff3, EVENT_ID_MEASURE, 0.0f);
    TestTimed *t3 = tree.Timed(m3, EVENT_ID_NOTE, 0.0f);
    TestTimed *tempo = tree.Timed(tree.Root(), EVENT_ID_TEMPO, 0.0f);
    TestTimeless *frame = tree.Timeless(tree.Root(), EVENT_ID_FRAME);

    Tracks()
    {
        staff2->SetVoiceTrack(15, 2);
        m2->SetVoiceTrack(14, 2);
        v0->SetVoiceTrack(0, 2);
        v1->SetVoiceTrack(1, 2);
        staff3->SetVoiceTrack(15, 3);
        m3->SetVoiceTrack(14, 3);
        t3->SetVoiceTrack(0, 3);
        tempo->SetVoiceTrack(15, 0);
    }
};

TEST(ACSelectTest, VoicesAndTracksChooseWhatIsSelected)
{
    typedef std::vector<ECBase *> (*Expected)(Tracks &);
    const struct
    {
        const char *name;
        std::vector<UINT> voices;
        std::vector<UINT> tracks;
        Expected expected;
    } cases[] = {
        {"everything", {}, {},
         [](Tracks &t) -> std::vector<ECBase *> {
             return {t.root, t.staff2, t.m2, t.v0, t.v1, t.staff3, t.m3, t.t3, t.tempo, t.frame};
         }},
        {"track 3 and the conductor", {}, {3},
         [](Tracks &t) -> std::vector<ECBase *> { return {t.root, t.staff3, t.m3, t.t3, t.tempo, t.frame}; }},
        {"voice 1 passes over structural measures", {1}, {},
         [](Tracks &t) -> std::vector<ECBase *> { return {t.root, t.staff2, t.v1, t.staff3, t.tempo, t.frame}; }},
        {"voice 0 on track 2", {0}, {2},
         [](Tracks &t) -> std::vector<ECBase *> { return {t.root, t.staff2, t.v0, t.tempo, t.frame}; }},
    };
    for (const auto &sc : cases)
    {
        Tracks t;
        CUIntArray voices, tracks;
        for (UINT v : sc.voices)
            voices.Add(v);
        for (UINT tr : sc.tracks)
            tracks.Add(tr);
        ACSelect select(MCTime(0.0f), MCTime(4.0f));
        select.SetVoices(voices);
        select.SetTracks(tracks);
        select.Apply(t.tree.Root());
        EXPECT_EQ(ListOf(select.GetEvents()), sc.expected(t)) << sc.name;
    }
}

TEST(ACSelectTest, TrackNotChosenIsNotEntered)
{
    Tracks t;
    CUIntArray tracks;
    tracks.Add(3);
    RecordingAction<ACSelect> select(MCTime(0.0f), MCTime(4.0f));
    select.SetTracks(tracks);
    select.Apply(t.tree.Root());
    EXPECT_EQ(std::find(select.visited.begin(), select.visited.end(), t.v0), select.visited.end());
}

TEST(ACSelectTest, RangeIsHalfOpenAndTimelessEventsCount)
{
    Tracks t;
    ACSelect select(MCTime(0.0f), MCTime(1.0f));
    select.Apply(t.tree.Root());
    auto found = ListOf(select.GetEvents());
    EXPECT_EQ(std::find(found.begin(), found.end(), t.v1), found.end());
    // Only the timeless events (root and frame) go through the counting search.
    EXPECT_EQ(select.GetEventCount(), 2);

    select.SetAllTracks();
    select.SetAllVoices();
    EXPECT_TRUE(select.GetVoices().IsEmpty());
    EXPECT_TRUE(select.FindTrack(0) && select.FindTrack(0x7FF) && select.FindVoice(15));
}

TEST(ACSelectTest, VoiceFifteenAndTrackZeroAlwaysPass)
{
    ACSelect select(MCTime(0.0f), MCTime(1.0f));
    CUIntArray one;
    one.Add(4);
    select.SetVoices(one);
    select.SetTracks(one);
    EXPECT_TRUE(select.FindVoice(15));
    EXPECT_FALSE(select.FindVoice(14));
    EXPECT_TRUE(select.FindVoice(4));
    EXPECT_TRUE(select.FindTrack(0));
    EXPECT_TRUE(select.FindTrack(0x7FF));
    EXPECT_FALSE(select.FindTrack(0x7FE));
    EXPECT_TRUE(select.FindTrack(4));
}
} // namespace
