#include <scoremodel/events/notes/ECDot.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECDot, ECBase, VERSIONABLE_SCHEMA | 2)

ECDot::~ECDot() = default;

CObject *ECDot::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECDot)))
        *this = *static_cast<ECDot *>(src);
    return this;
}

int ECDot::GetEventId() const
{
    return EVENT_ID_DOT;
}

int ECDot::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_CHORD);
    types.Add(EVENT_ID_REST);
    return 1;
}

void ECDot::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    SerializeSpareByte(ar);
}
