#include <scoremodel/events/notes/ECGlissando.h>

IMPLEMENT_SERIAL(ECGlissando, ECGroup, VERSIONABLE_SCHEMA | 2)

ECGlissando::~ECGlissando() = default;

CObject *ECGlissando::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECGlissando)))
        *this = *static_cast<ECGlissando *>(src);
    return this;
}

int ECGlissando::GetEventId() const
{
    return EVENT_ID_GLISSANDO;
}

int ECGlissando::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

int ECGlissando::RemoveChild(ECBase *child, int deep)
{
    KeepAlive self(this);
    const int result = ECGroup::RemoveChild(child, deep);
    RemoveChildrenWhenNoNoteIsLeft();
    return result;
}
