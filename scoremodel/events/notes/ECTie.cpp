#include <scoremodel/events/notes/ECTie.h>

IMPLEMENT_SERIAL(ECTie, ECGroup, VERSIONABLE_SCHEMA | 2)

ECTie::~ECTie() = default;

CObject *ECTie::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTie)))
        *this = *static_cast<ECTie *>(src);
    return this;
}

int ECTie::GetEventId() const
{
    return EVENT_ID_TIE;
}

int ECTie::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

int ECTie::RemoveChild(ECBase *child, int deep)
{
    KeepAlive self(this);
    const int result = ECGroup::RemoveChild(child, deep);
    RemoveChildrenWhenNoNoteIsLeft();
    return result;
}
