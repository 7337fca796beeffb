#include <scoremodel/platform/CTypedPtrList.h>

#include <gtest/gtest.h>

#include <vector>

namespace
{
// A small doubly linked list of ELEMENT (void * or CObject *) with the
// interface of the model's lists, standing in for them here.
template <class ELEMENT>
class TestList
{
    struct Node
    {
        ELEMENT data;
        Node *pPrev;
        Node *pNext;
    };

public:
    explicit TestList(int) {}
    virtual ~TestList() { RemoveAll(); }

    POSITION AddHead(ELEMENT p) { return Link(p, nullptr, m_pHead); }
    POSITION AddTail(ELEMENT p) { return Link(p, m_pTail, nullptr); }
    POSITION InsertBefore(POSITION pos, ELEMENT p)
    {
        return pos ? Link(p, N(pos)->pPrev, N(pos)) : AddHead(p);
    }
    POSITION InsertAfter(POSITION pos, ELEMENT p) { return pos ? Link(p, N(pos), N(pos)->pNext) : AddTail(p); }
    ELEMENT RemoveHead() { return Unlink(m_pHead); }
    ELEMENT RemoveTail() { return Unlink(m_pTail); }
    void RemoveAt(POSITION pos) { Unlink(N(pos)); }
    void RemoveAll()
    {
        while (m_pTail)
            Unlink(m_pTail);
    }
    void SetAt(POSITION pos, ELEMENT p) { N(pos)->data = p; }
    POSITION Find(ELEMENT p, POSITION after) const
    {
        for (Node *n = after ? N(after)->pNext : m_pHead; n; n = n->pNext)
            if (n->data == p)
                return (POSITION)n;
        return nullptr;
    }
    ELEMENT &GetNext(POSITION &pos) const { return Step(pos, true); }
    ELEMENT &GetPrev(POSITION &pos) const { return Step(pos, false); }
    ELEMENT GetNext(POSITION &pos, CRuntimeClass *pClass) const
    {
        while (pos)
        {
            ELEMENT p = GetNext(pos);
            if (!pClass || static_cast<CObject *>(p)->IsKindOf(pClass))
                return p;
        }
        return nullptr;
    }
    ELEMENT &GetHead() { return m_pHead->data; }
    ELEMENT &GetTail() { return m_pTail->data; }
    ELEMENT &GetAt(POSITION pos) { return N(pos)->data; }
    int GetCount() const { return m_nCount; }
    POSITION GetHeadPosition() const { return (POSITION)m_pHead; }
    POSITION GetTailPosition() const { return (POSITION)m_pTail; }


private:
    static Node *N(POSITION pos) { return (Node *)pos; }
    ELEMENT &Step(POSITION &pos, bool forward) const
    {
        Node *n = N(pos);
        pos = (POSITION)(forward ? n->pNext : n->pPrev);
        return n->data;
    }
    POSITION Link(ELEMENT p, Node *pPrev, Node *pNext)
    {
        Node *n = new Node{p, pPrev, pNext};
        (pPrev ? pPrev->pNext : m_pHead) = n;
        (pNext ? pNext->pPrev : m_pTail) = n;
        m_nCount++;
        return (POSITION)n;
    }
    ELEMENT Unlink(Node *n)
    {
        (n->pPrev ? n->pPrev->pNext : m_pHead) = n->pNext;
        (n->pNext ? n->pNext->pPrev : m_pTail) = n->pPrev;
        ELEMENT p = n->data;
        delete n;
        m_nCount--;
        return p;
    }

    Node *m_pHead = nullptr;
    Node *m_pTail = nullptr;
    int m_nCount = 0;
};

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

template <class ELEMENT>
class CTypedPtrListTest : public ::testing::Test
{
protected:
    using List = CTypedPtrList<TestList<ELEMENT>, ListTestItem *>;
    ListTestItem m_items[6] = {ListTestItem(0), ListTestItem(1), ListTestItem(2), ListTestItem(3), ListTestItem(4), ListTestItem(5)};
};
using Elements = ::testing::Types<void *, CObject *>;
TYPED_TEST_SUITE(CTypedPtrListTest, Elements);
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
}

TEST(CTypedPtrList, ClassFilteredWalkSkipsOtherClassesAndTypesTheResult)
{
    ListTestItem a(1), b(2);
    ListTestOther other;
    CTypedPtrList<TestList<CObject *>, ListTestItem *> list;
    list.AddTail(&a);
    static_cast<TestList<CObject *> &>(list).AddTail(&other);
    list.AddTail(&b);

    std::vector<ListTestItem *> found;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        if (ListTestItem *p = list.GetNext(pos, RUNTIME_CLASS(ListTestItem)))
            found.push_back(p);
    EXPECT_EQ(found, (std::vector<ListTestItem *>{&a, &b}));
}
