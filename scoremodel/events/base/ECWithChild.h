// ECWithChild: an event with a child list.
//
// The base of every container in the tree (the conductor, measures, chords,
// groups). The child list holds a reference on each child and each child
// lists this event among its parents, so the two stay in step through
// AddChild, RemoveChild and RemoveChildren; whoever edits GetChildren()
// directly keeps them in step himself.
//
// AddChild refuses a child already in the list. A child that nobody holds
// (reference count 0, as every new event) cannot be in any list, since each
// list node holds a reference, so it is added without a search. Otherwise a
// short list is walked, and a long list answers from its membership index
// (see MCObList): adding a child stays O(1) at any length, and appending in
// time order with `sorted` finds its place at the tail at once.
//
// The destructor removes the remaining children deeply, so the last holder of
// a container takes its subtree down with it.
//
// operator== is true for any two ECWithChild: the class has no value of its
// own. Archive record: that of ECBase, then, when hasChildren is set, the
// child list (MCEventList::SerializeFromParent).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECWithChild : public ECBase
{
    DECLARE_SERIAL(ECWithChild)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    int GetEventId() const override;
    int GetParentTypes(CArray<int, int> &types) override;

    EventList *GetChildren() override;
    // 0 if `child` is null, this event, or already in the list. Otherwise
    // adds it (by time when `sorted` is non-zero, else at the tail), makes
    // this event its parent (AddParent) and returns 1.
    int AddChild(ECBase *child, int sorted) override;
    // 0 if `child` is not in the list, touching nothing. Otherwise: with
    // `deep`, the child's own children go first; the child leaves the list
    // if it gave up this parent; then it dies unless something else holds
    // it. Returns 1.
    int RemoveChild(ECBase *child, int deep) override;
    // Removes every child from the tail (so the head's order is undisturbed
    // while it runs), deeply with `deep`; returns 1.
    int RemoveChildren(int deep) override;

    ECWithChild &operator=(const ECWithChild &other);
    int operator==(const ECWithChild &) const { return 1; }
    int operator!=(const ECWithChild &other) const { return !(*this == other); }

protected:
    ECWithChild();
    ECWithChild(const ECWithChild &other);
    ~ECWithChild() override;

    void UpdateHasChildren() { SetFlag(FlagHasChildren, !m_children.IsEmpty()); }

    EventList m_children;
};
