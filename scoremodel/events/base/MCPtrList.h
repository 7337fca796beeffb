// MCPtrList: the model's doubly linked list of untyped pointers.
//
// The twin of MCObList for `void *` elements, without a CObject base. Node
// management is virtual here too (MCFuncList and the command lists build on
// it). Unlike MCObList it survives a failed allocation: AddHead and AddTail
// return a null POSITION when NewNode gives no node, and FreeNode never takes
// the count below 0.
//
// POSITION is a pointer to a node and stays valid until that node is
// removed. Adding or removing at a known position is O(1); Find and FindIndex
// are linear. No lock: a list belongs to the thread that owns it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/Types.h>

class SCOREMODEL_API MCPtrList
{
public:
    struct Node
    {
        void *data;
        Node *pPrev;
        Node *pNext;
    };

    // `nBlockSize` is accepted for compatibility and ignored.
    explicit MCPtrList(int nBlockSize = 10);
    virtual ~MCPtrList();
    MCPtrList(const MCPtrList &) = delete;
    MCPtrList &operator=(const MCPtrList &) = delete;

    int GetCount() const { return m_nCount; }
    int GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }
    // The first or last element; null for an empty list.
    void *GetHead() const { return m_pNodeHead ? m_pNodeHead->data : nullptr; }
    void *GetTail() const { return m_pNodeTail ? m_pNodeTail->data : nullptr; }
    POSITION GetHeadPosition() const { return reinterpret_cast<POSITION>(m_pNodeHead); }
    POSITION GetTailPosition() const { return reinterpret_cast<POSITION>(m_pNodeTail); }

    // Return the element at `pos` and move `pos` on (null past the end); a
    // null `pos` gives null.
    void *GetNext(POSITION &pos) const;
    void *GetPrev(POSITION &pos) const;
    // The element at `pos`; null for a null position.
    void *GetAt(POSITION pos) const;
    // Replaces the element at `pos`; nothing for a null position. Virtual so
    // that a list that counts references can count the new element.
    virtual void SetAt(POSITION pos, void *newElement);

    // The new node's position, or null when no node could be made.
    POSITION AddHead(void *newElement);
    POSITION AddTail(void *newElement);
    // Copy another list's elements (it may be this one), keeping their order.
    void AddHead(MCPtrList *pNewList);
    void AddTail(MCPtrList *pNewList);
    // A null position means the head for InsertBefore and the tail for
    // InsertAfter. Null when no node could be made.
    POSITION InsertBefore(POSITION pos, void *newElement);
    POSITION InsertAfter(POSITION pos, void *newElement);

    // Remove the first or last node and return its element; null when empty.
    void *RemoveHead();
    void *RemoveTail();
    // Nothing for a null position.
    void RemoveAt(POSITION pos);
    // Removes every node, from the tail backward.
    void RemoveAll();

    // The first node holding `searchValue` after `startAfter` (from the head
    // when null), or null.
    POSITION Find(const void *searchValue, POSITION startAfter = nullptr) const;
    // The node at a zero-based index; null unless 0 <= nIndex < GetCount().
    POSITION FindIndex(int nIndex) const;

protected:
    // A node holding `element` between the two neighbours, counted; null when
    // memory runs out. The caller links the neighbours to it.
    virtual Node *NewNode(Node *pPrev, Node *pNext, void *element);
    // Uncounts (never below 0) and frees a node the caller has unlinked.
    virtual void FreeNode(Node *pNode);

    void Unlink(Node *pNode);

    int m_nCount = 0;
    Node *m_pNodeHead = nullptr;
    Node *m_pNodeTail = nullptr;
};
