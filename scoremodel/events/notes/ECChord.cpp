#include <scoremodel/events/notes/ECChord.h>

IMPLEMENT_SERIAL(ECChord, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECChord::~ECChord() = default;

CObject *ECChord::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChord)))
        *this = *static_cast<ECChord *>(src);
    return this;
}

int ECChord::GetEventId() const
{
    return EVENT_ID_CHORD;
}

int ECChord::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    types.Add(EVENT_ID_BEAM);
    types.Add(EVENT_ID_TUPLET);
    return 1;
}
