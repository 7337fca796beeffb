#include <scoremodel/events/notes/ECMirror.h>

// The one place where an event class reaches up into the actions: the
// mirror search must find a mirror's source without knowing this class.
#include <scoremodel/actions/ACFindMirror.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>

IMPLEMENT_SERIAL(ECMirror, ECWithTime, VERSIONABLE_SCHEMA | 2)

namespace
{
ECBase *MirroredEventOf(ECBase *mirror)
{
    if (!mirror || !mirror->IsKindOf(RUNTIME_CLASS(ECMirror)))
        return nullptr;
    return static_cast<ECMirror *>(mirror)->GetMirrorEvent();
}

// Both seams hold plain function pointers that start as null before any
// constructor runs, so the order in which the library's files initialise
// does not matter.
[[maybe_unused]] const bool s_resolverInstalled = [] {
    MCEventList::SetMirrorResolver(&MirroredEventOf);
    ACFindMirror::SetMirrorResolver(&MirroredEventOf);
    return true;
}();
} // namespace

ECMirror::~ECMirror() = default;

ECMirror &ECMirror::operator=(const ECMirror &other)
{
    if (this != &other)
        ECWithTime::operator=(other);
    return *this;
}

int ECMirror::operator==(const ECMirror &other) const
{
    return ECWithTime::operator==(other) && m_pMirrorEvent == other.m_pMirrorEvent;
}

CObject *ECMirror::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMirror)))
        *this = *static_cast<ECMirror *>(src);
    return this;
}

int ECMirror::GetEventId() const
{
    return EVENT_ID_MIRROR;
}

int ECMirror::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

namespace
{
// Calls `add` or `remove` on the mirror list of a class that keeps one;
// other classes are passed over.
template <class T>
bool Link(ECBase *event, ECMirror *mirror, bool add)
{
    T *owner = dynamic_cast<T *>(event);
    if (!owner)
        return false;
    if (add)
        owner->AddMirror(mirror);
    else
        owner->RemoveMirror(mirror);
    return true;
}

void UpdateMirrorList(ECBase *event, ECMirror *mirror, bool add)
{
    if (event)
        (void)(Link<ECClef>(event, mirror, add) || Link<ECKey>(event, mirror, add) ||
               Link<ECMeter>(event, mirror, add) || Link<ECTempo>(event, mirror, add) ||
               Link<ECText>(event, mirror, add));
}
} // namespace

void ECMirror::SetMirrorEvent(ECBase *event, int update)
{
    if (update)
    {
        UpdateMirrorList(m_pMirrorEvent, this, false);
        UpdateMirrorList(event, this, true);
    }
    m_pMirrorEvent = event;
}
