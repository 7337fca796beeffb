// The meter map: start positions after every change, conversion between
// normalized time and bar/pulse/tick there and back, the kept one-carry and
// component-wise rules, and the position cursor against the plain walk.
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <random>
#include <vector>

namespace
{
struct MeterAt
{
    float time;
    int n, d;
};

class MeterMap
{
public:
    explicit MeterMap(const std::vector<MeterAt> &meters)
    {
        env = static_cast<ECMeterEnv *>(RUNTIME_CLASS(ECMeterEnv)->CreateObject());
        env->Ref();
        env->SetVoiceTrack(14, 5);
        for (const MeterAt &m : meters)
            Add(m);
    }
    ~MeterMap()
    {
        env->RemoveChildren(1); // the children hold their parent
        env->Unref(1);
    }
    ECMeter *Add(const MeterAt &m)
    {
        auto *meter = new ECMeter(static_cast<unsigned char>(m.n), static_cast<unsigned char>(m.d), 255);
        MCTime at(m.time);
        meter->SetTime(&at);
        EXPECT_EQ(env->AddChild(meter, 1), 1);
        made.push_back(meter);
        return meter;
    }
    BPTTime Position(float time, int resolution = 480)
    {
        MCTime t(time);
        env->GetBarPulseTick(t, resolution);
        EXPECT_EQ(t.GetMode(), MCTime::TimeModeBarPulseTick);
        return *t.GetBarPulseTick();
    }
    float Time(int bar, int pulse, int tick, int resolution = 480)
    {
        MCTime t(bar, pulse, tick, resolution);
        env->GetNormalizedTime(t);
        EXPECT_EQ(t.GetMode(), MCTime::TimeModeNormalized);
        return t.GetSeconds();
    }

    ECMeterEnv *env;
    std::vector<ECMeter *> made;
};

void ExpectAt(const BPTTime &at, int bar, int pulse, int tick, int ppq)
{
    EXPECT_EQ(at.bar, bar);
    EXPECT_EQ(at.pulse, pulse);
    EXPECT_EQ(at.tick, tick);
    EXPECT_EQ(at.ppq, ppq);
}

// Meters on bar lines: 4/4, 3/4 from bar 2, 6/8 from 3, 5/4 from 4, 7/8
// from 5, 2/2 from 7.
const std::vector<MeterAt> kOnBarLines = {{0, 4, 4}, {8, 3, 4}, {11, 6, 8}, {14, 5, 4}, {19, 7, 8}, {26, 2, 2}};
} // namespace

TEST(MeterMap, EveryChangeRebuildsTheStartPositions)
{
    // Added in a scrambled order, positions come out by time.
    MeterMap map({{14, 5, 4}, {0, 4, 4}, {11, 6, 8}, {8, 3, 4}, {17, 2, 4}});
    const int expected[][3] = {{0, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {4, 3, 0}};
    for (int i = 0; i < 5; ++i)
    {
        SCOPED_TRACE(i);
        auto *meter = static_cast<ECMeter *>(map.env->GetPointAtIndex(i));
        ExpectAt(meter->GetBarPulseTick(), expected[i][0], expected[i][1], expected[i][2], 480);
        EXPECT_EQ(meter->GetTrack(), map.env->GetTrack()) << "the meter takes the map's track";
    }

    // Removing the 3/4 moves everything behind it.
    ECMeter *threeFour = static_cast<ECMeter *>(map.env->GetPointAtIndex(1));
    ASSERT_EQ(map.env->RemoveChild(threeFour, 1), 1);
    ExpectAt(static_cast<ECMeter *>(map.env->GetPointAtIndex(1))->GetBarPulseTick(), 2, 3, 0, 480);

    // Only meters: a plain point is refused.
    auto *point = static_cast<ECEnvPoint *>(RUNTIME_CLASS(ECEnvPoint)->CreateObject());
    MCTime at(30.0f);
    point->SetTime(&at);
    EXPECT_EQ(map.env->AddChild(point, 1), 0);
    point->Ref();
    point->Unref(1);

    // Without a meter at time 0 the walk leaves every position alone.
    map.env->RemoveChild(map.env->GetPointAtIndex(0), 1);
    auto *first = static_cast<ECMeter *>(map.env->GetPointAtIndex(0));
    first->SetBarPulseTick(7, 1, 2, 96);
    map.env->RecalculateBPTTimes();
    ExpectAt(first->GetBarPulseTick(), 7, 1, 2, 96);
    map.Add({40, 3, 4});
    ExpectAt(first->GetBarPulseTick(), 7, 1, 2, 96);

    map.env->RemoveChildren(1);
    EXPECT_EQ(map.env->GetPointCount(), 0);
    map.env->RecalculateBPTTimes(); // an empty map is no error
}

TEST(MeterMap, PositionsKeepTheirOneCarryAndTheStoredResolution)
{
    MeterMap map({{0, 4, 4}, {8, 3, 4}, {11, 6, 8}, {14, 5, 4}, {17, 2, 4}});
    ExpectAt(map.Position(0.0f, 96), 0, 0, 0, 480); // a meter's own position, with its resolution
    ExpectAt(map.Position(14.0f, 96), 4, 0, 0, 480);
    ExpectAt(map.Position(5.25f, 96), 1, 1, 24, 96);
    // A tick that rounds up to a whole pulse carries, and that pulse into
    // the bar.
    ExpectAt(map.Position(0.99999994f), 0, 1, 0, 480);
    ExpectAt(map.Position(3.99999976f), 1, 0, 0, 480);
    // From the 2/4 that starts on pulse 3 of bar 4: one carry only, so the
    // pulse stays past the numerator.
    ExpectAt(map.Position(18.5f), 5, 2, 240, 480);

    // Before the first meter, and times that are no normalized time.
    MeterMap late({{4, 3, 4}});
    ExpectAt(late.Position(1.0f, 120), 0, 0, 0, 120);
    MCTime clock(2.0f);
    clock.SetMode(MCTime::TimeModeClock);
    map.env->GetBarPulseTick(clock, 480);
    EXPECT_EQ(clock.GetMode(), MCTime::TimeModeClock);
    EXPECT_EQ(clock.GetSeconds(), 2.0f);
}

TEST(MeterMap, BarPulseTickThereAndBackReturnsEveryTick)
{
    for (int ppq : {480, 96, 256})
    {
        SCOPED_TRACE(ppq);
        MeterMap map(kOnBarLines);
        // The first bars of every meter and a few of the last one.
        for (int tick = 0; tick <= 34 * ppq; ++tick)
        {
            const float time = static_cast<float>(tick) / static_cast<float>(ppq);
            const BPTTime at = map.Position(time, ppq);
            const float back = map.Time(at.bar, at.pulse, at.tick, at.ppq);
            ASSERT_EQ(std::lround(back * static_cast<float>(ppq)), tick)
                << "bar " << at.bar << " pulse " << at.pulse << " tick " << at.tick;
        }
        // Positions by hand, back and forth: bar 5 pulse 6 of the 7/8.
        EXPECT_FLOAT_EQ(map.Time(5, 6, 0, ppq), 22.0f);
        EXPECT_EQ(map.Position(22.0f, ppq).pulse, 6);
    }
}

TEST(MeterMap, TheWalkBackMatchesComponentByComponent)
{
    MeterMap map({{0, 4, 4}, {8, 3, 4}, {11, 6, 8}, {14, 5, 4}, {17, 2, 4}});
    // The 2/4 stands at bar 4, pulse 3. Bar 5, pulse 1 has a smaller pulse,
    // so the walk goes on to the 5/4 at bar 4, pulse 0.
    EXPECT_FLOAT_EQ(map.Time(5, 1, 0), 14.0f + 5.0f + 1.0f);
    EXPECT_FLOAT_EQ(map.Time(5, 3, 0), 17.0f + 2.0f) << "the 2/4 matches";
    EXPECT_FLOAT_EQ(map.Time(4, 3, 0), 17.0f) << "an exact match is the meter's own time";
    // Pulses past the numerator are taken as they come.
    EXPECT_FLOAT_EQ(map.Time(0, 9, 240), 9.5f);

    // With no match the first meter counts.
    MeterMap late({{4, 3, 4}, {10, 2, 4}});
    auto *first = static_cast<ECMeter *>(late.env->GetPointAtIndex(0));
    first->SetBarPulseTick(2, 1, 0, 480);
    static_cast<ECMeter *>(late.env->GetPointAtIndex(1))->SetBarPulseTick(3, 0, 0, 480);
    EXPECT_FLOAT_EQ(late.Time(1, 0, 0), 4.0f - 3.0f - 1.0f);

    // Left alone: another mode, an empty map, a resolution that is not
    // positive.
    MCTime plain(3.0f);
    map.env->GetNormalizedTime(plain);
    EXPECT_EQ(plain.GetSeconds(), 3.0f);
    MeterMap empty({});
    MCTime bpt(1, 0, 0, 480);
    empty.env->GetNormalizedTime(bpt);
    EXPECT_EQ(bpt.GetMode(), MCTime::TimeModeBarPulseTick);
    MCTime zero(1, 0, 0, 0);
    map.env->GetNormalizedTime(zero);
    EXPECT_EQ(zero.GetMode(), MCTime::TimeModeBarPulseTick);
}

TEST(MeterMap, TheCursorAnswersAsTheWalkFromTheLastMeter)
{
    std::mt19937 rng(15);
    for (int round = 0; round < 20; ++round)
    {
        SCOPED_TRACE(round);
        // Meters at random times, on and off bar lines.
        std::vector<MeterAt> meters = {{0, 4, 4}};
        float at = 0;
        for (int i = 0; i < 40; ++i)
        {
            at += static_cast<float>(1 + rng() % 12) * 0.5f;
            meters.push_back({at, static_cast<int>(1 + rng() % 13), 1 << (rng() % 5)});
        }
        MeterMap map(meters);
        std::vector<BPTTime> asked;
        for (int i = 0; i < 400; ++i)
            asked.push_back({static_cast<int>(rng() % 40), static_cast<int>(rng() % 14),
                             static_cast<int>(rng() % 480), 480});
        // Sequential, then scattered.
        std::vector<BPTTime> sorted = asked;
        std::sort(sorted.begin(), sorted.end(), [](const BPTTime &a, const BPTTime &b) {
            return a.bar != b.bar ? a.bar < b.bar : a.pulse < b.pulse;
        });
        sorted.insert(sorted.end(), asked.begin(), asked.end());
        std::vector<float> withCursor;
        for (const BPTTime &b : sorted)
            withCursor.push_back(map.Time(b.bar, b.pulse, b.tick, b.ppq));
        // A position set by hand turns the cursor off until the next
        // recalculation: the same questions then take the plain walk.
        ECMeter *meter = map.made[1 + rng() % 40];
        meter->SetBarPulseTick(meter->GetBarPulseTick());
        for (size_t i = 0; i < sorted.size(); ++i)
            ASSERT_EQ(map.Time(sorted[i].bar, sorted[i].pulse, sorted[i].tick, sorted[i].ppq), withCursor[i]) << i;

        // Bars that fall along the list: the walk answers as written.
        const BPTTime kept = meter->GetBarPulseTick();
        meter->SetBarPulseTick(0, 0, 0, 480);
        EXPECT_EQ(map.Time(0, 0, 0), meter->ECWithTime::GetTime()->GetSeconds()) << "found from the last meter";
        // The recalculation restores the positions and the cursor.
        map.env->RecalculateBPTTimes();
        ExpectAt(meter->GetBarPulseTick(), kept.bar, kept.pulse, kept.tick, 480);
        for (size_t i = 0; i < sorted.size(); ++i)
            ASSERT_EQ(map.Time(sorted[i].bar, sorted[i].pulse, sorted[i].tick, sorted[i].ppq), withCursor[i]) << i;
    }
}

TEST(MeterMap, AMeterOfNoLengthGivesTheIndefiniteValueNotACrash)
{
    // 64/1 wraps to length zero: no position follows from it.
    MeterMap map({{0, 64, 1}, {300, 4, 4}});
    const BPTTime &after = map.made[1]->GetBarPulseTick();
    EXPECT_EQ(after.bar, INT_MIN);
    EXPECT_EQ(after.pulse, INT_MIN);
    const BPTTime at = map.Position(5.0f);
    EXPECT_EQ(at.bar, INT_MIN);
    map.Time(3, 0, 0);
}
