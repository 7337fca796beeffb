#include <scoremodel/events/marks/ECSystemMessage.h>

IMPLEMENT_SERIAL(ECSystemMessage, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECSystemMessage::~ECSystemMessage() = default;

CObject *ECSystemMessage::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECSystemMessage)))
        *this = *static_cast<ECSystemMessage *>(src);
    return this;
}

int ECSystemMessage::GetEventId() const
{
    return EVENT_ID_SYSTEM_MESSAGE;
}

int ECSystemMessage::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
