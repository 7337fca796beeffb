#include <scoremodel/events/notes/ECTrill.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECTrill, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECTrill::~ECTrill() = default;

CObject *ECTrill::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTrill)))
        *this = *static_cast<ECTrill *>(src);
    return this;
}

int ECTrill::GetEventId() const
{
    return EVENT_ID_TRILL;
}

int ECTrill::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_CHORD);
    return 1;
}

void ECTrill::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    SerializeSpareByte(ar);
}
