#include <scoremodel/events/media/ECLyricBlock.h>

IMPLEMENT_SERIAL(ECLyricBlock, ECLyric, VERSIONABLE_SCHEMA | 3)

ECLyricBlock::~ECLyricBlock() = default;

CObject *ECLyricBlock::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECLyricBlock)))
        *this = *static_cast<ECLyricBlock *>(src);
    return this;
}

int ECLyricBlock::GetEventId() const
{
    return EVENT_ID_LYRIC_BLOCK;
}

int ECLyricBlock::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_PERFORMANCE);
    return 1;
}
