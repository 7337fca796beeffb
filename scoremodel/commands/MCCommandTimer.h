// MCCommandTimer: gathers posted commands into one batch.
//
// A document whose command rate is not 0 has one. Posted commands queue here
// instead of running one by one; one rate after the first of them (a later
// command does not restart the clock) the whole queue runs as one batch, so
// each handler sees it as one list. The timer is a window of the document
// thread, a child of that thread's main window, so it fires when the host
// pumps that thread (MCMessageLoop).
//
// Deleting the timer delivers what it holds. It must be deleted on the
// thread that made it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/platform/CWnd.h>

class CCBase;
class MCCommandMgr;

class SCOREMODEL_API MCCommandTimer : public CWnd
{
public:
    // The id of the batch timer on its window.
    static constexpr UINT_PTR TimerId = 123;

    MCCommandTimer(MCCommandMgr *manager, unsigned int rate);
    // Stops the clock, delivers the queue and destroys the window.
    ~MCCommandTimer() override;

    // Queue (taking a reference) and start the clock if it is not running.
    void AddCommand(CCBase *cmd);
    void AddCommands(CTypedPtrList<MCCommandList, CCBase *> *list);
    // Starts the clock unless it runs.
    void StartTimer();
    void StopTimer();
    // The rate for the next start, in milliseconds.
    void SetNotificationRate(unsigned int rate) { m_nRate = rate; }
    unsigned int GetNotificationRate() const { return m_nRate; }
    // Runs the queue as one batch on the manager, if it is not empty.
    void SendCommands();
    int GetQueuedCount() const { return m_queue.GetCount(); }

protected:
    void OnTimer(UINT_PTR nIDEvent) override;

private:
    MCCommandMgr *m_pManager;
    UINT_PTR m_nTimerId = 0;
    unsigned int m_nRate;
    CTypedPtrList<MCCommandList, CCBase *> m_queue;
};
