#include <scoremodel/events/marks/ECTranspose.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECTranspose, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECTranspose::~ECTranspose() = default;

ECTranspose &ECTranspose::operator=(const ECTranspose &other)
{
    if (this != &other)
    {
        ECEnvPoint::operator=(other);
        m_duration = other.m_duration;
    }
    return *this;
}

int ECTranspose::operator==(const ECTranspose &other) const
{
    return ECEnvPoint::operator==(other) && m_duration == other.m_duration;
}

CObject *ECTranspose::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTranspose)))
        *this = *static_cast<ECTranspose *>(src);
    return this;
}

int ECTranspose::GetEventId() const
{
    return EVENT_ID_TRANSPOSE;
}

int ECTranspose::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    types.Add(EVENT_ID_CONTROLLER_ENV);
    return 1;
}

void ECTranspose::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECTranspose::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
}
