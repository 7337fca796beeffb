// CCRemove: unlinks events from the tree (command id 38), and the base of
// most commands that take away.
//
// Each item holds an event and the parent it was found under (see
// CCRemoveItem). Process takes every event out of its children's and its
// parents' lists; the item's reference keeps it alive, so Undo brings the
// same object back. Undo adds the events back with CCAdd, last removed
// first, and brings tuplets back before loose events through CCAddTuplet: a
// note that a removed tuplet held comes back with its tuplet, not on its
// own.
//
// The relation cache keeps, before the events go, the children of a group
// (slur, tie, beam, glissando) or tuplet, the slurs, tuplets and chords of a
// note, and the links of a chord that the removal of its last note
// dissolves. Undo puts those back first, so the chord returns with its notes
// and its marks; then each event goes back under its item's parent if it was
// a child of that parent itself; then every list the removal touched takes
// its old order again. So undo gives back exactly the tree before: the same
// objects, parents, children and order, and nothing in two places.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCRelationCache.h>
#include <scoremodel/events/base/MCPtrList.h>

#include <memory>
#include <set>
#include <unordered_set>

class SCOREMODEL_API CCRemove : public CCBase
{
    DECLARE_DYNCREATE(CCRemove)

public:
    typedef CTypedPtrList<MCPtrList, CCRemoveItem *> RemoveList;

    CCRemove();
    explicit CCRemove(ECBase *event);

    // Appends an item for `event`, discarding its mirrors, and returns it;
    // null when the event is listed already.
    virtual CCRemoveItem *Remove(ECBase *event);
    // Remove for every event of the list; 1.
    virtual int Remove(EventList *events);
    // Appends the child of every item; 1 when `list` is not empty then.
    virtual int GetRemoveEvents(EventList &list);

    // 38.
    int GetCommandId() override;
    int Process() override;
    void Undo() override;

    RemoveList &GetRemoveList() { return m_removeList; }

protected:
    ~CCRemove() override;

    // The item whose child is `event`, by a linear search; null for none.
    CCRemoveItem *FindRemovePosition(ECBase *event);
    // Each event leaves its children's lists and then its parents'.
    void DoRemove();

    void _CashParentChildRelation();
    void _RestoreParentChildRelation();

    RemoveList m_removeList{10};
    MCRelationCache m_relations;
    BYTE m_bRelationCached = 0;
    BYTE m_bRelationPending = 0;
    // The child lists the removal touches, as they were before it.
    std::shared_ptr<MCListOrder> m_order;
    // The events that were children of their item's parent itself, not only
    // below it: only those go back under it (a note that only a chord or a
    // tuplet held comes back through that one's links).
    std::set<ECBase *> m_direct;
    // The listed events, so that refusing a double costs O(1) and a removal
    // of many events stays linear (FindRemovePosition walks the list).
    std::unordered_set<ECBase *> m_listed;
};
