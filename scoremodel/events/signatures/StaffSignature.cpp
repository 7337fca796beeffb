#include <scoremodel/events/signatures/StaffSignature.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/structure/ECStaff.h>

void SetStaffCachedTime(ECBase *event, MCTime *time, int hand, void (*setTime)(ECBase *, MCTime *))
{
    if (!event || !time)
        return;
    ECBase *staff = event->GetAncestor(EVENT_ID_STAFF);
    if (!staff)
    {
        setTime(event, time);
        return;
    }
    auto *owner = static_cast<ECStaff *>(staff);
    const auto cacheHand = static_cast<BYTE>(hand);
    owner->UncacheEvent(event, cacheHand);
    setTime(event, time);
    owner->CacheEvent(event, cacheHand);
}
