#include <scoremodel/events/marks/ECFlowControl.h>

IMPLEMENT_SERIAL(ECFlowControl, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECFlowControl::~ECFlowControl() = default;

CObject *ECFlowControl::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECFlowControl)))
        *this = *static_cast<ECFlowControl *>(src);
    return this;
}

int ECFlowControl::GetEventId() const
{
    return EVENT_ID_FLOW_CONTROL;
}

int ECFlowControl::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}
