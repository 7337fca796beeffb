#include <scoremodel/platform/CWnd.h>

#include <mutex>
#include <unordered_map>

IMPLEMENT_DYNAMIC(CWnd, CObject)

namespace
{
const wchar_t *const s_className = L"CWnd";

struct HandleMap
{
    std::mutex mutex;
    std::unordered_map<HWND, CWnd *> objects;
};

// Never destroyed: windows may outlive static objects.
HandleMap &Handles()
{
    static HandleMap *map = new HandleMap;
    return *map;
}

// The object whose window CreateEx is making on this thread; its first
// message attaches it.
thread_local CWnd *t_creating = nullptr;
} // namespace

CWnd::~CWnd()
{
    if (!m_hWnd)
        return;
    // From here on the handlers are CWnd's own, since the subclass is gone.
    if (GetWindowThreadProcessId(m_hWnd, nullptr) == GetCurrentThreadId())
        ::DestroyWindow(m_hWnd);
    // Destroying it detached us, unless it could not be destroyed here.
    if (m_hWnd)
        Detach();
}

CWnd *CWnd::FromHandlePermanent(HWND hWnd)
{
    HandleMap &handles = Handles();
    std::lock_guard<std::mutex> lock(handles.mutex);
    auto it = handles.objects.find(hWnd);
    return it == handles.objects.end() ? nullptr : it->second;
}

void CWnd::Attach(HWND hWnd)
{
    HandleMap &handles = Handles();
    std::lock_guard<std::mutex> lock(handles.mutex);
    handles.objects[hWnd] = this;
    m_hWnd = hWnd;
}

void CWnd::Detach()
{
    HandleMap &handles = Handles();
    std::lock_guard<std::mutex> lock(handles.mutex);
    handles.objects.erase(m_hWnd);
    m_hWnd = nullptr;
}

BOOL CWnd::CreateEx(DWORD dwExStyle, LPCWSTR lpszClassName, LPCWSTR lpszWindowName, DWORD dwStyle, int x, int y,
                    int nWidth, int nHeight, HWND hWndParent, UINT_PTR nID, LPVOID lpParam)
{
    if (m_hWnd || (lpszClassName && *lpszClassName))
        return FALSE;
    static const ATOM s_atom = [] {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = StaticWndProc;
        wc.lpszClassName = s_className;
        return RegisterClassW(&wc);
    }();
    (void)s_atom;

    CWnd *outer = t_creating; // a CWnd made inside another's OnCreate
    t_creating = this;
    HWND hWnd;
    try
    {
        hWnd = CreateWindowExW(dwExStyle, s_className, lpszWindowName, dwStyle, x, y, nWidth, nHeight, hWndParent,
                               (HMENU)nID, nullptr, lpParam);
    }
    catch (...)
    {
        t_creating = outer;
        throw;
    }
    t_creating = outer;
    if (!hWnd)
        return FALSE;
    if (m_hWnd != hWnd)
    {
        // Someone else registered a class of our name first; it is not ours.
        ::DestroyWindow(hWnd);
        return FALSE;
    }
    return TRUE;
}

BOOL CWnd::DestroyWindow()
{
    return m_hWnd ? ::DestroyWindow(m_hWnd) : FALSE;
}

UINT_PTR CWnd::SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer)
{
    return ::SetTimer(m_hWnd, nIDEvent, nElapse, lpfnTimer);
}

BOOL CWnd::KillTimer(UINT_PTR nIDEvent)
{
    return ::KillTimer(m_hWnd, nIDEvent);
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ::SendMessageW(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ::PostMessageW(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::StaticWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CWnd *wnd = FromHandlePermanent(hWnd);
    if (!wnd && message == WM_NCCREATE && t_creating)
    {
        wnd = t_creating;
        t_creating = nullptr;
        wnd->Attach(hWnd);
    }
    if (!wnd)
        return ::DefWindowProcW(hWnd, message, wParam, lParam);
    LRESULT result = wnd->WindowProc(message, wParam, lParam);
    // Detached here rather than in OnNcDestroy, so that an override of
    // WindowProc or OnNcDestroy cannot leave a dangling object behind.
    if (message == WM_NCDESTROY)
    {
        wnd->Detach();
        wnd->PostNcDestroy();
    }
    return result;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        return OnCreate(reinterpret_cast<LPCREATESTRUCTW>(lParam)) == -1 ? -1 : 0;
    case WM_TIMER:
        OnTimer((UINT_PTR)wParam);
        return 0;
    case WM_DESTROY:
        OnDestroy();
        return 0;
    case WM_NCDESTROY:
        OnNcDestroy();
        return 0;
    default:
        return DefWindowProc(message, wParam, lParam);
    }
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    return ::DefWindowProcW(m_hWnd, message, wParam, lParam);
}

int CWnd::OnCreate(LPCREATESTRUCTW)
{
    return 0;
}

void CWnd::OnTimer(UINT_PTR)
{
}

void CWnd::OnDestroy()
{
}

void CWnd::OnNcDestroy()
{
}

void CWnd::PostNcDestroy()
{
}
