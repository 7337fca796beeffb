// Accents: the finger ranges, which decide whether a chord may carry the
// mark, and the type byte through copy, comparison and the archive.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/notes/ECAccent.h>

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
    struct Case
    {
        BYTE have, incoming;
        bool replaces;
    };
    // Within each range at its edges, across neighbouring ranges, and two
    // accents that are no fingers.
    const Case cases[] = {{0x5A, 0x5F, true},  {0x60, 0x65, true},  {0x69, 0x66, true},  {0x5A, 0x66, false},
                          {0x5F, 0x60, false}, {0x65, 0x66, false}, {0x69, 0x6A, false}, {0x10, 0x10, false}};
    for (const Case &c : cases)
    {
        SCOPED_TRACE(::testing::Message() << std::hex << int(c.have) << " by " << int(c.incoming));
        ECAccent *accent = MakeAccent(c.have);
        EXPECT_EQ(accent->IsReplaceableFinger(c.incoming) != 0, c.replaces);
        accent->Unref(1);
    }
}

TEST(ECAccentTest, TheTypeTravelsThroughCopyAndTheArchive)
{
    ECAccent *src = MakeAccent(0x67);
    ECAccent *dst = MakeAccent(0);
    EXPECT_FALSE(*dst == *src);
    dst->Copy(src);
    EXPECT_TRUE(*dst == *src);

    ECAccent *loaded = LoadObject<ECAccent>(Store([&](CArchive &ar) { ar << src; }));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetAccentType(), 0x67);
    loaded->Ref();
    loaded->Unref(1);
    src->Unref(1);
    dst->Unref(1);
}
