#include <scoremodel/events/marks/ECPedal.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECPedal, ECControlChange, VERSIONABLE_SCHEMA | 2)

ECPedal::~ECPedal() = default;

ECPedal &ECPedal::operator=(const ECPedal &other)
{
    if (this != &other)
    {
        ECControlChange::operator=(other);
        m_duration = other.m_duration;
    }
    return *this;
}

int ECPedal::operator==(const ECPedal &other) const
{
    return ECControlChange::operator==(other) && m_duration == other.m_duration;
}

CObject *ECPedal::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPedal)))
        *this = *static_cast<ECPedal *>(src);
    return this;
}

int ECPedal::GetEventId() const
{
    return EVENT_ID_PEDAL;
}

int ECPedal::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    types.Add(EVENT_ID_CONTROLLER_ENV);
    return 1;
}

void ECPedal::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECPedal::Serialize(CArchive &ar)
{
    ECControlChange::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
}
