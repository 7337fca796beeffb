#include <scoremodel/events/media/ECVideo.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECVideo, ECBase, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the file.
constexpr UINT kSchemaMediaFile = 3;
} // namespace

ECVideo::~ECVideo() = default;

CObject *ECVideo::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECVideo)))
        *this = *static_cast<ECVideo *>(src);
    return this;
}

int ECVideo::GetEventId() const
{
    return EVENT_ID_VIDEO;
}

int ECVideo::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

void ECVideo::Serialize(CArchive &ar)
{
    const UINT schema = ar.IsStoring() ? kSchemaMediaFile : ar.GetObjectSchema();
    ECBase::Serialize(ar);
    if (ar.IsStoring() || schema == static_cast<UINT>(-1) || schema >= kSchemaMediaFile)
        m_file.Serialize(ar);
}
