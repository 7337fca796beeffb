#include <scoremodel/state/SCSelection.h>

namespace
{
COLORREF s_color = 255;
} // namespace

void SCSelection::Move(ECBase *event, EventList &to, EventList &from)
{
    if (!event)
        return;
    if (POSITION pos = from.Find(event))
        from.RemoveAt(pos);
    if (!to.Find(event))
        to.AddTail(event);
}

void SCSelection::AddToSelection(ECBase *event)
{
    Move(event, m_added, m_removed);
}

void SCSelection::AddToSelection(EventList *events)
{
    if (!events)
        return;
    for (POSITION pos = events->GetHeadPosition(); pos;)
        AddToSelection(events->GetNext(pos));
}

void SCSelection::RemoveFromSelection(ECBase *event)
{
    Move(event, m_removed, m_added);
}

void SCSelection::RemoveFromSelection(EventList *events)
{
    if (!events)
        return;
    for (POSITION pos = events->GetHeadPosition(); pos;)
        RemoveFromSelection(events->GetNext(pos));
}

void SCSelection::ClearSelection()
{
    m_added.RemoveAll();
    m_removed.RemoveAll();
    m_bClear = 1;
}

SCSelection::EventList *SCSelection::GetEvents(int which)
{
    if (which == EventsAdded)
        return &m_added;
    if (which == EventsRemoved)
        return &m_removed;
    return nullptr;
}

COLORREF SCSelection::GetColor()
{
    return s_color;
}

void SCSelection::SetColor(COLORREF color)
{
    s_color = color;
}

void SCSelection::Apply(ECPerformance *document)
{
    for (POSITION pos = m_removed.GetHeadPosition(); pos;)
        m_removed.GetNext(pos)->SetSelected(0, 1);
    for (POSITION pos = m_added.GetHeadPosition(); pos;)
        m_added.GetNext(pos)->SetSelected(1, 1);
    SCBase::Apply(document);
}
