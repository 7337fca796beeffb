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
// Cost and POSITION validity are those of MCPtrList. No lock: a list belongs
// to the thread that runs its commands.
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
};
