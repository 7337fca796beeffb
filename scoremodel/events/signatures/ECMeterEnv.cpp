#include <scoremodel/events/signatures/ECMeterEnv.h>

IMPLEMENT_SERIAL(ECMeterEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECMeterEnv::~ECMeterEnv() = default;

CObject *ECMeterEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMeterEnv)))
        *this = *static_cast<ECMeterEnv *>(src);
    return this;
}

int ECMeterEnv::GetEventId() const
{
    return EVENT_ID_METER_ENV;
}

int ECMeterEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
