#include <scoremodel/platform/CWnd.h>
#include <scoremodel/platform/MCMessageLoop.h>

#include "platform/RecordingWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>

namespace
{
typedef std::chrono::steady_clock Clock;

class TestWnd : public CWnd
{
public:
    std::vector<UINT_PTR> timers;
    std::vector<UINT> events;
    int createAnswer = 0;
    int *postNcDestroyCount = nullptr;

protected:
    int OnCreate(LPCREATESTRUCTW cs) override
    {
        events.push_back(WM_CREATE);
        EXPECT_TRUE(cs);
        return createAnswer;
    }
    void OnTimer(UINT_PTR nIDEvent) override { timers.push_back(nIDEvent); }
    void OnDestroy() override { events.push_back(WM_DESTROY); }
    void OnNcDestroy() override { events.push_back(WM_NCDESTROY); }
    void PostNcDestroy() override
    {
        EXPECT_EQ(m_hWnd, nullptr) << "detached before PostNcDestroy";
        if (postNcDestroyCount)
            ++*postNcDestroyCount;
    }
};

bool Create(CWnd &wnd, HWND parent = HWND_MESSAGE)
{
    return wnd.CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, parent, 0);
}

// Collects items and hands them on as one batch a fixed time after the first
// item of the batch, however many follow: the way the command manager's batch
// timer gathers posted commands.
class BatchTimer : public CWnd
{
public:
    explicit BatchTimer(UINT rate) : m_rate(rate)
    {
        CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, MCMessageLoop::GetMainWindow(), 0);
    }
    ~BatchTimer() override
    {
        StopTimer();
        Deliver();
        if (m_hWnd)
            DestroyWindow();
    }

    void Add(int item)
    {
        if (m_queue.empty())
            m_firstAdded = Clock::now();
        m_queue.push_back(item);
        if (!m_id)
            m_id = SetTimer(123, m_rate, nullptr);
    }

    std::vector<std::vector<int>> batches;
    std::vector<Clock::duration> waits; // from the first item of a batch to its delivery

protected:
    void OnTimer(UINT_PTR nIDEvent) override
    {
        if (m_id && nIDEvent == m_id)
        {
            StopTimer();
            Deliver();
        }
        else
            CWnd::OnTimer(nIDEvent);
    }

private:
    void StopTimer()
    {
        if (m_id)
            KillTimer(m_id);
        m_id = 0;
    }
    void Deliver()
    {
        if (m_queue.empty())
            return;
        batches.push_back(m_queue);
        waits.push_back(Clock::now() - m_firstAdded);
        m_queue.clear();
    }

    UINT m_rate;
    UINT_PTR m_id = 0;
    std::vector<int> m_queue;
    Clock::time_point m_firstAdded;
};
} // namespace

TEST(CWnd, OnTimerReceivesTheIdOfEachTimer)
{
    DrainQueue();
    TestWnd wnd;
    ASSERT_TRUE(Create(wnd));
    EXPECT_EQ(wnd.SetTimer(4, USER_TIMER_MINIMUM, nullptr), 4u);
    EXPECT_EQ(wnd.SetTimer(7, USER_TIMER_MINIMUM, nullptr), 7u);
    while (wnd.timers.size() < 2)
        MCMessageLoop::RunFor(5);
    EXPECT_TRUE(wnd.KillTimer(4));
    EXPECT_TRUE(wnd.KillTimer(7));
    std::sort(wnd.timers.begin(), wnd.timers.end());
    wnd.timers.erase(std::unique(wnd.timers.begin(), wnd.timers.end()), wnd.timers.end());
    EXPECT_EQ(wnd.timers, std::vector<UINT_PTR>({4, 7}));
}

TEST(CWnd, DestroyingTheHandleRunsTheHandlersAndDetachesTheObject)
{
    int postNcDestroys = 0;
    TestWnd wnd;
    wnd.postNcDestroyCount = &postNcDestroys;
    ASSERT_TRUE(Create(wnd));
    HWND h = wnd.m_hWnd;
    EXPECT_EQ(CWnd::FromHandlePermanent(h), &wnd);
    ASSERT_TRUE(::DestroyWindow(h));
    EXPECT_EQ(wnd.events, std::vector<UINT>({WM_CREATE, WM_DESTROY, WM_NCDESTROY}));
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    EXPECT_EQ(postNcDestroys, 1);
    EXPECT_EQ(CWnd::FromHandlePermanent(h), nullptr);
    EXPECT_FALSE(wnd.DestroyWindow());
    EXPECT_EQ(wnd.SetTimer(1, 10, nullptr), 0u) << "no window to time";
}

TEST(CWnd, DeletingTheObjectDestroysItsWindow)
{
    auto wnd = std::make_unique<TestWnd>();
    ASSERT_TRUE(Create(*wnd));
    HWND h = wnd->m_hWnd;
    wnd->SetTimer(1, 100, nullptr);
    wnd.reset();
    EXPECT_FALSE(IsWindow(h));
    EXPECT_EQ(CWnd::FromHandlePermanent(h), nullptr);
    EXPECT_EQ(MCMessageLoop::GetNextTimerDelay(), -1);
}

TEST(CWnd, ObjectDeletedOnAnotherThreadLeavesAHarmlessWindow)
{
    DrainQueue();
    auto wnd = std::make_unique<TestWnd>();
    ASSERT_TRUE(Create(*wnd));
    HWND h = wnd->m_hWnd;
    std::thread([&] { wnd.reset(); }).join();
    EXPECT_TRUE(IsWindow(h)) << "only the owner thread can destroy it";
    EXPECT_EQ(CWnd::FromHandlePermanent(h), nullptr);
    EXPECT_TRUE(PostMessageW(h, WM_TIMER, 1, 0));
    EXPECT_EQ(MCMessageLoop::ProcessPending(), 1) << "delivered to the default procedure";
    EXPECT_TRUE(DestroyWindow(h));
}

TEST(CWnd, CreateExRefusesForeignClassesSecondWindowsAndOnCreateRefusals)
{
    TestWnd wnd;
    EXPECT_FALSE(wnd.CreateEx(0, L"RecordingWindow", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, 0));
    EXPECT_EQ(wnd.m_hWnd, nullptr);
    ASSERT_TRUE(Create(wnd));
    HWND first = wnd.m_hWnd;
    EXPECT_FALSE(Create(wnd));
    EXPECT_EQ(wnd.m_hWnd, first);

    TestWnd refused;
    refused.createAnswer = -1;
    EXPECT_FALSE(Create(refused));
    EXPECT_EQ(refused.m_hWnd, nullptr);

    TestWnd badParent;
    EXPECT_FALSE(Create(badParent, (HWND)((UINT_PTR)first + 1000)));
}

TEST(CWnd, AChildOfTheMainWindowGoesWithIt)
{
    RecordingWindow frame;
    ASSERT_TRUE(MCMessageLoop::SetMainWindow(frame.hWnd()));
    {
        BatchTimer timer(50);
        ASSERT_TRUE(timer.m_hWnd);
        HWND h = timer.m_hWnd;
        DestroyWindow(frame.hWnd());
        EXPECT_FALSE(IsWindow(h));
        EXPECT_EQ(timer.m_hWnd, nullptr);
    } // the destructor finds no window left to destroy
    EXPECT_EQ(MCMessageLoop::GetMainWindow(), nullptr);
}

TEST(CWnd, ABatchTimerKeepsTheClockOfItsFirstItem)
{
    // Items arrive as posted messages, a few milliseconds apart, on and on. A
    // timer that later items restarted would never deliver while they keep
    // coming; this one delivers one period after the first item of each batch.
    DrainQueue();
    const UINT rate = 40;
    BatchTimer timer(rate);
    RecordingWindow inbox;
    inbox.answer = [&](HWND, UINT, WPARAM wParam, LPARAM) {
        timer.Add((int)wParam);
        return (LRESULT)0;
    };

    int posted = 0;
    for (int i = 0; i < 2000 && timer.batches.empty(); ++i)
    {
        PostMessageW(inbox.hWnd(), WM_USER, posted++, 0);
        MCMessageLoop::RunFor(5);
    }
    ASSERT_EQ(timer.batches.size(), 1u) << "the stream of items held the timer off";
    for (int i = 0; i < 3; ++i)
        PostMessageW(inbox.hWnd(), WM_USER, posted++, 0);
    while (timer.batches.size() < 2)
        MCMessageLoop::RunFor(5);

    std::vector<int> all;
    for (const auto &batch : timer.batches)
        all.insert(all.end(), batch.begin(), batch.end());
    ASSERT_EQ((int)all.size(), posted);
    for (int i = 0; i < posted; ++i)
        EXPECT_EQ(all[i], i);
    EXPECT_GE(timer.batches[0].size(), 2u) << "items that came during the period join the batch";
    for (const auto &wait : timer.waits)
        EXPECT_GE(wait, std::chrono::milliseconds(rate));
}
