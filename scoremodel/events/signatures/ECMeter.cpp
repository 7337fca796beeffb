#include <scoremodel/events/signatures/ECMeter.h>

IMPLEMENT_SERIAL(ECMeter, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECMeter::~ECMeter() = default;

CObject *ECMeter::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMeter)))
        *this = *static_cast<ECMeter *>(src);
    return this;
}

int ECMeter::GetEventId() const
{
    return EVENT_ID_METER;
}

int ECMeter::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
