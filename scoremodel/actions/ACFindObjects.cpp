#include <scoremodel/actions/ACFindObjects.h>

#include <scoremodel/events/base/ECBase.h>

ACFindObjects::ACFindObjects(ECBase *object) : m_bFound(0)
{
    AddObject(object);
}

ACFindObjects::ACFindObjects(EventList *objects) : m_bFound(0)
{
    AddObjects(objects);
}

ACFindObjects::~ACFindObjects() = default;

int ACFindObjects::BeginAction()
{
    int result = ACBase::BeginAction();
    m_bFound = 0;
    return result;
}

int ACFindObjects::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    if (!m_objects.Contains(e))
        return ResultContinue;
    m_bFound = 1;
    return ResultStop;
}

void ACFindObjects::AddObject(ECBase *object)
{
    if (object)
        m_objects.AddTail(object);
}

void ACFindObjects::AddObjects(EventList *objects)
{
    if (!objects || objects == &m_objects)
        return;
    for (POSITION pos = objects->GetHeadPosition(); pos;)
        AddObject(objects->GetNext(pos));
}

void ACFindObjects::RemoveObject(ECBase *object)
{
    if (object)
        m_objects.RemoveEvent(object);
}

void ACFindObjects::RemoveObjects()
{
    m_objects.RemoveAll();
}
