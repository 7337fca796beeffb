#include <scoremodel/core/FCBool.h>
#include <scoremodel/core/FCByte.h>
#include <scoremodel/core/FCChar.h>
#include <scoremodel/core/FCColor.h>
#include <scoremodel/core/FCDWord.h>
#include <scoremodel/core/FCFloat.h>
#include <scoremodel/core/FCInt.h>
#include <scoremodel/core/FCLong.h>
#include <scoremodel/core/FCPoint.h>
#include <scoremodel/core/FCRect.h>
#include <scoremodel/core/FCSize.h>
#include <scoremodel/core/FCTime.h>
#include <scoremodel/core/FCWord.h>

#include <gtest/gtest.h>

#include <climits>
#include <memory>

TEST(FCBase, DirtyAndOverrideAreIndependentAndSurviveValueChanges)
{
    FCLong field(3);
    EXPECT_FALSE(field.IsDirty());
    EXPECT_FALSE(field.IsOverride());
    field.SetDirty();
    EXPECT_TRUE(field.IsDirty());
    EXPECT_FALSE(field.IsOverride());
    field.SetOverride(1);
    field.SetDirty(0);
    EXPECT_FALSE(field.IsDirty());
    EXPECT_TRUE(field.IsOverride());

    field = 7L;
    field.SetValue(8);
    field += 2L;
    EXPECT_EQ(field.GetValue(), 10);
    EXPECT_TRUE(field.IsOverride()) << "changing the value must not touch the flags";

    FCLong copy(field);
    EXPECT_TRUE(copy.IsOverride());
    EXPECT_EQ(copy.GetValue(), 10);

    std::unique_ptr<FCBase> owned(new FCTime(MCTime(1, 2, 3, 480)));
    owned->SetDirty();
    EXPECT_TRUE(owned->IsDirty()); // deleting through the base frees the time's record
}

TEST(FCBase, ByteBitsCoverExactlyZeroToSeven)
{
    FCByte b(0xA5); // 1010 0101
    const int expected[8] = {1, 0, 1, 0, 0, 1, 0, 1};
    for (int bit = 0; bit < 8; ++bit)
        EXPECT_EQ(b.GetBitValue(bit), expected[bit]) << "bit " << bit;
    EXPECT_EQ(b.GetBitValue(8), 0);
    EXPECT_EQ(b.GetBitValue(-1), 0);

    b.SetBitValue(1, 1);
    b.SetBitValue(0, 0);
    b.SetBitValue(7, 0);
    b.SetBitValue(6, 0x80); // any non-zero sets
    EXPECT_EQ(b.GetValue(), 0x66);
    b.SetBitValue(8, 1);
    b.SetBitValue(-1, 1);
    EXPECT_EQ(b.GetValue(), 0x66) << "a bit outside the byte changes nothing";
}

TEST(FCBase, IntHalvesAndBitsKeepTheOtherParts)
{
    struct Row
    {
        int value;
        WORD low, high;
    } rows[] = {{0x12345678, 0x5678, 0x1234}, {-1, 0xFFFF, 0xFFFF}, {0, 0, 0}, {INT_MIN, 0, 0x8000}, {0xFFFF, 0xFFFF, 0}};
    for (const Row &r : rows)
    {
        FCInt f(r.value);
        EXPECT_EQ(f.GetLowValue(), r.low) << std::hex << r.value;
        EXPECT_EQ(f.GetHighValue(), r.high) << std::hex << r.value;
    }

    FCInt f(0x12345678);
    f.SetLowValue(0xBEEF);
    EXPECT_EQ(f.GetValue(), 0x1234BEEF);
    f.SetHighValue(0xFFFF);
    EXPECT_EQ(static_cast<unsigned int>(f.GetValue()), 0xFFFFBEEFu);

    FCInt bits(0);
    bits.SetBitValue(31, 1);
    bits.SetBitValue(0, 1);
    EXPECT_EQ(static_cast<unsigned int>(bits.GetValue()), 0x80000001u);
    EXPECT_EQ(bits.GetBitValue(31), 1);
    EXPECT_EQ(bits.GetBitValue(30), 0);
    EXPECT_EQ(bits.GetBitValue(32), 0);
    bits.SetBitValue(32, 1);
    bits.SetBitValue(-1, 1);
    EXPECT_EQ(static_cast<unsigned int>(bits.GetValue()), 0x80000001u);
    bits.SetBitValue(31, 0);
    EXPECT_EQ(bits.GetValue(), 1);
}

TEST(FCBase, IntegerArithmeticWrapsAndNeverTrapsOnZeroOrMinusOne)
{
    FCWord w(0xFFFF);
    ++w;
    EXPECT_EQ(w.GetValue(), 0);
    w = WORD(0xFFFF);
    w *= WORD(0xFFFF);
    EXPECT_EQ(w.GetValue(), 1);
    w = WORD(10);
    w /= WORD(0);
    EXPECT_EQ(w.GetValue(), 10) << "dividing by zero leaves the value";
    w %= WORD(0);
    EXPECT_EQ(w.GetValue(), 10);
    EXPECT_EQ(w % WORD(3), 1);
    EXPECT_EQ(w / WORD(3), 3);
    EXPECT_EQ(w - WORD(11), 0xFFFF);

    FCLong l(LONG_MIN);
    EXPECT_EQ(l / -1L, LONG_MIN);
    EXPECT_EQ(l % -1L, 0);
    EXPECT_EQ(l - 1L, LONG_MAX);
    l = 7L;
    EXPECT_EQ(l++, 7);
    EXPECT_EQ(l.GetValue(), 8);
    EXPECT_EQ(l--, 8);
    l -= FCLong(10);
    EXPECT_EQ(l.GetValue(), -3);
    EXPECT_EQ(l * FCLong(-2), 6);

    FCDWord d(5);
    d -= 6ul;
    EXPECT_EQ(d.GetValue(), ~0ul);

    FCChar c(L'a');
    c += wchar_t(2);
    EXPECT_EQ(c.GetValue(), L'c');
    EXPECT_TRUE(c > L'b');

    FCFloat f(1.5f);
    f *= 2.0f;
    EXPECT_FLOAT_EQ(f.GetValue(), 3.0f);
    f /= 0.0f;
    EXPECT_FLOAT_EQ(f.GetValue(), 3.0f);
    EXPECT_FLOAT_EQ(f / FCFloat(2.0f), 1.5f);
}

TEST(FCBase, ComparisonsLookAtTheValueOnly)
{
    FCLong a(3), b(3);
    b.SetDirty();
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_TRUE(a <= b && a >= b && !(a < b) && !(a > b));
    EXPECT_TRUE(a < 4L && a > 2L && a == 3L && a != 4L);

    FCColor red(RGB(255, 0, 0)), blue(RGB(0, 0, 255));
    EXPECT_TRUE(red < blue);
    EXPECT_TRUE(red == 0xFFul);

    FCByte lo(1), hi(200);
    EXPECT_TRUE(lo < hi);
    FCInt i(-1);
    EXPECT_TRUE(i < 0);

    FCBool t(2), f(0);
    EXPECT_EQ(!t, 0);
    EXPECT_EQ(!f, 1);
    EXPECT_EQ(t & 1, 0) << "& is bitwise on the stored int";
    EXPECT_EQ(t & FCBool(3), 2);
    EXPECT_EQ(f || t, 1);
    EXPECT_EQ(f || 0, 0);
    EXPECT_FALSE(t == 1) << "equality compares the stored ints";
    EXPECT_TRUE(t == FCBool(2));
    EXPECT_TRUE(f != t);

    EXPECT_TRUE(FCPoint(CPoint(1, 2)) == CPoint(1, 2));
    EXPECT_TRUE(FCPoint(CPoint(1, 2)) != FCPoint(CPoint(2, 1)));
    EXPECT_TRUE(FCRect(CRect(0, 0, 4, 4)) == FCRect(CRect(0, 0, 4, 4)));
    EXPECT_TRUE(FCRect(CRect(0, 0, 4, 4)) != CRect(0, 0, 4, 5));
    EXPECT_TRUE(FCSize(CSize(3, 4)) == CSize(3, 4));
    EXPECT_FALSE(FCSize(CSize(3, 4)) == FCSize());
}

TEST(FCBase, TimeFieldsCompareByTheTimeRules)
{
    MCTime clock(2.0f);
    clock.SetMode(MCTime::TimeModeClock);
    FCTime t(MCTime(2.0f));
    EXPECT_TRUE(t == clock) << "clock and normalized times are not told apart";
    EXPECT_TRUE(t < MCTime(3.0f));
    EXPECT_TRUE(FCTime(MCTime(2, 0, 0, 480)) < FCTime(MCTime(1, 3, 0, 480)));
    EXPECT_TRUE(FCTime(MCTime(0, 0, 0, 480)) >= MCTime::TimeZero());

    FCTime copy(t);
    copy = MCTime(1, 1, 1, 96);
    FCTime other(copy);
    ASSERT_NE(other.GetValue().GetBarPulseTick(), copy.GetValue().GetBarPulseTick());
    EXPECT_TRUE(other == copy);
    EXPECT_EQ(t.GetValue().GetMode(), MCTime::TimeModeNormalized);
    EXPECT_TRUE(FCTime() == MCTime::TimeZero());
}
