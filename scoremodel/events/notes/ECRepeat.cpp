#include <scoremodel/events/notes/ECRepeat.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECRepeat, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECRepeat::~ECRepeat() = default;

CObject *ECRepeat::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECRepeat)))
        *this = *static_cast<ECRepeat *>(src);
    return this;
}

int ECRepeat::GetEventId() const
{
    return EVENT_ID_REPEAT;
}

int ECRepeat::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

void ECRepeat::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    SerializeSpareByte(ar);
}
