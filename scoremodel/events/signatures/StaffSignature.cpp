#include <scoremodel/events/signatures/StaffSignature.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/notes/ECMirror.h>

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
    // STAFF CACHE HOOK: the staff's key and clef cache lands with the staff
    // work. Wiring it (with <scoremodel/events/structure/ECStaff.h>) puts
    // the two calls around the change, on the ECStaff found above:
    //     auto *owner = static_cast<ECStaff *>(staff);
    //     owner->UncacheEvent(event, static_cast<BYTE>(hand));
    //     setTime(event, time);
    //     owner->CacheEvent(event, static_cast<BYTE>(hand));
    // Until then the time is only set, as without a staff.
    (void)hand;
    setTime(event, time);
}

void AddSignatureMirror(ECBase::EventList &mirrors, ECBase *owner, ECMirror *mirror)
{
    if (!mirror)
        return;
    mirrors.AddTail(mirror);
    mirror->SetMirrorEvent(owner, 0);
}

void RemoveSignatureMirror(ECBase::EventList &mirrors, ECMirror *mirror)
{
    if (!mirror)
        return;
    POSITION pos = mirrors.Find(mirror);
    if (!pos)
        return;
    mirror->SetMirrorEvent(nullptr, 0);
    mirrors.RemoveAt(pos);
}

void RemoveSignatureMirrors(ECBase::EventList &mirrors)
{
    for (POSITION pos = mirrors.GetHeadPosition(); pos;)
        static_cast<ECMirror *>(mirrors.GetNext(pos))->SetMirrorEvent(nullptr, 0);
    mirrors.RemoveAll();
}
