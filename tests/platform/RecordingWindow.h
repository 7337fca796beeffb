// A hidden window for the messaging tests that writes down what reaches it.
#pragma once

#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/Window.h>

#include <functional>
#include <vector>

struct DeliveredMessage
{
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
    DWORD thread;

    bool operator==(const DeliveredMessage &o) const
    {
        return msg == o.msg && wParam == o.wParam && lParam == o.lParam;
    }
};

// Owns a message-only window of class "RecordingWindow". Messages from
// WM_USER up and WM_TIMER are recorded; `answer` (when set) decides the result.
class RecordingWindow
{
public:
    explicit RecordingWindow(HWND parent = HWND_MESSAGE)
    {
        static const ATOM s_atom = [] {
            WNDCLASSW wc = {};
            wc.lpfnWndProc = Proc;
            wc.lpszClassName = L"RecordingWindow";
            return RegisterClassW(&wc);
        }();
        (void)s_atom;
        m_hWnd = CreateWindowExW(0, L"RecordingWindow", L"", 0, 0, 0, 0, 0, parent, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, (LONG_PTR)this);
    }
    ~RecordingWindow()
    {
        if (IsWindow(m_hWnd))
            DestroyWindow(m_hWnd);
    }
    RecordingWindow(const RecordingWindow &) = delete;
    RecordingWindow &operator=(const RecordingWindow &) = delete;

    HWND hWnd() const { return m_hWnd; }

    std::vector<DeliveredMessage> messages;
    std::function<LRESULT(HWND, UINT, WPARAM, LPARAM)> answer;

    // The recorded message numbers only.
    std::vector<UINT> Numbers() const
    {
        std::vector<UINT> numbers;
        for (const auto &m : messages)
            numbers.push_back(m.msg);
        return numbers;
    }
    int Count(UINT msg) const
    {
        int n = 0;
        for (const auto &m : messages)
            n += m.msg == msg;
        return n;
    }

private:
    static LRESULT Proc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam)
    {
        auto *self = reinterpret_cast<RecordingWindow *>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
        if (!self || (msg < WM_USER && msg != WM_TIMER))
            return DefWindowProcW(hWnd, msg, wParam, lParam);
        self->messages.push_back({msg, wParam, lParam, GetCurrentThreadId()});
        return self->answer ? self->answer(hWnd, msg, wParam, lParam) : 0;
    }

    HWND m_hWnd;
};

// Empties the calling thread's queue and resets its wake-up descriptor, so a
// test starts from a quiet thread.
inline void DrainQueue()
{
    MCMessageLoop::ProcessPending();
}
