#include <scoremodel/events/media/ECFrame.h>

IMPLEMENT_SERIAL(ECFrame, ECWithTime, VERSIONABLE_SCHEMA | 2)

ECFrame::~ECFrame() = default;

CObject *ECFrame::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECFrame)))
        *this = *static_cast<ECFrame *>(src);
    return this;
}

int ECFrame::GetEventId() const
{
    return EVENT_ID_FRAME;
}

int ECFrame::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_PERFORMANCE);
    return 1;
}
