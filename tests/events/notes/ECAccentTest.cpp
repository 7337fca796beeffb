// Accents: the finger ranges, which decide whether a chord may carry the
// mark, and the type byte through copy, comparison and the archive.
#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

#include <gtest/gtest.h>

namespace
{
ECAccent *MakeAccent(BYTE type)
{
    auto *accent = new ECAccent;
    accent->Ref();
    accent->SetAccentType(type);
    return accent;
}

enum Range
{
    None,
    Gigit,
    Cycled,
    Pima
};
} // namespace

TEST(ECAccentTest, FingerRangesDecideTheChordParent)
{
    struct Case
    {
        BYTE type;
        Range range;
    };
    // The edges of each range and their neighbours.
    const Case cases[] = {{0x00, None},   {0x59, None},   {0x5A, Gigit}, {0x5F, Gigit}, {0x60, Cycled},
                          {0x65, Cycled}, {0x66, Pima},   {0x69, Pima},  {0x6A, None},  {0xFF, None}};
    for (const Case &c : cases)
    {
        SCOPED_TRACE(static_cast<int>(c.type));
        ECAccent *accent = MakeAccent(c.type);
        EXPECT_EQ(accent->IsFingerTypeGigit() != 0, c.range == Gigit);
        EXPECT_EQ(accent->IsFingerTypeCycledGigit() != 0, c.range == Cycled);
        EXPECT_EQ(accent->IsFingerTypePima() != 0, c.range == Pima);
        EXPECT_EQ(accent->IsFingerType() != 0, c.range != None);

        CArray<int, int> parents;
        EXPECT_EQ(accent->GetParentTypes(parents), 1);
        bool chordAllowed = false;
        for (int i = 0; i < parents.GetSize(); ++i)
            chordAllowed |= parents[i] == EVENT_ID_CHORD;
        EXPECT_EQ(chordAllowed, c.range == None) << "a finger mark sits on one note";
        accent->Unref(1);
    }
}

TEST(ECAccentTest, OnlyAFingerOfTheSameRangeReplacesAnother)
{
    ECAccent *plain = MakeAccent(0x5A);
    EXPECT_TRUE(plain->IsReplaceableFinger(0x5F));
    EXPECT_FALSE(plain->IsReplaceableFinger(0x66)) << "plain finger against p, i, m, a";
    EXPECT_FALSE(plain->IsReplaceableFinger(0x60));
    ECAccent *accent = MakeAccent(0x10);
    EXPECT_FALSE(accent->IsReplaceableFinger(0x10)) << "two accents that are no fingers";
    plain->Unref(1);
    accent->Unref(1);
}

TEST(ECAccentTest, TheTypeTravelsThroughCopyAndTheArchive)
{
    ECAccent *src = MakeAccent(0x67);
    ECAccent *dst = MakeAccent(0);
    EXPECT_FALSE(*dst == *src);
    dst->Copy(src);
    EXPECT_TRUE(*dst == *src);

    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        ar << src;
        ar.Close();
    }
    mem.SeekToBegin();
    ECAccent *loaded = nullptr;
    {
        CArchive ar(&mem, CArchive::load);
        ar >> loaded;
    }
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetAccentType(), 0x67);
    loaded->Ref();
    loaded->Unref(1);
    src->Unref(1);
    dst->Unref(1);
}
