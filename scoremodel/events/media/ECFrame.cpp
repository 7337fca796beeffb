#include <scoremodel/events/media/ECFrame.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECFrame, ECWithTime, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the rectangle.
constexpr UINT kSchemaFrameRect = 3;
} // namespace

ECFrame::~ECFrame() = default;

ECFrame &ECFrame::operator=(const ECFrame &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        m_rect = other.m_rect;
    }
    return *this;
}

int ECFrame::operator==(const ECFrame &other) const
{
    return ECWithTime::operator==(other) && m_rect == other.m_rect;
}

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

int ECFrame::IsValid() const
{
    return m_rect.Width() > 0 && m_rect.Height() > 0;
}

void ECFrame::Serialize(CArchive &ar)
{
    const UINT schema = ar.IsStoring() ? kSchemaFrameRect : ar.GetObjectSchema();
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<LONG>(m_rect.left) << static_cast<LONG>(m_rect.top) << static_cast<LONG>(m_rect.right)
           << static_cast<LONG>(m_rect.bottom);
        return;
    }
    if (schema != static_cast<UINT>(-1) && schema < kSchemaFrameRect)
        return;
    LONG left = 0, top = 0, right = 0, bottom = 0;
    ar >> left >> top >> right >> bottom;
    m_rect = CRect(left, top, right, bottom);
}
