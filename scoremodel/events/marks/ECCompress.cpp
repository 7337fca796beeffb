#include <scoremodel/events/marks/ECCompress.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECCompress, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECCompress::~ECCompress() = default;

ECCompress &ECCompress::operator=(const ECCompress &other)
{
    if (this != &other)
    {
        ECEnvPoint::operator=(other);
        m_duration = other.m_duration;
    }
    return *this;
}

int ECCompress::operator==(const ECCompress &other) const
{
    return ECEnvPoint::operator==(other) && m_duration == other.m_duration;
}

CObject *ECCompress::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECCompress)))
        *this = *static_cast<ECCompress *>(src);
    return this;
}

int ECCompress::GetEventId() const
{
    return EVENT_ID_COMPRESS;
}

int ECCompress::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    types.Add(EVENT_ID_CONTROLLER_ENV);
    return 1;
}

void ECCompress::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECCompress::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
}
