#include <scoremodel/events/notes/ECOrnament.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECOrnament, ECWithChild, VERSIONABLE_SCHEMA | 2)

ECOrnament::~ECOrnament() = default;

CObject *ECOrnament::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECOrnament)))
        *this = *static_cast<ECOrnament *>(src);
    return this;
}

int ECOrnament::GetEventId() const
{
    return EVENT_ID_ORNAMENT;
}

int ECOrnament::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    return 1;
}

void ECOrnament::Serialize(CArchive &ar)
{
    ECWithChild::Serialize(ar);
    SerializeSpareByte(ar);
}
