#include <scoremodel/actions/ACFindData.h>

#include <scoremodel/events/base/ECBase.h>

ACFindData::ACFindData() : ACFindEvents(0)
{
}

ACFindData::ACFindData(int n) : ACFindEvents(n)
{
}

ACFindData::~ACFindData() = default;

int ACFindData::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (!e->GetData(m_nViewCode, 0))
        return ResultContinue;
    return ACFindEvents::DoAction(e);
}
