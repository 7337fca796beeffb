// What the clef, key and envelope point commands share. Internal to the
// library.
//
// The owners of derived data. A staff answers clef and key lookups from its
// cache, and an envelope keeps derived values on its points (clock times of
// a tempo map, bar/pulse/tick positions of a meter map). Adding and removing
// keep both current on their own, but an undo puts the child lists back in
// their recorded order afterwards, and with two clefs (keys) of a hand at
// one moment the cache then names the wrong one. So these commands bring
// the owners of every parent they touched up to date once their children
// are placed: the staff rebuilds its cache from the tree (as a load does),
// the envelope recalculates its points.
//
// The undo of each command is the other command of its pair (a removed clef
// comes back through CCAddClef, an added one goes through CCRemoveClef), so
// the owners are brought up to date on either road.
#pragma once

#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/events/base/ECBase.h>

#include <memory>
#include <set>

class MCDerivedOwners
{
public:
    // The staff above `parent`, and `parent` itself when it is an envelope.
    void Note(ECBase *parent);
    // RebuildCache on each noted staff, UpdateChildren on each noted
    // envelope; then forgets them.
    void Refresh();

private:
    // Holds a reference on each owner while it is noted.
    ECBase::EventList m_owners;
};

class ECConductor;

// Gives each item without a parent the measure of its child's track at its
// child's time, where one stands. Only a measure that stands already:
// making one would run a command of its own in the middle of the caller.
void PlaceInMeasures(CCAdd::AddList &items, ECConductor *conductor);

// Notes the owners of every item's parent and refreshes them.
void RefreshOwnersOf(CCAdd::AddList &items);
void RefreshOwnersOf(CCRemove::RemoveList &items);

// The undo of an add of events that have no links of their own (no slurs,
// tuplets or chords): a `Remove` command of the same children, with the
// add's synchronous flag, applied to `target`.
template <class Remove>
void ApplyRemoveOf(CCAdd::AddList &items, int synchronous, ECPerformance *target)
{
    auto *remove = new Remove;
    remove->SetSynchronous(synchronous);
    for (POSITION pos = items.GetHeadPosition(); pos;)
        if (ECBase *child = items.GetNext(pos)->GetChild())
            remove->Remove(child);
    remove->Apply(target);
}

// The undo of a remove of such events: an `Add` command that puts back,
// last removed first, each event that its item's parent held itself, and
// then gives the touched lists their recorded order.
template <class Add>
void ApplyAddOf(CCRemove::RemoveList &items, const std::set<ECBase *> &direct, std::shared_ptr<MCListOrder> order,
                int synchronous, ECPerformance *target)
{
    Add *add = nullptr;
    FCMidi none = FCMidi::MidiNull();
    for (POSITION pos = items.GetTailPosition(); pos;)
    {
        CCRemoveItem *item = items.GetPrev(pos);
        if (!item->GetChild() || !direct.count(item->GetChild()))
            continue;
        if (!add)
        {
            add = new Add;
            add->SetSynchronous(synchronous);
        }
        add->Add(item->GetChild(), item->GetParent(), none);
    }
    if (!add)
        return;
    add->SetChildOrder(std::move(order));
    add->Apply(target);
}
