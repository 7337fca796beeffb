#include <scoremodel/events/base/MCObList.h>

#include <scoremodel/events/base/MCNodePool.h>
#include <scoremodel/platform/CArchive.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

IMPLEMENT_SERIAL(MCObList, CObject, VERSIONABLE_SCHEMA | 1)

namespace
{
// A multiset of (element, node) pairs in one open-addressed table with linear
// probing and backward-shift deletion, so there are no tombstones to clean.
// An element that occurs n times in the list has n entries.
class MembershipIndex
{
public:
    struct Slot
    {
        const CObject *key;
        MCObList::Node *node;
    };

    explicit MembershipIndex(int expected)
    {
        size_t capacity = 16;
        while (capacity * 3 < (static_cast<size_t>(expected) + 1) * 4)
            capacity *= 2;
        Allocate(capacity);
    }

    void Insert(const CObject *key, MCObList::Node *node)
    {
        // At most three quarters full: short probe runs, 21 to 43 bytes per
        // element.
        if ((m_size + 1) * 4 > (m_mask + 1) * 3)
            Grow();
        size_t i = Home(key);
        while (m_slots[i].node)
            i = (i + 1) & m_mask;
        m_slots[i] = {key, node};
        ++m_size;
    }

    void Erase(const CObject *key, MCObList::Node *node)
    {
        size_t i = Home(key);
        while (m_slots[i].node && m_slots[i].node != node)
            i = (i + 1) & m_mask;
        if (!m_slots[i].node)
            return;
        // Backward shift: pull later entries of the same run into the hole
        // when their home lies at or before it (cyclically).
        size_t hole = i;
        for (size_t j = (i + 1) & m_mask; m_slots[j].node; j = (j + 1) & m_mask)
        {
            size_t home = Home(m_slots[j].key);
            if (((j - home) & m_mask) >= ((j - hole) & m_mask))
            {
                m_slots[hole] = m_slots[j];
                hole = j;
            }
        }
        m_slots[hole] = {nullptr, nullptr};
        --m_size;
    }

    // Number of entries for `key` (counting stops at 2); `node` receives the
    // node of the entry when there is exactly one.
    int Count(const CObject *key, MCObList::Node **node) const
    {
        int n = 0;
        for (size_t i = Home(key); m_slots[i].node; i = (i + 1) & m_mask)
        {
            if (m_slots[i].key == key)
            {
                if (++n == 2)
                    break;
                *node = m_slots[i].node;
            }
        }
        return n;
    }

private:
    size_t Home(const CObject *key) const
    {
        auto v = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(key));
        return static_cast<size_t>((v * 0x9E3779B97F4A7C15ull) >> 32) & m_mask;
    }

    void Allocate(size_t capacity)
    {
        m_slots.reset(new Slot[capacity]());
        m_mask = capacity - 1;
        m_size = 0;
    }

    void Grow()
    {
        std::unique_ptr<Slot[]> old = std::move(m_slots);
        size_t oldCapacity = m_mask + 1;
        Allocate(oldCapacity * 2);
        for (size_t i = 0; i < oldCapacity; ++i)
            if (old[i].node)
                Insert(old[i].key, old[i].node);
    }

    std::unique_ptr<Slot[]> m_slots;
    size_t m_mask = 0;
    size_t m_size = 0;
};

// The process-wide table that turns an index handle into its index. Handles
// are handed out and taken back under a mutex; looking one up takes no lock:
// the chunk array never moves, a chunk is published before any handle in it
// is handed out, and an entry is only ever read by the thread that owns the
// list holding its handle. When the table is full, lists simply go without
// an index, which costs time and never correctness.
class IndexTable
{
public:
    static constexpr UINT kChunkBits = 10;
    static constexpr UINT kChunkSize = 1u << kChunkBits;
    static constexpr UINT kChunks = 4096;

    static IndexTable &Instance()
    {
        static IndexTable *table = new IndexTable; // outlives every static list
        return *table;
    }

    // A handle for `index`, or 0 when the table is full or out of memory.
    UINT Acquire(MembershipIndex *index)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        UINT slot;
        if (!m_free.empty())
        {
            slot = m_free.back();
            m_free.pop_back();
        }
        else
        {
            if (m_used == kChunkSize * kChunks)
                return 0;
            slot = m_used;
            MembershipIndex **&chunk = m_chunks[slot >> kChunkBits];
            if (!chunk && !(chunk = new (std::nothrow) MembershipIndex *[kChunkSize]()))
                return 0;
            ++m_used;
        }
        Entry(slot) = index;
        return slot + 1;
    }

    void Release(UINT handle)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        Entry(handle - 1) = nullptr;
        try
        {
            m_free.push_back(handle - 1);
        }
        catch (...)
        {
            // The slot is lost to reuse; the table merely fills sooner.
        }
    }

    MembershipIndex *Get(UINT handle) { return Entry(handle - 1); }

private:
    MembershipIndex *&Entry(UINT slot) { return m_chunks[slot >> kChunkBits][slot & (kChunkSize - 1)]; }

    std::mutex m_mutex;
    MembershipIndex **m_chunks[kChunks] = {};
    std::vector<UINT> m_free;
    UINT m_used = 0;
};

MembershipIndex *IndexOf(UINT handle)
{
    return handle ? IndexTable::Instance().Get(handle) : nullptr;
}

inline MCObList::Node *AsNode(POSITION pos)
{
    return reinterpret_cast<MCObList::Node *>(pos);
}

inline POSITION AsPosition(MCObList::Node *node)
{
    return reinterpret_cast<POSITION>(node);
}
} // namespace

MCObList::MCObList(int)
{
}

MCObList::~MCObList()
{
    // Derived lists empty themselves in their own destructors, where their
    // FreeNode still applies; this frees whatever is left with the plain hook.
    RemoveAll();
    DropIndex();
}

// ---- Index upkeep ----

UINT MCObList::UseIndex() const
{
    // Searches are reads, and several threads may search one list that
    // nobody changes meanwhile: the index they share is built by one of them
    // under a lock and published with a release store, so each sees either
    // no index or a whole one. Changes of the list exclude every reader (see
    // the header), so the node hooks need no lock.
    std::atomic_ref<UINT> published(m_hIndex);
    if (UINT handle = published.load(std::memory_order_acquire))
        return handle;
    if (m_nCount < kIndexThreshold)
        return 0;
    static std::mutex s_buildMutex;
    std::lock_guard<std::mutex> lock(s_buildMutex);
    if (UINT handle = published.load(std::memory_order_relaxed))
        return handle;
    auto index = std::make_unique<MembershipIndex>(m_nCount);
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        index->Insert(node->data, node);
    UINT handle = IndexTable::Instance().Acquire(index.get());
    if (handle)
    {
        index.release();
        published.store(handle, std::memory_order_release);
    }
    return handle;
}

void MCObList::DropIndex() const
{
    if (!m_hIndex)
        return;
    delete IndexOf(m_hIndex);
    IndexTable::Instance().Release(m_hIndex);
    m_hIndex = 0;
}

// ---- Node hooks ----

static_assert(sizeof(MCObList::Node) == MCNodePool::kBlockSize);

MCObList::Node *MCObList::NewNode(Node *pPrev, Node *pNext, CObject *element)
{
    Node *node = new (MCNodePool::Allocate()) Node{element, pPrev, pNext};
    ++m_nCount;
    if (MembershipIndex *index = IndexOf(m_hIndex))
    {
        try
        {
            index->Insert(element, node);
        }
        catch (...)
        {
            DropIndex(); // out of memory: carry on without the index
        }
    }
    return node;
}

void MCObList::FreeNode(Node *pNode)
{
    if (MembershipIndex *index = IndexOf(m_hIndex))
    {
        index->Erase(pNode->data, pNode);
        if (m_nCount - 1 < kIndexThreshold / 4)
            DropIndex();
    }
    MCNodePool::Free(pNode);
    --m_nCount;
}

void MCObList::ReplaceElement(Node *pNode, CObject *newElement)
{
    if (MembershipIndex *index = IndexOf(m_hIndex))
    {
        index->Erase(pNode->data, pNode);
        try
        {
            index->Insert(newElement, pNode);
        }
        catch (...)
        {
            DropIndex();
        }
    }
    pNode->data = newElement;
}

void MCObList::Unlink(Node *pNode)
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

// ---- Walking ----

CObject *MCObList::GetNext(POSITION &pos, CRuntimeClass *pClass) const
{
    while (pos)
    {
        CObject *element = GetNext(pos);
        if (!pClass || (element && element->IsKindOf(pClass)))
            return element;
    }
    return nullptr;
}

CObject *MCObList::GetPrev(POSITION &pos, CRuntimeClass *pClass) const
{
    while (pos)
    {
        CObject *element = GetPrev(pos);
        if (!pClass || (element && element->IsKindOf(pClass)))
            return element;
    }
    return nullptr;
}

// ---- Adding ----

POSITION MCObList::AddHead(CObject *newElement)
{
    Node *node = NewNode(nullptr, m_pNodeHead, newElement);
    if (m_pNodeHead)
        m_pNodeHead->pPrev = node;
    else
        m_pNodeTail = node;
    m_pNodeHead = node;
    return AsPosition(node);
}

POSITION MCObList::AddTail(CObject *newElement)
{
    Node *node = NewNode(m_pNodeTail, nullptr, newElement);
    if (m_pNodeTail)
        m_pNodeTail->pNext = node;
    else
        m_pNodeHead = node;
    m_pNodeTail = node;
    return AsPosition(node);
}

void MCObList::AddHead(MCObList *pNewList)
{
    if (!pNewList)
        return;
    // Walk the source from its tail; a count bounds the walk so that adding a
    // list to itself terminates.
    Node *node = pNewList->m_pNodeTail;
    for (int n = pNewList->m_nCount; n > 0 && node; --n)
    {
        Node *prev = node->pPrev;
        AddHead(node->data);
        node = prev;
    }
}

void MCObList::AddTail(MCObList *pNewList)
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

POSITION MCObList::InsertBefore(POSITION pos, CObject *newElement)
{
    Node *old = AsNode(pos);
    if (!old)
        return AddHead(newElement);
    Node *node = NewNode(old->pPrev, old, newElement);
    if (old->pPrev)
        old->pPrev->pNext = node;
    else
        m_pNodeHead = node;
    old->pPrev = node;
    return AsPosition(node);
}

POSITION MCObList::InsertAfter(POSITION pos, CObject *newElement)
{
    Node *old = AsNode(pos);
    if (!old)
        return AddTail(newElement);
    Node *node = NewNode(old, old->pNext, newElement);
    if (old->pNext)
        old->pNext->pPrev = node;
    else
        m_pNodeTail = node;
    old->pNext = node;
    return AsPosition(node);
}

POSITION MCObList::InsertBefore(POSITION pos, MCObList *pNewList)
{
    if (!pNewList)
        return pos;
    // In front of a node, inserting each element before it keeps the order;
    // at the head, the first goes to the head and the rest follow it.
    POSITION last = nullptr;
    Node *node = pNewList->m_pNodeHead;
    for (int n = pNewList->m_nCount; n > 0 && node; --n)
    {
        Node *next = node->pNext;
        if (pos)
            last = InsertBefore(pos, node->data);
        else
            last = last ? InsertAfter(last, node->data) : AddHead(node->data);
        node = next;
    }
    return last ? last : pos;
}

POSITION MCObList::InsertAfter(POSITION pos, MCObList *pNewList)
{
    if (!pNewList)
        return pos;
    POSITION last = pos;
    Node *node = pNewList->m_pNodeHead;
    for (int n = pNewList->m_nCount; n > 0 && node; --n)
    {
        Node *next = node->pNext;
        last = last ? InsertAfter(last, node->data) : AddTail(node->data);
        node = next;
    }
    return last;
}

// ---- Replacing and removing ----

void MCObList::SetAt(POSITION pos, CObject *newElement)
{
    if (Node *node = AsNode(pos))
        ReplaceElement(node, newElement);
}

CObject *MCObList::RemoveHead()
{
    Node *node = m_pNodeHead;
    if (!node)
        return nullptr;
    CObject *element = node->data;
    Unlink(node);
    FreeNode(node);
    return element;
}

CObject *MCObList::RemoveTail()
{
    Node *node = m_pNodeTail;
    if (!node)
        return nullptr;
    CObject *element = node->data;
    Unlink(node);
    FreeNode(node);
    return element;
}

void MCObList::RemoveAt(POSITION pos)
{
    Node *node = AsNode(pos);
    if (!node)
        return;
    Unlink(node);
    FreeNode(node);
}

void MCObList::RemoveAll()
{
    // One node at a time, re-reading the tail: freeing a node may release an
    // element whose destruction touches this list again.
    while (Node *node = m_pNodeTail)
    {
        Unlink(node);
        FreeNode(node);
    }
}

// ---- Searching ----

POSITION MCObList::Find(const CObject *searchValue, POSITION startAfter) const
{
    if (UINT handle = UseIndex())
    {
        Node *only = nullptr;
        int n = IndexOf(handle)->Count(searchValue, &only);
        if (n == 0)
            return nullptr;
        if (n == 1 && !startAfter)
            return AsPosition(only);
    }
    Node *node = startAfter ? AsNode(startAfter)->pNext : m_pNodeHead;
    for (; node; node = node->pNext)
        if (node->data == searchValue)
            return AsPosition(node);
    return nullptr;
}

POSITION MCObList::FindIndex(int nIndex) const
{
    if (nIndex < 0 || nIndex >= m_nCount)
        return nullptr;
    // From whichever end is nearer.
    if (nIndex <= m_nCount / 2)
    {
        Node *node = m_pNodeHead;
        while (nIndex-- > 0)
            node = node->pNext;
        return AsPosition(node);
    }
    Node *node = m_pNodeTail;
    for (int i = m_nCount - 1; i > nIndex; --i)
        node = node->pPrev;
    return AsPosition(node);
}

BOOL MCObList::Contains(const CObject *searchValue) const
{
    if (UINT handle = UseIndex())
    {
        Node *only = nullptr;
        return IndexOf(handle)->Count(searchValue, &only) > 0;
    }
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        if (node->data == searchValue)
            return TRUE;
    return FALSE;
}

// ---- Archive ----

void MCObList::Serialize(CArchive &ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
    {
        ar.WriteCount(static_cast<DWORD_PTR>(m_nCount));
        for (Node *node = m_pNodeHead; node; node = node->pNext)
            ar.WriteObject(node->data);
    }
    else
    {
        DWORD_PTR count = ar.ReadCount();
        for (DWORD_PTR i = 0; i < count; ++i)
            AddTail(ar.ReadObject(nullptr));
    }
}
