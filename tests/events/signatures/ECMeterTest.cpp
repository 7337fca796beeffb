// Meters: the type and stress tables over every simple meter up to 64 pulses,
// lengths and their 16-bit wrap, beats and subdivisions, list meters, copying
// and the end meter of a pickup.
#include <scoremodel/events/notes/ECMirror.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace
{
struct Unref
{
    void operator()(ECBase *e) const
    {
        e->Ref();
        e->Unref(1);
    }
};
using Meter = std::unique_ptr<ECMeter, Unref>;

Meter Make(int n, int d, int type)
{
    return Meter(new ECMeter(static_cast<unsigned char>(n), static_cast<unsigned char>(d),
                             static_cast<unsigned char>(type)));
}

CByteArray Bytes(std::initializer_list<int> values)
{
    CByteArray out;
    for (int v : values)
        out.Add(static_cast<BYTE>(v));
    return out;
}

// The stresses as (pulses) from the rules, stated per numerator the way a
// musician reads them; the lengths are always pulses times 1024 / d.
std::vector<int> ExpectedPulses(int n, int d, int type)
{
    auto repeat = [](int count, int pulses) { return std::vector<int>(static_cast<size_t>(count), pulses); };
    if (type <= 2)
    {
        if (d >= 8 || (d == 4 && n <= 3))
            return {n};
        return n % 2 ? repeat(n, 1) : repeat(2, n / 2);
    }
    if (type == 3)
        return repeat(n / 3, 3);
    if (type == 4)
    {
        if (n % 3 == 0)
            return repeat(3, n / 3);
        if (n == 5)
            return {2, 3};
        if (n == 7)
            return {4, 3};
        if (n % 2)
            return {};
        int m = n, halvings = 0;
        for (; m % 2 == 0; m /= 2)
            ++halvings;
        return repeat(2 * halvings, m);
    }
    std::vector<int> out = repeat(n / 3, 3);
    out.push_back(n % 3);
    return out;
}

int ExpectedType(int n)
{
    // The documented examples, then the rule for the rest.
    static const std::pair<int, int> examples[] = {
        {3, 2},  {4, 2},  {8, 2},  {16, 2}, {5, 4},  {7, 4},  {10, 4}, {14, 4}, {15, 4}, {20, 4}, {21, 4},
        {25, 4}, {28, 4}, {35, 4}, {6, 3},  {9, 3},  {12, 3}, {18, 3}, {24, 3}, {27, 3}, {11, 5}, {13, 5},
        {17, 5}, {19, 5}, {33, 5}, {39, 5}, {1, 2},  {2, 2},  {32, 2}, {64, 2}, {40, 4}, {30, 4}, {42, 4},
        {45, 4}, {63, 4}, {36, 3}, {48, 3}, {54, 3}, {60, 4}, {51, 5}, {57, 5}, {22, 5}, {26, 5}, {34, 5}};
    for (auto [num, type] : examples)
        if (num == n)
            return type;
    if ((n & (n - 1)) == 0)
        return 2;
    if (n % 5 == 0 || n % 7 == 0)
        return 4;
    if (n % 3)
        return 5;
    return ((n / 3) % 3 == 0 || (n / 3) % 2 == 0) ? 3 : 5;
}

bool ThrowsInvalidArg(const std::function<void()> &f)
{
    try
    {
        f();
    }
    catch (const CInvalidArgException &)
    {
        return true;
    }
    return false;
}
} // namespace

TEST(MeterTable, EverySimpleMeterFollowsItsTypeStressAndLengthRules)
{
    for (int type : {255, 0, 1})
        for (int n = 1; n <= 64; ++n)
            for (int d = 1; d <= 128; d *= 2)
            {
                SCOPED_TRACE(testing::Message() << n << "/" << d << " type " << type);
                Meter m = Make(n, d, type);
                const int effective = type == 255 ? ExpectedType(n) : type;
                ASSERT_EQ(m->GetMeterType(), effective);
                ASSERT_EQ(m->GetNumerator(), n);
                ASSERT_EQ(m->GetDenominator(), d);
                const int unit = 1024 / d;
                EXPECT_EQ(m->GetPulseTicks(256), unit);
                EXPECT_EQ(m->GetPulse(), unit / 256.0f);

                // The measure: numerator pulses, wrapped at 16 bits (only
                // 64/1 reaches 65536 and reads 0).
                const int ticks = (n * unit) & 0xFFFF;
                EXPECT_EQ(m->GetTicksPerMeasure(256), ticks);
                EXPECT_EQ(m->GetMeasureLength(), ticks / 256.0f);
                if (n * unit < 65536)
                {
                    EXPECT_EQ(m->GetMeasureLength(), n * m->GetPulse());
                }
                EXPECT_EQ(m->GetTicksPerMeasure(480), (n * ((unit * 480 + 128) / 256)) & 0xFFFF);

                const std::vector<int> pulses = ExpectedPulses(n, d, effective <= 1 ? 2 : effective);
                ASSERT_EQ(m->GetStressPulsesPerMeasure(), pulses.size());
                int total = 0;
                for (size_t i = 0; i < pulses.size(); ++i)
                {
                    const auto index = static_cast<unsigned short>(i);
                    EXPECT_EQ(m->GetPulsesPerStress(index), pulses[i]) << "stress " << i;
                    EXPECT_EQ(m->GetStressTicks(index, 256), pulses[i] * unit) << "stress " << i;
                    EXPECT_EQ(m->GetStress(index), pulses[i] * unit / 256.0f);
                    total += pulses[i];
                }
                // The stresses fill the measure, except the kept shortfalls
                // of the imperfect rule: odd numerators without a pattern,
                // and even ones of eight or more times their odd part.
                const int twos = n & -n;
                const bool shortfall = effective == 4 && n % 3 != 0 && n != 5 && n != 7 && (n % 2 == 1 || twos >= 8);
                if (shortfall)
                {
                    EXPECT_LT(total, n);
                }
                else
                {
                    EXPECT_EQ(total, n);
                }

                // Padding: the arrays grow by five and read zero past the
                // count; one past the size is an invalid argument.
                const auto count = static_cast<unsigned short>(pulses.size());
                const unsigned short padded = static_cast<unsigned short>((count + 4) / 5 * 5);
                for (unsigned short i = count; i < padded; ++i)
                {
                    EXPECT_EQ(m->GetStressTicks(i, 256), 0);
                    EXPECT_EQ(m->GetPulsesPerStress(i), 0);
                }
                EXPECT_TRUE(ThrowsInvalidArg([&] { m->GetStress(padded); }));
                EXPECT_TRUE(ThrowsInvalidArg([&] { m->GetPulsesPerStress(padded); }));
                EXPECT_TRUE(ThrowsInvalidArg([&] { m->GetStressTicks(padded, 480); }));

                // Beats: pulses for the simple types, stresses for the rest.
                if (effective <= 2)
                {
                    EXPECT_EQ(m->GetBeatsPerMeasure(), n);
                    EXPECT_EQ(m->GetBeat(static_cast<unsigned short>(n - 1)), m->GetPulse());
                    EXPECT_EQ(m->GetPulsesPerBeat(0), 1);
                    EXPECT_EQ(m->GetBeatTicks(0, 480), m->GetPulseTicks(480));
                }
                else
                {
                    EXPECT_EQ(m->GetBeatsPerMeasure(), count);
                    for (unsigned short i = 0; i < count; ++i)
                    {
                        const unsigned short from = effective == 3 ? 0 : i;
                        EXPECT_EQ(m->GetBeat(i), m->GetStress(from));
                        EXPECT_EQ(m->GetPulsesPerBeat(i), m->GetPulsesPerStress(from));
                        EXPECT_EQ(m->GetBeatTicks(i, 960), m->GetStressTicks(from, 960));
                    }
                }
            }
}

TEST(MeterTable, TheDocumentedMetersAndRefusals)
{
    Meter m = Make(4, 4, 0);
    EXPECT_EQ(m->SetMeter(0, 4, 0), 0);
    EXPECT_EQ(m->SetMeter(4, 3, 0), 0);
    EXPECT_EQ(m->SetMeter(4, 0, 0), 0);
    EXPECT_TRUE(*m == *Make(4, 4, 0)) << "a refused argument changes nothing";
    EXPECT_EQ(m->SetMeterType(5), 0);
    EXPECT_EQ(m->GetMeterType(), 0);

    Meter refused = Make(0, 4, 255);
    EXPECT_EQ(refused->GetNumerator(), 4) << "the constructor falls back to 4/4";
    EXPECT_EQ(refused->GetStressPulsesPerMeasure(), 2);

    m = Make(1, 1, 255);
    EXPECT_EQ(m->GetMeterType(), 2);
    EXPECT_EQ(m->GetStressPulsesPerMeasure(), 1);
    EXPECT_EQ(m->GetStressTicks(0, 256), 1024);

    m = Make(6, 8, 255);
    EXPECT_EQ(m->GetMeterType(), 3);
    EXPECT_EQ(m->GetBeatsPerMeasure(), 2);
    EXPECT_EQ(m->GetBeat(1), 1.5f) << "type 3 reads stress 0";
    EXPECT_EQ(m->GetPulsesPerBeat(1), 3);

    m = Make(5, 4, 255);
    EXPECT_EQ(m->GetMeterType(), 4);
    EXPECT_EQ(m->GetStressTicks(0, 256), 512);
    EXPECT_EQ(m->GetStressTicks(1, 256), 768);
    m = Make(5, 4, 0);
    EXPECT_EQ(m->GetStressPulsesPerMeasure(), 5);

    m = Make(3, 4, 255);
    EXPECT_EQ(m->GetStressPulsesPerMeasure(), 1);
    EXPECT_EQ(m->GetBeatsPerMeasure(), 3);
    EXPECT_EQ(Make(3, 2, 255)->GetStressPulsesPerMeasure(), 3) << "3/2 splits where 3/4 does not";

    m = Make(25, 8, 255);
    EXPECT_EQ(m->GetBeatsPerMeasure(), 0);
    EXPECT_TRUE(ThrowsInvalidArg([&] { m->GetBeat(0); })) << "no stress, and an empty array";

    m = Make(33, 8, 255);
    EXPECT_EQ(m->GetMeterType(), 5);
    EXPECT_EQ(m->GetStressPulsesPerMeasure(), 12);
    EXPECT_EQ(m->GetBeat(11), 0.0f) << "the closing stress is a beat of length zero";

    m = Make(40, 8, 255);
    EXPECT_EQ(m->GetStressPulsesPerMeasure(), 6) << "two per halving, not doubling";

    // A passed 2 to 6 asks for the computation like 255.
    for (int type = 2; type <= 6; ++type)
        EXPECT_EQ(Make(12, 8, type)->GetMeterType(), 3);
    EXPECT_EQ(Make(64, 1, 255)->GetMeasureLength(), 0.0f) << "the 16-bit wrap";
}

TEST(MeterLengths, ConversionRoundsHalvesUpAndSubdivisionsFollowTheType)
{
    struct
    {
        int value, to, from, expected;
    } conversions[] = {{256, 480, 256, 480}, {1, 480, 256, 2},   {1, 384, 256, 2},   {1, 383, 256, 1},
                       {3, 1, 2, 2},         {5, 2, 4, 3},       {100, 0, 256, 0},   {7, 480, 0, 0},
                       {65535, 1000, 1, 65535000}, {-3, 1, 2, -1}};
    for (auto &c : conversions)
        EXPECT_EQ(ECMeter::ConvertResolution(c.value, c.to, c.from), c.expected)
            << c.value << " " << c.to << "/" << c.from;

    // 7/8 computed: 4+3. Ticks at 100 round, floats do not.
    Meter m = Make(7, 8, 255);
    ASSERT_EQ(m->GetMeterType(), 4);
    EXPECT_EQ(m->GetPulseTicks(100), 50) << "50.5 rounds down, as the half is added before dividing";
    EXPECT_EQ(m->GetPulseTicks(3), 2) << "1.5 rounds up";
    CArray<unsigned short, unsigned short> ticks;
    CArray<float, float> quarters;
    const std::vector<std::vector<unsigned short>> tickLevels = {
        {175 * 2}, {200, 150}, {50, 50, 50, 50, 50, 50, 50}, std::vector<unsigned short>(14, 25),
        std::vector<unsigned short>(28, 12)};
    const std::vector<std::vector<float>> floatLevels = {
        {3.5f}, {2.0f, 1.5f}, std::vector<float>(7, 0.5f), std::vector<float>(14, 0.25f),
        std::vector<float>(28, 0.125f)};
    for (int level = 0; level < 5; ++level)
    {
        SCOPED_TRACE(level);
        m->GetSubdivision(level, ticks, 100);
        m->GetSubdivision(level, quarters);
        ASSERT_EQ(ticks.GetSize(), static_cast<INT_PTR>(tickLevels[level].size()));
        ASSERT_EQ(quarters.GetSize(), static_cast<INT_PTR>(floatLevels[level].size()));
        for (INT_PTR i = 0; i < ticks.GetSize(); ++i)
        {
            EXPECT_EQ(ticks[i], tickLevels[level][i]);
            EXPECT_EQ(quarters[i], floatLevels[level][i]);
        }
    }

    // 4/4 of type 0: stresses at level 1, pulses at 2, and the deep levels
    // truncate in ticks (256 / 64 / ... at resolution 3).
    m = Make(4, 4, 0);
    m->GetSubdivision(1, ticks, 256);
    ASSERT_EQ(ticks.GetSize(), 2);
    EXPECT_EQ(ticks[0], 512);
    m->GetSubdivision(2, ticks, 256);
    EXPECT_EQ(ticks.GetSize(), 4);
    m->GetSubdivision(4, ticks, 3);
    ASSERT_EQ(ticks.GetSize(), 16);
    EXPECT_EQ(ticks[0], 0) << "3 ticks over 4, truncated";
    m->GetSubdivision(4, quarters);
    EXPECT_EQ(quarters[15], 0.25f);

    // Levels the table does not have leave the array alone.
    ticks.SetSize(3);
    ticks[0] = 9;
    for (int level : {-1, 19, 1000})
    {
        m->GetSubdivision(level, ticks, 256);
        EXPECT_EQ(ticks.GetSize(), 3);
        EXPECT_EQ(ticks[0], 9);
    }
    m->GetSubdivision(18, ticks, 256);
    EXPECT_EQ(ticks.GetSize(), 4 * 65536);
}

TEST(MeterList, ComponentsGetTheirOwnStressesOnTheCommonGrid)
{
    Meter m = Make(4, 4, 0);
    // 3/8 + 2/4, flag 0: each component by its own computed type.
    ASSERT_EQ(m->SetMeter(Bytes({3, 2}), Bytes({8, 4}), 0), 1);
    EXPECT_EQ(m->GetMeterType(), 6);
    EXPECT_EQ(m->GetDenominator(), 8);
    EXPECT_EQ(m->GetNumerator(), 7);
    EXPECT_EQ(m->GetPulseTicks(256), 128);
    ASSERT_EQ(m->GetStressPulsesPerMeasure(), 2);
    EXPECT_EQ(m->GetStressTicks(0, 256), 384);
    EXPECT_EQ(m->GetStressTicks(1, 256), 512);
    EXPECT_EQ(m->GetPulsesPerStress(1), 2) << "pulses of the component's own denominator";
    EXPECT_EQ(m->GetCompoundNumerator().GetSize(), 2);

    // 6/8 + 5/4 with flag 0: 3+3 then 2+3; with flag 1: one stress each.
    ASSERT_EQ(m->SetMeter(Bytes({6, 5}), Bytes({8, 4}), 0), 1);
    ASSERT_EQ(m->GetStressPulsesPerMeasure(), 4);
    EXPECT_EQ(m->GetStressTicks(3, 256), 768);
    EXPECT_EQ(m->GetBeatsPerMeasure(), 4);
    ASSERT_EQ(m->SetMeter(Bytes({6, 5}), Bytes({8, 4}), 1), 1);
    ASSERT_EQ(m->GetStressPulsesPerMeasure(), 2);
    EXPECT_EQ(m->GetStressTicks(1, 256), 1280);
    EXPECT_EQ(m->GetNumerator(), 16);

    // One shared denominator: single stresses whatever the flag, and a
    // numerator total that wraps at 8 bits.
    ASSERT_EQ(m->SetMeter(Bytes({200, 100}), Bytes({16}), 0), 1);
    EXPECT_EQ(m->GetNumerator(), 44);
    EXPECT_EQ(m->GetStressTicks(0, 256), 200 * 64 & 0xFFFF);
    EXPECT_EQ(m->GetStressTicks(1, 256), 6400);

    // One of each with flag 0 is the simple form.
    ASSERT_EQ(m->SetMeter(Bytes({6}), Bytes({8}), 0), 1);
    EXPECT_EQ(m->GetMeterType(), 3);
    EXPECT_EQ(m->GetCompoundNumerator().GetSize(), 0) << "leaving a list empties the arrays";
    ASSERT_EQ(m->SetMeter(Bytes({6}), Bytes({8}), 1), 1);
    EXPECT_EQ(m->GetMeterType(), 6);

    // Refusals leave the meter as it was.
    ASSERT_EQ(m->SetMeter(Bytes({3, 2}), Bytes({8, 4}), 0), 1);
    Meter before = Make(1, 1, 0);
    *before = *m;
    ASSERT_TRUE(*m == *before);
    const std::pair<CByteArray, CByteArray> refused[] = {
        {Bytes({}), Bytes({4})},        {Bytes({3}), Bytes({})},        {Bytes({3, 2, 1}), Bytes({4, 8})},
        {Bytes({3, 0}), Bytes({4})},    {Bytes({3, 2}), Bytes({4, 6})}, {Bytes({3, 2}), Bytes({0, 4})}};
    for (auto &[nums, dens] : refused)
    {
        EXPECT_EQ(m->SetMeter(nums, dens, 0), 0);
        EXPECT_TRUE(*m == *before);
        EXPECT_EQ(m->GetCompoundNumerator().GetSize(), 2);
    }

    // The meter's own arrays as arguments.
    ASSERT_EQ(m->SetMeter(Bytes({3, 2}), Bytes({8, 4}), 1), 1);
    ASSERT_EQ(m->SetMeter(m->GetCompoundNumerator(), m->GetCompoundDenominator(), 0), 1);
    EXPECT_EQ(m->GetCompoundNumerator().GetSize(), 2);
    EXPECT_EQ(m->GetNumerator(), 7);
}

TEST(MeterCopy, ThePatternIsRecomputedAndTheRoleCopied)
{
    Meter list = Make(4, 4, 0);
    ASSERT_EQ(list->SetMeter(Bytes({6, 5}), Bytes({8, 4}), 1), 1);
    list->SetPickupRole(2);
    Meter copy(new ECMeter(*list));
    EXPECT_EQ(copy->GetPickupRole(), 2);
    EXPECT_EQ(copy->GetMeterType(), 6);
    EXPECT_EQ(copy->GetStressPulsesPerMeasure(), 4) << "rebuilt with flag 0: the single stresses are lost";
    EXPECT_FALSE(*copy == *list);

    Meter simple = Make(1, 1, 0);
    simple->Copy(Make(9, 8, 1).get());
    EXPECT_EQ(simple->GetMeterType(), 1);
    EXPECT_EQ(simple->GetStressPulsesPerMeasure(), 1);
    Meter triple = Make(1, 1, 0);
    triple->Copy(Make(9, 8, 255).get());
    EXPECT_EQ(triple->GetStressPulsesPerMeasure(), 3);
    EXPECT_EQ(triple->GetPickupRole(), 0);

    // Equality ignores role, time and position.
    Meter a = Make(7, 8, 255);
    Meter b = Make(7, 8, 255);
    a->SetPickupRole(3);
    MCTime later(12.0f);
    b->SetTime(&later);
    b->SetBarPulseTick(3, 1, 0, 480);
    EXPECT_TRUE(*a == *b);
    EXPECT_FALSE(*a != *b);
    EXPECT_FALSE(*a == *Make(7, 8, 0));
    EXPECT_FALSE(*Make(7, 8, 0) == *Make(7, 4, 0));

    // The role keeps the other flag bits and ignores values above 15.
    a->SetPickupRole(16);
    EXPECT_EQ(a->GetPickupRole(), 3);
    a->SetPickupRole(15);
    EXPECT_EQ(a->GetFlags(), 15);

    // Position and default construction.
    Meter fresh(new ECMeter);
    EXPECT_EQ(fresh->GetBarPulseTick().ppq, MCTime::GlobalPPQ);
    EXPECT_EQ(fresh->GetNumerator(), 4);
    EXPECT_EQ(fresh->GetMeterType(), 0);
}

TEST(MeterEnd, TheClosingMeasureCompletesThePickup)
{
    struct Case
    {
        int mn, md, pn, pd;
        int result;
        std::vector<int> nums, dens;
    } cases[] = {
        {4, 4, 1, 8, 1, {3, 1}, {4, 8}},  // a short upbeat: three quarters and an eighth
        {4, 4, 3, 8, 1, {5}, {8}},        // a long one: the difference as it is
        {4, 4, 1, 4, 1, {3}, {4}},        // 0.25 is not below 0.25
        {3, 8, 1, 16, 1, {2, 1}, {8, 16}}, // eighths of the main meter, unreduced
        {2, 2, 1, 16, 1, {3, 3}, {4, 16}}, // at least quarters: 15/16 is 3/4 and 3/16
        {4, 4, 4, 4, 0, {}, {}},          // nothing left to close
        {3, 4, 4, 4, 0, {}, {}},          // a pickup longer than the measure
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.mn << "/" << c.md << " after " << c.pn << "/" << c.pd);
        Meter main = Make(c.mn, c.md, 255);
        Meter pickup = Make(c.pn, c.pd, 255);
        CByteArray nums = Bytes({99});
        CByteArray dens = Bytes({99});
        EXPECT_EQ(ECMeter::CalcEndMeter(main.get(), pickup.get(), nums, dens), c.result);
        ASSERT_EQ(nums.GetSize(), static_cast<INT_PTR>(c.nums.size() + 1)) << "appended behind what was there";
        for (size_t i = 0; i < c.nums.size(); ++i)
        {
            EXPECT_EQ(nums[static_cast<INT_PTR>(i + 1)], c.nums[i]);
            EXPECT_EQ(dens[static_cast<INT_PTR>(i + 1)], c.dens[i]);
        }
    }
    CByteArray nums, dens;
    Meter one = Make(4, 4, 0);
    EXPECT_EQ(ECMeter::CalcEndMeter(nullptr, one.get(), nums, dens), 0);
    EXPECT_EQ(ECMeter::CalcEndMeter(one.get(), nullptr, nums, dens), 0);
}

TEST(MeterMirrors, MirrorsFollowTheMeterAndLetGoAtTheEnd)
{
    ECMeter *meter = new ECMeter(3, 4, 255);
    meter->Ref();
    auto *mirror = static_cast<ECMirror *>(RUNTIME_CLASS(ECMirror)->CreateObject());
    mirror->Ref();
    meter->AddMirror(mirror);
    EXPECT_EQ(meter->GetMirrors().GetCount(), 1);
    EXPECT_EQ(mirror->GetMirrorEvent(), meter);
    meter->RemoveMirror(mirror);
    EXPECT_EQ(mirror->GetMirrorEvent(), nullptr);
    EXPECT_EQ(meter->GetMirrors().GetCount(), 0);
    meter->AddMirror(mirror);
    meter->Unref(1); // the destructor lets go of the mirror
    EXPECT_EQ(mirror->GetMirrorEvent(), nullptr);
    mirror->Unref(1);
}
