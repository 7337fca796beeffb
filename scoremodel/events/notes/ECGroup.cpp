#include <scoremodel/events/notes/ECGroup.h>

IMPLEMENT_SERIAL(ECGroup, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECGroup::~ECGroup() = default;

CObject *ECGroup::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECGroup)))
        *this = *static_cast<ECGroup *>(src);
    return this;
}

int ECGroup::GetEventId() const
{
    return EVENT_ID_GROUP;
}

int ECGroup::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}
