// MCStaffCache: a staff's clefs and keys, by time and hand.
//
// Four lists of an MCCache: clefs of hand 0, clefs of the other hand, keys
// of hand 0, keys of the other hand. Any non-zero hand reads the second list
// of its kind, so hands 1 and 3 are the same hand here. The staff (ECStaff)
// owns one and keeps it current: its measures cache a clef or key when it is
// added and uncache it before it leaves, and a clef or key that moves is
// uncached before its time changes and cached again after
// (ECStaff::UncacheEvent, CacheEvent, RecacheEvent).
//
// The cache holds no reference: an event must leave the cache before it
// dies, which the staff and its measures see to.
//
// The first event at a moment keeps its place: a second clef (or key) of the
// same hand at the same time is not cached while the first one is.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/structure/MCCache.h>

class ECClef;
class ECKey;

class SCOREMODEL_API MCStaffCache : public MCCache
{
public:
    // The kinds GetCacheListPosition takes.
    enum : int
    {
        CacheTypeClef = 5,
        CacheTypeKey = 6
    };

    // Size 4.
    MCStaffCache();
    ~MCStaffCache() override;

    // 1 for a clef (14) or a key (29), the only events a staff caches.
    static int IsCacheEvent(ECBase *event);
    // Lists: 0 clef hand 0, 1 clef other hand, 2 key hand 0, 3 key other
    // hand; -1 for any other type.
    static int GetCacheListPosition(int type, BYTE hand);
    // The type from the event id (14 clef, 29 key); -1 for any other event.
    static int GetCacheListPosition(ECBase *event, BYTE hand);

    ECClef *GetClefAtTime(MCTime &time, BYTE hand);
    ECClef *GetClefBeforeTime(MCTime &time, BYTE hand);
    // See MCCache::GetObjectScope; the clef's own time is the moment asked.
    void GetClefScope(ECClef *clef, MCTime &start, MCTime &end, BYTE hand);
    ECKey *GetKeyAtTime(MCTime &time, BYTE hand);
    ECKey *GetKeyBeforeTime(MCTime &time, BYTE hand);
    void GetKeyScope(ECKey *key, MCTime &start, MCTime &end, BYTE hand);

    // 1 when the event is cached in any list.
    int EventIsCached(ECBase *event);
    // 0 for an event without a time or not a clef or key, and when another
    // event of that list is cached at the same time (or the one in force
    // has no time); otherwise caches it at its time.
    int CacheEvent(ECBase *event, BYTE hand);
    // Uncaches the event at its time. An event whose time changed while it
    // was cached is found where it came in and uncached there, so that no
    // dangling entry outlives it. 0 when it was not cached in that list.
    int UncacheEvent(ECBase *event, BYTE hand);
    // Moves the cursor to the point in force at `time`.
    void ResetCurrentPosition(MCTime &time);
    // Empties the cache, then caches each clef and key of the list in list
    // order under its own hand (ECStaff::GetCacheHand); other events are
    // passed over. Null: just empties.
    void BuildCache(ECBase::EventList *events);
};
