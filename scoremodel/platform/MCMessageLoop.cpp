#include <scoremodel/platform/MCMessageLoop.h>

#include <scoremodel/platform/MessageQueue.h>

int MCMessageLoop::ProcessPending()
{
    return MessageQueue::Current()->ProcessPending();
}

int MCMessageLoop::RunFor(unsigned int ms)
{
    MessageQueue &queue = *MessageQueue::Current();
    const MessageQueue::Clock::time_point end = MessageQueue::Clock::now() + std::chrono::milliseconds(ms);
    int count = 0;
    for (;;)
    {
        count += queue.ProcessPending();
        if (MessageQueue::Clock::now() >= end)
            return count;
        queue.WaitForWork(end);
    }
}

int MCMessageLoop::GetWakeupFd()
{
    return MessageQueue::Current()->GetWakeupFd();
}

int MCMessageLoop::GetNextTimerDelay()
{
    return MessageQueue::Current()->GetNextTimerDelay();
}

BOOL MCMessageLoop::SetMainWindow(HWND hWnd)
{
    if (hWnd && !IsWindow(hWnd))
        return FALSE;
    MessageQueue::Current()->SetMainWindow(hWnd);
    return TRUE;
}

HWND MCMessageLoop::GetMainWindow()
{
    return MessageQueue::Current()->GetMainWindow();
}

HWND MCMessageLoop::OwnWindowOfClass(HWND hWnd, LPCWSTR className)
{
    if (hWnd && GetWindowThreadProcessId(hWnd, nullptr) == GetCurrentThreadId())
        return hWnd;
    return CreateWindowExW(0, className, className, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
}
