#include <scoremodel/events/signatures/ECKey.h>

IMPLEMENT_SERIAL(ECKey, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECKey::~ECKey() = default;

CObject *ECKey::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECKey)))
        *this = *static_cast<ECKey *>(src);
    return this;
}

int ECKey::GetEventId() const
{
    return EVENT_ID_KEY;
}

int ECKey::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}
