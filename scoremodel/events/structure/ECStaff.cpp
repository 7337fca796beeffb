#include <scoremodel/events/structure/ECStaff.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/MCStaffCache.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECStaff, ECTrack, VERSIONABLE_SCHEMA | 2)

ECStaff::ECStaff() : ECStaff(0)
{
}

ECStaff::ECStaff(BYTE type) : m_cache(new MCStaffCache)
{
    SetSpareByte(0x80);
    SetStaffType(type);
}

ECStaff::ECStaff(const ECStaff &other) : ECTrack(other), m_cache(new MCStaffCache)
{
    SetSpareByte(0x80);
    *this = other;
}

ECStaff::~ECStaff()
{
    // The children go after this (in the base's destructor); CacheEvent and
    // UncacheEvent answer 0 without a cache meanwhile.
    delete m_cache;
    m_cache = nullptr;
}

ECStaff &ECStaff::operator=(const ECStaff &other)
{
    if (this != &other)
    {
        ECTrack::operator=(other);
        SetStaffType(other.GetStaffType());
        m_staffSize = other.m_staffSize;
        m_tablature = other.m_tablature;
        m_nStaffLines = other.m_nStaffLines;
        m_nJianpuOffsetY = other.m_nJianpuOffsetY;
    }
    return *this;
}

int ECStaff::operator==(const ECStaff &other) const
{
    return GetStaffType() == other.GetStaffType() && m_staffSize == other.m_staffSize &&
           m_tablature == other.m_tablature && m_nStaffLines == other.m_nStaffLines;
}

int ECStaff::GetStaffLines() const
{
    return GetStaffType() == StaffTypeTablature ? m_tablature.GetStringsCount() : m_nStaffLines;
}

CObject *ECStaff::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECStaff)))
        *this = *static_cast<ECStaff *>(src);
    return this;
}

int ECStaff::GetEventId() const
{
    return EVENT_ID_STAFF;
}

int ECStaff::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR);
    return 1;
}

void ECStaff::Serialize(CArchive &ar)
{
    // ECTrack and ECWithTimeChild (what documents below version 1 stored)
    // have the same layout.
    ECTrack::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << GetSpareByte();
        ar << m_percussionMap;
        ar << m_percussionPitch;
        ar << static_cast<LONG>(m_nStaffLines);
        ar << m_staffSize;
        m_tablature.Serialize(ar);
        return;
    }
    BYTE spare = 0;
    ar >> spare;
    SetSpareByte(spare);
    const bool layout = ActiveArchiveVersion() >= ArchiveVersionStaffLayout;
    if (layout)
    {
        LONG lines = 0;
        ar >> m_percussionMap >> m_percussionPitch >> lines;
        m_nStaffLines = static_cast<int>(lines);
    }
    RebuildCache();
    if (layout)
    {
        ar >> m_staffSize;
        m_tablature.Serialize(ar);
    }
}

void ECStaff::PostSerialize(CArchive &ar)
{
    ECTrack::PostSerialize(ar);
    if (ar.IsLoading() && ActiveArchiveVersion() < ArchiveVersionStaffSize)
    {
        if (m_staffSize == 8)
            m_staffSize = 32;
        else if (m_staffSize == 9)
            m_staffSize = 33;
    }
}

int ECStaff::GetJianpuOffsetYForGrandStaff() const
{
    // The lower hand of a grand staff stands one default offset below.
    return GetStaffType() == StaffTypeTwoHands ? m_nJianpuOffsetY + 1000 : m_nJianpuOffsetY;
}

// ---- Clefs and keys ----

BYTE ECStaff::GetCacheHand(ECBase *event)
{
    if (!event)
        return 0;
    if (event->GetEventId() == EVENT_ID_CLEF)
        return static_cast<ECClef *>(event)->GetHand();
    if (event->GetEventId() == EVENT_ID_KEY)
        return static_cast<ECKey *>(event)->GetHand();
    return 0;
}

ECClef *ECStaff::GetClefAtTime(MCTime &time, BYTE hand)
{
    return m_cache->GetClefAtTime(time, hand);
}

ECClef *ECStaff::GetClefBeforeTime(MCTime &time, BYTE hand)
{
    return m_cache->GetClefBeforeTime(time, hand);
}

namespace
{
// A scope that runs on for ever ends with the score.
void EndWithScore(ECStaff *staff, const MCTime &start, MCTime &end)
{
    if (end != MCTime::TimeMax())
        return;
    auto *conductor = static_cast<ECConductor *>(staff->GetAncestor(EVENT_ID_CONDUCTOR, -1));
    const MCTime scoreEnd = conductor ? conductor->GetMaxMeasureEndTime() : MCTime::TimeZero();
    if (conductor && scoreEnd > start)
        end = scoreEnd;
}
} // namespace

void ECStaff::GetClefScope(ECClef *clef, MCTime &start, MCTime &end, BYTE hand)
{
    m_cache->GetClefScope(clef, start, end, hand);
    EndWithScore(this, start, end);
}

ECKey *ECStaff::GetKeyAtTime(MCTime &time, BYTE hand)
{
    return m_cache->GetKeyAtTime(time, hand);
}

ECKey *ECStaff::GetKeyBeforeTime(MCTime &time, BYTE hand)
{
    return m_cache->GetKeyBeforeTime(time, hand);
}

void ECStaff::GetKeyScope(ECKey *key, MCTime &start, MCTime &end, BYTE hand)
{
    m_cache->GetKeyScope(key, start, end, hand);
    EndWithScore(this, start, end);
}

int ECStaff::CacheEvent(ECBase *event, BYTE hand)
{
    if (!m_cache || !MCStaffCache::IsCacheEvent(event))
        return 0;
    return m_cache->CacheEvent(event, hand);
}

int ECStaff::UncacheEvent(ECBase *event, BYTE hand)
{
    if (!m_cache || !MCStaffCache::IsCacheEvent(event))
        return 0;
    if (!m_cache->UncacheEvent(event, hand))
        return 0;
    CacheRunnerUp(event, hand);
    return 1;
}

void ECStaff::CacheRunnerUp(ECBase *gone, BYTE hand)
{
    // A second clef (key) of the hand at the same moment was refused while
    // the first one stood; now it answers. It can only stand in this
    // staff's measure at that time.
    MCTime *time = gone->GetTime();
    auto *conductor = static_cast<ECConductor *>(GetAncestor(EVENT_ID_CONDUCTOR, -1));
    if (!time || !conductor || GetTrack() < 1)
        return;
    ECMeasure *measure = conductor->GetMeasure(GetTrack(), *time, 0, 0);
    EventList *children = measure ? measure->GetChildren() : nullptr;
    if (!children)
        return;
    const int list = MCStaffCache::GetCacheListPosition(gone, hand);
    for (POSITION pos = children->GetHeadPosition(); pos;)
    {
        ECBase *other = children->GetNext(pos);
        if (other != gone && other->GetEventId() == gone->GetEventId() && other->GetTime() &&
            *other->GetTime() == *time &&
            MCStaffCache::GetCacheListPosition(other, GetCacheHand(other)) == list &&
            m_cache->CacheEvent(other, GetCacheHand(other)))
            return;
    }
}

int ECStaff::RecacheEvent(ECBase *event, BYTE hand)
{
    if (!m_cache || !MCStaffCache::IsCacheEvent(event))
        return 0;
    if (m_cache->EventIsCached(event))
        m_cache->UncacheEvent(event, hand);
    return m_cache->CacheEvent(event, hand);
}

void ECStaff::RebuildCache()
{
    ACFindEvents find(2);
    find.AddEvtType(EVENT_ID_CLEF);
    find.AddEvtType(EVENT_ID_KEY);
    find.Apply(this);
    m_cache->BuildCache(&find.GetEvents());
}

void ECStaff::CacheMeasure(ECBase *measure, bool cache)
{
    if (!m_cache || !measure || measure->GetEventId() != EVENT_ID_MEASURE)
        return;
    EventList *children = measure->GetChildren();
    if (!children)
        return;
    for (POSITION pos = children->GetHeadPosition(); pos;)
    {
        ECBase *event = children->GetNext(pos);
        if (!MCStaffCache::IsCacheEvent(event))
            continue;
        if (cache)
            m_cache->CacheEvent(event, GetCacheHand(event));
        else
            m_cache->UncacheEvent(event, GetCacheHand(event));
    }
}

int ECStaff::AddChild(ECBase *child, int sorted)
{
    if (!ECTrack::AddChild(child, sorted))
        return 0;
    CacheMeasure(child, true);
    return 1;
}

int ECStaff::RemoveChild(ECBase *child, int deep)
{
    if (child && child->GetParents() && child->GetParents()->Find(this))
        CacheMeasure(child, false);
    return ECTrack::RemoveChild(child, deep);
}

int ECStaff::RemoveChildren(int deep)
{
    if (m_cache)
        m_cache->DeleteCache();
    return ECTrack::RemoveChildren(deep);
}

// ---- Compression marks ----

int ECStaff::IsCompressionActive(MCTime *time)
{
    if (!time)
        return 0;
    ACFindTime find(MCTime::TimeZero(), *time);
    find.AddEvtType(EVENT_ID_COMPRESS);
    find.BypassNone();
    find.Apply(this);
    if (find.GetEvents().IsEmpty())
        return 0;
    ECBase *last = find.GetEvents().GetTail();
    MCTime *start = last->GetTime();
    if (!start || *time < *start)
        return 0;
    MCTime end = *start;
    if (MCTime *duration = last->GetDuration())
        end += *duration;
    return *time < end;
}

int ECStaff::IsCompressionBetween(MCTime *a, MCTime *b)
{
    if (a == b || !a || !b)
        return 0;
    // The two ends in the order of the pointers, as callers pass them.
    MCTime *first = a < b ? a : b;
    MCTime *second = a < b ? b : a;
    ACFindTime find(*first, *second);
    find.AddEvtType(EVENT_ID_COMPRESS);
    find.BypassNone();
    find.Apply(this);
    return find.GetEvents().IsEmpty() ? 0 : 1;
}
