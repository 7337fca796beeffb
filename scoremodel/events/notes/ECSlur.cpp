#include <scoremodel/events/notes/ECSlur.h>

IMPLEMENT_SERIAL(ECSlur, ECGroup, VERSIONABLE_SCHEMA | 2)

ECSlur::~ECSlur() = default;

CObject *ECSlur::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECSlur)))
        *this = *static_cast<ECSlur *>(src);
    return this;
}

int ECSlur::GetEventId() const
{
    return EVENT_ID_SLUR;
}

int ECSlur::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

int ECSlur::RemoveChild(ECBase *child, int deep)
{
    KeepAlive self(this);
    const int result = ECGroup::RemoveChild(child, deep);
    RemoveChildrenWhenNoNoteIsLeft();
    return result;
}
