// MCRelationCache: the links of events that a remove or the undo of an add
// takes out of the tree and that the tree alone cannot give back: the notes
// of a slur or tuplet, and the slurs, tuplets and chords of a note.
//
// Each entry keeps an event's former children and former parents, in order,
// with a reference on each, so they live as long as the command may need
// them. Restore puts back every link that is missing and none that survived,
// walking the entries in order of their events' addresses and each list in
// stored order.
#pragma once

#include <scoremodel/events/base/ECBase.h>

#include <map>
#include <unordered_map>
#include <memory>
#include <vector>

class MCRelationCache
{
public:
    void Clear() { m_entries.clear(); }
    // Enters `event` unless both lists are empty. A second entry for the
    // same event replaces the first.
    void Enter(ECBase *event, const std::vector<ECBase *> &children, const std::vector<ECBase *> &parents);
    // For each former child c of e: e->AddChild(c, 1) unless e holds it, and
    // c->AddParent(e) unless c lists e. For each former parent p:
    // p->AddChild(e, 1) unless p holds e.
    void Restore() const;
    // Enters each chord that holds `note` with all its children and parents:
    // the removal of its last note dissolves a chord, and this is what
    // brings it back whole. Restoring a chord that did not dissolve changes
    // nothing.
    void EnterChordsOf(ECBase *note);
    bool IsEmpty() const { return m_entries.empty(); }

private:
    struct Relations
    {
        ECBase::EventList children;
        ECBase::EventList parents;
    };
    std::map<ECBase *, std::unique_ptr<Relations>> m_entries;
};

// MCListOrder: the order of the child and parent lists that a remove
// touches. Adding events back puts each at its place by time, which among
// events of one time (the notes of a chord and the chord itself) is not
// where it was, and restoring links appends to parent lists: putting the
// recorded order back afterwards gives back the same lists.
class MCListOrder
{
public:
    // Records the child and parent lists of `event` as they stand now; an
    // event recorded already keeps its first record.
    void Record(ECBase *event);
    // Records `event`, its parents and children, and the parents and
    // children of a chord among them (a chord may dissolve out of its own
    // parents): every list that taking `event` out or putting it back can
    // change.
    void RecordAround(ECBase *event);
    bool IsEmpty() const { return m_lists.empty(); }
    // Takes out of each recorded list the members it did not hold (with
    // RemoveChild, so both ends of the link go), then reorders it: the
    // recorded members in their recorded order, then any others.
    void Restore() const;

private:
    struct Lists
    {
        std::vector<ECBase *> children;
        std::vector<ECBase *> parents;
    };
    // Restoring visits the records in any order: each fixes its own lists.
    std::unordered_map<ECBase *, Lists> m_lists;
    // Keeps the recorded events alive as long as the record.
    ECBase::EventList m_held;
};
