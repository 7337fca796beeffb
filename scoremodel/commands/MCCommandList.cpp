#include <scoremodel/commands/MCCommandList.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>

#include <cstdlib>
#include <new>

MCCommandList::~MCCommandList()
{
    // Here, unlike in the base destructor, this class's FreeNode still runs.
    RemoveAll();
    ReleaseNodes();
}

MCPtrList::Node *MCCommandList::TakeNode()
{
    if (Node *node = m_pFree)
    {
        m_pFree = node->pNext;
        return node;
    }
    if (m_nInlineUsed < kInlineNodes)
        return &m_inline[m_nInlineUsed++];
    if (!m_pChunks || m_pChunks->used == m_pChunks->capacity)
    {
        // Each chunk twice the last, up to a bound: few allocations for a
        // long list, little waste for a short one.
        size_t capacity = m_pChunks ? m_pChunks->capacity * 2 : kFirstChunk;
        if (capacity > kLargestChunk)
            capacity = kLargestChunk;
        void *memory = std::malloc(sizeof(Chunk) + capacity * sizeof(Node));
        if (!memory)
            return nullptr;
        m_pChunks = new (memory) Chunk{m_pChunks, capacity, 0};
    }
    return &m_pChunks->Nodes()[m_pChunks->used++];
}

void MCCommandList::ReleaseNodes()
{
    while (Chunk *chunk = m_pChunks)
    {
        m_pChunks = chunk->next;
        std::free(chunk);
    }
    m_pFree = nullptr;
    m_nInlineUsed = 0;
}

MCPtrList::Node *MCCommandList::NewNode(Node *pPrev, Node *pNext, void *element)
{
    Node *node = TakeNode();
    if (!node)
        return nullptr;
    ++m_nCount;
    *node = Node{element, pPrev, pNext};
    if (element)
        static_cast<CCBase *>(element)->Ref();
    return node;
}

void MCCommandList::FreeNode(Node *pNode)
{
    auto *cmd = static_cast<CCBase *>(pNode->data);
    pNode->pNext = m_pFree;
    m_pFree = pNode;
    if (m_nCount > 0)
        --m_nCount;
    // An empty list starts afresh, in order, with no chunk kept.
    if (m_nCount == 0)
        ReleaseNodes();
    if (cmd)
        cmd->Unref(1);
}

void MCCommandList::SetAt(POSITION pos, void *newElement)
{
    if (!pos)
        return;
    auto *old = static_cast<CCBase *>(GetAt(pos));
    if (newElement)
        static_cast<CCBase *>(newElement)->Ref();
    MCPtrList::SetAt(pos, newElement);
    if (old)
        old->Unref(1);
}

ECPerformance *MCCommandList::GetTarget()
{
    auto *first = static_cast<CCBase *>(GetHead());
    return first ? first->GetTarget() : nullptr;
}

void MCCommandList::SetTarget(ECPerformance *target)
{
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        if (node->data)
            static_cast<CCBase *>(node->data)->SetTarget(target);
}

void MCCommandList::SetSynchronous(int on)
{
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        if (node->data)
            static_cast<CCBase *>(node->data)->SetSynchronous(on);
}

int MCCommandList::IsSynchronous()
{
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        if (node->data && !static_cast<CCBase *>(node->data)->IsSynchronous())
            return 0;
    return 1;
}

CCBase *MCCommandList::GetCommand(int id, CRuntimeClass *pClass)
{
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        if (node->data && static_cast<CCBase *>(node->data)->GetCommandId() == id)
            return static_cast<CCBase *>(node->data);
    if (!pClass || !pClass->IsDerivedFrom(RUNTIME_CLASS(CCBase)))
        return nullptr;
    auto *cmd = static_cast<CCBase *>(pClass->CreateObject());
    if (cmd && !AddTail(cmd))
    {
        // No node: the new command is nobody's and goes at once.
        cmd->Ref();
        cmd->Unref(1);
        return nullptr;
    }
    return cmd;
}

int MCCommandList::Apply(ECPerformance *document)
{
    return MCCommandMgr::ApplyCommands(this, document);
}
