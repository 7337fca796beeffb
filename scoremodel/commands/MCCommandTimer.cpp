#include <scoremodel/commands/MCCommandTimer.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/platform/MCMessageLoop.h>

MCCommandTimer::MCCommandTimer(MCCommandMgr *manager, unsigned int rate) : m_pManager(manager), m_nRate(rate)
{
    CreateEx(0, nullptr, nullptr, 0, 0, 0, 0, 0, MCMessageLoop::GetMainWindow(), 0);
}

MCCommandTimer::~MCCommandTimer()
{
    StopTimer();
    SendCommands();
    if (m_hWnd)
        DestroyWindow();
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
    // restart it, so a steady stream still arrives once per rate.
    if (m_nTimerId)
        return;
    m_nTimerId = SetTimer(TimerId, m_nRate, nullptr);
    // Without a window there is no clock to wait for.
    if (!m_nTimerId)
        SendCommands();
}

void MCCommandTimer::StopTimer()
{
    if (!m_nTimerId)
        return;
    KillTimer(m_nTimerId);
    m_nTimerId = 0;
}

void MCCommandTimer::OnTimer(UINT_PTR nIDEvent)
{
    if (m_nTimerId && nIDEvent == m_nTimerId)
    {
        StopTimer();
        SendCommands();
    }
    else
        CWnd::OnTimer(nIDEvent);
}

void MCCommandTimer::SendCommands()
{
    if (m_queue.IsEmpty())
        return;
    m_pManager->OnCommand(m_queue);
    m_queue.RemoveAll();
}
