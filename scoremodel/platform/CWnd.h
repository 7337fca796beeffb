// A window as an object: the base of the model's helper windows, such as the
// batch timer of the command manager.
//
// A subclass overrides the handlers it needs (OnTimer above all) or WindowProc
// itself, and makes its window with CreateEx:
//
//   class MyTimer : public CWnd {
//   protected:
//       void OnTimer(UINT_PTR nIDEvent) override { ... }
//   };
//   MyTimer t;
//   t.CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, MCMessageLoop::GetMainWindow(), 0);
//   t.SetTimer(123, 50, nullptr);
//
// Threads. The object belongs to the thread that created its window, like the
// window; its handlers run there. It must be destroyed on that thread: a
// CWnd destroyed elsewhere cannot destroy its window, which then lives on as a
// plain window with the default procedure.
//
// Lifetime. The object and its window are tied in both directions: deleting
// the object destroys the window, and destroying the window (DestroyWindow on
// the handle, or on a parent) detaches the object, so m_hWnd becomes null and
// PostNcDestroy runs.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/Window.h>

class SCOREMODEL_API CWnd : public CObject
{
    DECLARE_DYNAMIC(CWnd)

public:
    CWnd() = default;
    ~CWnd() override;
    CWnd(const CWnd &) = delete;
    CWnd &operator=(const CWnd &) = delete;

    // The window, or null when there is none (yet, or any more).
    HWND m_hWnd = nullptr;

    HWND GetSafeHwnd() const { return m_hWnd; }

    // The object attached to the window, or null for a window that CreateEx
    // did not make.
    static CWnd *FromHandlePermanent(HWND hWnd);

    // Makes the window, of the library's own class, owned by the calling
    // thread; OnCreate runs inside. lpszClassName must be null or empty: this
    // class does not take over windows of other classes. FALSE when the object
    // has a window already, a class name is given, the parent is invalid, or
    // OnCreate refuses. Position, size, style and nID are kept for the
    // platform's sake only.
    virtual BOOL CreateEx(DWORD dwExStyle, LPCWSTR lpszClassName, LPCWSTR lpszWindowName, DWORD dwStyle, int x, int y,
                          int nWidth, int nHeight, HWND hWndParent, UINT_PTR nID, LPVOID lpParam = nullptr);

    // Destroys the window (see ::DestroyWindow). FALSE without a window.
    virtual BOOL DestroyWindow();

    // The window functions of Window.h, on this object's window.
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer);
    BOOL KillTimer(UINT_PTR nIDEvent);
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

protected:
    // Every message of the window comes here first. This one calls the
    // handlers below for their messages and DefWindowProc for the rest.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // The default answer, as ::DefWindowProcW gives it.
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);

    // WM_CREATE: -1 refuses the window; the default accepts it.
    virtual int OnCreate(LPCREATESTRUCTW lpCreateStruct);
    // WM_TIMER of a timer without a callback. The default does nothing.
    virtual void OnTimer(UINT_PTR nIDEvent);
    // WM_DESTROY: the window still exists, its children too.
    virtual void OnDestroy();
    // WM_NCDESTROY, the last message: the children are gone. The object is
    // detached after this returns.
    virtual void OnNcDestroy();
    // After the object is detached from its destroyed window. A subclass that
    // lives on the heap for its window's sake may delete itself here.
    virtual void PostNcDestroy();

private:
    static LRESULT StaticWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    void Attach(HWND hWnd);
    void Detach();
};
