#include <scoremodel/actions/ACFindMirror.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>

namespace
{
ACFindMirror::MIRRORFUNC s_mirrorResolver = nullptr;
}

ACFindMirror::ACFindMirror(ECBase *mirrored) : ACFindEvents(1), m_pMirrored(mirrored)
{
    AddEvtType(EVENT_ID_MIRROR);
}

ACFindMirror::~ACFindMirror() = default;

int ACFindMirror::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (e->GetEventId() != EVENT_ID_MIRROR)
        return ResultContinue;
    if (m_pMirrored && ResolveMirror(e) != m_pMirrored)
        return ResultContinue;
    return ACFindEvents::DoAction(e);
}

ACFindMirror::MIRRORFUNC ACFindMirror::SetMirrorResolver(MIRRORFUNC resolver)
{
    MIRRORFUNC previous = s_mirrorResolver;
    s_mirrorResolver = resolver;
    return previous;
}

ECBase *ACFindMirror::ResolveMirror(ECBase *mirror)
{
    return s_mirrorResolver && mirror ? s_mirrorResolver(mirror) : nullptr;
}
