// The untyped list: whole lists added at either end (a list to itself too),
// removal by position, and a node that cannot be made.
#include <scoremodel/events/base/MCPtrList.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
int g_items[8];
void *Item(int i)
{
    return &g_items[i];
}

MCPtrList::Node *NodeAt(POSITION pos)
{
    return reinterpret_cast<MCPtrList::Node *>(pos);
}

// The items in order, read forward and checked against a backward read and
// the count, so a broken link in either direction shows.
std::vector<int> Items(const MCPtrList &list)
{
    std::vector<int> forward, backward;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        forward.push_back(static_cast<int>(static_cast<int *>(list.GetNext(pos)) - g_items));
    for (POSITION pos = list.GetTailPosition(); pos;)
        backward.insert(backward.begin(), static_cast<int>(static_cast<int *>(list.GetPrev(pos)) - g_items));
    EXPECT_EQ(forward, backward) << "the backward links disagree";
    EXPECT_EQ(static_cast<int>(forward.size()), list.GetCount());
    if (!forward.empty())
    {
        EXPECT_EQ(NodeAt(list.GetHeadPosition())->pPrev, nullptr);
        EXPECT_EQ(NodeAt(list.GetTailPosition())->pNext, nullptr);
    }
    return forward;
}

void Fill(MCPtrList &list, std::initializer_list<int> items)
{
    for (int i : items)
        list.AddTail(Item(i));
}

// A list whose next node can be refused, as when memory runs out.
class RefusingList : public MCPtrList
{
public:
    int m_refuseAfter = -1; // nodes still granted; -1: all

protected:
    Node *NewNode(Node *pPrev, Node *pNext, void *element) override
    {
        if (m_refuseAfter == 0)
            return nullptr;
        if (m_refuseAfter > 0)
            --m_refuseAfter;
        return MCPtrList::NewNode(pPrev, pNext, element);
    }
};
} // namespace

TEST(MCPtrListTest, WholeListsJoinAtEitherEndInTheirOrderAndAListJoinsItself)
{
    MCPtrList list, other, empty;
    Fill(list, {1, 2});
    Fill(other, {5, 6, 7});
    list.AddTail(&other);
    EXPECT_EQ(Items(list), (std::vector<int>{1, 2, 5, 6, 7}));
    list.AddHead(&other);
    EXPECT_EQ(Items(list), (std::vector<int>{5, 6, 7, 1, 2, 5, 6, 7}));
    EXPECT_EQ(Items(other), (std::vector<int>{5, 6, 7})) << "the added list is left as it was";
    list.AddHead(&empty);
    list.AddTail(&empty);
    list.AddHead(static_cast<MCPtrList *>(nullptr));
    list.AddTail(static_cast<MCPtrList *>(nullptr));
    EXPECT_EQ(list.GetCount(), 8);

    MCPtrList self;
    Fill(self, {1, 2, 3});
    self.AddTail(&self);
    EXPECT_EQ(Items(self), (std::vector<int>{1, 2, 3, 1, 2, 3}));
    MCPtrList selfHead;
    Fill(selfHead, {1, 2, 3});
    selfHead.AddHead(&selfHead);
    EXPECT_EQ(Items(selfHead), (std::vector<int>{1, 2, 3, 1, 2, 3}));

    MCPtrList into;
    into.AddHead(&other);
    EXPECT_EQ(Items(into), (std::vector<int>{5, 6, 7})) << "into an empty list";
}

TEST(MCPtrListTest, RemoveAtRelinksTheNeighboursWhereverTheNodeIs)
{
    const struct
    {
        int index;
        std::vector<int> left;
    } cases[] = {{0, {2, 3, 4}}, {1, {1, 3, 4}}, {3, {1, 2, 3}}};
    for (const auto &c : cases)
    {
        SCOPED_TRACE(c.index);
        MCPtrList list;
        Fill(list, {1, 2, 3, 4});
        list.RemoveAt(list.FindIndex(c.index));
        EXPECT_EQ(Items(list), c.left);
        list.RemoveAt(nullptr);
        EXPECT_EQ(list.GetCount(), 3);
    }
    MCPtrList one;
    Fill(one, {1});
    one.RemoveAt(one.GetHeadPosition());
    EXPECT_TRUE(one.IsEmpty());
    EXPECT_EQ(one.GetHeadPosition(), nullptr);
    EXPECT_EQ(one.GetTailPosition(), nullptr);
    one.AddTail(Item(2));
    EXPECT_EQ(Items(one), (std::vector<int>{2}));
}

TEST(MCPtrListTest, ANodeThatCannotBeMadeLeavesTheListAsItWas)
{
    RefusingList list;
    Fill(list, {1, 2});
    list.m_refuseAfter = 0;
    EXPECT_EQ(list.AddHead(Item(3)), nullptr);
    EXPECT_EQ(list.AddTail(Item(3)), nullptr);
    EXPECT_EQ(list.InsertBefore(list.GetTailPosition(), Item(3)), nullptr);
    EXPECT_EQ(list.InsertAfter(list.GetHeadPosition(), Item(3)), nullptr);
    EXPECT_EQ(Items(list), (std::vector<int>{1, 2}));

    // A whole list added while nodes run out: what was made stays linked.
    MCPtrList other;
    Fill(other, {5, 6, 7});
    list.m_refuseAfter = 2;
    list.AddTail(&other);
    EXPECT_EQ(Items(list), (std::vector<int>{1, 2, 5, 6}));
    list.m_refuseAfter = 1;
    list.AddHead(&other);
    EXPECT_EQ(Items(list), (std::vector<int>{7, 1, 2, 5, 6}));
}
