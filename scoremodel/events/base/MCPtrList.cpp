#include <scoremodel/events/base/MCPtrList.h>

#include <scoremodel/events/base/MCNodePool.h>

#include <new>

namespace
{
inline MCPtrList::Node *AsNode(POSITION pos)
{
    return reinterpret_cast<MCPtrList::Node *>(pos);
}

inline POSITION AsPosition(MCPtrList::Node *node)
{
    return reinterpret_cast<POSITION>(node);
}
} // namespace

MCPtrList::MCPtrList(int)
{
}

MCPtrList::~MCPtrList()
{
    RemoveAll();
}

static_assert(sizeof(MCPtrList::Node) == MCNodePool::kBlockSize);

MCPtrList::Node *MCPtrList::NewNode(Node *pPrev, Node *pNext, void *element)
{
    void *block = nullptr;
    try
    {
        block = MCNodePool::Allocate();
    }
    catch (const std::bad_alloc &)
    {
        return nullptr;
    }
    ++m_nCount;
    return new (block) Node{element, pPrev, pNext};
}

void MCPtrList::FreeNode(Node *pNode)
{
    MCNodePool::Free(pNode);
    if (m_nCount > 0)
        --m_nCount;
}

void MCPtrList::Unlink(Node *pNode)
{
    if (pNode->pPrev)
        pNode->pPrev->pNext = pNode->pNext;
    else
        m_pNodeHead = pNode->pNext;
    if (pNode->pNext)
        pNode->pNext->pPrev = pNode->pPrev;
    else
        m_pNodeTail = pNode->pPrev;
}

void *MCPtrList::GetNext(POSITION &pos) const
{
    Node *node = AsNode(pos);
    if (!node)
        return nullptr;
    pos = AsPosition(node->pNext);
    return node->data;
}

void *MCPtrList::GetPrev(POSITION &pos) const
{
    Node *node = AsNode(pos);
    if (!node)
        return nullptr;
    pos = AsPosition(node->pPrev);
    return node->data;
}

void *MCPtrList::GetAt(POSITION pos) const
{
    Node *node = AsNode(pos);
    return node ? node->data : nullptr;
}

void MCPtrList::SetAt(POSITION pos, void *newElement)
{
    if (Node *node = AsNode(pos))
        node->data = newElement;
}

POSITION MCPtrList::AddHead(void *newElement)
{
    Node *node = NewNode(nullptr, m_pNodeHead, newElement);
    if (!node)
        return nullptr;
    if (m_pNodeHead)
        m_pNodeHead->pPrev = node;
    else
        m_pNodeTail = node;
    m_pNodeHead = node;
    return AsPosition(node);
}

POSITION MCPtrList::AddTail(void *newElement)
{
    Node *node = NewNode(m_pNodeTail, nullptr, newElement);
    if (!node)
        return nullptr;
    if (m_pNodeTail)
        m_pNodeTail->pNext = node;
    else
        m_pNodeHead = node;
    m_pNodeTail = node;
    return AsPosition(node);
}

void MCPtrList::AddHead(MCPtrList *pNewList)
{
    if (!pNewList)
        return;
    Node *node = pNewList->m_pNodeTail;
    for (int n = pNewList->m_nCount; n > 0 && node; --n)
    {
        Node *prev = node->pPrev;
        AddHead(node->data);
        node = prev;
    }
}

void MCPtrList::AddTail(MCPtrList *pNewList)
{
    if (!pNewList)
        return;
    Node *node = pNewList->m_pNodeHead;
    for (int n = pNewList->m_nCount; n > 0 && node; --n)
    {
        Node *next = node->pNext;
        AddTail(node->data);
        node = next;
    }
}

POSITION MCPtrList::InsertBefore(POSITION pos, void *newElement)
{
    Node *old = AsNode(pos);
    if (!old)
        return AddHead(newElement);
    Node *node = NewNode(old->pPrev, old, newElement);
    if (!node)
        return nullptr;
    if (old->pPrev)
        old->pPrev->pNext = node;
    else
        m_pNodeHead = node;
    old->pPrev = node;
    return AsPosition(node);
}

POSITION MCPtrList::InsertAfter(POSITION pos, void *newElement)
{
    Node *old = AsNode(pos);
    if (!old)
        return AddTail(newElement);
    Node *node = NewNode(old, old->pNext, newElement);
    if (!node)
        return nullptr;
    if (old->pNext)
        old->pNext->pPrev = node;
    else
        m_pNodeTail = node;
    old->pNext = node;
    return AsPosition(node);
}

void *MCPtrList::RemoveHead()
{
    Node *node = m_pNodeHead;
    if (!node)
        return nullptr;
    void *element = node->data;
    Unlink(node);
    FreeNode(node);
    return element;
}

void *MCPtrList::RemoveTail()
{
    Node *node = m_pNodeTail;
    if (!node)
        return nullptr;
    void *element = node->data;
    Unlink(node);
    FreeNode(node);
    return element;
}

void MCPtrList::RemoveAt(POSITION pos)
{
    Node *node = AsNode(pos);
    if (!node)
        return;
    Unlink(node);
    FreeNode(node);
}

void MCPtrList::RemoveAll()
{
    while (Node *node = m_pNodeTail)
    {
        Unlink(node);
        FreeNode(node);
    }
}

POSITION MCPtrList::Find(const void *searchValue, POSITION startAfter) const
{
    Node *node = startAfter ? AsNode(startAfter)->pNext : m_pNodeHead;
    for (; node; node = node->pNext)
        if (node->data == searchValue)
            return AsPosition(node);
    return nullptr;
}

POSITION MCPtrList::FindIndex(int nIndex) const
{
    if (nIndex < 0 || nIndex >= m_nCount)
        return nullptr;
    Node *node = m_pNodeHead;
    while (nIndex-- > 0)
        node = node->pNext;
    return AsPosition(node);
}
