#include <scoremodel/events/envelopes/ECTempoEnv.h>

IMPLEMENT_SERIAL(ECTempoEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECTempoEnv::~ECTempoEnv() = default;

CObject *ECTempoEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTempoEnv)))
        *this = *static_cast<ECTempoEnv *>(src);
    return this;
}

int ECTempoEnv::GetEventId() const
{
    return EVENT_ID_TEMPO_ENV;
}

int ECTempoEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
