#include <scoremodel/events/notes/ECAccidental.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECAccidental, ECBase, VERSIONABLE_SCHEMA | 2)

ECAccidental::~ECAccidental() = default;

CObject *ECAccidental::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECAccidental)))
        *this = *static_cast<ECAccidental *>(src);
    return this;
}

int ECAccidental::GetEventId() const
{
    return EVENT_ID_ACCIDENTAL;
}

int ECAccidental::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_GRACE_NOTE);
    return 1;
}

void ECAccidental::Serialize(CArchive &ar)
{
    ECBase::Serialize(ar);
    SerializeSpareByte(ar);
}
