#include <scoremodel/events/structure/ECMeasure.h>

#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/events/structure/MCStaffCache.h>

IMPLEMENT_SERIAL(ECMeasure, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECMeasure::ECMeasure()
{
    m_voiceTrack = MCVoiceTrack(14, 0x7FF);
}

ECMeasure::ECMeasure(const ECMeasure &other) : ECWithTimeChild(other)
{
}

ECMeasure::~ECMeasure() = default;

ECMeasure &ECMeasure::operator=(const ECMeasure &other)
{
    if (this != &other)
        ECWithTimeChild::operator=(other);
    return *this;
}

CObject *ECMeasure::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMeasure)))
        *this = *static_cast<ECMeasure *>(src);
    return this;
}

int ECMeasure::GetEventId() const
{
    return EVENT_ID_MEASURE;
}

int ECMeasure::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

int ECMeasure::GetMeasureNumber()
{
    auto *conductor = static_cast<ECConductor *>(GetAncestor(EVENT_ID_CONDUCTOR, -1));
    return conductor ? conductor->GetMeasureNumberAtTime(m_time) : 0;
}

void ECMeasure::GetChildrenForSelection(EventList &events)
{
    events.RemoveAll();
    ACFindEvents find(2);
    find.AddEvtType(EVENT_ID_NOTE);
    find.AddEvtType(EVENT_ID_GRACE_NOTE);
    find.Apply(this);
    events.AddTail(&find.GetEvents());
}

namespace
{
ECStaff *StaffAbove(ECBase *measure)
{
    return static_cast<ECStaff *>(measure->GetAncestor(EVENT_ID_STAFF, -1));
}
} // namespace

int ECMeasure::AddChild(ECBase *child, int sorted)
{
    if (!ECWithTimeChild::AddChild(child, sorted))
        return 0;
    if (MCStaffCache::IsCacheEvent(child))
        if (ECStaff *staff = StaffAbove(this))
            staff->CacheEvent(child, ECStaff::GetCacheHand(child));
    return 1;
}

int ECMeasure::RemoveChild(ECBase *child, int deep)
{
    if (MCStaffCache::IsCacheEvent(child) && child->GetParents() && child->GetParents()->Find(this))
        if (ECStaff *staff = StaffAbove(this))
            staff->UncacheEvent(child, ECStaff::GetCacheHand(child));
    return ECWithTimeChild::RemoveChild(child, deep);
}

int ECMeasure::RemoveChildren(int deep)
{
    // Straight to the cache: the staff's UncacheEvent would let a second
    // clef of the same moment take the place, and that one leaves too.
    ECStaff *staff = StaffAbove(this);
    if (MCStaffCache *cache = staff ? staff->GetCache() : nullptr)
        for (POSITION pos = m_children.GetHeadPosition(); pos;)
        {
            ECBase *child = m_children.GetNext(pos);
            if (MCStaffCache::IsCacheEvent(child))
                cache->UncacheEvent(child, ECStaff::GetCacheHand(child));
        }
    return ECWithTimeChild::RemoveChildren(deep);
}
