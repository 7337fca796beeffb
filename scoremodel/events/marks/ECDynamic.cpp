#include <scoremodel/events/marks/ECDynamic.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECDynamic, ECControlChange, VERSIONABLE_SCHEMA | 2)

ECDynamic::~ECDynamic() = default;

ECDynamic &ECDynamic::operator=(const ECDynamic &other)
{
    if (this != &other)
    {
        ECControlChange::operator=(other);
        m_duration = other.m_duration;
    }
    return *this;
}

int ECDynamic::operator==(const ECDynamic &other) const
{
    return ECControlChange::operator==(other) && m_duration == other.m_duration;
}

CObject *ECDynamic::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECDynamic)))
        *this = *static_cast<ECDynamic *>(src);
    return this;
}

int ECDynamic::GetEventId() const
{
    return EVENT_ID_DYNAMIC;
}

int ECDynamic::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    types.Add(EVENT_ID_CONTROLLER_ENV);
    return 1;
}

void ECDynamic::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECDynamic::Serialize(CArchive &ar)
{
    ECControlChange::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
}
