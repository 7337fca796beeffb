#include <scoremodel/events/notes/ECTremolo.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECTremolo, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECTremolo::~ECTremolo() = default;

CObject *ECTremolo::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTremolo)))
        *this = *static_cast<ECTremolo *>(src);
    return this;
}

int ECTremolo::GetEventId() const
{
    return EVENT_ID_TREMOLO;
}

int ECTremolo::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_CHORD);
    return 1;
}

void ECTremolo::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    SerializeSpareByte(ar);
}
