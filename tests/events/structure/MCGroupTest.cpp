// Staff groups: where a new group goes by the decision table, how groups
// follow staves in and out, and their 4-byte records in the archive, old
// layout included. Also the small bit set beside them.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/MCBitArray.h>
#include <scoremodel/events/structure/MCGroup.h>

#include <gtest/gtest.h>

#include <functional>
#include <tuple>
#include <vector>

namespace
{
using Ranges = std::vector<std::tuple<int, int, int>>; // first, last, kind

Ranges Table(MCGroup::GroupTable &table)
{
    Ranges ranges;
    for (INT_PTR i = 0; i < table.GetSize(); ++i)
        ranges.emplace_back(table[i].first, table[i].last, table[i].Kind());
    return ranges;
}

TEST(MCGroupTest, ANewGroupGoesWhereTheDecisionTableSays)
{
    // Existing primary group 2-5 of kind 0 and 8-9 of kind 1.
    const struct
    {
        int first, last, kind;
        int result;
        bool primary;
    } rows[] = {
        {10, 12, 0, 1, true},  // 4: nothing crosses
        {0, 1, 1, 1, true},    // 4, any kind
        {0, 6, 0, 1, true},    // holds 2-5: nothing crosses
        {6, 7, 2, 1, true},    // 4
        {3, 4, 0, 1, false},   // 0: nested inside 2-5
        {3, 5, 1, 1, false},   // 0, any kind
        {4, 7, 0, 1, true},    // 1: overlaps part of 2-5, kind 0 -> primary
        {4, 7, 1, 0, false},   // 1 with kind 1: refused
        {9, 11, 1, 1, false},  // 3: overlaps part of kind-1 8-9, kind 1 -> secondary
        {7, 8, 0, 0, false},   // 3 with kind 0: refused
        {5, 4, 0, 0, false},   // last below first
        {250, 256, 0, 0, false},
    };
    for (const auto &r : rows)
    {
        SCOPED_TRACE(::testing::Message() << r.first << "-" << r.last << " kind " << r.kind);
        MCGroup group;
        int id = -1;
        ASSERT_EQ(group.GroupTracks(2, 5, 0, id), 1);
        ASSERT_EQ(group.GroupTracks(8, 9, 1, id), 1);
        // A kind-2 record never crosses.
        ASSERT_EQ(group.GroupTracks(3, 12, 2, id), 1);
        const auto primaryBefore = group.GetPrimaryGroup().GetSize();
        const auto secondaryBefore = group.GetSecondaryGroup().GetSize();
        id = -1;
        EXPECT_EQ(group.GroupTracks(r.first, r.last, static_cast<BYTE>(r.kind), id), r.result);
        if (!r.result)
        {
            EXPECT_EQ(group.GetPrimaryGroup().GetSize(), primaryBefore);
            EXPECT_EQ(group.GetSecondaryGroup().GetSize(), secondaryBefore);
            continue;
        }
        int first = 0, last = 0, kind = 0;
        ASSERT_EQ(group.GetGroupInfo(id, first, last, kind), 1);
        EXPECT_EQ(std::make_tuple(first, last, kind), std::make_tuple(r.first, r.last, r.kind));
        const auto &primary = Table(group.GetPrimaryGroup());
        const bool inPrimary = std::find(primary.begin(), primary.end(), std::tuple{r.first, r.last, r.kind}) !=
                               primary.end();
        EXPECT_EQ(inPrimary, r.primary);
    }
}

TEST(MCGroupTest, AGroupThatCrossesPushesTheCrossedOneToTheSecondaryTable)
{
    MCGroup group;
    int a = -1, b = -1;
    ASSERT_EQ(group.GroupTracks(2, 5, 0, a), 1);
    ASSERT_EQ(group.GroupTracks(4, 7, 0, b), 1);
    EXPECT_NE(a, b);
    EXPECT_EQ(Table(group.GetPrimaryGroup()), (Ranges{{4, 7, 0}}));
    EXPECT_EQ(Table(group.GetSecondaryGroup()), (Ranges{{2, 5, 0}}));
    int first = 0, last = 0, kind = 0;
    EXPECT_EQ(group.GetGroupInfo(a, first, last, kind), 1) << "still found by id";
    group.SetBarEntireGroup(a, 1);
    EXPECT_EQ(group.IsBarEntireGroup(a), 1);
    EXPECT_EQ(group.IsBarEntireGroup(b), 0);
    EXPECT_EQ(group.RemoveGroup(a), 1);
    EXPECT_EQ(group.RemoveGroup(a), 0);
    EXPECT_EQ(group.GetGroupInfo(a, first, last, kind), 0);
}

TEST(MCGroupTest, GroupsFollowStavesInAndOut)
{
    MCGroup group;
    int id = -1;
    group.GroupTracks(2, 4, 0, id);
    group.GroupTracks(6, 7, 1, id);
    group.GroupTracks(3, 4, 0, id); // nested: secondary
    const struct
    {
        bool insert;
        int track;
        Ranges primary, secondary;
    } steps[] = {
        {true, 3, {{2, 5, 0}, {7, 8, 1}}, {{4, 5, 0}}},            // inside: grows, behind: moves
        {true, 7, {{2, 5, 0}, {7, 7, 2}, {8, 9, 1}}, {{4, 5, 0}}}, // at a group's start: a group in front
        {false, 7, {{2, 5, 0}, {7, 8, 1}}, {{4, 5, 0}}},           // the one-staff group goes
        {false, 2, {{2, 4, 0}, {6, 7, 1}}, {{3, 4, 0}}},           // the first staff of a group
        {true, 9, {{2, 4, 0}, {6, 7, 1}}, {{3, 4, 0}}},            // behind everything
    };
    for (const auto &s : steps)
    {
        SCOPED_TRACE(::testing::Message() << (s.insert ? "insert " : "remove ") << s.track);
        if (s.insert)
            group.InsertTrack(s.track, 2);
        else
            group.RemoveTrack(s.track);
        EXPECT_EQ(Table(group.GetPrimaryGroup()), s.primary);
        EXPECT_EQ(Table(group.GetSecondaryGroup()), s.secondary);
    }
}

TEST(MCGroupTest, IdsRunOutAfter256)
{
    MCGroup group;
    int id = -1;
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(group.GroupTracks(i, i, 2, id), 1);
    EXPECT_EQ(id, 255);
    EXPECT_EQ(group.GroupTracks(0, 0, 2, id), 0);
    group.RemoveAll();
    EXPECT_EQ(group.GroupTracks(0, 0, 2, id), 1);
    EXPECT_EQ(id, 0);
}

void WithVersion(int version, const std::function<void()> &load)
{
    ECPerformance *header = new ECPerformance;
    header->Ref();
    header->SetVersion(version);
    ECPerformance *previous = ECPerformance::SetActivePerformance(header);
    load();
    ECPerformance::SetActivePerformance(previous);
    header->Unref(1);
}

TEST(MCGroupTest, RecordsAreFourRawBytesAndOldDocumentsGetIdsAndWholeBars)
{
    MCGroup group;
    int id = -1;
    group.GroupTracks(1, 3, 1, id);
    group.GroupTracks(2, 3, 0, id); // secondary
    group.SetBarEntireGroup(id, 1);
    const Bytes bytes = Store([&](CArchive &ar) { group.Serialize(ar); });
    // Count 1 (a WORD), then 1, 3, kind 1 | in use | id 0; count 1, then 2, 3,
    // kind 0 | in use | id 1 << 3 | bar (bit 11).
    const Bytes expected{1, 0, 1, 3, 0x05, 0x00, 1, 0, 2, 3, 0x0C, 0x08};
    EXPECT_EQ(bytes, expected);

    for (int version : {20, 3})
    {
        MCGroup loaded;
        WithVersion(version, [&] { EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { loaded.Serialize(ar); }), bytes.size()); });
        EXPECT_EQ(Table(loaded.GetPrimaryGroup()), (Ranges{{1, 3, 1}}));
        EXPECT_EQ(Table(loaded.GetSecondaryGroup()), (Ranges{{2, 3, 0}}));
        EXPECT_EQ(loaded.IsBarEntireGroup(0), 0);
        EXPECT_EQ(loaded.IsBarEntireGroup(1), 1);
    }
    // Before version 3 ids are handed out in order and every group bars
    // through: here primary 0, then secondary 1 (the primary count plus 0).
    const Bytes old{2, 0, 1, 3, 0xFC, 0x07, 4, 5, 0x04, 0x00, 1, 0, 2, 3, 0xF4, 0x07};
    MCGroup loaded;
    WithVersion(2, [&] { LoadBytes(old, [&](CArchive &ar) { loaded.Serialize(ar); }); });
    int first = 0, last = 0, kind = 0;
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(loaded.GetGroupInfo(i, first, last, kind), 1) << i;
        EXPECT_EQ(loaded.IsBarEntireGroup(i), 1) << i;
    }
    EXPECT_EQ(loaded.GetGroupInfo(2, first, last, kind), 1);
    EXPECT_EQ(first, 2) << "secondary record 0 gets the primary count";
    EXPECT_EQ(last, 3);
}

TEST(MCGroupTest, ATruncatedTableIsAnArchiveError)
{
    const Bytes cut{3, 0, 1, 3, 0x05, 0x00, 2};
    MCGroup loaded;
    EXPECT_THROW(WithVersion(20, [&] { LoadBytes(cut, [&](CArchive &ar) { loaded.Serialize(ar); }); }),
                 CArchiveException);
}

TEST(MCBitArrayTest, BitsLiveInSixteenBitWordsAndGetGivesTheMaskedBit)
{
    MCBitArray bits;
    bits.SetSize(40);
    EXPECT_EQ(bits.GetAll(), 0);
    bits.Set(17);
    bits.Set(39);
    EXPECT_EQ(bits.Get(17), 2u) << "bit 1 of word 1";
    EXPECT_EQ(bits.Get(39), 0x80u);
    EXPECT_EQ(bits.Get(16), 0u);
    EXPECT_EQ(bits.GetAll(), 1);
    MCBitArray copy;
    copy = bits;
    bits.Clear(17);
    EXPECT_EQ(bits.Get(17), 0u);
    EXPECT_EQ(copy.Get(17), 2u) << "the copy has its own words";
    bits.SetSize(20); // bit 39 goes
    bits.SetSize(40);
    EXPECT_EQ(bits.Get(39), 0u);
    copy.ClearAll();
    EXPECT_EQ(copy.GetAll(), 0);
}
} // namespace
