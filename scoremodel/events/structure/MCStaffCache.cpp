#include <scoremodel/events/structure/MCStaffCache.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/structure/ECStaff.h>

MCStaffCache::MCStaffCache()
{
    SetSize(4);
}

MCStaffCache::~MCStaffCache() = default;

int MCStaffCache::IsCacheEvent(ECBase *event)
{
    if (!event)
        return 0;
    const int id = event->GetEventId();
    return id == EVENT_ID_CLEF || id == EVENT_ID_KEY;
}

int MCStaffCache::GetCacheListPosition(int type, BYTE hand)
{
    const int other = hand ? 1 : 0;
    if (type == CacheTypeClef)
        return other;
    if (type == CacheTypeKey)
        return 2 + other;
    return -1;
}

int MCStaffCache::GetCacheListPosition(ECBase *event, BYTE hand)
{
    if (!event)
        return -1;
    switch (event->GetEventId())
    {
    case EVENT_ID_CLEF:
        return GetCacheListPosition(CacheTypeClef, hand);
    case EVENT_ID_KEY:
        return GetCacheListPosition(CacheTypeKey, hand);
    default:
        return -1;
    }
}

ECClef *MCStaffCache::GetClefAtTime(MCTime &time, BYTE hand)
{
    return static_cast<ECClef *>(GetObjectForTime(time, GetCacheListPosition(CacheTypeClef, hand)));
}

ECClef *MCStaffCache::GetClefBeforeTime(MCTime &time, BYTE hand)
{
    return static_cast<ECClef *>(GetObjectBeforeTime(time, GetCacheListPosition(CacheTypeClef, hand)));
}

void MCStaffCache::GetClefScope(ECClef *clef, MCTime &start, MCTime &end, BYTE hand)
{
    start = end = MCTime::TimeNull();
    if (clef && clef->GetTime())
        GetObjectScope(clef, *clef->GetTime(), GetCacheListPosition(CacheTypeClef, hand), start, end);
}

ECKey *MCStaffCache::GetKeyAtTime(MCTime &time, BYTE hand)
{
    return static_cast<ECKey *>(GetObjectForTime(time, GetCacheListPosition(CacheTypeKey, hand)));
}

ECKey *MCStaffCache::GetKeyBeforeTime(MCTime &time, BYTE hand)
{
    return static_cast<ECKey *>(GetObjectBeforeTime(time, GetCacheListPosition(CacheTypeKey, hand)));
}

void MCStaffCache::GetKeyScope(ECKey *key, MCTime &start, MCTime &end, BYTE hand)
{
    start = end = MCTime::TimeNull();
    if (key && key->GetTime())
        GetObjectScope(key, *key->GetTime(), GetCacheListPosition(CacheTypeKey, hand), start, end);
}

int MCStaffCache::EventIsCached(ECBase *event)
{
    return event ? ObjectIsCached(event, -1) : 0;
}

int MCStaffCache::CacheEvent(ECBase *event, BYTE hand)
{
    MCTime *time = event ? event->GetTime() : nullptr;
    if (!time)
        return 0;
    const int list = GetCacheListPosition(event, hand);
    if (list < 0)
        return 0;
    auto *current = static_cast<ECBase *>(GetObjectForTime(*time, list));
    if (current && (!current->GetTime() || *current->GetTime() == *time))
        return 0;
    return CacheObject(event, *time, list);
}

int MCStaffCache::UncacheEvent(ECBase *event, BYTE hand)
{
    MCTime *time = event ? event->GetTime() : nullptr;
    const int list = GetCacheListPosition(event, hand);
    if (!time || list < 0)
        return 0;
    if (UncacheObject(event, *time, list))
        return 1;
    // Moved without telling the cache: find the point it came in at.
    void *before = nullptr;
    for (POSITION pos = m_points.GetHeadPosition(); pos;)
    {
        auto *point = static_cast<CachePoint *>(m_points.GetNext(pos));
        if (point->objects[list] == event && before != event)
        {
            MCTime at = point->time;
            return UncacheObject(event, at, list);
        }
        before = point->objects[list];
    }
    return 0;
}

void MCStaffCache::ResetCurrentPosition(MCTime &time)
{
    GetCachePointForTime(time);
}

void MCStaffCache::BuildCache(ECBase::EventList *events)
{
    DeleteCache();
    if (!events)
        return;
    for (POSITION pos = events->GetHeadPosition(); pos;)
    {
        ECBase *event = events->GetNext(pos);
        if (IsCacheEvent(event))
            CacheEvent(event, ECStaff::GetCacheHand(event));
    }
}
