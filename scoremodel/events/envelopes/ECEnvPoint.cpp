#include <scoremodel/events/envelopes/ECEnvPoint.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>
#include <scoremodel/platform/CArchive.h>

#include <vector>

IMPLEMENT_SERIAL(ECEnvPoint, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECEnvPoint::ECEnvPoint() = default;

ECEnvPoint::ECEnvPoint(const ECEnvPoint &other) : ECWithTime(other)
{
    m_pointFlags = other.m_pointFlags;
    m_value = other.m_value;
}

ECEnvPoint::~ECEnvPoint() = default;

ECEnvPoint &ECEnvPoint::operator=(const ECEnvPoint &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        m_pointFlags = other.m_pointFlags;
        m_value = other.m_value;
    }
    return *this;
}

int ECEnvPoint::operator==(const ECEnvPoint &other) const
{
    return IsAnchor() == other.IsAnchor() && IsAnchorHead() == other.IsAnchorHead() &&
           GetStyle() == other.GetStyle() && GetHand() == other.GetHand() && m_value == other.m_value;
}

CObject *ECEnvPoint::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECEnvPoint)))
        *this = *static_cast<ECEnvPoint *>(src);
    return this;
}

int ECEnvPoint::GetEventId() const
{
    return EVENT_ID_ENV_POINT;
}

int ECEnvPoint::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    return 1;
}

int ECEnvPoint::GetAnchorList(EventList &list)
{
    // The envelope is the nearest ancestor of one of the parent types; the
    // walk goes upward only, as the point's parents are all it can reach.
    CArray<int, int> types;
    GetParentTypes(types);
    ECEnvelope *envelope = nullptr;
    std::vector<ECBase *> level{this};
    for (int depth = 0; depth < 256 && !envelope && !level.empty(); ++depth)
    {
        std::vector<ECBase *> next;
        for (ECBase *event : level)
        {
            EventList *parents = event->GetParents();
            for (POSITION pos = parents ? parents->GetHeadPosition() : nullptr; pos && !envelope;)
            {
                ECBase *parent = parents->GetNext(pos);
                for (INT_PTR i = 0; i < types.GetSize(); ++i)
                    if (parent->GetEventId() == types[i] && parent->IsKindOf(RUNTIME_CLASS(ECEnvelope)))
                        envelope = static_cast<ECEnvelope *>(parent);
                next.push_back(parent);
            }
        }
        level.swap(next);
    }
    if (!envelope)
        return 0;
    if (EventList *group = envelope->GetAnchorGroup(this))
        for (POSITION pos = group->GetHeadPosition(); pos;)
            list.AddTail(group->GetNext(pos));
    return list.IsEmpty() ? 0 : 1;
}

void ECEnvPoint::Serialize(CArchive &ar)
{
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_pointFlags << m_value;
        return;
    }
    if (ActiveArchiveVersion() < 3)
    {
        // Before version 3 a point had no record of its own.
        m_pointFlags = 0;
        SetAnchor(1);
        SetAnchorHead(1);
        SetStyle(1);
        return;
    }
    ar >> m_pointFlags >> m_value;
}
