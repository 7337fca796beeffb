#include <scoremodel/events/signatures/ECClef.h>

IMPLEMENT_SERIAL(ECClef, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECClef::~ECClef() = default;

CObject *ECClef::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECClef)))
        *this = *static_cast<ECClef *>(src);
    return this;
}

int ECClef::GetEventId() const
{
    return EVENT_ID_CLEF;
}

int ECClef::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}
