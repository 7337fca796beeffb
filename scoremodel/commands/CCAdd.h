// CCAdd: links events into the tree (command id 0), and the base of most
// commands that build.
//
// Each item of the add list is a child and the parent it goes under:
// Process adds every child to its parent, in order, sorted by time; an item
// without a parent places nothing. Undo builds a CCRemove of the same
// children and applies it, so an add and a remove are each other's undo,
// and a redo is a second Process of the same object.
//
//     CCAdd *add = new CCAdd(note, measure, FCMidi::MidiNull());
//     add->Apply(document);
//
// The relation cache. What the tree cannot give back by itself is kept when
// the add is undone: the notes of an added slur that have a length, the
// slurs (other than repeat slurs) of an added note, and the chord of an
// added note, with the chord's own links when the note's removal would
// dissolve it. A redo puts those links back before it places the children,
// and none that survived is doubled, so a redo gives exactly the tree after
// the first Process.
//
// Undoing an added rest also takes out the rests that a split left behind in
// its measure (those marked IsAfterSplit); that clean-up is not undone.
//
// Undo takes each child out of the tree altogether, not only out of the
// parent its item names. An add therefore places new events; to hang events
// that are in the tree already under a new group (a slur over existing
// notes), build the group with them and add the group alone: its undo then
// takes the group away and leaves the notes where they were.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCRelationCache.h>
#include <scoremodel/events/base/MCPtrList.h>

#include <memory>

class SCOREMODEL_API CCAdd : public CCBase
{
    DECLARE_DYNCREATE(CCAdd)

public:
    typedef CTypedPtrList<MCPtrList, CCAddItem *> AddList;

    CCAdd();
    CCAdd(ECBase *child, ECBase *parent, FCMidi &midi);

    // Appends an item for `child` under `parent` and returns it; the cached
    // links are out of date from here on.
    virtual CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi);
    // Appends the child of every item; 1 when `list` is not empty then.
    virtual int GetAddEvents(EventList &list);

    // 0.
    int GetCommandId() override;
    int Process() override;
    void Undo() override;

    AddList &GetAddList() { return m_addList; }
    // The order of children that each Process restores when it has placed
    // its children: the undo of a remove gives the lists back exactly.
    void SetChildOrder(std::shared_ptr<const MCListOrder> order) { m_order = std::move(order); }

protected:
    // Clears the cache and deletes the items.
    ~CCAdd() override;

    void _CashParentChildRelation();
    void _RestoreParentChildRelation();

    AddList m_addList{10};
    MCRelationCache m_relations;
    BYTE m_bRelationCached = 0;
    BYTE m_bRelationPending = 0;
    std::shared_ptr<const MCListOrder> m_order;
    // The lists as the first Process left them, recorded when the add is
    // undone: a redo puts the restored links and the placed children back
    // in that order.
    std::unique_ptr<MCListOrder> m_redoOrder;
};
