// MCCache: a time-indexed cache of what is in force at any moment.
//
// The cache keeps several parallel lists (GetSize of them) in one sorted
// list of points. A point is a moment at which at least one list changes,
// and it is complete: it holds, for every list, the object in force from its
// time on (or 0), so one lookup reads one entry and never walks back to find
// an older change. Only changes are stored; the first point is always at
// 0.0 and is made by the first lookup.
//
//     MCCache cache;
//     cache.SetSize(2);
//     cache.CacheObject(clefA, zero, 0);
//     cache.CacheObject(clefB, four, 0);
//     cache.GetObjectForTime(six, 0);   // clefB
//
// Cost. A lookup walks from a cursor (the point last found), so a run of
// lookups in time order, forward or backward, costs O(1) each; a jump costs
// the points between. Caching or uncaching rewrites the later points of that
// list up to the next change of it (UpdateListPointers). ObjectIsCached is
// linear in the points.
//
// Kept oddities: a lookup moves the cursor, so a lookup mutates the cache
// (see Threads). Of two objects cached at the same time in one list, the one
// cached last answers; the first one is no longer cached. An uncache that
// leaves a point equal to the one before it removes that point, so that
// moving an event back and forth does not grow the list.
//
// Threads: as the tree; callers hold the performance lock when a writer may
// run beside them.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/platform/CArray.h>

// One moment of change: from `time` on, entry i of `objects` is in force in
// list i (0 for none). `aux` belongs to a derived cache (DeleteAuxPointer).
struct SCOREMODEL_API CachePoint
{
    MCTime time;
    CPtrArray objects;
    void *aux = nullptr;
};

class SCOREMODEL_API MCCache
{
public:
    MCCache();
    virtual ~MCCache();
    MCCache(const MCCache &) = delete;
    MCCache &operator=(const MCCache &) = delete;

    // The number of parallel lists. An argument below 1 does nothing;
    // otherwise every point is resized (new entries 0).
    void SetSize(int size);
    int GetSize() const { return m_nSize; }
    // The number of points, the first at 0.0 included once made.
    int GetPointCount() const { return m_points.GetCount(); }

    // Makes `object` the one in force in `list` from `time` on, up to the
    // next change of that list. 0 for a time below zero or a bad list; 1
    // otherwise (also when it was cached there already).
    int CacheObject(void *object, MCTime &time, int list);
    // Undoes CacheObject: the entry at `time` falls back to the object in
    // force before it, and so do the later points that had `object`. 0 for
    // a time below zero, a bad list, an empty cache, no point exactly at
    // `time`, or another object in force at that point.
    int UncacheObject(void *object, MCTime &time, int list);
    // 1 when some point holds `object` in `list` (-1: in any list).
    int ObjectIsCached(void *object, int list);

    // The object in force at `time` (the last change at or before it); 0
    // for a time below zero (the cursor stays) or a bad list.
    void *GetObjectForTime(MCTime &time, int list);
    // The object in force just before `time`: that of the point before
    // the one at exactly `time`; at the first point, its own object.
    void *GetObjectBeforeTime(MCTime &time, int list);
    // The stretch in which `object`, in force at `time`, stays in force:
    // `start` is the point it came in at, `end` the next change of the list
    // or TimeMax when none follows. Both TimeNull when `object` is not the
    // one in force at `time`.
    void GetObjectScope(void *object, MCTime &time, int list, MCTime &start, MCTime &end);

    // Removes every point.
    void DeleteCache();
    // Removes the points after `time` (the point at `time` stays).
    void DeleteCacheAfter(MCTime &time);

protected:
    // 1 when `point` can answer a lookup at `time`: here, time >= its time.
    virtual int SearchCondition(MCTime &time, CachePoint *point, POSITION pos);
    // Frees what a derived cache hung on a point; the base hangs nothing.
    virtual void DeleteAuxPointer(void *aux);

    // The last point at or before `time`, made current; makes the first
    // point (0.0, all entries 0) when the list is empty.
    CachePoint *GetCachePointForTime(MCTime &time);
    // As above; if the point is exactly at `time`, the one before it (the
    // first point answers for itself).
    CachePoint *GetCachePointBeforeTime(MCTime &time);
    // After the current point's entry of `list` changed from `old`: each
    // following point that still holds `old` takes the new entry, up to the
    // first that holds something else.
    void UpdateListPointers(void *old, int list);
    int ListInRange(int list) const { return list >= 0 && list < m_nSize; }
    CachePoint *NewPoint(const MCTime &time, const CachePoint *copyFrom);
    void FreePoint(CachePoint *point);

    int m_nSize = 0;
    MCPtrList m_points;
    CachePoint *m_pCurrent = nullptr;
    POSITION m_currentPos = nullptr;
};
