#include <scoremodel/events/envelopes/ECEnvelope.h>

IMPLEMENT_SERIAL(ECEnvelope, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECEnvelope::~ECEnvelope() = default;

CObject *ECEnvelope::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECEnvelope)))
        *this = *static_cast<ECEnvelope *>(src);
    return this;
}

int ECEnvelope::GetEventId() const
{
    return EVENT_ID_ENVELOPE;
}

int ECEnvelope::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    types.Add(EVENT_ID_STAFF);
    types.Add(EVENT_ID_TRACK);
    types.Add(EVENT_ID_WAVE_TRACK);
    return 1;
}
