#include <scoremodel/events/notes/ECTuplet.h>

IMPLEMENT_SERIAL(ECTuplet, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECTuplet::~ECTuplet() = default;

CObject *ECTuplet::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTuplet)))
        *this = *static_cast<ECTuplet *>(src);
    return this;
}

int ECTuplet::GetEventId() const
{
    return EVENT_ID_TUPLET;
}

int ECTuplet::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}
