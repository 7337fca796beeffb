// MCEventWalk: the two tree walks that the event bases need themselves.
//
// GetAncestor, GetDescendant and MCEventList::CollapseToAncestors search the
// tree the way the traversal actions do, but the event bases sit below the
// actions and cannot use them. These walks give exactly the results of:
//
//   FindFirst  - a find-first action with one event id, no bypass list, the
//                depth limit given (255, -1 or out of range: none) and, walking down, the
//                default clip list (beam 7, slur 54, tie 60, glissando 26:
//                met, but not entered); walking up, no clip list.
//   CollectAll - a find-all action with no clip list and the default bypass
//                list (the envelope containers 11, 19, 22, 34, 38, 42, 46,
//                48, 52, 58 and the unused ids 63, 69, 79 are looked through:
//                not reported, their children are), no depth limit.
//
// Both start with the event itself, then go depth first through the child
// lists (or the parent lists, walking up) from the head. An event reachable
// along several paths is searched once per depth level it could still
// reach, which cannot change a result in a graph without cycles; a graph with
// a cycle (only a corrupt one has them) ends instead of running forever.
//
// The action family must keep agreeing with this definition; once the
// actions exist, callers may move to them without any change of result.
#pragma once

#include <scoremodel/Export.h>

#include <vector>

class ECBase;

class SCOREMODEL_API MCEventWalk
{
public:
    // The first event of `id` from `start` (included). `depth` levels at most
    // (0 to 254; 255, -1 or any value outside 0 to 255: no limit),
    // downward through the children or upward through the parents.
    static ECBase *FindFirst(ECBase *start, int id, int depth, bool upward);
    // Every event from `start` (included) downward, in walk order; an event
    // may appear more than once only when the graph has a cycle.
    static void CollectAll(ECBase *start, std::vector<ECBase *> &found);

    // Whether the default clip list or the default bypass list holds `id`.
    static bool IsDefaultClipped(int id);
    static bool IsDefaultBypassed(int id);
};
