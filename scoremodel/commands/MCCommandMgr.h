// MCCommandMgr: the road of every edit and the undo history of a document.
//
// One manager lives inside each ECPerformance. The host opens a bracket,
// applies commands and closes it; the manager delivers each command on one
// hidden window shared by all documents, runs the batch under the document
// lock, lets the command handlers look and veto, files the finished
// commands as one undo step and announces them with an SCCommand (code 500).
//
//     MCCommandMgr::BeginUndo(doc, name);   // opens the undo step and the notification
//     cmd->Apply(doc);                      // sent (synchronous) or posted
//     MCCommandMgr::EndUndo(doc);           // files the step once its commands finished
//     doc->Undo(1);                         // one action back
//
// The batch. Prepare on each command, the handlers with phase 0 (a 0 asks for
// another pass, -1 cancels), Process on each command, the handlers with phase
// 1 (0 or -1 refuse, and the tree stays changed), Finish on each command.
// A command that refuses gets Abort and a state record of code 502. Steps
// already done are not reversed.
//
// Brackets are flags, not a stack: BeginUndo inside an open bracket starts a
// new step. Whether a command is recorded and announced is decided when it is
// applied, not when it runs; a command applied outside any bracket changes
// the tree, leaves no undo step and tells no view.
//
// Kept as they are, on purpose (hosts depend on them):
// - Commands that were counted and never finished (a refusal) keep the
//   pending counters raised: the step then stays open past EndUndo and Undo
//   answers 0 for this document from then on.
// - Undo and Redo ignore their argument: they move by one action, where an
//   action is a run of steps merged by the "same action" marker (see
//   GetMaxLevelOfTheSameAction). SetUndoIndex therefore moves one action too.
// - Each Apply takes a reference on the document and each batch gives one
//   back, so a batch merged by the timer leaves the document's count raised
//   by the commands it merged, less one.
// - FinishUndo of an empty bracket sets the undo index to 0: the undone steps
//   stay in the list but count as not undone from then on.
// - Undo steps are never deleted while a command runs: dropped steps go to a
//   process-wide trash list that only OnIdle empties. The host calls OnIdle.
//
// History. The newest step is at the head (position 0). Positions below the
// undo index hold undone steps (the nearest to redo at index - 1); positions
// at and above it can be undone. An index of -1 means nothing was ever filed.
//
// Threads. All commands run on the thread that owns the command window, the
// thread that built the first manager, or the one that called
// SetDocumentThread. A host that may touch the library from a worker first
// (loading a document in the background) calls SetDocumentThread on its main
// thread before anything else; otherwise the worker becomes the document
// thread, and once it ends nothing can run a command: Apply then answers 0
// and tells the user through the message box. Apply from another thread sends or
// posts to it (a send blocks until the batch ran), but counts the command
// into the brackets on the calling thread without a lock: the host must not
// do that while a batch runs. The document lock is held for a whole batch;
// s_trashCS guards the trash list and is always the inner lock.
//
// Handlers that throw. An exception from a command or state handler reaches
// the host (out of Apply, EndUndo, Undo, Redo or the pump), but only after
// the library has put its own house in order: the batch's commands and list
// are released and the document's reference given back; a throw on the
// announcement of a batch (code 500) leaves the rest of the batch finished
// and the counters down; a throw on an undo (code 501) still moves the undo
// index and clears the undoing flag and the notify mode. A command handler
// that throws counts as one that cancelled. A handler removed by another
// during a pass is not called in it.
//
// Cost. One command costs a constant on its road: no walk of the history,
// the trash or the handler list per command beyond calling each handler. The
// command lists keep their nodes in order (MCCommandList), so that a long
// batch or undo step is walked through memory in sequence.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/events/base/MCFuncList.h>
#include <scoremodel/platform/CCriticalSection.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/CTypedPtrList.h>
#include <scoremodel/platform/Window.h>

class CCBase;
class ECPerformance;
class MCCommandTimer;
class MCUndoItem;
class SCCommand;

class SCOREMODEL_API MCCommandMgr
{
public:
    typedef CTypedPtrList<MCCommandList, CCBase *> CommandList;
    typedef CTypedPtrList<MCPtrList, MCUndoItem *> UndoList;

    // The message that carries commands to the command window. The word
    // parameter is 0 for one command in the long parameter, 1 for a heap list
    // of commands that the window deletes.
    static constexpr UINT CommandMessage = 0x3281;
    // The default number of undo steps kept, and the range SetUndoLevels
    // clamps to.
    static constexpr int DefaultUndoLevels = 250;
    static constexpr int MaxUndoLevels = 10000000;

    // The first manager made registers the window class and makes the
    // command window (on this thread).
    MCCommandMgr();
    // Removes the handlers, clears the history (ClearUndo) and frees an open
    // notification. The trash list is left to OnIdle.
    ~MCCommandMgr();
    MCCommandMgr(const MCCommandMgr &) = delete;
    MCCommandMgr &operator=(const MCCommandMgr &) = delete;

    // ---- The document thread ----

    // Makes the calling thread the document thread: the command window and
    // the state window (MCStateMgr) are made here, replacing windows that
    // another thread made. Call it on the thread that pumps MCMessageLoop,
    // before any other library call. 1 on success, 0 when no window could be
    // made.
    static int SetDocumentThread();

    // ---- Delivery (any thread) ----

    // Counts the command into the document's open undo step (when it can
    // undo) and open notification, takes a reference, copies the undoing
    // flag and sets the target. Returns 1.
    static int InitCommand(CCBase *cmd, ECPerformance *perf);
    // 0 when either pointer is null. Otherwise takes a reference on the
    // document, runs InitCommand and sends the command (synchronous) or posts
    // it; returns 1. A command that cannot be delivered (the command window
    // went with its thread) is taken back out of the brackets, let go
    // (it dies unless the caller holds it), reported through the message
    // box, and the answer is 0.
    static int ApplyCommand(CCBase *cmd, ECPerformance *perf);
    // 0 for a null pointer or an empty list. Otherwise as ApplyCommand for a
    // copy of the list, sent when every command is synchronous; the caller's
    // list is left as it was. Returns 1, or 0 as ApplyCommand when the
    // commands cannot be delivered.
    static int ApplyCommands(MCCommandList *list, ECPerformance *perf);
    // The command window's handler of CommandMessage; always 0.
    static int OnCommandMsg(unsigned int wParam, long lParam);

    // ---- Process-wide ----

    // Deletes the undo steps on the trash list. Call when idle.
    static void OnIdle();
    // How many undo steps a document keeps; 250 until set.
    static int GetUndoLevels();
    // Clamped to 0..10,000,000; takes effect at the next filing. With 0 a
    // step goes to the trash as soon as it is filed.
    static void SetUndoLevels(int levels);

    // ---- Brackets ----

    // SetUndoMode(1, &name), then SetNotifyMode(1), on the document's manager.
    static void BeginUndo(ECPerformance *perf, CString &name);
    // SetUndoMode(0, null), then SetNotifyMode(0).
    static void EndUndo(ECPerformance *perf);
    static void BeginNotify(ECPerformance *perf);
    static void EndNotify(ECPerformance *perf);

    int GetUndoMode() const { return m_bUndoMode; }
    // On: closes what is open (FinishUndo) and opens a step of that name.
    // Off: files the step at once unless commands of it are pending, in which
    // case the last of them files it. Nothing when the mode is unchanged.
    void SetUndoMode(int mode, CString *name);
    int GetNotifyMode() const { return m_bNotifyMode; }
    // On: makes the notification record (code 500) unless one is open. Off:
    // announces it unless commands of it are pending. Nothing when unchanged.
    void SetNotifyMode(int mode);

    // ---- Handlers ----

    // Inserts the handler before position `index` of the handler list, or
    // appends it when the list is shorter.
    void AddCommandHandler(MCFuncList::CALLBACK_FUNC fn, void *data, int index);
    void RemoveCommandHandlers();

    // ---- Batches ----

    // Posted commands wait `ms` milliseconds in the batch timer, counted from
    // the first, and then run as one batch. The old timer delivers what it
    // holds first. 0: no timer, each posted command runs on its own.
    void SetCommandRate(unsigned int ms);
    // Runs a batch under the document lock and releases its commands: the
    // result of the last phase run, 0 for an empty list.
    int OnCommand(CommandList &list);

    // ---- Undo history ----

    // One action back: 0 when nothing was filed, commands of an open step are
    // pending, or nothing is left to undo. The argument is ignored.
    int Undo(int count);
    // One action forward: 0 when nothing is undone. The argument is ignored.
    int Redo(int count);
    int GetUndoIndex() const { return m_nUndoIndex; }
    // Redo when `index` is below the undo index, otherwise Undo: one action
    // either way, however far `index` lies.
    void SetUndoIndex(int index);
    // The number of steps in the history.
    int GetUndoCount() const { return m_undoList.GetCount(); }
    // Files what is open, deletes every step of this document and sets the
    // index to -1. Returns 1.
    int ClearUndo();
    // The name of the step at `index` (-1: the next to undo) into `out`; 0
    // and an empty `out` when there is none.
    int GetUndoString(CString &out, int index);
    // The same for the next to redo (-1: index - 1).
    int GetRedoString(CString &out, int index);

    void SetOwner(ECPerformance *owner) { m_pOwner = owner; }
    ECPerformance *GetOwner() const { return m_pOwner; }

    // For the batch timer and tests: the open step and notification.
    MCUndoItem *GetUndoItem() const { return m_pUndoItem; }
    SCCommand *GetNotifyState() const { return m_pNotifyState; }
    MCCommandTimer *GetTimer() const { return m_pTimer; }
    int GetUndoPending() const { return m_nUndoPending; }
    int GetNotifyPending() const { return m_nNotifyPending; }
    // The history, newest step first.
    const UndoList &GetUndoList() const { return m_undoList; }
    // The number of steps waiting for OnIdle, over all documents.
    static int GetTrashCount();

protected:
    int Prepare(CommandList &list);
    int Process(CommandList &list);
    int Finish(CommandList &list, ECPerformance *perf);
    // Tells the command and announces the refusal (code 502); returns 0.
    int Abort(CCBase *cmd);
    // Files the open step (see the header comment) under s_trashCS.
    void FinishUndo();
    // Announces the open notification if it holds commands.
    void FinishNotify();
    // How many steps from the undo index (or index - 1 for redo) form one
    // action.
    int GetMaxLevelOfTheSameAction(int redo);
    // True when both names are equal (case-sensitive) and hold the marker
    // text "ID_STRING_THE_SAME_ACTION" of "InternalSystemData".
    static int IsCreatedInOneAction(CString &first, CString &second);
    // Registers the window class once, and makes the command window unless
    // it exists (again, when it went with the thread that made it).
    static void Initialize();
    static LRESULT CommandWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

private:
    // Calls every handler with the phase; 1, 0 or -1 as the worst answer
    // (any other value counts as 1). Stops at the first -1 when asked.
    int CallHandlers(int phase, CommandList &list);
    // The name of the step at `index` into `out`: 1, or 0 when there is none.
    int GetStepName(CString &out, int index) const;
    // Moves `item` to the trash. REQUIRES: s_trashCS held.
    static void Trash(MCUndoItem *item);
    // Takes back what InitCommand counted and gives back its reference;
    // returns 0.
    static int Undeliverable(CCBase *cmd, ECPerformance *perf);
    // Tells the user that an edit could not be delivered.
    static void ReportUndeliverable();

    unsigned m_bUndoMode : 1;
    unsigned m_bNotifyMode : 1;
    unsigned m_bUndoing : 1;
    int m_nUndoIndex = -1;
    int m_nUndoPending = 0;
    int m_nNotifyPending = 0;
    ECPerformance *m_pOwner = nullptr;
    MCFuncList m_handlers;
    MCCommandTimer *m_pTimer = nullptr;
    UndoList m_undoList;
    MCUndoItem *m_pUndoItem = nullptr;
    SCCommand *m_pNotifyState = nullptr;

    static int s_nUndoCount;
    static BOOL s_bInitialized;
    static HWND s_hWnd;
    // Never destroyed, so steps left in it at exit stay reachable.
    static UndoList &s_trashList;
    static CCriticalSection &s_trashCS;
};
