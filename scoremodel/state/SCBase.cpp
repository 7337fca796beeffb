#include <scoremodel/state/SCBase.h>

#include <scoremodel/state/MCStateMgr.h>

void SCBase::Apply(ECPerformance *document)
{
    MCStateMgr::ApplyState(this, document);
}
