// The exact-tree check of the add and remove commands: a command applied in
// an undo step of its own must give back, on undo, the tree before (the same
// objects, parents, children and order) and, on redo, the tree after.
#pragma once

#include "events/base/EventTestSupport.h"

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <vector>

// Every event's children and parents, in order.
using Shape = std::map<ECBase *, std::pair<std::vector<ECBase *>, std::vector<ECBase *>>>;

inline Shape ShapeOf(const std::vector<ECBase *> &events)
{
    Shape shape;
    for (ECBase *e : events)
        shape[e] = {Elements(e->GetChildren()), Elements(e->GetParents())};
    return shape;
}

// Applies `command` (synchronously) in an undo step of its own, then checks
// that undo gives back the shape of `events` before and redo the shape
// after, twice over, and ends undone. `check(applied)` runs after the
// command and after every undo and redo, for what the shape does not show
// (caches, derived values).
inline void RoundTrip(ECPerformance *doc, CCBase *command, const std::vector<ECBase *> &events,
                      const std::function<void(bool applied)> &check = {})
{
    for (ECBase *e : events)
        e->Ref(); // kept alive to compare
    const Shape before = ShapeOf(events);
    if (check)
        check(false);
    command->SetSynchronous(1);
    CString name(L"edit");
    MCCommandMgr::BeginUndo(doc, name);
    command->Apply(doc);
    MCCommandMgr::EndUndo(doc);
    const Shape after = ShapeOf(events);
    EXPECT_NE(before, after) << "the command changed nothing";
    if (check)
        check(true);
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_EQ(doc->Undo(1), 1);
        EXPECT_EQ(ShapeOf(events), before) << "undo, round " << round;
        if (check)
            check(false);
        ASSERT_EQ(doc->Redo(1), 1);
        EXPECT_EQ(ShapeOf(events), after) << "redo, round " << round;
        if (check)
            check(true);
    }
    ASSERT_EQ(doc->Undo(1), 1);
    if (check)
        check(false);
    for (ECBase *e : events)
        e->Unref(1);
}
