// The host's handle on the message queue of its document thread.
//
// Commands and state records travel as messages to hidden windows (Window.h).
// Sent ones run at once; posted ones and timer messages wait in the queue of
// the thread that owns the window until that thread pumps it, here. A host
// either calls RunFor from its own loop now and then, or, with an event loop
// of its own, polls the wake-up descriptor:
//
//   struct pollfd p = {MCMessageLoop::GetWakeupFd(), POLLIN, 0};
//   for (;;) {
//       poll(&p, 1, MCMessageLoop::GetNextTimerDelay());   // -1 waits for work only
//       MCMessageLoop::ProcessPending();
//   }
//
// Threads. Every function works on the calling thread's queue (made on first
// use) and may be called from any thread; each thread pumps only its own.
// Pumping may nest: a window procedure may call ProcessPending or RunFor.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Window.h>

class SCOREMODEL_API MCMessageLoop
{
public:
    MCMessageLoop() = delete;

    // ---- Pumping --------------------------------------------------------

    // Delivers the messages sent to this thread from others, the messages
    // posted to it before the call and the timers due, in that order, and
    // returns how many window procedures (or timer callbacks) ran. Messages
    // posted while it runs wait for the next call, so a procedure that posts
    // to itself cannot keep it from returning. Messages of destroyed windows
    // are dropped and not counted. Never blocks.
    // An exception from a procedure leaves here; what is still queued stays
    // queued, and the wake-up descriptor stays readable for it.
    static int ProcessPending();

    // Pumps for ms milliseconds: delivers as ProcessPending does, sleeps until
    // the next message or timer, and again, until the time is up. Returns the
    // number delivered. RunFor(0) is one ProcessPending.
    static int RunFor(unsigned int ms);

    // ---- Joining the host's event loop -----------------------------------

    // A descriptor that becomes readable when a message is posted or sent to
    // this thread, or a timer of it is set from another thread; the next
    // ProcessPending makes it unreadable again. Poll it; do not read or close
    // it. -1 when the system had no descriptor to give.
    static int GetWakeupFd();

    // Milliseconds until this thread's first timer is due, rounded up; 0 when
    // one is due now, -1 when no timer runs. Suits poll's timeout argument.
    static int GetNextTimerDelay();

    // ---- The main window -------------------------------------------------

    // Names the window that receives what has no document of its own (state
    // records without a target), for the calling thread. Null clears it.
    // FALSE, and nothing changes, when hWnd is neither null nor a window.
    // The window may belong to another thread; messages reach it by send.
    static BOOL SetMainWindow(HWND hWnd);

    // The calling thread's main window, or null when none was set or it has
    // been destroyed since.
    static HWND GetMainWindow();

    // ---- Hidden windows of the calling thread -----------------------------

    // `hWnd` when the calling thread owns it; otherwise a new window of the
    // registered class `className`, titled with the class name, made on this
    // thread. Null when it could not be made. The library's hidden windows
    // move to the document thread with it.
    static HWND OwnWindowOfClass(HWND hWnd, LPCWSTR className);
};
