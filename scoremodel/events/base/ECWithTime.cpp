#include <scoremodel/events/base/ECWithTime.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECWithTime, ECBase, VERSIONABLE_SCHEMA | 2)

ECWithTime::ECWithTime() : m_time(MCTime::TimeNull())
{
}

ECWithTime::ECWithTime(const ECWithTime &other) : ECBase(other), m_time(MCTime::TimeNull())
{
    *this = other;
    m_time = other.m_time;
}

ECWithTime::~ECWithTime() = default;

ECWithTime &ECWithTime::operator=(const ECWithTime &other)
{
    if (this != &other)
    {
        ECBase::operator=(other);
        m_voiceTrack = other.m_voiceTrack;
    }
    return *this;
}

int ECWithTime::operator==(const ECWithTime &other) const
{
    return (m_time == other.m_time) && m_voiceTrack == other.m_voiceTrack;
}

CObject *ECWithTime::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECWithTime)))
        *this = *static_cast<ECWithTime *>(src);
    return this;
}

int ECWithTime::GetEventId() const
{
    return EVENT_ID_WITH_TIME;
}

int ECWithTime::GetParentTypes(CArray<int, int> &)
{
    return 0;
}

void ECWithTime::SetTime(MCTime *time)
{
    if (time)
        m_time = *time;
}

void ECWithTime::SetVoiceTrack(int voice, int track)
{
    m_voiceTrack = MCVoiceTrack(static_cast<unsigned>(voice), static_cast<unsigned>(track));
}

void ECWithTime::SetVoiceTrack(MCVoiceTrack *voiceTrack)
{
    if (voiceTrack)
        m_voiceTrack = *voiceTrack;
}

void ECWithTime::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    if (ar.IsStoring())
    {
        m_time.Serialize(ar, -1);
        ar << m_voiceTrack.GetValue();
    }
    else
    {
        m_time.Serialize(ar, ActiveArchiveVersion());
        WORD value = 0;
        ar >> value;
        m_voiceTrack.SetValue(value);
    }
}
