#include <scoremodel/events/base/ArchiveVersion.h>

namespace
{
ARCHIVEVERSIONFUNC s_source = nullptr;
}

int ActiveArchiveVersion()
{
    return s_source ? s_source() : 0x7FFFFFFF;
}

ARCHIVEVERSIONFUNC SetActiveArchiveVersionSource(ARCHIVEVERSIONFUNC source)
{
    ARCHIVEVERSIONFUNC previous = s_source;
    s_source = source;
    return previous;
}
