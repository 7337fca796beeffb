#include <scoremodel/core/MCTime.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace
{
std::uint32_t Bits(float f)
{
    std::uint32_t u;
    std::memcpy(&u, &f, sizeof u);
    return u;
}

MCTime Clock(float seconds)
{
    MCTime t(seconds);
    t.SetMode(MCTime::TimeModeClock);
    return t;
}

void ExpectBPT(const MCTime &t, int bar, int pulse, int tick, int ppq)
{
    ASSERT_EQ(t.GetMode(), MCTime::TimeModeBarPulseTick);
    ASSERT_NE(t.GetBarPulseTick(), nullptr);
    const BPTTime &r = *t.GetBarPulseTick();
    EXPECT_EQ((std::vector<int>{r.bar, r.pulse, r.tick, r.ppq}), (std::vector<int>{bar, pulse, tick, ppq}));
}

// Restores the process-wide resolution whatever a test did to it.
class GlobalPPQGuard
{
public:
    GlobalPPQGuard() : m_saved(MCTime::GlobalPPQ) {}
    ~GlobalPPQGuard() { MCTime::GlobalPPQ = m_saved; }

private:
    long m_saved;
};
} // namespace

TEST(MCTime, NamedValuesHaveTheExactFloatBitsAndOrderAroundZero)
{
    const std::pair<const MCTime &, std::uint32_t> named[] = {
        {MCTime::TimeMax(), 0x7F7FFFFFu}, {MCTime::TimeNull(), 0xFF7FFFFFu}, {MCTime::TimeZero(), 0u}};
    for (const auto &[t, bits] : named)
    {
        EXPECT_EQ(Bits(t.GetSeconds()), bits);
        EXPECT_EQ(t.GetMode(), MCTime::TimeModeNormalized);
    }
    EXPECT_TRUE(MCTime::TimeNull() < MCTime::TimeZero());
    EXPECT_TRUE(MCTime::TimeMax() > MCTime::TimeZero());
    EXPECT_LE(sizeof(MCTime), 2 * sizeof(void *)) << "a float time is one word and a byte";
}

TEST(MCTime, TicksRoundHalvesDownMillisecondsRoundHalvesUpAndBothTruncateTowardZero)
{
    struct Row
    {
        float value;
        long ppq, ticks;
    } rows[] = {
        {0.25f, 480, 120},     {120.5f, 1, 120}, // an exact half tick rounds down
        {120.515625f, 1, 121}, {-0.25f, 2, 0},   // -0.5 ticks + 0.49 truncates to 0, not -1
        {-0.75f, 2, -1},       {0.5f, 0, 0},
        {1.5f, -480, -719},
    };
    for (const Row &r : rows)
    {
        EXPECT_EQ(MCTime(r.value).GetTicks(r.ppq), r.ticks) << r.value << " at " << r.ppq;
        EXPECT_EQ(Clock(r.value).GetTicks(r.ppq), r.ticks) << "clock " << r.value;
    }
    EXPECT_FLOAT_EQ(MCTime(120.5f).GetTicksPrecisely(1), 120.5f);
    EXPECT_EQ(MCTime(0.0625f).GetMSec(), 63);
    EXPECT_EQ(MCTime(-0.0625f).GetMSec(), -62);
    // A bar/pulse/tick time has no ticks; huge values saturate instead of wrapping.
    EXPECT_EQ(MCTime(3, 1, 2, 480).GetTicks(480), 0);
    EXPECT_EQ(MCTime(3, 1, 2, 480).GetTicksPrecisely(480), 0.0f);
    EXPECT_EQ(MCTime(0, 0, 0, 480).GetMSec(), 0);
    EXPECT_EQ(MCTime::TimeNull().GetTicks(480), LONG_MIN);
    EXPECT_EQ(MCTime::TimeMax().GetMSec(), LONG_MAX);
    EXPECT_EQ(MCTime(std::nanf("")).GetTicks(480), 0);
}

TEST(MCTime, CopiesOfBarPulseTickTimesAreDeepAndReuseTheDestinationsRecord)
{
    MCTime original(1, 2, 3, 480);
    MCTime copy(original);
    ASSERT_NE(copy.GetBarPulseTick(), original.GetBarPulseTick());
    copy.GetBarPulseTick()->bar = 9;
    ExpectBPT(original, 1, 2, 3, 480);

    MCTime assigned(5.0f);
    assigned = original;
    BPTTime *record = assigned.GetBarPulseTick();
    ASSERT_NE(record, original.GetBarPulseTick());
    assigned = MCTime(4, 5, 6, 960);
    EXPECT_EQ(assigned.GetBarPulseTick(), record);
    ExpectBPT(assigned, 4, 5, 6, 960);
    assigned = assigned;
    ExpectBPT(assigned, 4, 5, 6, 960);
    assigned = Clock(2.0f);
    EXPECT_EQ(assigned.GetMode(), MCTime::TimeModeClock);
    EXPECT_FLOAT_EQ(assigned.GetSeconds(), 2.0f);
}

TEST(MCTime, SetModeRelabelsWithoutConverting)
{
    MCTime t(3.5f);
    t.SetMode(MCTime::TimeModeClock);
    t.SetMode(MCTime::TimeModeNormalized);
    EXPECT_FLOAT_EQ(t.GetSeconds(), 3.5f);
    t.SetMode(MCTime::TimeModeBarPulseTick);
    ASSERT_NE(t.GetBarPulseTick(), nullptr);
    t.SetMode(MCTime::TimeModeNormalized);
    EXPECT_EQ(Bits(t.GetSeconds()), 0u) << "leaving bar/pulse/tick must leave 0.0";
    t.SetBarPulseTick(BPTTime{7, 1, 2, 96});
    BPTTime *record = t.GetBarPulseTick();
    t.SetBarPulseTick(8, 0, 0, 96);
    EXPECT_EQ(t.GetBarPulseTick(), record);
    ExpectBPT(t, 8, 0, 0, 96);
}

TEST(MCTime, SetPPQRescalesTheTickOnlyWhenItCan)
{
    struct Row
    {
        const char *name;
        BPTTime before;
        int newPPQ;
        int tick, ppq; // after
    } rows[] = {
        {"doubling", {1, 2, 240, 480}, 960, 480, 960},
        {"floor of a fraction", {0, 0, 1, 3}, 2, 0, 2},
        {"floor of a negative", {0, 0, -1, 3}, 2, -1, 2},
        {"no carry into the pulse", {1, 2, 479, 480}, 240, 239, 240},
        {"32-bit product wraps", {1, 2, 0x7FFFFFFF, 480}, 960, -2, 960},
        {"zero new ppq", {1, 2, 5, 480}, 0, 5, 480},
        {"negative new ppq", {1, 2, 5, 480}, -96, 5, 480},
        {"zero old ppq", {1, 2, 5, 0}, 96, 5, 0},
        {"negative old ppq", {1, 2, 5, -4}, 96, 5, -4},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        MCTime t(r.before.bar, r.before.pulse, r.before.tick, r.before.ppq);
        t.SetPPQ(r.newPPQ);
        ExpectBPT(t, r.before.bar, r.before.pulse, r.tick, r.ppq);
    }
    MCTime plain(1.5f);
    plain.SetPPQ(960);
    EXPECT_EQ(plain.GetMode(), MCTime::TimeModeNormalized);
}

TEST(MCTime, SetGlobalPPQClampsAndAlwaysReturnsOne)
{
    GlobalPPQGuard guard;
    const std::pair<long, long> rows[] = {{5, 10}, {9, 10}, {10, 10}, {1000, 1000}, {1001, 1000}, {-3, 10}};
    for (const auto &[asked, stored] : rows)
    {
        EXPECT_EQ(MCTime::SetGlobalPPQ(asked), 1);
        EXPECT_EQ(MCTime::GlobalPPQ, stored) << asked;
    }
}

TEST(MCTime, SettersKeepClockModeLeaveBarPulseTickAndArithmeticGuardsLookOnlyAtTheirNamedOperand)
{
    GlobalPPQGuard guard;
    MCTime::GlobalPPQ = 96;
    struct Row
    {
        const char *name;
        std::function<MCTime()> compute;
        BYTE mode;
        float value;
    } rows[] = {
        {"SetTicks leaves bar/pulse/tick", [] { MCTime t(1, 2, 3, 480); t.SetTicks(240.0f, 480); return t; }, 0, 0.5f},
        {"tick setters keep clock mode, ignoring ppq 0",
         [] { MCTime t = Clock(1.0f); t.SetTicks(960.0f, 480); t.AddTicks(240, 480); t.AddTicks(240, 0); return t; }, 3,
         2.5f},
        {"SetMSec leaves bar/pulse/tick", [] { MCTime t(1, 0, 0, 480); t.SetMSec(1500); return t; }, 0, 1.5f},
        {"a float keeps clock mode", [] { MCTime t = Clock(1.0f); t = 4.0f; return t; }, 3, 4.0f},
        {"a float leaves bar/pulse/tick", [] { MCTime t(1, 1, 1, 480); t = 2.0f; return t; }, 0, 2.0f},
        {"+= keeps clock mode", [] { MCTime a = Clock(1.0f); a += MCTime(0.5f); return a; }, 3, 1.5f},
        {"-=", [] { MCTime a(1.0f); a -= Clock(0.25f); return a; }, 0, 0.75f},
        {"+= bpt operand ignored", [] { MCTime a(1.0f); a += MCTime(1, 0, 0, 480); return a; }, 0, 1.0f},
        {"-= bpt operand ignored", [] { MCTime a(1.0f); a -= MCTime(1, 0, 0, 480); return a; }, 0, 1.0f},
        {"*=", [] { MCTime a = Clock(1.5f); a *= 2.0f; return a; }, 3, 3.0f},
        {"/= zero does nothing", [] { MCTime a(3.0f); a /= 0.0f; return a; }, 0, 3.0f},
        {"/ gives mode 0 from clock", [] { return Clock(3.0f) / MCTime(2.0f); }, 0, 1.5f},
        {"/ zero divisor counts as one", [] { return MCTime(3.0f) / MCTime::TimeZero(); }, 0, 3.0f},
        {"% negative floors", [] { return MCTime(-1.0f) % MCTime(3.0f); }, 0, 2.0f},
        {"% fractional", [] { return MCTime(5.5f) % MCTime(2.0f); }, 0, 1.5f},
        {"% zero divisor counts as one", [] { return MCTime(2.75f) % MCTime(0.0f); }, 0, 0.75f},
        {"unary minus from clock is mode 0", [] { return -Clock(2.0f); }, 0, -2.0f},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        MCTime t = r.compute();
        EXPECT_EQ(t.GetMode(), r.mode);
        EXPECT_FLOAT_EQ(t.GetSeconds(), r.value);
    }

    // A bar/pulse/tick left side: unchanged in place, a zero time of GlobalPPQ otherwise.
    MCTime bpt(1, 2, 3, 480);
    bpt.SetTicks(100.0f, 0);
    bpt.AddTicks(100, 480);
    bpt *= 2.0f;
    bpt /= 2.0f;
    bpt += MCTime(1.0f);
    bpt -= MCTime(1.0f);
    ExpectBPT(bpt, 1, 2, 3, 480);
    ExpectBPT(bpt / MCTime(2.0f), 0, 0, 0, 96);
    ExpectBPT(bpt % MCTime(2.0f), 0, 0, 0, 96);
    ExpectBPT(-bpt, 0, 0, 0, 96);
}

TEST(MCTime, ComparisonsFollowTheModeRules)
{
    struct Row
    {
        const char *name;
        MCTime a, b;
        int eq, ge, le;
    };
    std::vector<Row> rows = {
        {"floats", MCTime(1.0f), MCTime(2.0f), 0, 0, 1},
        {"clock equals normalized", Clock(2.0f), MCTime(2.0f), 1, 1, 1},
        {"bpt scaled equal", MCTime(1, 1, 240, 480), MCTime(1, 1, 120, 240), 1, 1, 1},
        {"bpt scaled unequal", MCTime(1, 1, 241, 480), MCTime(1, 1, 120, 240), 0, 1, 0},
        {"bpt other bar", MCTime(1, 1, 0, 480), MCTime(2, 1, 0, 480), 0, 0, 1},
        {"bpt other pulse", MCTime(1, 2, 0, 480), MCTime(1, 1, 0, 480), 0, 1, 0},
        {"bpt not lexicographic", MCTime(2, 0, 0, 480), MCTime(1, 3, 0, 480), 0, 0, 0},
        // Raw ticks for >= but scaled quotients for <=: both hold, yet not ==.
        {"bpt raw ticks when a.ppq larger", MCTime(1, 1, 120, 480), MCTime(1, 1, 100, 240), 0, 1, 1},
        {"bpt scaled earlier", MCTime(1, 1, 50, 240), MCTime(1, 1, 120, 480), 0, 0, 1},
        {"bpt raw ticks when a.ppq smaller for <=", MCTime(1, 1, 100, 240), MCTime(1, 1, 150, 480), 0, 1, 1},
        {"bpt equal fields, zero ppq differs", MCTime(1, 1, 0, 0), MCTime(1, 1, 0, 480), 0, 0, 1},
        {"bpt against zero, positive", MCTime(1, 0, 5, 480), MCTime::TimeZero(), 0, 1, 0},
        {"bpt against zero, negative tick", MCTime(0, 0, -1, 480), MCTime::TimeZero(), 0, 0, 1},
        {"bpt against clock zero", MCTime(0, 0, 0, 480), Clock(0.0f), 0, 1, 1},
        {"bpt against non-zero", MCTime(1, 0, 0, 480), MCTime(1.0f), 0, 0, 0},
        {"float against bpt", MCTime(0.0f), MCTime(0, 0, 0, 480), 0, 0, 0},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        EXPECT_EQ(r.a == r.b, r.eq);
        EXPECT_EQ(r.a >= r.b, r.ge);
        EXPECT_EQ(r.a <= r.b, r.le);
        EXPECT_EQ(r.a != r.b, !r.eq);
        EXPECT_EQ(r.a < r.b, !r.ge);
        EXPECT_EQ(r.a > r.b, !r.le);
    }
}
