#include <scoremodel/events/base/ECWithTimeChild.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECWithTimeChild, ECWithChild, VERSIONABLE_SCHEMA | 2)

ECWithTimeChild::ECWithTimeChild() : m_time(MCTime::TimeNull())
{
}

ECWithTimeChild::ECWithTimeChild(const ECWithTimeChild &other) : ECWithChild(other), m_time(MCTime::TimeNull())
{
    *this = other;
    m_time = other.m_time;
}

ECWithTimeChild::~ECWithTimeChild() = default;

ECWithTimeChild &ECWithTimeChild::operator=(const ECWithTimeChild &other)
{
    if (this != &other)
    {
        ECWithChild::operator=(other);
        m_voiceTrack = other.m_voiceTrack;
    }
    return *this;
}

int ECWithTimeChild::operator==(const ECWithTimeChild &other) const
{
    return ECWithChild::operator==(other) && (m_time == other.m_time) && m_voiceTrack == other.m_voiceTrack;
}

CObject *ECWithTimeChild::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECWithTimeChild)))
        *this = *static_cast<ECWithTimeChild *>(src);
    return this;
}

int ECWithTimeChild::GetEventId() const
{
    return EVENT_ID_WITH_TIME_CHILD;
}

int ECWithTimeChild::GetParentTypes(CArray<int, int> &)
{
    return 0;
}

void ECWithTimeChild::SetTime(MCTime *time)
{
    if (time)
        m_time = *time;
}

void ECWithTimeChild::SetVoiceTrack(int voice, int track)
{
    m_voiceTrack = MCVoiceTrack(static_cast<unsigned>(voice), static_cast<unsigned>(track));
}

void ECWithTimeChild::SetVoiceTrack(MCVoiceTrack *voiceTrack)
{
    if (voiceTrack)
        m_voiceTrack = *voiceTrack;
}

void ECWithTimeChild::Serialize(CArchive &ar)
{
    ECWithChild::Serialize(ar);
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
