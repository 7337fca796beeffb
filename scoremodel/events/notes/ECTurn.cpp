#include <scoremodel/events/notes/ECTurn.h>

IMPLEMENT_SERIAL(ECTurn, ECWithChild, VERSIONABLE_SCHEMA | 2)

ECTurn::~ECTurn() = default;

CObject *ECTurn::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTurn)))
        *this = *static_cast<ECTurn *>(src);
    return this;
}

int ECTurn::GetEventId() const
{
    return EVENT_ID_TURN;
}

int ECTurn::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NOTE);
    types.Add(EVENT_ID_CHORD);
    return 1;
}
