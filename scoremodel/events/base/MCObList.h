// MCObList: the model's own doubly linked list of CObject pointers.
//
// It is not the platform's list: creating and freeing a node go through the
// virtual NewNode and FreeNode, and replacing an element through the virtual
// SetAt, so that MCEventList can count references as elements come and go.
// Every operation that adds, removes or replaces an element passes through
// those three hooks; nothing else touches a node's element.
//
// POSITION is a pointer to a node. It stays valid until that node is removed
// (RemoveAt, RemoveHead, RemoveTail, RemoveAll or the list's destruction);
// inserting or removing other nodes does not disturb it. A POSITION must come
// from this list: the list cannot check that, and a foreign one corrupts it.
//
// Cost: adding or removing at a known position is O(1); nodes come one by
// one from MCNodePool (the block size argument is accepted and ignored).
// Find, FindIndex and the type searches are linear, except that a long list
// (see kIndexThreshold) keeps a membership index, built on the first search
// and kept up by the node hooks, so that Contains is O(1) and Find of an
// element that occurs once is O(1). Short lists never pay for an index.
//
// Threads: a list belongs to the thread that owns its document, and every
// change (adding, removing, replacing) needs that thread alone. Reads - the
// walks, GetAt, GetCount, FindIndex, and Find and Contains, which may build
// the membership index - are safe from any number of threads at once, as
// long as no thread changes the list meanwhile.
//
// Archive record (schema 1): the count by WriteCount, then each element by
// WriteObject; loading appends with AddTail.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>

class SCOREMODEL_API MCObList : public CObject
{
    DECLARE_SERIAL(MCObList)

public:
    struct Node
    {
        CObject *data;
        Node *pPrev;
        Node *pNext;
    };

    // Lists of at least this many elements keep a membership index once they
    // are searched; below a quarter of it the index is dropped again.
    static constexpr int kIndexThreshold = 64;

    // `nBlockSize` is accepted for compatibility and ignored.
    explicit MCObList(int nBlockSize = 10);
    ~MCObList() override;
    MCObList(const MCObList &) = delete;
    MCObList &operator=(const MCObList &) = delete;

    // ---- Size and ends ----

    int GetCount() const { return m_nCount; }
    int GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }
    // The first or last element; null for an empty list.
    CObject *GetHead() const { return m_pNodeHead ? m_pNodeHead->data : nullptr; }
    CObject *GetTail() const { return m_pNodeTail ? m_pNodeTail->data : nullptr; }
    POSITION GetHeadPosition() const { return reinterpret_cast<POSITION>(m_pNodeHead); }
    POSITION GetTailPosition() const { return reinterpret_cast<POSITION>(m_pNodeTail); }

    // ---- Walking ----
    //
    // GetNext and GetPrev return the element at `pos` and move `pos` on; it
    // becomes null past the end. A null `pos` returns null and stays null.

    // Inline: every walk of the tree goes through them.
    CObject *GetNext(POSITION &pos) const { return Step(pos, &Node::pNext); }
    CObject *GetPrev(POSITION &pos) const { return Step(pos, &Node::pPrev); }
    // Skip forward (backward) to the next element that is of `pClass` or
    // derived from it, return it and leave `pos` behind it; with a null class
    // every element qualifies. Null when none is left; `pos` is then null.
    CObject *GetNext(POSITION &pos, CRuntimeClass *pClass) const;
    CObject *GetPrev(POSITION &pos, CRuntimeClass *pClass) const;
    // A hint for a walk that is about to go on to `pos` (which may be null):
    // starts fetching the element there and the node after it, so that a
    // long walk waits for memory once per step instead of twice.
    static void PrefetchAhead(POSITION pos)
    {
        if (auto *node = reinterpret_cast<Node *>(pos))
        {
            __builtin_prefetch(node->data);
            __builtin_prefetch(reinterpret_cast<const char *>(node->data) + 64);
            __builtin_prefetch(node->pNext);
        }
    }
    // The element at `pos`; null for a null position.
    CObject *GetAt(POSITION pos) const { return pos ? reinterpret_cast<Node *>(pos)->data : nullptr; }

    // ---- Adding ----

    // Return the position of the new node.
    POSITION AddHead(CObject *newElement);
    POSITION AddTail(CObject *newElement);
    // Copy the elements of another list (it may be this one) to the front or
    // the back, keeping their order.
    void AddHead(MCObList *pNewList);
    void AddTail(MCObList *pNewList);
    // A null position means the head for InsertBefore and the tail for
    // InsertAfter.
    POSITION InsertBefore(POSITION pos, CObject *newElement);
    POSITION InsertAfter(POSITION pos, CObject *newElement);
    // The same for every element of a list, in order; returns the position of
    // the last node inserted, or `pos` when the list was empty.
    POSITION InsertBefore(POSITION pos, MCObList *pNewList);
    POSITION InsertAfter(POSITION pos, MCObList *pNewList);

    // ---- Replacing and removing ----

    // Replaces the element at `pos`; nothing for a null position.
    virtual void SetAt(POSITION pos, CObject *newElement);
    // Remove the first or last node and return its element; null when empty.
    // In a reference-counting list the element may have died by the time this
    // returns: hold a reference first if you mean to use it.
    CObject *RemoveHead();
    CObject *RemoveTail();
    // Removes the node at `pos`; nothing for a null position.
    void RemoveAt(POSITION pos);
    // Removes every node, from the tail backward.
    void RemoveAll();

    // ---- Searching ----

    // The first node holding `searchValue` after `startAfter` (from the head
    // when it is null); null if there is none.
    POSITION Find(const CObject *searchValue, POSITION startAfter = nullptr) const;
    // The node at a zero-based index; null unless 0 <= nIndex < GetCount().
    POSITION FindIndex(int nIndex) const;
    // Whether `searchValue` is anywhere in the list.
    BOOL Contains(const CObject *searchValue) const;

    void Serialize(CArchive &ar) override;

protected:
    // Allocates a node holding `element` between `pPrev` and `pNext` (either
    // may be null) and counts it; the caller links the neighbours to it.
    virtual Node *NewNode(Node *pPrev, Node *pNext, CObject *element);
    // Uncounts and frees a node that the caller has already unlinked. There is
    // no guard against a count below 0: the list never frees more nodes than
    // it made.
    virtual void FreeNode(Node *pNode);

    // Removes `pNode` from the chain without freeing it.
    void Unlink(Node *pNode);
    // Replaces the element of a node in place, keeping the index up to date.
    void ReplaceElement(Node *pNode, CObject *newElement);

    int m_nCount = 0;

private:
    // Handle of the membership index in the process-wide index table, 0 for
    // none. Searches read and publish it atomically (std::atomic_ref). It occupies what would otherwise be padding beside the count, so
    // short lists cost nothing for it.
    mutable UINT m_hIndex = 0;

protected:
    Node *m_pNodeHead = nullptr;
    Node *m_pNodeTail = nullptr;

private:
    static CObject *Step(POSITION &pos, Node *Node::*link)
    {
        auto *node = reinterpret_cast<Node *>(pos);
        if (!node)
            return nullptr;
        pos = reinterpret_cast<POSITION>(node->*link);
        return node->data;
    }
    // Builds the index if the list is long enough and has none; returns the
    // index handle or 0.
    UINT UseIndex() const;
    void DropIndex() const;
};
