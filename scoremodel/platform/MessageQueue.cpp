#include <scoremodel/platform/MessageQueue.h>

#include <algorithm>
#include <climits>
#include <exception>
#include <unordered_map>

#include <sys/eventfd.h>
#include <unistd.h>

namespace
{
struct WindowTable
{
    std::mutex mutex;
    std::unordered_map<UINT_PTR, std::shared_ptr<WindowObject>> windows;
    // Handles count up from here and are never reused, so a stale handle
    // can never name a newer window.
    UINT_PTR next = 0x10;
};

// Never destroyed: threads may end, and take their windows out of the table,
// after static objects are gone.
WindowTable &Table()
{
    static WindowTable *table = new WindowTable;
    return *table;
}

DWORD Tick()
{
    using namespace std::chrono;
    return (DWORD)duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}
} // namespace

// ---- The window table ------------------------------------------------------

HWND WindowObject::Add(const std::shared_ptr<WindowObject> &window)
{
    WindowTable &table = Table();
    std::lock_guard<std::mutex> lock(table.mutex);
    UINT_PTR handle = table.next++;
    window->hWnd = reinterpret_cast<HWND>(handle);
    table.windows.emplace(handle, window);
    return window->hWnd;
}

std::shared_ptr<WindowObject> WindowObject::Find(HWND hWnd)
{
    WindowTable &table = Table();
    std::lock_guard<std::mutex> lock(table.mutex);
    auto it = table.windows.find(reinterpret_cast<UINT_PTR>(hWnd));
    return it == table.windows.end() ? nullptr : it->second;
}

void WindowObject::Remove(HWND hWnd)
{
    std::shared_ptr<WindowObject> removed; // released after the lock
    WindowTable &table = Table();
    std::lock_guard<std::mutex> lock(table.mutex);
    auto it = table.windows.find(reinterpret_cast<UINT_PTR>(hWnd));
    if (it != table.windows.end())
    {
        removed = std::move(it->second);
        table.windows.erase(it);
    }
}

std::vector<std::shared_ptr<WindowObject>> WindowObject::ChildrenOf(HWND hWnd)
{
    std::vector<std::shared_ptr<WindowObject>> children;
    WindowTable &table = Table();
    std::lock_guard<std::mutex> lock(table.mutex);
    for (const auto &entry : table.windows)
        if (entry.second->parent == hWnd)
            children.push_back(entry.second);
    return children;
}

std::vector<std::shared_ptr<WindowObject>> WindowObject::OwnedBy(const MessageQueue *queue)
{
    std::vector<std::shared_ptr<WindowObject>> owned;
    WindowTable &table = Table();
    std::lock_guard<std::mutex> lock(table.mutex);
    for (const auto &entry : table.windows)
        if (entry.second->queue.get() == queue)
            owned.push_back(entry.second);
    return owned;
}

bool WindowObject::AnyOfClass(const std::wstring &className)
{
    WindowTable &table = Table();
    std::lock_guard<std::mutex> lock(table.mutex);
    for (const auto &entry : table.windows)
        if (entry.second->className == className)
            return true;
    return false;
}

// ---- The queue of a thread ---------------------------------------------------

// Holds the calling thread's queue and closes it when the thread ends.
struct CurrentQueueHolder
{
    std::shared_ptr<MessageQueue> queue;
    ~CurrentQueueHolder()
    {
        if (queue)
            queue->Close();
    }
};

namespace
{
thread_local CurrentQueueHolder t_current;
}

MessageQueue::MessageQueue() : m_threadId(GetCurrentThreadId())
{
    // Without a descriptor (the process is out of them) the queue still
    // works; only a host that polls it has nothing to poll.
    m_wakeupFd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
}

MessageQueue::~MessageQueue()
{
    if (m_wakeupFd >= 0)
        close(m_wakeupFd);
}

const std::shared_ptr<MessageQueue> &MessageQueue::Current()
{
    if (!t_current.queue)
        t_current.queue.reset(new MessageQueue());
    return t_current.queue;
}

void MessageQueue::SignalLocked()
{
    // One count per batch of arrivals: the descriptor stays readable until the
    // owner's next pump, so there is no need to write it for every message.
    if (m_signaled)
        return;
    m_signaled = true;
    if (m_wakeupFd >= 0)
    {
        uint64_t one = 1;
        if (write(m_wakeupFd, &one, sizeof one) < 0)
        {
            // The count can only overflow after 2^64 - 1 writes; nothing to do.
        }
    }
}

void MessageQueue::ResetWakeup()
{
    if (!m_signaled)
        return;
    m_signaled = false;
    if (m_wakeupFd >= 0)
    {
        uint64_t count;
        if (read(m_wakeupFd, &count, sizeof count) < 0)
        {
            // Already empty: the host read it itself.
        }
    }
}

void MessageQueue::PostedRing::push_back(Posted &&posted)
{
    if (m_size == m_slots.size())
    {
        std::vector<Posted> slots(m_slots.empty() ? 16 : 2 * m_slots.size());
        for (size_t i = 0; i < m_size; ++i)
            slots[i] = std::move(At(i));
        m_slots.swap(slots);
        m_head = 0;
    }
    m_slots[(m_head + m_size) & (m_slots.size() - 1)] = std::move(posted);
    ++m_size;
}

void MessageQueue::PostedRing::pop_front()
{
    m_slots[m_head] = Posted{};
    m_head = (m_head + 1) & (m_slots.size() - 1);
    --m_size;
    ShrinkIfEmpty();
}

void MessageQueue::PostedRing::ShrinkIfEmpty()
{
    if (m_size == 0 && m_slots.size() > kKeptSlots)
        std::vector<Posted>().swap(m_slots);
    if (m_size == 0)
        m_head = 0;
}

bool MessageQueue::Post(const std::shared_ptr<WindowObject> &window, UINT msg, WPARAM wParam, LPARAM lParam)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_closed || !window->alive)
            return false;
        m_posted.push_back(Posted{window, msg, wParam, lParam});
        SignalLocked();
    }
    m_cond.notify_all();
    return true;
}

LRESULT MessageQueue::Send(const std::shared_ptr<WindowObject> &window, UINT msg, WPARAM wParam, LPARAM lParam)
{
    const std::shared_ptr<MessageQueue> &self = Current();
    Sent sent{window, msg, wParam, lParam, self};
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_closed || !window->alive)
            return 0;
        m_sent.push_back(&sent);
        SignalLocked();
    }
    m_cond.notify_all();

    // `sent` lives on this stack until the reply comes, so this loop must not
    // be left early: an exception from a message run meanwhile waits here.
    std::exception_ptr error;
    std::unique_lock<std::mutex> lock(self->m_mutex);
    while (!sent.done)
    {
        if (!self->m_sent.empty())
        {
            Sent *incoming = self->m_sent.front();
            self->m_sent.pop_front();
            lock.unlock();
            try
            {
                Deliver(incoming);
            }
            catch (...)
            {
                if (!error)
                    error = std::current_exception();
            }
            lock.lock();
            continue;
        }
        self->m_cond.wait(lock);
    }
    lock.unlock();
    if (error)
        std::rethrow_exception(error);
    return sent.result;
}

bool MessageQueue::Deliver(Sent *sent)
{
    // The sender is let go even when the procedure throws.
    struct ReplyOnExit
    {
        Sent *sent;
        LRESULT result = 0;
        ~ReplyOnExit() { Reply(sent, result); }
    } reply{sent};
    if (!sent->window->alive)
        return false;
    reply.result = sent->window->proc(sent->window->hWnd, sent->msg, sent->wParam, sent->lParam);
    return true;
}

void MessageQueue::Reply(Sent *sent, LRESULT result)
{
    // Once `done` is set the sender may return and free `sent`, so the queue
    // to wake is taken out first.
    std::shared_ptr<MessageQueue> sender = sent->sender;
    {
        std::lock_guard<std::mutex> lock(sender->m_mutex);
        sent->result = result;
        sent->done = true;
    }
    sender->m_cond.notify_all();
}

UINT_PTR MessageQueue::SetTimer(const std::shared_ptr<WindowObject> &window, UINT_PTR id, UINT period,
                                TIMERPROC proc)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_closed || !window->alive)
            return 0;
        Clock::time_point due = Clock::now() + std::chrono::milliseconds(period);
        auto it = std::find_if(m_timers.begin(), m_timers.end(),
                               [&](const Timer &t) { return t.window == window && t.id == id; });
        if (it == m_timers.end())
            m_timers.push_back(Timer{window, id, period, proc, due, m_nextSerial++});
        else
            *it = Timer{window, id, period, proc, due, m_nextSerial++};
        // A host that polls the descriptor computed its timeout before this
        // timer existed; make it look again.
        if (GetCurrentThreadId() != m_threadId)
            SignalLocked();
    }
    m_cond.notify_all();
    return id;
}

bool MessageQueue::KillTimer(const WindowObject *window, UINT_PTR id)
{
    Timer killed; // released after the lock
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = std::find_if(m_timers.begin(), m_timers.end(),
                           [&](const Timer &t) { return t.window.get() == window && t.id == id; });
    if (it == m_timers.end())
        return false;
    killed = std::move(*it);
    m_timers.erase(it);
    return true;
}

void MessageQueue::Forget(const WindowObject *window)
{
    // What is removed is released after the lock: the last reference to a
    // window may be the last reference to this queue.
    std::vector<Posted> posted;
    std::vector<Sent *> sent;
    std::vector<Timer> timers;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_posted.MoveOutIf([&](const Posted &p) { return p.window.get() == window; }, posted);

        auto keepSent = std::stable_partition(m_sent.begin(), m_sent.end(),
                                              [&](const Sent *s) { return s->window.get() != window; });
        sent.assign(keepSent, m_sent.end());
        m_sent.erase(keepSent, m_sent.end());

        auto keepTimers = std::stable_partition(m_timers.begin(), m_timers.end(),
                                                [&](const Timer &t) { return t.window.get() != window; });
        std::move(keepTimers, m_timers.end(), std::back_inserter(timers));
        m_timers.erase(keepTimers, m_timers.end());
    }
    for (Sent *s : sent)
        Reply(s, 0);
}

void MessageQueue::Close()
{
    for (const auto &window : WindowObject::OwnedBy(this))
    {
        window->alive = false;
        WindowObject::Remove(window->hWnd);
    }
    PostedRing posted;
    std::deque<Sent *> sent;
    std::vector<Timer> timers;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_closed = true;
        posted.swap(m_posted);
        sent.swap(m_sent);
        timers.swap(m_timers);
    }
    for (Sent *s : sent)
        Reply(s, 0);
}

int MessageQueue::ProcessPending()
{
    int count = 0;
    size_t limit;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        // Reset before delivering: whatever arrives from now on signals again.
        ResetWakeup();
        // Only what is queued now, so that a procedure that posts to itself
        // does not keep this call from returning.
        limit = m_posted.size();
    }
    // The descriptor was reset above for everything queued. Should a procedure
    // throw, what it leaves queued would otherwise go unannounced, and a host
    // that polls would sleep on it for good.
    struct SignalLeftoversOnThrow
    {
        MessageQueue *queue;
        int exceptions = std::uncaught_exceptions();
        ~SignalLeftoversOnThrow()
        {
            if (std::uncaught_exceptions() == exceptions)
                return;
            std::lock_guard<std::mutex> lock(queue->m_mutex);
            if (!queue->m_posted.empty() || !queue->m_sent.empty())
                queue->SignalLocked();
        }
    } signalLeftovers{this};
    size_t taken = 0;
    for (;;)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_sent.empty())
        {
            Sent *sent = m_sent.front();
            m_sent.pop_front();
            lock.unlock();
            count += Deliver(sent);
            continue;
        }
        if (taken == limit || m_posted.empty())
            break;
        Posted posted = std::move(m_posted.front());
        m_posted.pop_front();
        ++taken;
        lock.unlock();
        // A window destroyed after the post drops what was queued for it.
        if (posted.window->alive)
        {
            posted.window->proc(posted.window->hWnd, posted.msg, posted.wParam, posted.lParam);
            ++count;
        }
    }
    return count + ProcessDueTimers();
}

int MessageQueue::ProcessDueTimers()
{
    const Clock::time_point now = Clock::now();
    std::vector<unsigned long long> due;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (const Timer &timer : m_timers)
            if (timer.due <= now)
                due.push_back(timer.serial);
    }
    int count = 0;
    for (unsigned long long serial : due)
    {
        std::shared_ptr<WindowObject> window;
        UINT_PTR id;
        TIMERPROC proc;
        {
            // A procedure run before may have killed or restarted this timer.
            std::lock_guard<std::mutex> lock(m_mutex);
            auto it = std::find_if(m_timers.begin(), m_timers.end(),
                                   [&](const Timer &t) { return t.serial == serial; });
            if (it == m_timers.end())
                continue;
            window = it->window;
            id = it->id;
            proc = it->proc;
            // Keep the timer's phase, but skip the periods that were missed
            // rather than firing them in a burst.
            it->due += std::chrono::milliseconds(it->period);
            if (it->due <= now)
                it->due = now + std::chrono::milliseconds(it->period);
        }
        if (!window->alive)
            continue;
        if (proc)
            proc(window->hWnd, WM_TIMER, id, Tick());
        else
            window->proc(window->hWnd, WM_TIMER, id, 0);
        ++count;
    }
    return count;
}

void MessageQueue::WaitForWork(Clock::time_point until)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    for (const Timer &timer : m_timers)
        until = std::min(until, timer.due);
    // A timer set meanwhile from another thread may be due sooner.
    const unsigned long long timersSet = m_nextSerial;
    m_cond.wait_until(lock, until,
                      [&] { return !m_posted.empty() || !m_sent.empty() || m_nextSerial != timersSet; });
}

int MessageQueue::GetNextTimerDelay()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_timers.empty())
        return -1;
    Clock::time_point first = m_timers.front().due;
    for (const Timer &timer : m_timers)
        first = std::min(first, timer.due);
    Clock::duration left = first - Clock::now();
    if (left <= Clock::duration::zero())
        return 0;
    auto ms = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return ms > INT_MAX ? INT_MAX : (int)ms;
}

HWND MessageQueue::GetMainWindow()
{
    if (m_mainWindow && !IsWindow(m_mainWindow))
        m_mainWindow = nullptr;
    return m_mainWindow;
}
