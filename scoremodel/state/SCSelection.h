// SCSelection: a change of the selection, from the model or a view to all.
//
// The record lists the events that join the selection and those that leave
// it, and holds a reference on each while it lives. Applying it marks them
// (selection bit 1 on or off) before it is delivered, so every handler sees
// the new selection in the events themselves:
//
//     SCSelection *sel = new SCSelection(code);
//     sel->ClearSelection();            // the views drop what they selected
//     sel->AddToSelection(pNote);
//     sel->Apply(doc);
//
// The selection colour is process-wide (SCPrefs sets it from the
// preferences).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/Window.h>
#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCSelection : public SCBase
{
public:
    typedef CTypedPtrList<MCEventList, ECBase *> EventList;

    // Which list GetEvents gives.
    enum : int
    {
        EventsAdded = 0,
        EventsRemoved = 1
    };

    explicit SCSelection(unsigned int code = 0) : SCBase(code) {}

    // Each event once; an event added leaves the other list. Nothing for null.
    void AddToSelection(ECBase *event);
    void AddToSelection(EventList *events);
    void RemoveFromSelection(ECBase *event);
    void RemoveFromSelection(EventList *events);
    // The views drop their whole selection first; empties both lists.
    void ClearSelection();
    int IsClearSelection() const { return m_bClear; }
    // The views redraw the selection they have; nothing changes.
    void UpdateSelection() { m_bUpdate = 1; }
    int IsUpdateSelection() const { return m_bUpdate; }
    // EventsAdded or EventsRemoved; null for anything else.
    EventList *GetEvents(int which);

    // A selection that follows playback or a drag while it changes.
    int IsDynamic() const { return m_bDynamic; }
    void SetDynamic(int on) { m_bDynamic = on ? 1 : 0; }
    // The view that has the focus; the record does not own it.
    HWND GetFocusWnd() const { return m_hFocusWnd; }
    void SetFocusWnd(HWND hWnd) { m_hFocusWnd = hWnd; }
    int GetAutoScroll() const { return m_bAutoScroll; }
    void SetAutoScroll(int on) { m_bAutoScroll = on ? 1 : 0; }

    static COLORREF GetColor();
    static void SetColor(COLORREF color);

    // Marks the events (selection bit 1), then delivers as SCBase::Apply.
    void Apply(ECPerformance *document) override;

private:
    static void Move(ECBase *event, EventList &to, EventList &from);

    EventList m_added;
    EventList m_removed;
    int m_bClear = 0;
    int m_bUpdate = 0;
    int m_bDynamic = 0;
    int m_bAutoScroll = 0;
    HWND m_hFocusWnd = nullptr;
};
