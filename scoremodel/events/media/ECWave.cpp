#include <scoremodel/events/media/ECWave.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECWave, ECWithTimeChild, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the file.
constexpr UINT kSchemaMediaFile = 3;
} // namespace

ECWave::~ECWave() = default;

ECWave &ECWave::operator=(const ECWave &other)
{
    if (this != &other)
    {
        ECWithTimeChild::operator=(other);
        m_duration = other.m_duration;
        m_file = other.m_file;
    }
    return *this;
}

int ECWave::operator==(const ECWave &other) const
{
    return ECWithTimeChild::operator==(other) && m_duration == other.m_duration && m_file == other.m_file;
}

CObject *ECWave::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECWave)))
        *this = *static_cast<ECWave *>(src);
    return this;
}

int ECWave::GetEventId() const
{
    return EVENT_ID_WAVE;
}

int ECWave::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_WAVE_TRACK);
    return 1;
}

void ECWave::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECWave::Serialize(CArchive &ar)
{
    // Read before the base part, whose children replace it.
    const UINT schema = ar.IsStoring() ? kSchemaMediaFile : ar.GetObjectSchema();
    ECWithTimeChild::Serialize(ar);
    m_duration.Serialize(ar, ar.IsStoring() ? -1 : ActiveArchiveVersion());
    if (ar.IsStoring() || schema == static_cast<UINT>(-1) || schema >= kSchemaMediaFile)
        m_file.Serialize(ar);
}
