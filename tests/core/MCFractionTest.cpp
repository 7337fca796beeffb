#include <scoremodel/core/MCFraction.h>

#include <gtest/gtest.h>

#include <functional>

namespace
{
void ExpectFraction(const MCFraction &f, int num, unsigned int den)
{
    EXPECT_EQ(f.GetNum(), num);
    EXPECT_EQ(f.GetDen(), den);
}
} // namespace

TEST(MCFraction, ZeroDenominatorBecomesOne)
{
    ExpectFraction(MCFraction(), 0, 1);
    ExpectFraction(MCFraction(3, 0), 3, 1);
    MCFraction f(1, 4);
    f.SetDen(0);
    ExpectFraction(f, 1, 1);
    f.SetDen(8);
    f.SetNum(-3);
    ExpectFraction(f, -3, 8);
    EXPECT_FLOAT_EQ(f.GetResult(), -0.375f);
    EXPECT_FLOAT_EQ(static_cast<float>(f), -0.375f);
}

TEST(MCFraction, ArithmeticNeverReduces)
{
    struct Row
    {
        const char *name;
        std::function<MCFraction()> compute;
        int num;
        unsigned int den;
    } rows[] = {
        {"1/2 + 1/3", [] { return MCFraction(1, 2) + MCFraction(1, 3); }, 5, 6},
        {"1/2 + 1/2", [] { return MCFraction(1, 2) + MCFraction(1, 2); }, 2, 2},
        {"1/4 + 1/6 over the lcm", [] { return MCFraction(1, 4) + MCFraction(1, 6); }, 5, 12},
        {"3/4 - 1/4", [] { return MCFraction(3, 4) - MCFraction(1, 4); }, 2, 4},
        {"1/3 - 1/2", [] { return MCFraction(1, 3) - MCFraction(1, 2); }, -1, 6},
        {"-1/2 + 1/4", [] { return MCFraction(-1, 2) + MCFraction(1, 4); }, -1, 4},
        {"2/3 * 3/4", [] { return MCFraction(2, 3) * MCFraction(3, 4); }, 6, 12},
        {"-2/3 * 3/4", [] { return MCFraction(-2, 3) * MCFraction(3, 4); }, -6, 12},
        {"1/2 / 3/4", [] { return MCFraction(1, 2) / MCFraction(3, 4); }, 4, 6},
        {"1/2 / 0 falls to den 1", [] { return MCFraction(1, 2) / MCFraction(0, 1); }, 1, 1},
        {"1/2 / -1/3 unsigned den", [] { return MCFraction(1, 2) / MCFraction(-1, 3); }, 3, 0xFFFFFFFEu},
        {"3/4 * 2", [] { return MCFraction(3, 4) * 2; }, 6, 4},
        {"3/4 * -1", [] { return MCFraction(3, 4) * -1; }, -3, 4},
        {"3/4 / 2", [] { return MCFraction(3, 4) / 2; }, 3, 8},
        {"3/4 / 0 falls to den 1", [] { return MCFraction(3, 4) / 0; }, 3, 1},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        ExpectFraction(r.compute(), r.num, r.den);
    }
}

TEST(MCFraction, ReduceAndExpand)
{
    struct Row
    {
        int num;
        unsigned int den;
        unsigned int gcd;
        int rnum;
        unsigned int rden;
    } rows[] = {{6, 8, 2, 3, 4}, {0, 5, 5, 0, 1}, {7, 1, 1, 7, 1}, {12, 12, 12, 1, 1}, {9, 6, 3, 3, 2}};
    for (const Row &r : rows)
    {
        MCFraction f(r.num, r.den);
        EXPECT_EQ(f.Reduce(), r.gcd) << r.num << "/" << r.den;
        ExpectFraction(f, r.rnum, r.rden);
    }

    MCFraction f(1, 2);
    f.Expand(3);
    ExpectFraction(f, 3, 6);
    f.Expand(0);
    ExpectFraction(f, 0, 0);
}

TEST(MCFraction, AFractionBrokenByExpandZeroDoesNotTrap)
{
    MCFraction broken(1, 2);
    broken.Expand(0);
    EXPECT_EQ(broken.Reduce(), 0u);
    ExpectFraction(broken, 0, 0);
    (void)(broken + MCFraction(1, 3));
    (void)(broken - MCFraction(1, 3));
    (void)(MCFraction(1, 3) + broken);
    (void)(broken / MCFraction(1, 3));
    (void)broken.GetResult();
}

TEST(MCFraction, GcdAndLcm)
{
    struct Row
    {
        unsigned int a, b, gcd, lcm;
    } rows[] = {{12, 18, 6, 36}, {0, 5, 5, 0}, {5, 0, 5, 0}, {0, 0, 0, 0}, {1, 1, 1, 1}, {7, 13, 1, 91}, {8, 4, 4, 8}};
    for (const Row &r : rows)
    {
        EXPECT_EQ(MCFraction::CalcGCD(r.a, r.b), r.gcd) << r.a << "," << r.b;
        EXPECT_EQ(MCFraction::CalcLCM(r.a, r.b), r.lcm) << r.a << "," << r.b;
    }
}

TEST(MCFraction, OrderingComparesFloatQuotients)
{
    EXPECT_TRUE(MCFraction(1, 3) < MCFraction(1, 2));
    EXPECT_TRUE(MCFraction(1, 2) > MCFraction(1, 3));
    EXPECT_TRUE(MCFraction(2, 4) <= MCFraction(1, 2));
    EXPECT_TRUE(MCFraction(2, 4) >= MCFraction(1, 2));
    EXPECT_FALSE(MCFraction(2, 4) < MCFraction(1, 2));
    EXPECT_TRUE(MCFraction(-1, 2) < MCFraction(0, 1));
    // Closer than float precision: equal for ordering purposes.
    EXPECT_FALSE(MCFraction(16777216, 16777217) < MCFraction(1, 1));
    EXPECT_TRUE(MCFraction(16777216, 16777217) >= MCFraction(1, 1));
}
