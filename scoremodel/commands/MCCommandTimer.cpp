#include <scoremodel/commands/MCCommandTimer.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCMessageLoop.h>

#include <exception>

MCCommandTimer::MCCommandTimer(MCCommandMgr *manager, unsigned int rate) : m_pManager(manager), m_nRate(rate)
{
    MakeWindow(MCMessageLoop::GetMainWindow());
}

MCCommandTimer::~MCCommandTimer()
{
    m_bClosing = true;
    StopTimer();
    SendCommands();
    if (m_hWnd)
        DestroyWindow();
}

bool MCCommandTimer::MakeWindow(HWND parent)
{
    return CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, parent, 0) != FALSE;
}

void MCCommandTimer::Release(MCCommandMgr *manager)
{
    m_pManager = manager;
    if (IsBusy())
    {
        // Deleting now would pull the timer from under its own batch.
        m_bReleased = true;
        return;
    }
    try
    {
        StopTimer();
        SendCommands();
    }
    catch (...)
    {
        delete this;
        throw;
    }
    delete this;
}

void MCCommandTimer::AddCommand(CCBase *cmd)
{
    m_queue.AddTail(cmd);
    StartTimer();
}

void MCCommandTimer::AddCommands(CTypedPtrList<MCCommandList, CCBase *> *list)
{
    if (!list)
        return;
    m_queue.AddTail(list);
    StartTimer();
}

void MCCommandTimer::StartTimer()
{
    // The clock runs from the first command of a batch: a later one does not
    // restart it, so a steady stream still arrives once per rate. While a
    // batch runs, what it posts waits for the batch to end.
    if (m_nTimerId || IsBusy() || m_bClosing)
        return;
    if (!m_hWnd)
        MakeWindow(MCMessageLoop::GetMainWindow());
    m_nTimerId = m_hWnd ? SetTimer(TimerId, m_nRate, nullptr) : 0;
    // Without a window there is no clock to wait for.
    if (!m_nTimerId)
        SendCommands();
}

void MCCommandTimer::StopTimer()
{
    if (!m_nTimerId)
        return;
    if (m_hWnd)
        KillTimer(m_nTimerId);
    m_nTimerId = 0;
}

void MCCommandTimer::OnTimer(UINT_PTR nIDEvent)
{
    if (m_nTimerId && nIDEvent == m_nTimerId)
    {
        StopTimer();
        // May delete this timer, as its last act.
        SendCommands();
    }
    else
        CWnd::OnTimer(nIDEvent);
}

void MCCommandTimer::PostNcDestroy()
{
    // The window went, most likely with the main window that was its parent,
    // and its clock with it. Queued commands must not wait for a clock that
    // never comes: a window without a parent takes over at once. Otherwise
    // the next command makes a window again.
    m_nTimerId = 0;
    if (m_bClosing || m_queue.IsEmpty() || IsBusy())
        return;
    MakeWindow(nullptr);
    StartTimer();
}

void MCCommandTimer::SendCommands()
{
    if (m_queue.IsEmpty())
        return;
    if (!m_pManager)
    {
        m_queue.RemoveAll();
        return;
    }
    // The batch is a list of its own: a command posted while it runs (a
    // handler that pumps the loop) lands in the queue, not in the list being
    // walked, and runs in a later batch.
    CTypedPtrList<MCCommandList, CCBase *> batch;
    while (!m_queue.IsEmpty())
    {
        batch.AddTail(m_queue.GetHead());
        m_queue.RemoveHead();
    }
    // The batch may give back the document's last reference. The document,
    // its manager and this timer then go once the batch has ended, here.
    ECPerformance *target = batch.GetTarget();
    if (target)
        target->Ref();
    ++m_nBusy;
    std::exception_ptr failure;
    try
    {
        m_pManager->OnCommand(batch);
    }
    catch (...)
    {
        failure = std::current_exception();
    }
    bool deleteThis = false;
    if (--m_nBusy == 0)
    {
        if (m_bReleased)
        {
            // Let go during the batch: what was posted meanwhile is delivered
            // as the timer's deletion would have delivered it.
            m_bReleased = false;
            try
            {
                SendCommands();
            }
            catch (...)
            {
                if (!failure)
                    failure = std::current_exception();
            }
            m_queue.RemoveAll();
            deleteThis = true;
        }
        else if (!m_queue.IsEmpty())
        {
            try
            {
                StartTimer();
            }
            catch (...)
            {
                if (!failure)
                    failure = std::current_exception();
            }
        }
    }
    if (deleteThis)
        delete this;
    if (target)
        target->Unref(1); // may delete this timer through its manager
    if (failure)
        std::rethrow_exception(failure);
}
