#include <scoremodel/events/media/ECDrawing.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECDrawing, ECBase, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the shape and the bounds.
constexpr UINT kSchemaShape = 3;
} // namespace

ECDrawing::~ECDrawing() = default;

CObject *ECDrawing::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECDrawing)))
        *this = *static_cast<ECDrawing *>(src);
    return this;
}

int ECDrawing::GetEventId() const
{
    return EVENT_ID_DRAWING;
}

int ECDrawing::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

void ECDrawing::SetShape(int shape)
{
    if (shape >= ShapeLine && shape <= ShapeLast)
        m_nShape = shape;
}

void ECDrawing::Serialize(CArchive &ar)
{
    const UINT schema = ar.IsStoring() ? kSchemaShape : ar.GetObjectSchema();
    ECBase::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<BYTE>(m_nShape) << static_cast<LONG>(m_bounds.left) << static_cast<LONG>(m_bounds.top)
           << static_cast<LONG>(m_bounds.right) << static_cast<LONG>(m_bounds.bottom);
        return;
    }
    if (schema != static_cast<UINT>(-1) && schema < kSchemaShape)
        return;
    BYTE shape = 0;
    LONG left = 0, top = 0, right = 0, bottom = 0;
    ar >> shape >> left >> top >> right >> bottom;
    m_nShape = shape <= ShapeLast ? shape : static_cast<int>(ShapeLine);
    m_bounds = CRect(left, top, right, bottom);
}
