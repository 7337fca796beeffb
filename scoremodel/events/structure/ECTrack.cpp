#include <scoremodel/events/structure/ECTrack.h>

IMPLEMENT_SERIAL(ECTrack, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

// Voice 14 marks structural objects.
ECTrack::ECTrack()
{
    m_time = MCTime::TimeZero();
    m_voiceTrack = MCVoiceTrack(14, 0x7FF);
}

ECTrack::ECTrack(const ECTrack &other) : ECWithTimeChild(other)
{
}

ECTrack::~ECTrack() = default;

ECTrack &ECTrack::operator=(const ECTrack &other)
{
    if (this != &other)
        ECWithTimeChild::operator=(other);
    return *this;
}

CObject *ECTrack::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTrack)))
        *this = *static_cast<ECTrack *>(src);
    return this;
}

int ECTrack::GetEventId() const
{
    return EVENT_ID_TRACK;
}

int ECTrack::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR);
    return 1;
}

void ECTrack::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
}

int ECTrack::ReleaseHold()
{
    // Each child that lists this track as parent holds one reference on it.
    if (m_parents.IsEmpty() && GetRefCount() <= 1 + m_children.GetCount())
        RemoveChildren(1);
    return Unref(1);
}
