// The tempo map: tempo words and their preferences, the tempo setters, and
// clock conversions across holds, ramps and pauses.
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/platform/Preferences.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace
{
struct TempoPt
{
    float beat, bpm;
    int style;
    int type = 1;
};

ECTempoEnv *MakeMap(const std::vector<TempoPt> &points, std::vector<ECTempo *> *made = nullptr)
{
    auto *env = static_cast<ECTempoEnv *>(RUNTIME_CLASS(ECTempoEnv)->CreateObject());
    env->Ref();
    for (const TempoPt &p : points)
    {
        auto *t = new ECTempo(static_cast<unsigned char>(p.type), MCTime::TimeZero());
        MCTime at(p.beat);
        t->SetTime(&at);
        t->SetTempo(p.bpm, 1.0f);
        t->SetStyle(p.style);
        EXPECT_EQ(env->AddChild(t, 1), 1);
        if (made)
            made->push_back(t);
    }
    return env;
}

float Clock(ECTempoEnv *env, float beat)
{
    MCTime t(beat);
    env->GetClockTime(t);
    EXPECT_EQ(t.GetMode(), 3);
    return t.GetSeconds();
}

float Beat(ECTempoEnv *env, float seconds)
{
    MCTime t(seconds);
    t.SetMode(3);
    env->GetNormalizedTime(t);
    EXPECT_EQ(t.GetMode(), 0);
    return t.GetSeconds();
}
} // namespace

TEST(TempoWords, DefaultsAreWrittenBackAndTheFirstExceedingWordDecides)
{
    EXPECT_EQ(GetTempoString(14), CString(L"Allegro"));
    EXPECT_EQ(GetTempoString(25), CString(L"G.P."));
    EXPECT_TRUE(GetTempoString(24).IsEmpty());
    EXPECT_TRUE(GetTempoString(0).IsEmpty());
    EXPECT_EQ(GetTempoValue(6), 70);
    EXPECT_EQ(LoadIntPreference(L"Settings\\Tempo\\Adagio", L"BPM", -1), 70) << "the default is written back";
    struct
    {
        int bpm, type;
    } cases[] = {{19, 2}, {500, 20}, {65, 5}, {40, 2}, {120, 14}, {119, 13}, {199, 17}};
    for (auto &c : cases)
        EXPECT_EQ(GetTempoType(c.bpm), c.type) << c.bpm;
    // A user's own tempo for a word is read from the preference.
    SaveIntPreference(L"Settings\\Tempo\\Vivo", L"BPM", 150);
    EXPECT_EQ(GetTempoValue(16), 150);
    SaveIntPreference(L"Settings\\Tempo\\Vivo", L"BPM", 160);
}

TEST(TempoPoint, SettersKeepTheirOddities)
{
    ECTempo *t = new ECTempo;
    EXPECT_EQ(t->GetRate(), 1.0f) << "rate starts at 1 whatever the tempo";
    EXPECT_EQ(t->SetTempo(120.0f, 0.5f), 1);
    EXPECT_EQ(t->GetValue(), 60.0f);
    EXPECT_EQ(t->GetTempo(0.5f), 120.0f);
    EXPECT_EQ(t->GetTempo(1.0f), 60.0f);
    EXPECT_EQ(t->SetTempoType(30, MCTime(2.0f)), 0);
    EXPECT_EQ(t->GetTempoType(), 30) << "the type is stored first";
    EXPECT_EQ(t->SetTempoType(14, MCTime::TimeZero()), 1);
    EXPECT_EQ(t->GetValue(), 120.0f);
    EXPECT_EQ(t->SetTempoType(22, MCTime(3.0f)), 1);
    EXPECT_TRUE(*t->GetDuration() == MCTime(3.0f));
    EXPECT_EQ(t->GetPausePercent(), 0.0f) << "not a pause";
    t->SetTempoType(25, MCTime::TimeZero());
    t->SetPausePercent(900.0f);
    EXPECT_EQ(t->GetPausePercent(), 400.0f);
    EXPECT_EQ(t->GetText(), CString(L"G.P."));
    t->SetText(CString(L"Luftpause"));
    EXPECT_EQ(t->GetText(), CString(L"Luftpause"));
    t->SetTempo(0.0f, 1.0f);
    EXPECT_EQ(t->SetTempo(90.0f, 1.0f), 0) << "a tempo of 0 sticks";
    EXPECT_EQ(t->GetValue(), 0.0f);
    t->Unref(1);
}

TEST(TempoMap, TheEdgeCasesOfTheClock)
{
    // A first tempo at beat 8 moves to the start.
    std::vector<ECTempo *> made;
    ECTempoEnv *env = MakeMap({{8, 120, 0}}, &made);
    EXPECT_TRUE(*made[0]->GetTime() == MCTime::TimeZero());
    EXPECT_FLOAT_EQ(Clock(env, 4), 2.0f);
    EXPECT_FLOAT_EQ(Beat(env, 2), 4.0f);
    MCTime twice(4.0f);
    env->GetClockTime(twice);
    env->GetClockTime(twice);
    EXPECT_FLOAT_EQ(twice.GetSeconds(), 2.0f) << "a clock time is left as it is";
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);

    // A ramp from 60 to 120 over 4 beats.
    env = MakeMap({{0, 60, 1}, {4, 120, 0}});
    EXPECT_NEAR(Clock(env, 4), (std::sqrt(3.0f) - 1.0f) / 0.25f, 1e-5);
    EXPECT_NEAR(Beat(env, (std::sqrt(3.0f) - 1.0f) / 0.25f), 4.0f, 1e-5);
    EXPECT_NEAR(Beat(env, Clock(env, 2.5f)), 2.5f, 1e-5);
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);

    // Before any point only the mode changes.
    env = MakeMap({});
    EXPECT_FLOAT_EQ(Clock(env, 3), 3.0f);
    EXPECT_FLOAT_EQ(Beat(env, 3), 3.0f);
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);
}

TEST(TempoMap, PausesHalveTheTempoBeforeThemAndTheirCloseRestoresIt)
{
    for (bool withTempoBefore : {true, false})
    {
        std::vector<ECTempo *> made;
        std::vector<TempoPt> pts;
        if (withTempoBefore)
            pts.push_back({0, 80, 0});
        pts.push_back({4, 80, 0, 25});
        pts.push_back({5, 80, 0, 25});
        ECTempoEnv *env = MakeMap(pts, &made);
        ECTempo *head = made[withTempoBefore ? 1 : 0];
        ECTempo *close = made[withTempoBefore ? 2 : 1];
        head->SetAnchor(1);
        head->SetAnchorHead(1);
        close->SetAnchor(1);
        ECBase::EventList group;
        group.AddTail(head);
        group.AddTail(close);
        env->AddAnchorGroup(&group);
        env->RecalculateClockTimes();
        EXPECT_FLOAT_EQ(head->GetValue(), withTempoBefore ? 40.0f : 50.0f);
        EXPECT_FLOAT_EQ(close->GetValue(), withTempoBefore ? 80.0f : 100.0f);
        ECBase::EventList anchors;
        EXPECT_EQ(close->GetAnchorList(anchors), 1);
        EXPECT_EQ(anchors.GetCount(), 2);
        env->RemoveChildren(1); // the children hold their parent
        env->Unref(1);
    }
}

TEST(TempoMap, ConversionsThereAndBackReturnTheStartAcrossHoldsRampsAndPauses)
{
    std::mt19937 rng(77);
    std::uniform_real_distribution<float> bpm(30.0f, 240.0f);
    std::uniform_int_distribution<int> style(0, 1), gap(1, 8);
    for (int map = 0; map < 20; ++map)
    {
        std::vector<TempoPt> pts;
        float beat = 0.0f;
        for (int i = 0; i < 50; ++i)
        {
            // A pause and the point before it hold: a ramp into or out of a
            // halved tempo can leave the domain of the ramp rule (see
            // ECTempoEnv.h).
            const bool pause = i % 17 == 16, beforePause = i % 17 == 15;
            pts.push_back({beat, bpm(rng), pause || beforePause ? 0 : style(rng), pause ? 25 : 1});
            beat += static_cast<float>(gap(rng));
        }
        std::vector<ECTempo *> made;
        ECTempoEnv *env = MakeMap(pts, &made);
        for (size_t i = 0; i < made.size(); ++i)
            if (made[i]->GetTempoType() == 25)
                made[i]->SetAnchorHead(1);
        env->RecalculateClockTimes();
        std::uniform_real_distribution<float> anywhere(0.0f, beat + 10.0f);
        for (int q = 0; q < 2000; ++q)
        {
            const float b = q % 3 == 0 ? static_cast<float>(q) * beat / 2000.0f : anywhere(rng);
            const float c = Clock(env, b);
            EXPECT_NEAR(Beat(env, c), b, 2e-3f * std::max(1.0f, b / 100.0f)) << "map " << map << " beat " << b;
        }
        // The clock never runs backwards.
        for (size_t i = 1; i < made.size(); ++i)
            EXPECT_GT(made[i]->GetClockTime().GetSeconds(), made[i - 1]->GetClockTime().GetSeconds());
        env->RemoveChildren(1); // the children hold their parent
        env->Unref(1);
    }
}

TEST(TempoMap, ClockTimesFollowEveryAddRemoveAndDurationChange)
{
    std::vector<ECTempo *> made;
    ECTempoEnv *env = MakeMap({{0, 60, 0}, {4, 120, 0}}, &made);
    EXPECT_FLOAT_EQ(made[1]->GetClockTime().GetSeconds(), 4.0f);
    auto *mid = new ECTempo;
    MCTime two(2.0f);
    mid->SetTime(&two);
    mid->SetTempo(30.0f, 1.0f);
    env->AddChild(mid, 1);
    EXPECT_FLOAT_EQ(made[1]->GetClockTime().GetSeconds(), 6.0f);
    made[0]->SetTempo(120.0f, 1.0f);
    MCTime none;
    made[0]->SetDuration(&none); // a duration change recalculates
    EXPECT_FLOAT_EQ(made[1]->GetClockTime().GetSeconds(), 5.0f);
    env->RemoveChild(mid, 1);
    EXPECT_FLOAT_EQ(made[1]->GetClockTime().GetSeconds(), 2.0f);
    EXPECT_EQ(env->GetIndexForPoint(made[1]), 1);
    env->RemoveChildren(1); // the children hold their parent
    env->Unref(1);
}
