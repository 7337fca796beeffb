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
    explicit TestList(int nBlockSize) : m_nBlockSize(nBlockSize) {}
    virtual ~TestList() { RemoveAll(); }

    POSITION AddHead(ELEMENT p) { return Link(p, nullptr, m_pHead); }
    POSITION AddTail(ELEMENT p) { return Link(p, m_pTail, nullptr); }
    void AddHead(TestList *pList)
    {
        for (POSITION pos = pList->GetTailPosition(); pos;)
            AddHead(pList->GetPrev(pos));
    }
    void AddTail(TestList *pList)
    {
        for (POSITION pos = pList->GetHeadPosition(); pos;)
            AddTail(pList->GetNext(pos));
    }
    POSITION InsertBefore(POSITION pos, ELEMENT p)
    {
        return pos ? Link(p, N(pos)->pPrev, N(pos)) : AddHead(p);
    }
    POSITION InsertAfter(POSITION pos, ELEMENT p) { return pos ? Link(p, N(pos), N(pos)->pNext) : AddTail(p); }
    void InsertBefore(POSITION pos, TestList *pList)
    {
        for (POSITION from = pList->GetHeadPosition(); from;)
            InsertBefore(pos, pList->GetNext(from));
    }
    void InsertAfter(POSITION pos, TestList *pList)
    {
        for (POSITION from = pList->GetTailPosition(); from;)
            InsertAfter(pos, pList->GetPrev(from));
    }
    ELEMENT RemoveHead() { return Unlink(m_pHead); }
    ELEMENT RemoveTail() { return Unlink(m_pTail); }
    void RemoveAt(POSITION pos) { Unlink(N(pos)); }
    void RemoveAll()
    {
        while (m_pTail)
            Unlink(m_pTail);
    }
    virtual void SetAt(POSITION pos, ELEMENT p)
    {
        m_nSetAtCalls++;
        N(pos)->data = p;
    }
    POSITION Find(ELEMENT p, POSITION after) const
    {
        for (Node *n = after ? N(after)->pNext : m_pHead; n; n = n->pNext)
            if (n->data == p)
                return (POSITION)n;
        return nullptr;
    }
    POSITION FindIndex(int i) const
    {
        Node *n = m_pHead;
        while (n && i-- > 0)
            n = n->pNext;
        return (POSITION)n;
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
    BOOL IsEmpty() const { return m_nCount == 0; }
    POSITION GetHeadPosition() const { return (POSITION)m_pHead; }
    POSITION GetTailPosition() const { return (POSITION)m_pTail; }

    int m_nBlockSize;
    int m_nSetAtCalls = 0;

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

TYPED_TEST(CTypedPtrListTest, ElementsComeBackAsTheSamePointersAtEveryEnd)
{
    typename TestFixture::List list;
    list.AddTail(&this->m_items[1]);
    list.AddTail(&this->m_items[2]);
    list.AddHead(&this->m_items[0]);
    EXPECT_EQ(list.GetHead(), &this->m_items[0]);
    EXPECT_EQ(list.GetTail(), &this->m_items[2]);
    EXPECT_EQ(list.GetAt(list.FindIndex(1)), &this->m_items[1]);

    std::vector<ListTestItem *> backward;
    for (POSITION pos = list.GetTailPosition(); pos;)
        backward.push_back(list.GetPrev(pos));
    EXPECT_EQ(backward, (std::vector<ListTestItem *>{&this->m_items[2], &this->m_items[1], &this->m_items[0]}));

    EXPECT_EQ(list.RemoveHead(), &this->m_items[0]);
    EXPECT_EQ(list.RemoveTail(), &this->m_items[2]);
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(list.GetHead()->m_nWeight, 1);
}

TYPED_TEST(CTypedPtrListTest, InsertFindAndSetAtReachTheBaseInOrder)
{
    typename TestFixture::List list;
    POSITION two = list.AddTail(&this->m_items[2]);
    list.InsertBefore(two, &this->m_items[1]);
    list.InsertAfter(two, &this->m_items[4]);
    list.InsertBefore(nullptr, &this->m_items[0]);
    list.InsertAfter(nullptr, &this->m_items[5]);
    EXPECT_EQ(Weights(list), (std::vector<int>{0, 1, 2, 4, 5}));

    EXPECT_EQ(list.Find(&this->m_items[2]), two);
    EXPECT_EQ(list.Find(&this->m_items[2], two), nullptr);
    EXPECT_EQ(list.Find(&this->m_items[3]), nullptr);

    list.SetAt(two, &this->m_items[3]);
    EXPECT_EQ(list.m_nSetAtCalls, 1);
    EXPECT_EQ(Weights(list), (std::vector<int>{0, 1, 3, 4, 5}));
    list.RemoveAt(two);
    list.RemoveAll();
    EXPECT_TRUE(list.IsEmpty());
}

TYPED_TEST(CTypedPtrListTest, WholeListsAreAddedAndInsertedKeepingTheirOrder)
{
    typename TestFixture::List list, other;
    list.AddTail(&this->m_items[2]);
    list.AddTail(&this->m_items[5]);
    other.AddTail(&this->m_items[0]);
    other.AddTail(&this->m_items[1]);
    list.AddHead(&other);
    list.AddTail(&other);
    EXPECT_EQ(Weights(list), (std::vector<int>{0, 1, 2, 5, 0, 1}));

    typename TestFixture::List middle;
    middle.AddTail(&this->m_items[3]);
    middle.AddTail(&this->m_items[4]);
    POSITION two = list.Find(&this->m_items[2]);
    list.InsertAfter(two, &middle);
    list.InsertBefore(two, &middle);
    EXPECT_EQ(Weights(list), (std::vector<int>{0, 1, 3, 4, 2, 3, 4, 5, 0, 1}));
}

TYPED_TEST(CTypedPtrListTest, BlockSizeIsPassedToTheBase)
{
    typename TestFixture::List byDefault, given(25);
    EXPECT_EQ(byDefault.m_nBlockSize, 10);
    EXPECT_EQ(given.m_nBlockSize, 25);
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
