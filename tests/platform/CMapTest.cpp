#include <scoremodel/platform/CMap.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace
{
using IntMap = CMap<int, int, int, int>;

template <class MAP, class KEY, class VALUE>
std::vector<std::pair<KEY, VALUE>> Walk(const MAP &map)
{
    std::vector<std::pair<KEY, VALUE>> out;
    for (POSITION pos = map.GetStartPosition(); pos;)
    {
        KEY key{};
        VALUE value{};
        map.GetNextAssoc(pos, key, value);
        out.emplace_back(key, value);
    }
    return out;
}

struct Payload
{
    int m_nWeight = 0;
};
class TestItem : public Payload, public CObject
{
public:
    explicit TestItem(int n) { m_nWeight = n; }
};
} // namespace

TEST(CMap, SetAtReplacesLookupMissesLeaveTheValueAndRemoveKeyReportsPresence)
{
    IntMap map;
    map.SetAt(1, 10);
    map.SetAt(1, 11);
    int value = -5;
    EXPECT_TRUE(map.Lookup(1, value));
    EXPECT_EQ(value, 11);
    value = -5;
    EXPECT_FALSE(map.Lookup(3, value));
    EXPECT_EQ(value, -5);
    map[7] += 4; // a new key starts value-initialised
    EXPECT_EQ(map.PLookup(7)->value, 4);
    EXPECT_EQ(map.PLookup(8), nullptr);
    EXPECT_TRUE(map.RemoveKey(1));
    EXPECT_FALSE(map.RemoveKey(1));
    EXPECT_EQ(map.GetCount(), 1);
    EXPECT_FALSE(IntMap().RemoveKey(1));
}

TEST(CMap, WalkVisitsEveryKeyOnceInInsertionOrderAcrossTableGrowth)
{
    IntMap map;
    std::vector<std::pair<int, int>> expected;
    for (int i = 0; i < 3000; i++)
    {
        int key = (i * 7919) % 100003 - 50000; // negative and positive, unordered
        map[key] = i;
        expected.emplace_back(key, i);
    }
    map[expected[10].first] = -1; // a replaced value keeps its place
    expected[10].second = -1;
    EXPECT_EQ((Walk<IntMap, int, int>(map)), expected);
    EXPECT_GT(map.GetHashTableSize(), 17u);
}

TEST(CMap, RemovingTheAssociationJustReturnedDuringAWalkIsSafe)
{
    IntMap map;
    for (int i = 0; i < 500; i++)
        map[i] = i * 2;
    int visited = 0;
    for (POSITION pos = map.GetStartPosition(); pos;)
    {
        int key, value;
        map.GetNextAssoc(pos, key, value);
        ASSERT_EQ(value, key * 2);
        visited++;
        if (key % 2)
        {
            EXPECT_TRUE(map.RemoveKey(key));
        }
    }
    EXPECT_EQ(visited, 500);
    EXPECT_EQ(map.GetCount(), 250);
    for (const auto &[key, value] : Walk<IntMap, int, int>(map))
    {
        EXPECT_EQ(key % 2, 0);
    }
}

TEST(CMap, KeysAddedDuringAWalkAreReachedAndValueReferencesSurviveGrowth)
{
    IntMap map;
    map[1] = 1;
    map[2] = 2;
    int &first = map[1];
    POSITION pos = map.GetStartPosition();
    int key, value;
    map.GetNextAssoc(pos, key, value);
    for (int i = 100; i < 1100; i++) // rebuilds the bucket table several times
        map[i] = i;
    first = 42;
    int visited = 1;
    while (pos)
    {
        map.GetNextAssoc(pos, key, value);
        visited++;
    }
    EXPECT_EQ(visited, 1002);
    EXPECT_TRUE(map.Lookup(1, value));
    EXPECT_EQ(value, 42);
}

TEST(CMap, InitHashTableOnAFilledMapAndRemoveAllKeepTheMapUsable)
{
    IntMap map;
    for (int i = 0; i < 100; i++)
        map[i] = i;
    map.InitHashTable(3);
    int value;
    for (int i = 0; i < 100; i++)
        ASSERT_TRUE(map.Lookup(i, value) && value == i) << i;
    map.RemoveAll();
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    map[5] = 6;
    EXPECT_EQ((Walk<IntMap, int, int>(map)), (std::vector<std::pair<int, int>>{{5, 6}}));
}

TEST(CMap, GetNextAssocAtTheEndThrowsInsteadOfReadingFreedMemory)
{
    IntMap map;
    map[1] = 1;
    POSITION pos = map.GetStartPosition();
    int key, value;
    map.GetNextAssoc(pos, key, value);
    EXPECT_EQ(pos, nullptr);
    EXPECT_THROW(map.GetNextAssoc(pos, key, value), CInvalidArgException);
    pos = BEFORE_START_POSITION;
    map.GetNextAssoc(pos, key, value);
    EXPECT_EQ(key, 1);
}

TEST(CMap, TextKeysCompareByContentNotByAddress)
{
    char stored[] = "violin";
    char probe[] = "violin";
    CMap<const char *, const char *, int, int> narrow;
    narrow[stored] = 3;
    int value = 0;
    EXPECT_TRUE(narrow.Lookup(probe, value));
    EXPECT_EQ(value, 3);
    EXPECT_FALSE(narrow.Lookup("viola", value));
    narrow[nullptr] = 9; // null is the empty text
    EXPECT_TRUE(narrow.Lookup("", value));
    EXPECT_EQ(value, 9);

    CMapStringToPtr wide;
    int a = 0;
    wide.SetAt(L"cello", &a);
    void *p = nullptr;
    std::wstring probeWide = L"cello";
    EXPECT_TRUE(wide.Lookup(probeWide.c_str(), p));
    EXPECT_EQ(p, &a);

}

TEST(CTypedPtrMap, KeysAndValuesComeBackAsTheirOwnTypes)
{
    TestItem one(1), two(2);
    CTypedPtrMap<CMapPtrToPtr, TestItem *, TestItem *> partners;
    partners.SetAt(&one, &two);
    partners[&two] = &one;
    TestItem *p = nullptr;
    EXPECT_TRUE(partners.Lookup(&one, p));
    EXPECT_EQ(p, &two);
    EXPECT_EQ(partners[&two]->m_nWeight, 1);
    std::map<TestItem *, TestItem *> seen;
    for (POSITION pos = partners.GetStartPosition(); pos;)
    {
        TestItem *key, *value;
        partners.GetNextAssoc(pos, key, value);
        seen[key] = value;
    }
    EXPECT_EQ(seen, (std::map<TestItem *, TestItem *>{{&one, &two}, {&two, &one}}));
}
