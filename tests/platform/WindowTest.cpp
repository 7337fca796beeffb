#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/Window.h>

#include "platform/RecordingWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include <poll.h>

namespace
{
// Blocks until something is queued for the calling thread.
void WaitUntilWorkArrives()
{
    struct pollfd p = {MCMessageLoop::GetWakeupFd(), POLLIN, 0};
    ASSERT_GE(p.fd, 0);
    ASSERT_EQ(poll(&p, 1, -1), 1);
}

std::vector<UINT> *s_lifeLog = nullptr;
LPVOID s_createParams = nullptr;

LRESULT LifeProc(HWND hWnd, UINT msg, WPARAM wParam, LPARAM lParam)
{
    if (msg == WM_NCCREATE || msg == WM_CREATE || msg == WM_DESTROY || msg == WM_NCDESTROY)
        s_lifeLog->push_back(msg);
    if (msg == WM_CREATE)
        s_createParams = reinterpret_cast<CREATESTRUCTW *>(lParam)->lpCreateParams;
    return DefWindowProcW(hWnd, msg, wParam, lParam);
}

ATOM RegisterTestClass(LPCWSTR name, WNDPROC proc)
{
    WNDCLASSW wc = {};
    wc.lpfnWndProc = proc;
    wc.lpszClassName = name;
    return RegisterClassW(&wc);
}
} // namespace

// ---- Sent and posted --------------------------------------------------------

TEST(Window, SentMessagesRunAtOncePostedOnesWaitForThePumpInOrder)
{
    DrainQueue();
    RecordingWindow w;
    w.answer = [](HWND, UINT msg, WPARAM, LPARAM) { return (LRESULT)msg * 2; };

    EXPECT_TRUE(PostMessageW(w.hWnd(), WM_USER + 1, 1, 10));
    EXPECT_EQ(SendMessageW(w.hWnd(), WM_USER + 2, 2, 20), (LRESULT)(WM_USER + 2) * 2);
    EXPECT_TRUE(PostMessageW(w.hWnd(), WM_USER + 3, 3, 30));
    ASSERT_EQ(w.Numbers(), std::vector<UINT>({WM_USER + 2}));

    EXPECT_EQ(MCMessageLoop::ProcessPending(), 2);
    EXPECT_EQ(w.messages, (std::vector<DeliveredMessage>{
                              {WM_USER + 2, 2, 20, 0}, {WM_USER + 1, 1, 10, 0}, {WM_USER + 3, 3, 30, 0}}));
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0);
}

TEST(Window, SendFromAnotherThreadBlocksUntilTheOwnerPumpsThenReturnsTheResult)
{
    DrainQueue();
    RecordingWindow w;
    w.answer = [](HWND, UINT, WPARAM wParam, LPARAM lParam) { return (LRESULT)(wParam + lParam); };

    std::atomic<bool> returned{false};
    LRESULT result = 0;
    std::thread sender([&] {
        result = SendMessageW(w.hWnd(), WM_USER, 40, 2);
        returned = true;
    });
    WaitUntilWorkArrives();
    // The message is queued and nobody has pumped: the sender must still wait.
    EXPECT_FALSE(returned);
    EXPECT_TRUE(w.messages.empty());

    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
    sender.join();
    EXPECT_TRUE(returned);
    EXPECT_EQ(result, 42);
    ASSERT_EQ(w.messages.size(), 1u);
    EXPECT_EQ(w.messages[0].thread, GetCurrentThreadId()) << "the procedure ran on the sender's thread";
}

TEST(Window, ThreadsSendingToEachOtherDoNotDeadlock)
{
    DrainQueue();
    // The main thread's procedure, while handling the other thread's send,
    // sends back to a window of that thread, which is blocked in its own send.
    std::promise<HWND> otherWindow;
    std::future<HWND> otherWindowReady = otherWindow.get_future();
    HWND other = nullptr;
    RecordingWindow mine;
    mine.answer = [&](HWND, UINT, WPARAM, LPARAM) { return SendMessageW(other, WM_USER + 1, 0, 0) + 1; };

    std::atomic<bool> done{false};
    LRESULT result = 0;
    std::thread peer([&] {
        RecordingWindow theirs;
        theirs.answer = [](HWND, UINT, WPARAM, LPARAM) { return (LRESULT)41; };
        otherWindow.set_value(theirs.hWnd());
        result = SendMessageW(mine.hWnd(), WM_USER, 0, 0);
        done = true;
    });
    other = otherWindowReady.get();
    while (!done)
        MCMessageLoop::RunFor(5);
    peer.join();
    EXPECT_EQ(result, 42);
}

TEST(Window, ExceptionInACrossThreadSendReachesTheOwnerAndTheSenderGetsZero)
{
    DrainQueue();
    RecordingWindow w;
    w.answer = [](HWND, UINT, WPARAM, LPARAM) -> LRESULT { throw std::runtime_error("procedure failed"); };
    LRESULT result = -1;
    std::thread sender([&] { result = SendMessageW(w.hWnd(), WM_USER, 0, 0); });
    WaitUntilWorkArrives();
    EXPECT_THROW(MCMessageLoop::ProcessPending(), std::runtime_error);
    sender.join();
    EXPECT_EQ(result, 0);
}

// ---- Destroyed windows --------------------------------------------------------

TEST(Window, PostingToADestroyedWindowFailsAndDeliversNothing)
{
    DrainQueue();
    RecordingWindow w;
    HWND h = w.hWnd();
    ASSERT_TRUE(IsWindow(h));
    ASSERT_TRUE(DestroyWindow(h));

    EXPECT_FALSE(IsWindow(h));
    EXPECT_FALSE(PostMessageW(h, WM_USER, 0, 0));
    EXPECT_EQ(SendMessageW(h, WM_USER, 0, 0), 0);
    EXPECT_EQ(SetTimer(h, 1, 10, nullptr), 0u);
    EXPECT_FALSE(DestroyWindow(h)) << "a second destroy of the same handle";
    EXPECT_FALSE(PostMessageW(nullptr, WM_USER, 0, 0)) << "thread messages are not supported";
    EXPECT_FALSE(IsWindow(HWND_MESSAGE));
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0);
    EXPECT_TRUE(w.messages.empty());
}

TEST(Window, MessagesQueuedForAWindowDestroyedBeforeDeliveryAreDropped)
{
    DrainQueue();
    RecordingWindow doomed, survivor, selfDestroying;
    selfDestroying.answer = [](HWND hWnd, UINT, WPARAM, LPARAM) { return (LRESULT)DestroyWindow(hWnd); };
    PostMessageW(doomed.hWnd(), WM_USER + 1, 0, 0);
    PostMessageW(survivor.hWnd(), WM_USER + 2, 0, 0);
    PostMessageW(selfDestroying.hWnd(), WM_USER + 3, 0, 0);
    PostMessageW(doomed.hWnd(), WM_USER + 4, 0, 0);
    PostMessageW(selfDestroying.hWnd(), WM_USER + 5, 0, 0);
    DestroyWindow(doomed.hWnd());

    EXPECT_EQ(MCMessageLoop::ProcessPending(), 2);
    EXPECT_TRUE(doomed.messages.empty());
    EXPECT_EQ(survivor.Numbers(), std::vector<UINT>({WM_USER + 2}));
    EXPECT_EQ(selfDestroying.Numbers(), std::vector<UINT>({WM_USER + 3})) << "what it still had queued is dropped";
}

// A long burst of posts, begun behind messages already taken from the front,
// grows the queue several times and wraps around it; a window destroyed in
// the middle takes only its own messages, and the rest keep their order.
TEST(Window, ALongBurstKeepsItsOrderThroughGrowthWrapAndADestroyedWindow)
{
    DrainQueue();
    RecordingWindow doomed, survivor;
    for (WPARAM i = 0; i < 5; ++i)
        PostMessageW(survivor.hWnd(), WM_USER, i, 0);
    // Three taken from the front: the burst starts in the middle of the ring.
    int left = 3;
    survivor.answer = [&left](HWND, UINT, WPARAM, LPARAM) {
        if (--left == 0)
            throw std::runtime_error("stop");
        return (LRESULT)0;
    };
    EXPECT_THROW(MCMessageLoop::ProcessPending(), std::runtime_error);
    survivor.answer = nullptr;
    constexpr WPARAM kBurst = 20000;
    for (WPARAM i = 5; i < kBurst; ++i)
    {
        PostMessageW(i % 3 ? survivor.hWnd() : doomed.hWnd(), WM_USER, i, 0);
        if (i == kBurst / 2)
            DestroyWindow(doomed.hWnd());
    }
    MCMessageLoop::ProcessPending();
    EXPECT_TRUE(doomed.messages.empty());
    std::vector<WPARAM> expected, got;
    for (WPARAM i = 0; i < kBurst; ++i)
        if (i < 5 || i % 3)
            expected.push_back(i);
    for (const DeliveredMessage &m : survivor.messages)
        got.push_back(m.wParam);
    EXPECT_EQ(got, expected);
}

TEST(Window, ASenderWaitingOnAWindowThatIsDestroyedGetsZero)
{
    DrainQueue();
    RecordingWindow w;
    w.answer = [](HWND, UINT, WPARAM, LPARAM) { return (LRESULT)7; };
    std::atomic<bool> returned{false};
    LRESULT result = -1;
    std::thread sender([&] {
        result = SendMessageW(w.hWnd(), WM_USER, 0, 0);
        returned = true;
    });
    WaitUntilWorkArrives();
    EXPECT_FALSE(returned);
    DestroyWindow(w.hWnd());
    sender.join();
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(w.messages.empty());
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0);
}

TEST(Window, AStaleHandleNeverNamesANewerWindow)
{
    std::vector<HWND> seen;
    for (int i = 0; i < 50; ++i)
    {
        RecordingWindow w;
        for (HWND old : seen)
            ASSERT_NE(old, w.hWnd());
        seen.push_back(w.hWnd());
    }
    for (HWND old : seen)
        EXPECT_FALSE(IsWindow(old));
}

TEST(Window, OnlyTheOwnerThreadCanDestroyAWindow)
{
    RecordingWindow w;
    BOOL destroyed = TRUE;
    DWORD ownerSeen = 0;
    std::thread other([&] {
        destroyed = DestroyWindow(w.hWnd());
        ownerSeen = GetWindowThreadProcessId(w.hWnd(), nullptr);
    });
    other.join();
    EXPECT_FALSE(destroyed);
    EXPECT_TRUE(IsWindow(w.hWnd()));
    EXPECT_EQ(ownerSeen, GetCurrentThreadId());
}

TEST(Window, WindowsOfAThreadThatEndsAreGone)
{
    HWND orphan = nullptr;
    std::unique_ptr<RecordingWindow> kept; // outlives its thread, which never destroys the window
    std::thread owner([&] {
        kept = std::make_unique<RecordingWindow>();
        orphan = kept->hWnd();
        PostMessageW(orphan, WM_USER, 0, 0);
        SetTimer(orphan, 1, 10, nullptr);
    });
    owner.join();
    EXPECT_FALSE(IsWindow(orphan));
    EXPECT_FALSE(PostMessageW(orphan, WM_USER, 0, 0));
    EXPECT_EQ(SendMessageW(orphan, WM_USER, 0, 0), 0) << "a send to it must not block";
}

// ---- Creation and classes -------------------------------------------------------

TEST(Window, CreationAndDestructionMessagesComeInOrderWithTheCreationParameter)
{
    ASSERT_NE(RegisterTestClass(L"LifeWindow", LifeProc), 0);
    std::vector<UINT> log;
    s_lifeLog = &log;
    int param = 0;
    HWND h = CreateWindowExW(0, L"lifewindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, &param);
    ASSERT_TRUE(h) << "class names compare without regard to case";
    EXPECT_EQ(s_createParams, &param);
    EXPECT_TRUE(DestroyWindow(h));
    EXPECT_EQ(log, std::vector<UINT>({WM_NCCREATE, WM_CREATE, WM_DESTROY, WM_NCDESTROY}));
    s_lifeLog = nullptr;
    EXPECT_TRUE(UnregisterClassW(L"LifeWindow", nullptr));
}

TEST(Window, ClassRegistrationRejectsDuplicatesAndBadArguments)
{
    ATOM atom = RegisterTestClass(L"OnceOnly", DefWindowProcW);
    ASSERT_NE(atom, 0);
    EXPECT_EQ(RegisterTestClass(L"ONCEONLY", DefWindowProcW), 0);
    EXPECT_EQ(RegisterTestClass(L"", DefWindowProcW), 0);
    EXPECT_EQ(RegisterTestClass(nullptr, DefWindowProcW), 0);
    EXPECT_EQ(RegisterTestClass(L"NoProc", nullptr), 0);
    EXPECT_EQ(RegisterClassW(nullptr), 0);

    EXPECT_EQ(CreateWindowExW(0, L"NoSuchClass", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(CreateWindowExW(0, nullptr, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr), nullptr);

    HWND h = CreateWindowExW(0, MAKEINTATOM(atom), L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_TRUE(h) << "a class is also found by its atom";
    EXPECT_FALSE(UnregisterClassW(L"OnceOnly", nullptr)) << "a window of the class still exists";
    DestroyWindow(h);
    EXPECT_TRUE(UnregisterClassW(L"OnceOnly", nullptr));
    EXPECT_FALSE(UnregisterClassW(L"OnceOnly", nullptr));
}

TEST(Window, DestroyingAParentDestroysItsChildrenAndABadParentIsRefused)
{
    RecordingWindow parent;
    RecordingWindow child(parent.hWnd());
    RecordingWindow grandchild(child.hWnd());
    ASSERT_TRUE(IsWindow(grandchild.hWnd()));
    DestroyWindow(parent.hWnd());
    EXPECT_FALSE(IsWindow(child.hWnd()));
    EXPECT_FALSE(IsWindow(grandchild.hWnd()));

    RecordingWindow orphan(parent.hWnd());
    EXPECT_EQ(orphan.hWnd(), nullptr) << "the parent is gone";
}

// ---- Timers ------------------------------------------------------------------

namespace
{
typedef std::chrono::steady_clock Clock;

long long MsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

std::atomic<int> s_timerCallbacks{0};
void CountingTimerProc(HWND, UINT msg, UINT_PTR id, DWORD)
{
    if (msg == WM_TIMER && id == 9)
        ++s_timerCallbacks;
}
} // namespace

TEST(WindowTimer, FirstTimerMessageComesOnePeriodAfterSetTimerAndNotBefore)
{
    DrainQueue();
    RecordingWindow w;
    Clock::time_point set = Clock::now();
    ASSERT_EQ(SetTimer(w.hWnd(), 5, 60, nullptr), 5u);
    while (w.messages.empty())
        MCMessageLoop::RunFor(5);
    EXPECT_GE(MsSince(set), 60);
    EXPECT_EQ(w.messages[0].msg, (UINT)WM_TIMER);
    EXPECT_EQ(w.messages[0].wParam, 5u);
}

TEST(WindowTimer, MissedPeriodsDoNotPileUp)
{
    DrainQueue();
    RecordingWindow w;
    SetTimer(w.hWnd(), 1, 50, nullptr);
    std::this_thread::sleep_for(std::chrono::milliseconds(6 * 50));
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0) << "the next one is a period away";
    EXPECT_EQ(w.Count(WM_TIMER), 1);
}

TEST(WindowTimer, FiresAtMostOncePerPeriodWhilePumped)
{
    DrainQueue();
    RecordingWindow w;
    Clock::time_point set = Clock::now();
    SetTimer(w.hWnd(), 1, 20, nullptr);
    int delivered = MCMessageLoop::RunFor(210);
    long long elapsed = MsSince(set);
    EXPECT_EQ(delivered, w.Count(WM_TIMER));
    EXPECT_GE(w.Count(WM_TIMER), 1);
    EXPECT_LE(w.Count(WM_TIMER), elapsed / 20);
}

TEST(WindowTimer, KillTimerStopsItForGood)
{
    DrainQueue();
    RecordingWindow w;
    SetTimer(w.hWnd(), 3, USER_TIMER_MINIMUM, nullptr);
    while (w.messages.empty())
        MCMessageLoop::RunFor(5);
    EXPECT_TRUE(KillTimer(w.hWnd(), 3));
    EXPECT_EQ(MCMessageLoop::GetNextTimerDelay(), -1);
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * USER_TIMER_MINIMUM));
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0);
    EXPECT_EQ(w.Count(WM_TIMER), 1);
    EXPECT_FALSE(KillTimer(w.hWnd(), 3)) << "it is not running any more";
}

TEST(WindowTimer, ACallbackRunsInsteadOfTheWindowProcedure)
{
    DrainQueue();
    RecordingWindow w;
    s_timerCallbacks = 0;
    SetTimer(w.hWnd(), 9, USER_TIMER_MINIMUM, CountingTimerProc);
    while (s_timerCallbacks == 0)
        MCMessageLoop::RunFor(5);
    EXPECT_EQ(w.Count(WM_TIMER), 0);
    KillTimer(w.hWnd(), 9);
}

// The host sleeps until the next deadline, so a timer that was replaced,
// killed or destroyed with its window must not keep a deadline behind.
TEST(WindowTimer, TheNextDelayFollowsTheEarliestTimerAndForgetsReplacedKilledAndDestroyedOnes)
{
    DrainQueue();
    EXPECT_EQ(MCMessageLoop::GetNextTimerDelay(), -1);
    {
        RecordingWindow w;
        SetTimer(w.hWnd(), 1, 100000, nullptr);
        SetTimer(w.hWnd(), 2, 400, nullptr);
        const int delay = MCMessageLoop::GetNextTimerDelay();
        EXPECT_GT(delay, 0);
        EXPECT_LE(delay, 400);
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        ASSERT_LE(MCMessageLoop::GetNextTimerDelay(), 150);
        SetTimer(w.hWnd(), 2, 400, nullptr);
        EXPECT_GT(MCMessageLoop::GetNextTimerDelay(), 150) << "setting a running id again restarts its clock";
        KillTimer(w.hWnd(), 2);
        EXPECT_GT(MCMessageLoop::GetNextTimerDelay(), 400) << "replaced, not added, and then killed";
    }
    EXPECT_EQ(MCMessageLoop::GetNextTimerDelay(), -1) << "destroying the window stops its timers";
}
