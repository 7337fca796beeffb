// Hidden windows, sent and posted messages and timers with the platform's
// interface.
//
// The model delivers its commands and state records through message-only
// windows on the document thread. This is that messaging, for Linux: a window
// is a handle with a window procedure, owned by the thread that created it;
// every thread that owns windows has one queue, which the host pumps with
// MCMessageLoop (see MCMessageLoop.h).
//
//   static LRESULT MyProc(HWND h, UINT msg, WPARAM wp, LPARAM lp)
//   {
//       if (msg == WM_USER + 1) return Handle(wp, lp);
//       return DefWindowProcW(h, msg, wp, lp);
//   }
//   WNDCLASSW wc = {};
//   wc.lpfnWndProc = MyProc;
//   wc.lpszClassName = L"MyHidden";
//   RegisterClassW(&wc);
//   HWND h = CreateWindowExW(0, L"MyHidden", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
//   PostMessageW(h, WM_USER + 1, 0, 0);     // runs at the next MCMessageLoop::ProcessPending()
//
// Threads. Every function may be called from any thread, with these rules:
// - A window procedure runs only on the window's owner thread: at once for a
//   send from that thread, otherwise when that thread pumps its queue.
// - SendMessageW from another thread blocks until the owner thread has run the
//   procedure (or destroyed the window, or ended). While it waits, the sending
//   thread still runs messages sent to its own windows, so two threads that
//   send to each other do not deadlock. Posted messages and timers of the
//   waiting thread wait for its next pump.
// - DestroyWindow works only on the owner thread.
// - A thread that ends takes its windows with it, silently: no WM_DESTROY is
//   sent, because the objects behind them may already be gone.
//
// Handles. An HWND is a number that is never reused, so a stale handle after
// DestroyWindow is safely recognised as "no window" by every function.
//
// Order. Messages posted to one thread are delivered in the order they were
// posted; messages sent from other threads run before the next posted one;
// timer messages come after the posted messages of the same pump. Messages
// still queued for a window that is destroyed are dropped.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

// Opaque handles, declared as the platform does so that each is its own type.
struct HWND__;
typedef HWND__ *HWND;
struct HINSTANCE__;
typedef HINSTANCE__ *HINSTANCE;
typedef HINSTANCE HMODULE;
struct HICON__;
typedef HICON__ *HICON;
typedef HICON HCURSOR;
struct HBRUSH__;
typedef HBRUSH__ *HBRUSH;
struct HMENU__;
typedef HMENU__ *HMENU;
typedef WORD ATOM;

typedef LRESULT (*WNDPROC)(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
// Called instead of the window procedure for a timer set with a callback;
// dwTime is a millisecond tick of the monotonic clock.
typedef void (*TIMERPROC)(HWND hWnd, UINT message, UINT_PTR idEvent, DWORD dwTime);

// The parent that makes a message-only window. Any window here is message-only;
// the value is accepted for the platform's sake.
#define HWND_MESSAGE ((HWND)(LONG_PTR)-3)

// Messages.
#define WM_NULL 0x0000
#define WM_CREATE 0x0001     // after WM_NCCREATE; lParam is the CREATESTRUCTW; -1 refuses the window
#define WM_DESTROY 0x0002    // first message of DestroyWindow, before the children go
#define WM_NCCREATE 0x0081   // first message of a window; lParam is the CREATESTRUCTW; FALSE refuses it
#define WM_NCDESTROY 0x0082  // last message of a window, after its children are gone
#define WM_TIMER 0x0113      // wParam is the timer id, lParam the TIMERPROC (null)
#define WM_USER 0x0400
#define WM_APP 0x8000

// Window data slots.
#define GWLP_USERDATA (-21)

// SetTimer clamps its period to this range, in milliseconds.
#define USER_TIMER_MINIMUM 0x0000000A
#define USER_TIMER_MAXIMUM 0x7FFFFFFF

// Builds a class "name" out of the atom that RegisterClassW returned.
#define MAKEINTATOM(i) ((LPCWSTR)(UINT_PTR)((WORD)(i)))

struct SCOREMODEL_API WNDCLASSW
{
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCWSTR lpszMenuName;
    LPCWSTR lpszClassName;
};

// What WM_NCCREATE and WM_CREATE carry: the arguments of CreateWindowExW.
struct SCOREMODEL_API CREATESTRUCTW
{
    LPVOID lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    LPCWSTR lpszName;
    LPCWSTR lpszClass;
    DWORD dwExStyle;
};
typedef CREATESTRUCTW *LPCREATESTRUCTW;

// ---- Window classes -------------------------------------------------------

// Registers a class for the whole process. Class names compare without regard
// to case. Returns the class atom, or 0 when the class, its procedure or its
// name is missing or a class of that name exists already. Only the procedure
// and the name are used; the other fields are kept for the platform's sake.
SCOREMODEL_API ATOM RegisterClassW(const WNDCLASSW *lpWndClass);

// Removes a class. FALSE when there is no such class or windows of it still exist.
SCOREMODEL_API BOOL UnregisterClassW(LPCWSTR lpClassName, HINSTANCE hInstance);

// ---- Windows --------------------------------------------------------------

// Creates a window owned by the calling thread. The procedure receives
// WM_NCCREATE and WM_CREATE before this returns. Returns null when the class
// is unknown, the parent is neither null, HWND_MESSAGE nor a window, or the
// procedure refuses the window (FALSE to WM_NCCREATE, -1 to WM_CREATE).
// Positions, sizes and styles are kept for the platform's sake only.
HWND CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName, DWORD dwStyle, int X, int Y,
                     int nWidth, int nHeight, HWND hWndParent, HMENU hMenu, HINSTANCE hInstance, LPVOID lpParam);

// Destroys a window and its child windows of the same thread: WM_DESTROY,
// then the children, then WM_NCDESTROY. Its timers stop, its queued messages
// are dropped and pending sends to it from other threads return 0.
// REQUIRES: the calling thread owns the window; FALSE otherwise, and for a
// handle that names no window.
SCOREMODEL_API BOOL DestroyWindow(HWND hWnd);

// TRUE while the handle names a window, including during its WM_DESTROY and
// WM_NCDESTROY; FALSE once DestroyWindow has finished, and for any other value.
SCOREMODEL_API BOOL IsWindow(HWND hWnd);

// The default answer: TRUE to WM_NCCREATE, 0 to everything else.
SCOREMODEL_API LRESULT DefWindowProcW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);

// Reads and writes GWLP_USERDATA, a pointer-sized slot for the window's owner
// object (0 at creation). The setter returns the previous value. Other indexes
// and invalid windows read 0 and store nothing.
SCOREMODEL_API LONG_PTR GetWindowLongPtrW(HWND hWnd, int nIndex);
SCOREMODEL_API LONG_PTR SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong);

// The thread that owns the window, or 0 for no window. *lpdwProcessId, when
// given, receives the process id.
SCOREMODEL_API DWORD GetWindowThreadProcessId(HWND hWnd, DWORD *lpdwProcessId);

// A small number naming the calling thread, never 0, never reused.
SCOREMODEL_API DWORD GetCurrentThreadId();

// ---- Messages -------------------------------------------------------------

// Runs the window procedure and returns its result. On the owner thread the
// procedure runs at once, inside this call. From another thread the message
// waits for the owner thread's next pump and this call blocks until then; it
// returns 0 without running anything when the window is destroyed or its
// thread ends first. Returns 0 for a handle that names no window.
// An exception thrown by the procedure reaches the caller on the owner thread;
// a sender on another thread then gets 0.
SCOREMODEL_API LRESULT SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);

// Queues the message for the owner thread's next pump and returns TRUE.
// FALSE, with nothing queued, when the handle names no window; thread
// messages (a null window) are not supported and also give FALSE.
SCOREMODEL_API BOOL PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);

// ---- Timers ---------------------------------------------------------------

// Starts timer nIDEvent of the window: a WM_TIMER (or a call of lpTimerFunc)
// once per period, the first one period after this call, delivered by the
// owner thread's pump. A timer is due at most once per pump: missed periods
// do not pile up. Setting an id that runs already replaces its period and
// callback and restarts its clock; nothing else restarts it. The period is
// clamped to USER_TIMER_MINIMUM..USER_TIMER_MAXIMUM.
// Returns nIDEvent, or 0 when the handle names no window or nIDEvent is 0.
SCOREMODEL_API UINT_PTR SetTimer(HWND hWnd, UINT_PTR nIDEvent, UINT uElapse, TIMERPROC lpTimerFunc);

// Stops the timer; no WM_TIMER of it arrives afterwards. FALSE when the window
// has no such timer.
SCOREMODEL_API BOOL KillTimer(HWND hWnd, UINT_PTR uIDEvent);
