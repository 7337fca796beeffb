#include <scoremodel/platform/Window.h>

#include <scoremodel/platform/MessageQueue.h>

#include <atomic>
#include <cwctype>

#include <unistd.h>

namespace
{
struct WindowClass
{
    ATOM atom;
    std::wstring name; // folded
    WNDPROC proc;
};

struct ClassTable
{
    std::mutex mutex;
    std::vector<WindowClass> classes;
    ATOM nextAtom = 0xC000; // the platform's range for registered names
};

// Never destroyed, like the window table.
ClassTable &Classes()
{
    static ClassTable *table = new ClassTable;
    return *table;
}

// A "name" below 0x10000 is an atom, as MAKEINTATOM makes it.
bool IsAtom(LPCWSTR name)
{
    return reinterpret_cast<UINT_PTR>(name) < 0x10000;
}

std::wstring Fold(LPCWSTR name)
{
    std::wstring folded(name);
    for (wchar_t &c : folded)
        c = (wchar_t)std::towlower((wint_t)c);
    return folded;
}

// REQUIRES: the class table's mutex held.
std::vector<WindowClass>::iterator FindClass(ClassTable &table, LPCWSTR name)
{
    if (IsAtom(name))
    {
        ATOM atom = (ATOM) reinterpret_cast<UINT_PTR>(name);
        for (auto it = table.classes.begin(); it != table.classes.end(); ++it)
            if (atom && it->atom == atom)
                return it;
        return table.classes.end();
    }
    std::wstring folded = Fold(name);
    for (auto it = table.classes.begin(); it != table.classes.end(); ++it)
        if (it->name == folded)
            return it;
    return table.classes.end();
}
} // namespace

ATOM RegisterClassW(const WNDCLASSW *lpWndClass)
{
    if (!lpWndClass || !lpWndClass->lpfnWndProc || !lpWndClass->lpszClassName || IsAtom(lpWndClass->lpszClassName) ||
        !*lpWndClass->lpszClassName)
        return 0;
    ClassTable &table = Classes();
    std::lock_guard<std::mutex> lock(table.mutex);
    if (FindClass(table, lpWndClass->lpszClassName) != table.classes.end() || table.nextAtom == 0)
        return 0;
    // Atoms are not reused either; the counter wraps to 0 after 0xFFFF and
    // registration then fails.
    ATOM atom = table.nextAtom++;
    table.classes.push_back(WindowClass{atom, Fold(lpWndClass->lpszClassName), lpWndClass->lpfnWndProc});
    return atom;
}

BOOL UnregisterClassW(LPCWSTR lpClassName, HINSTANCE)
{
    if (!lpClassName)
        return FALSE;
    ClassTable &table = Classes();
    std::lock_guard<std::mutex> lock(table.mutex);
    auto it = FindClass(table, lpClassName);
    if (it == table.classes.end() || WindowObject::AnyOfClass(it->name))
        return FALSE;
    table.classes.erase(it);
    return TRUE;
}

HWND CreateWindowExW(DWORD dwExStyle, LPCWSTR lpClassName, LPCWSTR lpWindowName, DWORD dwStyle, int X, int Y,
                     int nWidth, int nHeight, HWND hWndParent, HMENU hMenu, HINSTANCE hInstance, LPVOID lpParam)
{
    if (!lpClassName)
        return nullptr;
    auto window = std::make_shared<WindowObject>();
    {
        ClassTable &table = Classes();
        std::lock_guard<std::mutex> lock(table.mutex);
        auto it = FindClass(table, lpClassName);
        if (it == table.classes.end())
            return nullptr;
        window->proc = it->proc;
        window->className = it->name;
    }
    HWND parent = hWndParent == HWND_MESSAGE ? nullptr : hWndParent;
    if (parent && !IsWindow(parent))
        return nullptr;
    window->threadId = GetCurrentThreadId();
    window->queue = MessageQueue::Current();
    window->parent = parent;
    HWND hWnd = WindowObject::Add(window);

    CREATESTRUCTW cs = {lpParam, hInstance,         hMenu,        hWndParent,  nHeight,  nWidth,
                        Y,       X,                 (LONG)dwStyle, lpWindowName, lpClassName, dwExStyle};
    bool created;
    try
    {
        created = window->proc(hWnd, WM_NCCREATE, 0, (LPARAM)&cs) != FALSE &&
                  window->proc(hWnd, WM_CREATE, 0, (LPARAM)&cs) != -1;
    }
    catch (...)
    {
        DestroyWindow(hWnd);
        throw;
    }
    if (!created)
    {
        DestroyWindow(hWnd);
        return nullptr;
    }
    // The procedure may have destroyed the window while it was being made.
    return IsWindow(hWnd) ? hWnd : nullptr;
}

BOOL DestroyWindow(HWND hWnd)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    const DWORD thread = GetCurrentThreadId();
    if (!window || window->threadId != thread || window->destroying)
        return FALSE;
    window->destroying = true;

    // The window goes even when its procedure throws.
    struct FinishOnExit
    {
        WindowObject *window;
        ~FinishOnExit()
        {
            window->alive = false;
            WindowObject::Remove(window->hWnd);
            window->queue->Forget(window);
        }
    } finish{window.get()};

    window->proc(hWnd, WM_DESTROY, 0, 0);
    // Children of other threads cannot be destroyed from here; they live on
    // with a parent that is gone.
    for (const auto &child : WindowObject::ChildrenOf(hWnd))
        if (child->threadId == thread)
            DestroyWindow(child->hWnd);
    window->proc(hWnd, WM_NCDESTROY, 0, 0);
    return TRUE;
}

BOOL IsWindow(HWND hWnd)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    return window && window->alive ? TRUE : FALSE;
}

LRESULT DefWindowProcW(HWND, UINT Msg, WPARAM, LPARAM)
{
    return Msg == WM_NCCREATE ? TRUE : 0;
}

LONG_PTR GetWindowLongPtrW(HWND hWnd, int nIndex)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    if (!window || nIndex != GWLP_USERDATA)
        return 0;
    return window->userData.load();
}

LONG_PTR SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR dwNewLong)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    if (!window || nIndex != GWLP_USERDATA)
        return 0;
    return window->userData.exchange(dwNewLong);
}

DWORD GetWindowThreadProcessId(HWND hWnd, DWORD *lpdwProcessId)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    if (!window)
        return 0;
    if (lpdwProcessId)
        *lpdwProcessId = (DWORD)getpid();
    return window->threadId;
}

DWORD GetCurrentThreadId()
{
    static std::atomic<DWORD> s_nextThreadId{1};
    thread_local const DWORD t_threadId = s_nextThreadId.fetch_add(1);
    return t_threadId;
}

LRESULT SendMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    if (!window || !window->alive)
        return 0;
    if (window->threadId == GetCurrentThreadId())
        return window->proc(hWnd, Msg, wParam, lParam);
    return window->queue->Send(window, Msg, wParam, lParam);
}

BOOL PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    return window && window->queue->Post(window, Msg, wParam, lParam) ? TRUE : FALSE;
}

UINT_PTR SetTimer(HWND hWnd, UINT_PTR nIDEvent, UINT uElapse, TIMERPROC lpTimerFunc)
{
    if (!nIDEvent)
        return 0;
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    if (!window)
        return 0;
    if (uElapse < USER_TIMER_MINIMUM)
        uElapse = USER_TIMER_MINIMUM;
    if (uElapse > USER_TIMER_MAXIMUM)
        uElapse = USER_TIMER_MAXIMUM;
    return window->queue->SetTimer(window, nIDEvent, uElapse, lpTimerFunc);
}

BOOL KillTimer(HWND hWnd, UINT_PTR uIDEvent)
{
    std::shared_ptr<WindowObject> window = WindowObject::Find(hWnd);
    return window && window->queue->KillTimer(window.get(), uIDEvent) ? TRUE : FALSE;
}
