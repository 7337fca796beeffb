#include <scoremodel/commands/MCCommandList.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>

MCCommandList::~MCCommandList()
{
    // Here, unlike in the base destructor, this class's FreeNode still runs.
    RemoveAll();
}

MCPtrList::Node *MCCommandList::NewNode(Node *pPrev, Node *pNext, void *element)
{
    Node *node = MCPtrList::NewNode(pPrev, pNext, element);
    if (node && element)
        static_cast<CCBase *>(element)->Ref();
    return node;
}

void MCCommandList::FreeNode(Node *pNode)
{
    auto *cmd = static_cast<CCBase *>(pNode->data);
    MCPtrList::FreeNode(pNode);
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
