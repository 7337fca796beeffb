#include <scoremodel/events/media/ECLyric.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECLyric, ECText, VERSIONABLE_SCHEMA | 3)

ECLyric::~ECLyric() = default;

ECLyric &ECLyric::operator=(const ECLyric &other)
{
    if (this != &other)
    {
        ECText::operator=(other);
        m_duration = other.m_duration;
    }
    return *this;
}

int ECLyric::operator==(const ECLyric &other) const
{
    return ECText::operator==(other) && m_duration == other.m_duration;
}

CObject *ECLyric::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECLyric)))
        *this = *static_cast<ECLyric *>(src);
    return this;
}

int ECLyric::GetEventId() const
{
    return EVENT_ID_LYRIC;
}

int ECLyric::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

void ECLyric::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECLyric::Serialize(CArchive &ar)
{
    ECText::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
}
