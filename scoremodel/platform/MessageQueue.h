// The machinery under Window.h and MCMessageLoop.h: what a window handle
// names, the table of live windows and the message queue of one thread.
// Hosts and the model use Window.h, CWnd.h and MCMessageLoop.h instead.
//
// Locks. The window table has one mutex and each queue has its own; no code
// holds two of these at once, so they cannot deadlock one another. (The class
// table's mutex in Window.cpp is only ever taken outside them.) No window
// procedure ever runs under any lock of this machinery.
//
// Lifetime. Queued messages and timers hold their window by shared pointer
// and a window holds its owner's queue, so a message or a sender from another
// thread never touches freed memory; the cycles are broken when the window is
// destroyed or its thread ends.
#pragma once

#include <scoremodel/platform/Window.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class MessageQueue;

// What an HWND names.
struct WindowObject
{
    HWND hWnd = nullptr;
    DWORD threadId = 0;
    std::shared_ptr<MessageQueue> queue; // the owner thread's
    WNDPROC proc = nullptr;
    std::wstring className; // folded to lower case
    HWND parent = nullptr;
    std::atomic<bool> alive{true}; // cleared when DestroyWindow finishes or the thread ends
    bool destroying = false;       // owner thread only
    std::atomic<LONG_PTR> userData{0};

    // The table of live windows, shared by all threads.

    // Enters the window and gives it a fresh handle, which it returns.
    static HWND Add(const std::shared_ptr<WindowObject> &window);
    // The window the handle names, or null; a window being destroyed is still found.
    static std::shared_ptr<WindowObject> Find(HWND hWnd);
    static void Remove(HWND hWnd);
    // Windows whose parent is hWnd.
    static std::vector<std::shared_ptr<WindowObject>> ChildrenOf(HWND hWnd);
    // Windows owned by the queue.
    static std::vector<std::shared_ptr<WindowObject>> OwnedBy(const MessageQueue *queue);
    static bool AnyOfClass(const std::wstring &className);
};

// The queue of one thread: posted messages, messages sent from other threads,
// the timers of its windows, its wake-up descriptor and its main window.
// Other threads only add to it (Post, Send, SetTimer, KillTimer); everything
// that delivers runs on the owner thread.
class MessageQueue
{
public:
    typedef std::chrono::steady_clock Clock;

    ~MessageQueue();
    MessageQueue(const MessageQueue &) = delete;
    MessageQueue &operator=(const MessageQueue &) = delete;

    // The calling thread's queue, made on first use.
    static const std::shared_ptr<MessageQueue> &Current();

    DWORD GetThreadId() const { return m_threadId; }

    // Queues a message; false when the window is gone or the thread has ended.
    bool Post(const std::shared_ptr<WindowObject> &window, UINT msg, WPARAM wParam, LPARAM lParam);
    // A send from another thread: queues it, then waits on the calling
    // thread's queue for the reply, running messages sent to that thread meanwhile.
    LRESULT Send(const std::shared_ptr<WindowObject> &window, UINT msg, WPARAM wParam, LPARAM lParam);

    UINT_PTR SetTimer(const std::shared_ptr<WindowObject> &window, UINT_PTR id, UINT period, TIMERPROC proc);
    bool KillTimer(const WindowObject *window, UINT_PTR id);

    // Drops what is queued for the window and its timers, and lets its
    // pending senders go with 0. Called once the window is gone.
    void Forget(const WindowObject *window);

    // Owner thread only, from here on.

    // Delivers the sent and posted messages queued when it starts and the
    // timers due; returns how many procedures ran.
    int ProcessPending();
    // Sleeps until work arrives or the time is reached, whichever is first.
    void WaitForWork(Clock::time_point until);
    // Milliseconds until the first timer is due, rounded up; 0 when one is
    // due, -1 when no timer runs.
    int GetNextTimerDelay();
    int GetWakeupFd() const { return m_wakeupFd; }

    HWND GetMainWindow();
    void SetMainWindow(HWND hWnd) { m_mainWindow = hWnd; }

private:
    struct Posted
    {
        std::shared_ptr<WindowObject> window;
        UINT msg;
        WPARAM wParam;
        LPARAM lParam;
    };
    // The posted messages, first in first out, in one ring of slots. A
    // burst of posts allocates only when the ring doubles, never a block per
    // few messages as a deque does: the host's own allocations between its
    // posts (the commands it posts) then stay next to one another in memory,
    // and every later walk over them reads in sequence. An emptied ring
    // larger than kKeptSlots gives its memory back.
    class PostedRing
    {
    public:
        static constexpr size_t kKeptSlots = 4096;

        bool empty() const { return m_size == 0; }
        size_t size() const { return m_size; }
        Posted &front() { return m_slots[m_head]; }
        void push_back(Posted &&posted);
        void pop_front();
        // Moves the messages for which `remove` holds to `out`, in order; the
        // others keep theirs.
        template <class Pred> void MoveOutIf(Pred remove, std::vector<Posted> &out)
        {
            size_t kept = 0;
            for (size_t i = 0; i < m_size; ++i)
            {
                Posted &p = At(i);
                if (remove(p))
                    out.push_back(std::move(p));
                else if (kept++ != i)
                    At(kept - 1) = std::move(p);
            }
            for (size_t i = kept; i < m_size; ++i)
                At(i) = Posted{};
            m_size = kept;
            ShrinkIfEmpty();
        }
        void swap(PostedRing &other) noexcept
        {
            m_slots.swap(other.m_slots);
            std::swap(m_head, other.m_head);
            std::swap(m_size, other.m_size);
        }

    private:
        Posted &At(size_t i) { return m_slots[(m_head + i) & (m_slots.size() - 1)]; }
        void ShrinkIfEmpty();

        std::vector<Posted> m_slots; // a power of two, or none
        size_t m_head = 0;
        size_t m_size = 0;
    };
    struct Sent
    {
        std::shared_ptr<WindowObject> window;
        UINT msg;
        WPARAM wParam;
        LPARAM lParam;
        std::shared_ptr<MessageQueue> sender; // whose condition the reply wakes
        LRESULT result = 0;
        bool done = false; // guarded by the sender's mutex
    };
    struct Timer
    {
        std::shared_ptr<WindowObject> window;
        UINT_PTR id;
        UINT period;
        TIMERPROC proc;
        Clock::time_point due;
        unsigned long long serial; // tells a restarted timer from the one it replaced
    };

    MessageQueue();
    friend struct CurrentQueueHolder;

    // REQUIRES: m_mutex held.
    void SignalLocked();
    void ResetWakeup();

    // Runs one message sent from another thread, unless its window is gone,
    // and replies; true when the procedure ran.
    static bool Deliver(Sent *sent);
    static void Reply(Sent *sent, LRESULT result);
    int ProcessDueTimers();
    // The thread has ended: its windows go and its senders are let go.
    void Close();

    const DWORD m_threadId;
    int m_wakeupFd = -1;
    HWND m_mainWindow = nullptr; // owner thread only

    std::mutex m_mutex;
    std::condition_variable m_cond; // new work, or a reply to this thread's send
    PostedRing m_posted;
    std::deque<Sent *> m_sent;
    std::vector<Timer> m_timers;
    unsigned long long m_nextSerial = 1; // also counts SetTimer calls, which WaitForWork watches
    bool m_signaled = false; // the wake-up descriptor holds a count
    bool m_closed = false;
};
