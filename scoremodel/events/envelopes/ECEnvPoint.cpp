#include <scoremodel/events/envelopes/ECEnvPoint.h>

IMPLEMENT_SERIAL(ECEnvPoint, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECEnvPoint::~ECEnvPoint() = default;

CObject *ECEnvPoint::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECEnvPoint)))
        *this = *static_cast<ECEnvPoint *>(src);
    return this;
}

int ECEnvPoint::GetEventId() const
{
    return EVENT_ID_ENV_POINT;
}

int ECEnvPoint::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    return 1;
}
