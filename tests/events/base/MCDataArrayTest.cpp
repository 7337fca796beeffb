// The attachment array: its size rules and the type/slot tables.
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/MCDataArray.h>
#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

TEST(MCDataArrayTest, SizeRulesKeepSurvivorsAndZeroNewSlots)
{
    DCBase x, y;
    MCDataArray a;
    EXPECT_EQ(a.GetSize(), 2) << "a new array has two empty slots";
    for (int i : {-1, 0, 1, 2})
        EXPECT_EQ(a.GetAt(i), nullptr) << "slot " << i << ", outside the range too";
    a.SetAt(0, &x);
    a.SetAt(1, &y);
    a.SetSize(5);
    EXPECT_EQ(a.GetAt(0), &x);
    EXPECT_EQ(a.GetAt(1), &y);
    EXPECT_EQ(a.GetAt(4), nullptr);
    a.SetSize(1);
    EXPECT_EQ(a.GetAt(0), &x);
    EXPECT_EQ(a.GetAt(1), nullptr);
    a.SetSize(1000);
    EXPECT_EQ(a.GetSize(), 255) << "a BYTE size holds 255 slots at most";
    a.SetSize(-4);
    EXPECT_EQ(a.GetSize(), 0);
}

TEST(MCDataArrayTest, GrowingAndOutOfRangeWrites)
{
    DCBase x;
    MCDataArray a;
    a.SetAt(7, &x);
    EXPECT_EQ(a.GetSize(), 2) << "SetAt never grows";
    a.SetAtGrow(7, &x);
    EXPECT_EQ(a.GetSize(), 8);
    EXPECT_EQ(a.GetAt(7), &x);
    EXPECT_EQ(a.Add(&x), 8);
    a.SetAtGrow(255, &x);
    EXPECT_EQ(a.GetSize(), 9) << "slot 255 cannot exist";
    EXPECT_THROW(a.ElementAt(9), CInvalidArgException);
    a[3] = &x;
    EXPECT_EQ(a.GetAt(3), &x);
    a.RemoveAll();
    EXPECT_EQ(a.GetSize(), 0);
    a.SetSize(255);
    EXPECT_EQ(a.Add(&x), -1) << "a full array refuses";
}

TEST(MCDataArrayTest, TypeAndSlotTablesAreInverse)
{
    const int slotOfType[8] = {0, 3, 1, 5, 2, 4, 6, 7};
    for (int type = 0; type < 8; ++type)
    {
        EXPECT_EQ(MCDataArray::TypeToIndex(type), slotOfType[type]);
        EXPECT_EQ(MCDataArray::IndexToViewCode(MCDataArray::TypeToIndex(type)), type);
    }
    EXPECT_EQ(MCDataArray::TypeToIndex(8), 0);
    EXPECT_EQ(MCDataArray::TypeToIndex(200), 0);
    EXPECT_EQ(MCDataArray::IndexToViewCode(8), 0);
    EXPECT_EQ(MCDataArray::IndexToViewCode(-1), 0);
}
