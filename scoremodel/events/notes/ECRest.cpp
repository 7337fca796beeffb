#include <scoremodel/events/notes/ECRest.h>

IMPLEMENT_SERIAL(ECRest, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECRest::~ECRest() = default;

CObject *ECRest::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECRest)))
        *this = *static_cast<ECRest *>(src);
    return this;
}

int ECRest::GetEventId() const
{
    return EVENT_ID_REST;
}

int ECRest::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    types.Add(EVENT_ID_BEAM);
    types.Add(EVENT_ID_TUPLET);
    return 1;
}
