#include <scoremodel/events/media/ECText.h>

IMPLEMENT_SERIAL(ECText, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECText::~ECText() = default;

CObject *ECText::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECText)))
        *this = *static_cast<ECText *>(src);
    return this;
}

int ECText::GetEventId() const
{
    return EVENT_ID_TEXT;
}

int ECText::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
