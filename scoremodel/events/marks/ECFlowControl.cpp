#include <scoremodel/events/marks/ECFlowControl.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECFlowControl, ECWithTimeChild, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the kind.
constexpr UINT kSchemaFlowKind = 3;
} // namespace

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

void ECFlowControl::SetFlowKind(int kind)
{
    if (kind >= FlowNone && kind <= FlowLast)
        m_nKind = kind;
}

void ECFlowControl::Serialize(CArchive &ar)
{
    // Read before the base part, whose children replace it.
    const UINT schema = ar.IsStoring() ? kSchemaFlowKind : ar.GetObjectSchema();
    ECWithTimeChild::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<BYTE>(m_nKind);
        return;
    }
    if (schema != static_cast<UINT>(-1) && schema < kSchemaFlowKind)
        return;
    BYTE kind = 0;
    ar >> kind;
    m_nKind = kind <= FlowLast ? kind : static_cast<int>(FlowNone);
}
