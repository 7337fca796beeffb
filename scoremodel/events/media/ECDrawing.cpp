#include <scoremodel/events/media/ECDrawing.h>

IMPLEMENT_SERIAL(ECDrawing, ECBase, VERSIONABLE_SCHEMA | 2)

ECDrawing::~ECDrawing() = default;

CObject *ECDrawing::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECDrawing)))
        *this = *static_cast<ECDrawing *>(src);
    return this;
}

int ECDrawing::GetEventId() const
{
    return EVENT_ID_DRAWING;
}

int ECDrawing::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
