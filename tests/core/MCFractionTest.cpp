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

TEST(MCFraction, ArithmeticNeverReducesAndAZeroDenominatorBecomesOne)
{
    struct Row
    {
        const char *name;
        std::function<MCFraction()> compute;
        int num;
        unsigned int den;
    } rows[] = {
        {"3/0", [] { return MCFraction(3, 0); }, 3, 1},
        {"-3/8 with den set to 0", [] { MCFraction f(-3, 8); f.SetDen(0); return f; }, -3, 1},
        {"1/4 + 1/6 over the lcm", [] { return MCFraction(1, 4) + MCFraction(1, 6); }, 5, 12},
        {"1/2 + 1/2", [] { return MCFraction(1, 2) + MCFraction(1, 2); }, 2, 2},
        {"1/3 - 1/2", [] { return MCFraction(1, 3) - MCFraction(1, 2); }, -1, 6},
        {"-1/2 + 1/4", [] { return MCFraction(-1, 2) + MCFraction(1, 4); }, -1, 4},
        {"2/3 * 3/4", [] { return MCFraction(2, 3) * MCFraction(3, 4); }, 6, 12},
        {"1/2 / 3/4", [] { return MCFraction(1, 2) / MCFraction(3, 4); }, 4, 6},
        {"1/2 / 0 falls to den 1", [] { return MCFraction(1, 2) / MCFraction(0, 1); }, 1, 1},
        {"1/2 / -1/3 unsigned den", [] { return MCFraction(1, 2) / MCFraction(-1, 3); }, 3, 0xFFFFFFFEu},
        {"3/4 * 2", [] { return MCFraction(3, 4) * 2; }, 6, 4},
        {"3/4 / 2", [] { return MCFraction(3, 4) / 2; }, 3, 8},
        {"3/4 / 0 falls to den 1", [] { return MCFraction(3, 4) / 0; }, 3, 1},
    };
    for (const Row &r : rows)
    {
        SCOPED_TRACE(r.name);
        ExpectFraction(r.compute(), r.num, r.den);
    }
}

TEST(MCFraction, ReduceReturnsTheGcdAndExpandByZeroBreaksTheFractionWithoutTrapping)
{
    const std::pair<MCFraction, MCFraction> rows[] = {{{6, 8}, {3, 4}}, {{0, 5}, {0, 1}}, {{12, 12}, {1, 1}}};
    for (auto [f, reduced] : rows)
    {
        const unsigned int den = f.GetDen();
        EXPECT_EQ(f.Reduce(), den / reduced.GetDen());
        ExpectFraction(f, reduced.GetNum(), reduced.GetDen());
    }
    MCFraction broken(1, 2);
    broken.Expand(3);
    ExpectFraction(broken, 3, 6);
    broken.Expand(0);
    ExpectFraction(broken, 0, 0);
    EXPECT_EQ(broken.Reduce(), 0u);
    (void)(broken + MCFraction(1, 3));
    (void)(MCFraction(1, 3) - broken);
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
    EXPECT_TRUE(MCFraction(2, 4) <= MCFraction(1, 2));
    EXPECT_FALSE(MCFraction(2, 4) < MCFraction(1, 2));
    EXPECT_TRUE(MCFraction(-1, 2) < MCFraction(0, 1));
    EXPECT_FLOAT_EQ(static_cast<float>(MCFraction(-3, 8)), -0.375f);
    // Closer than float precision: equal for ordering purposes.
    EXPECT_FALSE(MCFraction(16777216, 16777217) < MCFraction(1, 1));
    EXPECT_TRUE(MCFraction(16777216, 16777217) >= MCFraction(1, 1));
}
