// MCEventList: the list that holds events, counting a reference on each.
//
// Every child list and parent list of the tree is one of these, used through
// the typed façade CTypedPtrList<MCEventList, ECBase *>. The list holds one
// reference per node: a node's creation calls Ref() on its element, freeing
// a node calls Unref(1), and SetAt refs the new element before it unrefs the
// old (either may be null). So removing the last node that holds an event
// may destroy it; hold a reference (Ref) across any call after which you
// still need an element you are removing.
//
//     CTypedPtrList<MCEventList, ECBase *> found;
//     found.AddEvent(pNote, 1);            // sorted by time, Ref'd
//     found.RemoveEvent(pNote);            // Unref(1): may delete pNote
//
// Children lists are kept in time order: AddEvent with `sorted` inserts an
// event behind the last one whose time is not later, so events of equal time
// keep the order they were added in, and events without a time go to the
// head. Appending in time order is O(1), since the search runs from the tail.
//
// Cost and invalidation as for MCObList; long lists keep a membership index,
// so RemoveEvent, Contains and the refusal of doubles stay O(1) where the
// element occurs once. Sort is quadratic in general (it is the exchange sort
// whose tie order documents depend on), but an already sorted list (and any
// sorted prefix) takes linear time under the default comparison.
//
// Threads: no lock; a list belongs to the thread that owns its document.
//
// Archive: as MCObList (schema 1). The child list record of a parent is
// SerializeFromParent, which also rebuilds the children's parent links.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/MCObList.h>
#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CTypedPtrList.h>

class ECBase;
class MCEventList;
class MCTime;

class SCOREMODEL_API MCEventList : public MCObList
{
    DECLARE_SERIAL(MCEventList)

public:
    // A comparison for Sort: positive when the first event goes after the second.
    typedef int (*COMPAREFUNC)(ECBase *, ECBase *);
    // Gives the event a mirror stands for (see ReplaceMirrors).
    typedef ECBase *(*MIRRORFUNC)(ECBase *mirror);

    explicit MCEventList(int nBlockSize = 10);
    ~MCEventList() override;

    // Refs the new element, then unrefs the old one; nothing for a null position.
    void SetAt(POSITION pos, CObject *newElement) override;

    // ---- Reading and writing a child list ----

    // Storing: the count, then each element as an object. Loading: reads the
    // count and the events; a null entry is skipped; an event whose IsValid()
    // is 0 is released (Ref, Unref(1): it dies unless something else holds
    // it) and dropped; any other event not yet in the list is appended and
    // gets `parent` appended directly to its parent list (no AddParent, so no
    // override runs). An event met twice is added once.
    virtual void SerializeFromParent(CArchive &ar, ECBase *parent);

    // ---- Adding and removing ----

    // `sorted` 0: AddTail. Otherwise behind the last event whose time is not
    // later than this one's, or at the head when there is none or the event
    // has no time. Null for a null event.
    virtual POSITION AddEvent(ECBase *event, int sorted);
    // `sorted` 0 appends the other list; otherwise AddEvent for each element.
    virtual void AddEvents(MCEventList *events, int sorted);
    // Removes the first occurrence; 1, or 0 if absent.
    virtual int RemoveEvent(ECBase *event);
    // RemoveEvent for each element of `events`.
    virtual void RemoveEvents(MCEventList *events);
    // Moves every event of `id`, in order, to a new list that the caller owns
    // (and deletes); never null.
    virtual CTypedPtrList<MCEventList, ECBase *> *RemoveEventType(int id);

    // ---- Event ids ----

    // -1 for an empty list, the id when all events share one, -2 when they
    // differ. A non-zero `ignoreMeasures` skips ECMeasure (id 32).
    virtual int GetEventType(int ignoreMeasures);
    // Appends each id not yet in `ids`, in list order; returns the array's size.
    virtual int GetEventTypes(CArray<int, int> &ids);
    // 1 if an event of `id` is in the list, else 0.
    virtual int ContainsEventType(int id);

    // ---- Searching by time and id ----

    // From the head (or after `after`): the first event that has a time later
    // than `time` (time < event time). Events without a time never match.
    POSITION FindTime(MCTime *time, POSITION after = nullptr) const;
    // From the tail (or before `before`): the first event that has a time not
    // later than `time` (time >= event time).
    POSITION FindTimeReverse(MCTime *time, POSITION before = nullptr) const;
    // The first event of `id` after `after` (from the head when null), or
    // before `before` (from the tail when null).
    POSITION FindEvent(int id, POSITION after = nullptr) const;
    POSITION FindEventReverse(int id, POSITION before = nullptr) const;

    // ---- Reordering ----

    // The exchange sort: for each node in order, each later node's element is
    // compared with the element now at the earlier node, and the two swap when
    // `compare` returns a positive number. Elements move, nodes stay, so a
    // POSITION keeps its place but may hold another event afterwards. Not
    // stable; the order of ties is exactly that of this procedure.
    void Sort(COMPAREFUNC compare);
    // Sort by CompareTime.
    void Sort();
    // The default comparison: two events without a time are equal, an event
    // with a time goes after one without, otherwise 1, -1 or 0 by the times'
    // > and <.
    static int CompareTime(ECBase *a, ECBase *b);

    // Replaces each ECMirror (found by class) with the event it mirrors, in
    // its place; then, if `removeDuplicates` is non-zero, RemoveDuplicates.
    // A mirror that mirrors nothing is only removed.
    void ReplaceMirrors(int removeDuplicates);
    // Removes every node whose element occurs again later: the last
    // occurrence stays.
    void RemoveDuplicates();
    // Reduces the list to its topmost events: for each event whose id is not
    // in `keepIds` (every event when it is null), everything beneath it (the
    // walk of a find-all action with no clip, looking through envelope
    // containers) is removed from the list, once per occurrence found.
    void CollapseToAncestors(CArray<int, int> *keepIds);

    // The mirror class registers how a mirror gives its event; until it does,
    // ReplaceMirrors only drops mirrors. Process-wide, set once at start.
    static void SetMirrorResolver(MIRRORFUNC resolver);

protected:
    // Refs the element (when not null).
    Node *NewNode(Node *pPrev, Node *pNext, CObject *element) override;
    // Unrefs the element (when not null) after the node is gone, so the
    // element's destruction never meets a half-removed node.
    void FreeNode(Node *pNode) override;

private:
    // The literal procedure, on a vector of elements.
    static void ExchangeSort(ECBase **elements, size_t count, COMPAREFUNC compare);
    // Writes `elements` back into the nodes in order, keeping the index.
    void StoreOrder(ECBase *const *elements);
};
