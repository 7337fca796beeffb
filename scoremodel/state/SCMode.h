// SCMode: the editing mode the views work in, and the record that changes it.
//
// The mode itself is process-wide and static: the current mode, its style
// bits, whether the keyboard reads western note names, the event type that a
// new click makes and the event being drawn. A record made with a mode sets
// that mode as it is delivered (DoState), before any handler sees it:
//
//     (new SCMode(code, newMode))->Apply(doc);   // handlers read SCMode::GetMode()
//
// The drawing event is held by reference while it is set. Threads: the
// statics belong to the state thread.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/state/SCBase.h>

class ECBase;

class SCOREMODEL_API SCMode : public SCBase
{
public:
    // Supplies the event of an event type when no drawing event is set.
    typedef ECBase *(*EVENTFUNC)(int eventType);

    // `mode` -1 leaves the mode as it is.
    explicit SCMode(unsigned int code = 0, int mode = -1) : SCBase(code), m_nNewMode(mode) {}

    // Sets the record's mode, if it has one.
    void DoState() override;
    // The mode this record sets, or -1.
    int GetNewMode() const { return m_nNewMode; }

    static int GetMode();
    static void SetMode(int mode);
    static int IsKeyboardWestern();
    static void SetKeyboardWestern(int on);
    // The mode style bits AND `style`.
    static int HasModeStyle(unsigned int style);
    // Sets (`on`) or clears the bits of `style`.
    static void SetModeStyle(unsigned int style, int on);
    // The drawing event if one is set; else what the event function gives
    // for the event type; else null.
    static ECBase *GetEvent();
    static void SetEventFunc(EVENTFUNC fn);
    // Holds the event (Ref) until it is replaced or cleared.
    static void SetDrawingEvent(ECBase *event);
    static void ClearDrawingEvent();
    static int GetEventType();
    static void SetEventType(int eventType);

private:
    int m_nNewMode;
};
