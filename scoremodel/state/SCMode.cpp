#include <scoremodel/state/SCMode.h>

#include <scoremodel/events/base/ECBase.h>

namespace
{
int s_mode = 0;
int s_keyboardWestern = 1;
unsigned int s_modeStyle = 0;
int s_eventType = -1;
SCMode::EVENTFUNC s_eventFunc = nullptr;
ECBase *s_drawingEvent = nullptr;
} // namespace

void SCMode::DoState()
{
    if (m_nNewMode >= 0)
        SetMode(m_nNewMode);
    SCBase::DoState();
}

int SCMode::GetMode()
{
    return s_mode;
}

void SCMode::SetMode(int mode)
{
    s_mode = mode;
}

int SCMode::IsKeyboardWestern()
{
    return s_keyboardWestern;
}

void SCMode::SetKeyboardWestern(int on)
{
    s_keyboardWestern = on ? 1 : 0;
}

int SCMode::HasModeStyle(unsigned int style)
{
    return (s_modeStyle & style) ? 1 : 0;
}

void SCMode::SetModeStyle(unsigned int style, int on)
{
    s_modeStyle = on ? (s_modeStyle | style) : (s_modeStyle & ~style);
}

ECBase *SCMode::GetEvent()
{
    if (s_drawingEvent)
        return s_drawingEvent;
    return s_eventFunc ? s_eventFunc(s_eventType) : nullptr;
}

void SCMode::SetEventFunc(EVENTFUNC fn)
{
    s_eventFunc = fn;
}

void SCMode::SetDrawingEvent(ECBase *event)
{
    if (event == s_drawingEvent)
        return;
    if (event)
        event->Ref();
    ECBase *old = s_drawingEvent;
    s_drawingEvent = event;
    if (old)
        old->Unref(1);
}

void SCMode::ClearDrawingEvent()
{
    SetDrawingEvent(nullptr);
}

int SCMode::GetEventType()
{
    return s_eventType;
}

void SCMode::SetEventType(int eventType)
{
    s_eventType = eventType;
}
