#include <scoremodel/events/base/MCObList.h>
#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/platform/CTypedPtrList.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
// Its CObject part sits behind another base, so a pointer converted by
// reinterpretation instead of static_cast comes back wrong.
struct Payload
{
    int m_nWeight = 0;
};
class ListTestItem : public Payload, public CObject
{
    DECLARE_DYNAMIC(ListTestItem)

public:
    explicit ListTestItem(int n = 0) { m_nWeight = n; }
};
IMPLEMENT_DYNAMIC(ListTestItem, CObject)

class ListTestOther : public CObject
{
    DECLARE_DYNAMIC(ListTestOther)
};
IMPLEMENT_DYNAMIC(ListTestOther, CObject)

template <class LIST>
std::vector<int> Weights(const LIST &list)
{
    std::vector<int> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos)->m_nWeight);
    return out;
}

// Over the model's lists of untyped pointers and of objects.
template <class BASE>
class CTypedPtrListTest : public ::testing::Test
{
protected:
    using List = CTypedPtrList<BASE, ListTestItem *>;
    ListTestItem m_items[6] = {ListTestItem(0), ListTestItem(1), ListTestItem(2),
                               ListTestItem(3), ListTestItem(4), ListTestItem(5)};
};
using Bases = ::testing::Types<MCPtrList, MCObList>;
TYPED_TEST_SUITE(CTypedPtrListTest, Bases);
} // namespace

TYPED_TEST(CTypedPtrListTest, ElementsComeBackAsTheSamePointersThroughEveryOperation)
{
    ListTestItem *items = this->m_items;
    typename TestFixture::List list;
    POSITION two = list.AddTail(&items[2]);
    list.AddHead(&items[0]);
    list.InsertBefore(two, &items[1]);
    list.InsertAfter(two, &items[4]);
    list.AddTail(&items[5]);
    EXPECT_EQ(Weights(list), (std::vector<int>{0, 1, 2, 4, 5}));
    EXPECT_EQ(list.GetHead(), &items[0]);
    EXPECT_EQ(list.GetTail(), &items[5]);
    EXPECT_EQ(list.Find(&items[2]), two);
    EXPECT_EQ(list.Find(&items[2], two), nullptr);
    list.SetAt(two, &items[3]);
    EXPECT_EQ(list.GetAt(two), &items[3]);

    std::vector<ListTestItem *> backward;
    for (POSITION pos = list.GetTailPosition(); pos;)
        backward.push_back(list.GetPrev(pos));
    EXPECT_EQ(backward, (std::vector<ListTestItem *>{&items[5], &items[4], &items[3], &items[1], &items[0]}));
    EXPECT_EQ(list.RemoveHead(), &items[0]);
    EXPECT_EQ(list.RemoveTail(), &items[5]);
    EXPECT_EQ(list.GetCount(), 3);
    list.RemoveAll();
}

TEST(CTypedPtrList, ClassFilteredWalksSkipOtherClassesAndTypeTheResult)
{
    ListTestItem a(1), b(2);
    ListTestOther other;
    CTypedPtrList<MCObList, ListTestItem *> list;
    list.AddTail(&a);
    static_cast<MCObList &>(list).AddTail(&other);
    list.AddTail(&b);

    std::vector<ListTestItem *> forward, backward;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        if (ListTestItem *p = list.GetNext(pos, RUNTIME_CLASS(ListTestItem)))
            forward.push_back(p);
    for (POSITION pos = list.GetTailPosition(); pos;)
        if (ListTestItem *p = list.GetPrev(pos, RUNTIME_CLASS(ListTestItem)))
            backward.push_back(p);
    EXPECT_EQ(forward, (std::vector<ListTestItem *>{&a, &b}));
    EXPECT_EQ(backward, (std::vector<ListTestItem *>{&b, &a}));
    list.RemoveAll();
}
