#include <scoremodel/events/envelopes/ECTempo.h>

IMPLEMENT_SERIAL(ECTempo, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECTempo::~ECTempo() = default;

ECTempo &ECTempo::operator=(const ECTempo &other)
{
    if (this != &other)
        ECEnvPoint::operator=(other);
    return *this;
}

int ECTempo::operator==(const ECTempo &other) const
{
    return ECEnvPoint::operator==(other) && m_duration == other.m_duration;
}

CObject *ECTempo::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTempo)))
        *this = *static_cast<ECTempo *>(src);
    return this;
}

int ECTempo::GetEventId() const
{
    return EVENT_ID_TEMPO;
}

int ECTempo::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_TEMPO_ENV);
    return 1;
}

void ECTempo::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}
