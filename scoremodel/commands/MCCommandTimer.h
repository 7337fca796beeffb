// MCCommandTimer: gathers posted commands into one batch.
//
// A document whose command rate is not 0 has one. Posted commands queue here
// instead of running one by one; one rate after the first of them (a later
// command does not restart the clock) the whole queue runs as one batch, so
// each handler sees it as one list. The timer is a window of the document
// thread, a child of that thread's main window, so it fires when the host
// pumps that thread (MCMessageLoop).
//
// What real hosts do to it, and what it does then:
// - A handler of a running batch posts a follow-up and pumps (a modal
//   dialog): the follow-up waits in the queue, the clock does not start
//   while the batch runs, and the follow-up runs in a later batch. Each
//   command goes through its phases once.
// - The batch gives back the document's last reference (the host closed the
//   document meanwhile): the document, its manager and this timer go after
//   the batch has ended, not inside it.
// - The main window is destroyed (and perhaps made again) with commands
//   queued or later: the timer's window goes with its parent, and the timer
//   makes a window of its own again, so posted commands still run.
//
// The manager lets go of the timer with Release, never by delete: deleting
// it delivers what it holds, and it must happen on the thread that made it.
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

    // The manager lets go of the timer: deleted at once, or, while a batch of
    // it runs, when that batch ends. `manager` is the manager that is to run
    // what is left in the queue then, or null when the manager is going
    // (its queue is empty then: each queued command holds the document).
    void Release(MCCommandMgr *manager);

    // Queue (taking a reference) and start the clock if it is not running
    // and no batch of this timer runs.
    void AddCommand(CCBase *cmd);
    void AddCommands(CTypedPtrList<MCCommandList, CCBase *> *list);
    // Starts the clock unless it runs, making a window again if the old one
    // went with its parent. Without a clock the queue runs at once.
    void StartTimer();
    void StopTimer();
    // The rate for the next start, in milliseconds.
    void SetNotificationRate(unsigned int rate) { m_nRate = rate; }
    unsigned int GetNotificationRate() const { return m_nRate; }
    // Runs the queue as one batch on the manager, if it is not empty.
    // Commands queued while it runs wait for a later batch.
    void SendCommands();
    int GetQueuedCount() const { return m_queue.GetCount(); }
    // Whether a batch of this timer is running.
    bool IsBusy() const { return m_nBusy > 0; }

protected:
    void OnTimer(UINT_PTR nIDEvent) override;
    // The window has gone, perhaps with its parent: the clock with it.
    void PostNcDestroy() override;

private:
    // Makes the window; `parent` null makes one of no parent.
    bool MakeWindow(HWND parent);

    MCCommandMgr *m_pManager;
    UINT_PTR m_nTimerId = 0;
    unsigned int m_nRate;
    CTypedPtrList<MCCommandList, CCBase *> m_queue;
    int m_nBusy = 0;
    bool m_bReleased = false; // delete when the running batch ends
    bool m_bClosing = false;  // in the destructor: the window goes for good
};
