// MCCommandList: the list of commands that holds a reference on each entry.
//
// Adding a command takes a Ref, removing it gives an Unref(1), and SetAt
// refs the new entry before it lets the old one go; so a command on no list
// and held by nobody else dies as it leaves. Always used through the typed
// façade:
//
//     CTypedPtrList<MCCommandList, CCBase *> batch;
//     batch.AddTail(pCommand);
//     batch.Apply(pDocument);
//
// Cost and POSITION validity are those of MCPtrList. The nodes, though, are
// the list's own: the first few sit inside the list object, the rest come
// from chunks of its own, handed out in the order the commands are added.
// A walk over a long batch or undo step therefore reads memory in sequence,
// however the process's memory was reused before; with nodes from a shared
// pool, the cost of each command grew with the length of the history. A
// list that empties gives its chunks back. No lock: a list belongs to the
// thread that runs its commands.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/platform/CTypedPtrList.h>

class CCBase;
class ECPerformance;
struct CRuntimeClass;

class SCOREMODEL_API MCCommandList : public MCPtrList
{
public:
    explicit MCCommandList(int nBlockSize = 10) : MCPtrList(nBlockSize) {}
    MCCommandList(const MCCommandList &) = delete;
    MCCommandList &operator=(const MCCommandList &) = delete;
    // Gives back the reference on every entry.
    ~MCCommandList() override;

    void SetAt(POSITION pos, void *newElement) override;

    // The target of the first command; null for an empty list.
    ECPerformance *GetTarget();
    // Applied to every entry.
    void SetTarget(ECPerformance *target);
    void SetSynchronous(int on);
    // 1 when every entry is synchronous, and for an empty list.
    int IsSynchronous();
    // The first entry whose GetCommandId is `id`. Without one, a new command
    // of `pClass` (made with CreateObject) is appended and returned; without
    // a class, null.
    CCBase *GetCommand(int id, CRuntimeClass *pClass);
    // MCCommandMgr::ApplyCommands: 0 for an empty list or a null document.
    int Apply(ECPerformance *document);

protected:
    Node *NewNode(Node *pPrev, Node *pNext, void *element) override;
    void FreeNode(Node *pNode) override;

private:
    // A block of nodes from the heap; the nodes follow the header.
    struct Chunk
    {
        Chunk *next;
        size_t capacity;
        size_t used;
        Node *Nodes() { return reinterpret_cast<Node *>(this + 1); }
    };
    // Nodes inside the list: a batch of one command, the most common list,
    // needs no memory of its own.
    static constexpr size_t kInlineNodes = 2;
    static constexpr size_t kFirstChunk = 16, kLargestChunk = 2048;

    // Storage for a new node: a freed one, the next of the inline nodes or of
    // the newest chunk, or a new chunk; null when memory runs out.
    Node *TakeNode();
    // Gives back every chunk. REQUIRES: the list is empty.
    void ReleaseNodes();

    Node m_inline[kInlineNodes];
    size_t m_nInlineUsed = 0;
    Chunk *m_pChunks = nullptr; // newest first
    Node *m_pFree = nullptr;    // freed nodes, linked by pNext
};
