#include <scoremodel/events/notes/ECMordent.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECMordent, ECWithChild, VERSIONABLE_SCHEMA | 2)

ECMordent::~ECMordent() = default;

CObject *ECMordent::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECMordent)))
        *this = *static_cast<ECMordent *>(src);
    return this;
}

int ECMordent::GetEventId() const
{
    return EVENT_ID_MORDENT;
}

int ECMordent::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_CHORD);
    return 1;
}

void ECMordent::Serialize(CArchive &ar)
{
    ECWithChild::Serialize(ar);
    SerializeSpareByte(ar);
}
