#include <scoremodel/core/FCBool.h>
#include <scoremodel/core/FCByte.h>
#include <scoremodel/core/FCFloat.h>
#include <scoremodel/core/FCInt.h>
#include <scoremodel/core/FCLong.h>
#include <scoremodel/core/FCRect.h>
#include <scoremodel/core/FCTime.h>
#include <scoremodel/core/FCWord.h>

#include <gtest/gtest.h>

#include <climits>
#include <memory>

TEST(FCBase, DirtyAndOverrideAreIndependentAndSurviveValueChanges)
{
    FCLong field(3);
    field.SetDirty();
    EXPECT_TRUE(field.IsDirty());
    EXPECT_FALSE(field.IsOverride());
    field.SetOverride(1);
    field.SetDirty(0);
    field = 7L;
    field += 2L;
    EXPECT_EQ(field.GetValue(), 9);
    EXPECT_FALSE(field.IsDirty());
    EXPECT_TRUE(FCLong(field).IsOverride()) << "changing the value or copying keeps the flags";

    std::unique_ptr<FCBase> owned(new FCTime(MCTime(1, 2, 3, 480)));
    owned->SetDirty(); // deleting through the base frees the time's record
}

TEST(FCBase, ByteAndIntBitsCoverExactlyTheirWidth)
{
    FCByte b(0xA5); // 1010 0101
    for (int bit = -1; bit <= 8; ++bit)
        EXPECT_EQ(b.GetBitValue(bit), bit >= 0 && bit < 8 ? (0xA5 >> bit) & 1 : 0) << "bit " << bit;
    b.SetBitValue(1, 1);
    b.SetBitValue(0, 0);
    b.SetBitValue(7, 0);
    b.SetBitValue(6, 0x80); // any non-zero sets
    b.SetBitValue(8, 1);
    b.SetBitValue(-1, 1);
    EXPECT_EQ(b.GetValue(), 0x66) << "a bit outside the byte changes nothing";

    FCInt bits(0);
    bits.SetBitValue(31, 1);
    bits.SetBitValue(0, 1);
    bits.SetBitValue(32, 1);
    bits.SetBitValue(-1, 1);
    EXPECT_EQ(static_cast<unsigned int>(bits.GetValue()), 0x80000001u);
    EXPECT_EQ(bits.GetBitValue(31), 1);
    EXPECT_EQ(bits.GetBitValue(32), 0);
}

TEST(FCBase, IntHalvesAreTheSixteenBitWordsAndSettingOneKeepsTheOther)
{
    FCInt f(INT_MIN);
    EXPECT_EQ(f.GetLowValue(), 0);
    EXPECT_EQ(f.GetHighValue(), 0x8000);
    f = 0x12345678;
    EXPECT_EQ(f.GetLowValue(), 0x5678);
    EXPECT_EQ(f.GetHighValue(), 0x1234);
    f.SetLowValue(0xBEEF);
    EXPECT_EQ(f.GetValue(), 0x1234BEEF);
    f.SetHighValue(0xFFFF);
    EXPECT_EQ(static_cast<unsigned int>(f.GetValue()), 0xFFFFBEEFu);
}

TEST(FCBase, IntegerArithmeticWrapsAndNeverTrapsOnZeroOrMinusOne)
{
    FCWord w(0xFFFF);
    ++w;
    EXPECT_EQ(w.GetValue(), 0);
    w = WORD(10);
    w /= WORD(0);
    w %= WORD(0);
    EXPECT_EQ(w.GetValue(), 10) << "dividing by zero leaves the value";
    EXPECT_EQ(w - WORD(11), 0xFFFF);

    FCLong l(LONG_MIN);
    EXPECT_EQ(l / -1L, LONG_MIN);
    EXPECT_EQ(l % -1L, 0);
    EXPECT_EQ(l - 1L, LONG_MAX);

    FCFloat f(3.0f);
    f /= 0.0f;
    EXPECT_FLOAT_EQ(f.GetValue(), 3.0f);
}

TEST(FCBase, ComparisonsLookAtTheStoredValueOnly)
{
    FCLong a(3), b(3);
    b.SetDirty();
    EXPECT_TRUE(a == b && a <= b && a >= b && !(a < b) && !(a > b) && !(a != b));

    FCBool t(2), f(0);
    EXPECT_EQ(!t, 0);
    EXPECT_EQ(t & 1, 0) << "& is bitwise on the stored int";
    EXPECT_EQ(f || t, 1);
    EXPECT_FALSE(t == 1) << "equality compares the stored ints";

    EXPECT_TRUE(FCRect(CRect(0, 0, 4, 4)) != CRect(0, 0, 4, 5));

    MCTime clock(2.0f);
    clock.SetMode(MCTime::TimeModeClock);
    EXPECT_TRUE(FCTime(MCTime(2.0f)) == clock) << "clock and normalized times are not told apart";
    EXPECT_TRUE(FCTime(MCTime(2, 0, 0, 480)) < FCTime(MCTime(1, 3, 0, 480))) << "bar/pulse/tick rules apply";
    FCTime bpt(MCTime(1, 1, 1, 96));
    FCTime copy(bpt);
    ASSERT_NE(copy.GetValue().GetBarPulseTick(), bpt.GetValue().GetBarPulseTick());
    EXPECT_TRUE(copy == bpt);
}
