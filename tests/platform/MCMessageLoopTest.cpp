#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/Window.h>

#include "platform/RecordingWindow.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include <poll.h>

namespace
{
bool WakeupReadable()
{
    struct pollfd p = {MCMessageLoop::GetWakeupFd(), POLLIN, 0};
    return poll(&p, 1, 0) == 1;
}
} // namespace

// ---- The wake-up descriptor ---------------------------------------------------

TEST(MCMessageLoop, WakeupDescriptorBecomesReadableWhenWorkOrATimerArrivesAndQuietAfterThePump)
{
    DrainQueue();
    ASSERT_GE(MCMessageLoop::GetWakeupFd(), 0);
    RecordingWindow w;
    EXPECT_FALSE(WakeupReadable());

    std::thread([&] { PostMessageW(w.hWnd(), WM_USER, 0, 0); }).join();
    EXPECT_TRUE(WakeupReadable()) << "a post from another thread";
    EXPECT_TRUE(WakeupReadable()) << "polling does not consume it";
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
    EXPECT_FALSE(WakeupReadable());

    PostMessageW(w.hWnd(), WM_USER, 0, 0);
    PostMessageW(w.hWnd(), WM_USER, 0, 0);
    EXPECT_TRUE(WakeupReadable()) << "a post from the thread itself";
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 2);
    EXPECT_FALSE(WakeupReadable());

    std::thread([&] { SetTimer(w.hWnd(), 1, 10000, nullptr); }).join();
    EXPECT_TRUE(WakeupReadable()) << "a timer set from another thread: the host must look at the deadline again";
    EXPECT_GT(MCMessageLoop::GetNextTimerDelay(), 0);
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0);
    EXPECT_FALSE(WakeupReadable());
}

TEST(MCMessageLoop, EachThreadHasItsOwnQueueAndDescriptor)
{
    DrainQueue();
    RecordingWindow w;
    int otherFd = -1;
    int otherDelivered = -1;
    std::thread([&] {
        otherFd = MCMessageLoop::GetWakeupFd();
        PostMessageW(w.hWnd(), WM_USER, 0, 0);
        otherDelivered = MCMessageLoop::ProcessPending();
    }).join();
    EXPECT_NE(otherFd, MCMessageLoop::GetWakeupFd());
    EXPECT_EQ(otherDelivered, 0) << "another thread cannot pump this thread's window";
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
    ASSERT_EQ(w.messages.size(), 1u);
    EXPECT_EQ(w.messages[0].thread, GetCurrentThreadId());
}

// ---- Pumping ------------------------------------------------------------------

TEST(MCMessageLoop, ProcessPendingReturnsEvenWhenAProcedureKeepsRepostingItself)
{
    DrainQueue();
    RecordingWindow w;
    w.answer = [](HWND hWnd, UINT msg, WPARAM, LPARAM) {
        PostMessageW(hWnd, msg, 0, 0);
        return (LRESULT)0;
    };
    PostMessageW(w.hWnd(), WM_USER, 0, 0);
    for (int i = 1; i <= 3; ++i)
    {
        EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
        EXPECT_EQ(w.Count(WM_USER), i);
        EXPECT_TRUE(WakeupReadable()) << "the repost is pending";
    }
    DestroyWindow(w.hWnd());
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 0);
}

TEST(MCMessageLoop, APumpInsideAProcedureDeliversEachMessageOnce)
{
    DrainQueue();
    RecordingWindow w;
    int nested = -1;
    w.answer = [&](HWND, UINT msg, WPARAM, LPARAM) {
        if (msg == WM_USER)
            nested = MCMessageLoop::ProcessPending();
        return (LRESULT)0;
    };
    PostMessageW(w.hWnd(), WM_USER, 0, 0);
    PostMessageW(w.hWnd(), WM_USER + 1, 0, 0);
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
    EXPECT_EQ(nested, 1);
    EXPECT_EQ(w.Numbers(), std::vector<UINT>({WM_USER, WM_USER + 1}));
}

TEST(MCMessageLoop, AnExceptionFromAProcedureLeavesTheRestQueued)
{
    DrainQueue();
    RecordingWindow w;
    w.answer = [](HWND, UINT msg, WPARAM, LPARAM) -> LRESULT {
        if (msg == WM_USER)
            throw std::runtime_error("handler failed");
        return 0;
    };
    PostMessageW(w.hWnd(), WM_USER, 0, 0);
    PostMessageW(w.hWnd(), WM_USER + 1, 0, 0);
    EXPECT_THROW(MCMessageLoop::ProcessPending(), std::runtime_error);
    // A host that caught the exception goes back to poll; the message left
    // behind must wake it, or it sleeps while work waits.
    EXPECT_TRUE(WakeupReadable());
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1);
    EXPECT_EQ(w.Numbers(), std::vector<UINT>({WM_USER, WM_USER + 1}));
    EXPECT_FALSE(WakeupReadable());
}

TEST(MCMessageLoop, RunForDeliversWhatAnotherThreadPostsWhileItWaits)
{
    DrainQueue();
    RecordingWindow w;
    std::thread poster([&] { PostMessageW(w.hWnd(), WM_USER, 0, 0); });
    int delivered = 0;
    while (w.messages.empty())
        delivered += MCMessageLoop::RunFor(20);
    poster.join();
    EXPECT_EQ(delivered, 1);
}

TEST(MCMessageLoop, MainWindowBelongsToTheThreadThatSetItAndIsForgottenOnceDestroyed)
{
    ASSERT_TRUE(MCMessageLoop::SetMainWindow(nullptr));
    EXPECT_EQ(MCMessageLoop::GetMainWindow(), nullptr);
    HWND stale;
    {
        RecordingWindow frame;
        stale = frame.hWnd();
        ASSERT_TRUE(MCMessageLoop::SetMainWindow(frame.hWnd()));
        EXPECT_EQ(MCMessageLoop::GetMainWindow(), frame.hWnd());
        HWND seenElsewhere = stale;
        std::thread([&] { seenElsewhere = MCMessageLoop::GetMainWindow(); }).join();
        EXPECT_EQ(seenElsewhere, nullptr);
    }
    EXPECT_EQ(MCMessageLoop::GetMainWindow(), nullptr);
    EXPECT_FALSE(MCMessageLoop::SetMainWindow(stale)) << "not a window any more";
    EXPECT_EQ(MCMessageLoop::GetMainWindow(), nullptr);
}

TEST(MCMessageLoop, RecordsWithoutADocumentReachTheMainWindow)
{
    // The way a manager's hidden window hands on what has no document: it
    // sends it on to the thread's main window, if there is one.
    DrainQueue();
    RecordingWindow frame;
    RecordingWindow hidden;
    const UINT record = WM_USER + 0x80;
    hidden.answer = [](HWND, UINT msg, WPARAM wParam, LPARAM lParam) -> LRESULT {
        HWND main = MCMessageLoop::GetMainWindow();
        return main ? SendMessageW(main, msg, wParam, lParam) : 0;
    };

    ASSERT_TRUE(MCMessageLoop::SetMainWindow(frame.hWnd()));
    PostMessageW(hidden.hWnd(), record, 0, 1111);
    std::thread([&] { PostMessageW(hidden.hWnd(), record, 0, 2222); }).join();
    EXPECT_TRUE(frame.messages.empty()) << "posted records wait for the pump";
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 2) << "the frame's messages are sent, inside these two";
    ASSERT_EQ(frame.messages.size(), 2u);
    EXPECT_EQ(frame.messages[0].lParam, 1111);
    EXPECT_EQ(frame.messages[1].lParam, 2222);

    DestroyWindow(frame.hWnd());
    PostMessageW(hidden.hWnd(), record, 0, 3333);
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1) << "no main window: the record goes nowhere";
    EXPECT_EQ(frame.messages.size(), 2u);
}
