#include "ACTestTree.h"

#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/actions/ACSelect.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace
{
bool Visited(const std::vector<ECBase *> &visited, ECBase *e)
{
    return std::find(visited.begin(), visited.end(), e) != visited.end();
}

TEST(ACFindTimeTest, RangeModesDecideWhichEndsAreIncluded)
{
    const struct
    {
        int mode;
        float start, end;
        std::vector<int> expected; // times of the notes found
    } cases[] = {
        {ACRangeClosed, 2, 4, {2, 3, 4}}, {ACRangeOpen, 2, 4, {3}},     {ACRangeOpenStart, 2, 4, {3, 4}},
        {ACRangeOpenEnd, 2, 4, {2, 3}},   {ACRangeClosed, 3, 3, {3}},   {ACRangeOpen, 3, 3, {}},
        {ACRangeOpenStart, 3, 3, {}},     {ACRangeOpenEnd, 3, 3, {}},   {ACRangeClosed, 4, 2, {}},
    };
    for (const auto &rc : cases)
    {
        // A timeless parent is entered but never listed.
        TestTree tree(new TestTimeless(EVENT_ID_MEASURE));
        std::vector<ECBase *> notes, expected;
        for (int t = 1; t <= 5; ++t)
            notes.push_back(tree.Timed(tree.Root(), EVENT_ID_NOTE, float(t)));
        for (int t : rc.expected)
            expected.push_back(notes[t - 1]);
        ACFindTime find(MCTime(rc.start), MCTime(rc.end), rc.mode);
        find.Apply(tree.Root());
        EXPECT_EQ(ListOf(find.GetEvents()), expected) << "mode " << rc.mode << " " << rc.start << "-" << rc.end;
        // The maximum is not consulted and the count is left alone.
        EXPECT_EQ(find.GetEventCount(), 0);
    }
}

TEST(ACFindTimeTest, EventPastTheEndDropsTheRestOfItsMeasureOnly)
{
    TestTree tree(new TestTimeless(EVENT_ID_PERFORMANCE));
    std::vector<ECBase *> notes[2];
    for (auto &staffNotes : notes)
    {
        ECBase *measure = tree.Timed(tree.Timed(tree.Root(), EVENT_ID_STAFF), EVENT_ID_MEASURE);
        for (float t : {0.0f, 1.0f, 2.0f, 3.0f})
            staffNotes.push_back(tree.Timed(measure, EVENT_ID_NOTE, t));
    }
    RecordingAction<ACFindTime> find(MCTime(0.0f), MCTime(1.0f), ACRangeClosed);
    find.AddEvtType(EVENT_ID_NOTE);
    find.SetMaxEventCount(1);
    EXPECT_EQ(find.Apply(tree.Root()), ACBase::ResultContinue);
    EXPECT_EQ(ListOf(find.GetEvents()), (std::vector<ECBase *>{notes[0][0], notes[0][1], notes[1][0], notes[1][1]}));
    for (auto &staffNotes : notes)
    {
        EXPECT_TRUE(Visited(find.visited, staffNotes[2]));
        EXPECT_FALSE(Visited(find.visited, staffNotes[3]));
    }
}

// root (timeless) -> staff2 (track 2) -> m2 (voice 14) -> v0, v1 (voices 0, 1)
//                 -> staff3 (track 3) -> m3 (voice 14) -> t3 (voice 0)
//                 -> tempo (track 0), frame (timeless)
struct Tracks
{
    TestTree tree{new TestTimeless(EVENT_ID_PERFORMANCE)};
    ECBase *root = tree.Root();
    TestTimed *staff2 = tree.Timed(root, EVENT_ID_STAFF);
    TestTimed *m2 = tree.Timed(staff2, EVENT_ID_MEASURE);
    TestTimed *v0 = tree.Timed(m2, EVENT_ID_NOTE, 0.0f);
    TestTimed *v1 = tree.Timed(m2, EVENT_ID_NOTE, 1.0f);
    TestTimed *staff3 = tree.Timed(root, EVENT_ID_STAFF);
    TestTimed *m3 = tree.Timed(staff3, EVENT_ID_MEASURE);
    TestTimed *t3 = tree.Timed(m3, EVENT_ID_NOTE);
    TestTimed *tempo = tree.Timed(root, EVENT_ID_TEMPO);
    TestTimeless *frame = tree.Timeless(root, EVENT_ID_FRAME);
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
    const struct
    {
        std::vector<UINT> voices, tracks;
        std::vector<int> expected; // root, staff2, m2, v0, v1, staff3, m3, t3, tempo, frame
    } cases[] = {
        {{}, {}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {{}, {3}, {0, 5, 6, 7, 8, 9}}, // a track not chosen is not entered; track 0 and no track pass
        {{1}, {}, {0, 1, 4, 5, 8, 9}}, // a voice not chosen (14 too) is passed over, its children searched
        {{0}, {2}, {0, 1, 3, 8, 9}},
    };
    for (size_t i = 0; i < std::size(cases); ++i)
    {
        Tracks t;
        ECBase *all[] = {t.root, t.staff2, t.m2, t.v0, t.v1, t.staff3, t.m3, t.t3, t.tempo, t.frame};
        std::vector<ECBase *> expected;
        for (int at : cases[i].expected)
            expected.push_back(all[at]);
        CUIntArray voices, tracks;
        for (UINT v : cases[i].voices)
            voices.Add(v);
        for (UINT tr : cases[i].tracks)
            tracks.Add(tr);
        RecordingAction<ACSelect> select(MCTime(0.0f), MCTime(4.0f));
        select.SetVoices(voices);
        select.SetTracks(tracks);
        select.Apply(t.tree.Root());
        EXPECT_EQ(ListOf(select.GetEvents()), expected) << "case " << i;
        EXPECT_EQ(Visited(select.visited, t.v0), cases[i].tracks != std::vector<UINT>{3}) << "case " << i;
        // Timed events go through the range search, which counts nothing.
        EXPECT_EQ(select.GetEventCount(), 2) << "case " << i;
    }
}

} // namespace
