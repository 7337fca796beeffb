#include <scoremodel/commands/MCCommandMgr.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandTimer.h>
#include <scoremodel/commands/MCUndoItem.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/MessageBox.h>
#include <scoremodel/state/MCStateMgr.h>
#include <scoremodel/state/SCCommand.h>

#include <cwchar>
#include <exception>
#include <memory>

int MCCommandMgr::s_nUndoCount = MCCommandMgr::DefaultUndoLevels;
BOOL MCCommandMgr::s_bInitialized = FALSE;
HWND MCCommandMgr::s_hWnd = nullptr;
MCCommandMgr::UndoList &MCCommandMgr::s_trashList = *new MCCommandMgr::UndoList;
CCriticalSection &MCCommandMgr::s_trashCS = *new CCriticalSection;

namespace
{
const wchar_t *const s_className = L"MCCommandMgr";

MCCommandMgr *ManagerOf(ECPerformance *perf)
{
    return perf ? perf->GetCommandMgr() : nullptr;
}

// Runs host code (a notification, an undo step) whose exception must not cut
// the library's own bookkeeping short: the first exception is kept for the
// caller to rethrow once its state is whole.
template <class F> void KeepFirstException(std::exception_ptr &first, F &&run)
{
    try
    {
        run();
    }
    catch (...)
    {
        if (!first)
            first = std::current_exception();
    }
}

void RethrowIfAny(const std::exception_ptr &first)
{
    if (first)
        std::rethrow_exception(first);
}
} // namespace

MCCommandMgr::MCCommandMgr() : m_bUndoMode(0), m_bNotifyMode(0), m_bUndoing(0)
{
    Initialize();
}

MCCommandMgr::~MCCommandMgr()
{
    // The queue of the timer is empty here: each queued command keeps the
    // document alive until its batch has run. The timer may be running the
    // batch that let the document go; it then goes when that batch ends.
    if (m_pTimer)
        m_pTimer->Release(nullptr);
    m_pTimer = nullptr;
    RemoveCommandHandlers();
    ClearUndo();
    delete m_pNotifyState;
    m_pNotifyState = nullptr;
}

void MCCommandMgr::Initialize()
{
    if (!s_bInitialized)
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = CommandWndProc;
        wc.hbrBackground = reinterpret_cast<HBRUSH>(static_cast<UINT_PTR>(6));
        wc.lpszClassName = s_className;
        s_bInitialized = RegisterClassW(&wc) != 0 ? TRUE : FALSE;
        if (!s_bInitialized)
            return;
    }
    // A window that went with its thread is made again by the next manager.
    if (!IsWindow(s_hWnd))
        s_hWnd = CreateWindowExW(0, s_className, s_className, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
}

int MCCommandMgr::SetDocumentThread()
{
    Initialize();
    // A window of another thread stays with it, and whatever was already on
    // its way there still runs there; everything from now on comes here.
    HWND hWnd = s_bInitialized ? MCMessageLoop::OwnWindowOfClass(s_hWnd, s_className) : nullptr;
    if (!hWnd)
        return 0;
    s_hWnd = hWnd;
    return MCStateMgr::SetDocumentThread();
}

int MCCommandMgr::Undeliverable(CCBase *cmd, ECPerformance *perf)
{
    // Taken back as though the command had never been applied: the brackets
    // do not wait for it, and it dies here unless the caller holds it.
    if (MCCommandMgr *mgr = ManagerOf(perf))
    {
        if (cmd->IsRecordUndo() && mgr->m_nUndoPending > 0)
            --mgr->m_nUndoPending;
        if (cmd->IsRecordNotify() && mgr->m_nNotifyPending > 0)
            --mgr->m_nNotifyPending;
        cmd->SetRecordUndo(0);
        cmd->SetRecordNotify(0);
    }
    cmd->Unref(1);
    return 0;
}

void MCCommandMgr::ReportUndeliverable()
{
    MCMessageBox(MCLanguageManager::GetText(L"TuDataModel_Commands_MCCommandMgr", L"IDD_DM_MB_COMMAND_UNDELIVERED"),
                 MB_OK | MB_ICONERROR);
}

LRESULT MCCommandMgr::CommandWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == CommandMessage)
        return OnCommandMsg(static_cast<unsigned int>(wParam), static_cast<long>(lParam));
    return DefWindowProcW(hWnd, message, wParam, lParam);
}

// ---- Delivery ----

int MCCommandMgr::InitCommand(CCBase *cmd, ECPerformance *perf)
{
    MCCommandMgr *mgr = ManagerOf(perf);
    if (!cmd || !mgr)
        return 0;
    if (mgr->m_bUndoMode && cmd->CanUndo())
    {
        ++mgr->m_nUndoPending;
        cmd->SetRecordUndo(1);
    }
    else
        cmd->SetRecordUndo(0);
    if (mgr->m_bNotifyMode)
    {
        ++mgr->m_nNotifyPending;
        cmd->SetRecordNotify(1);
    }
    else
        cmd->SetRecordNotify(0);
    cmd->Ref();
    cmd->SetUndoing(mgr->m_bUndoing);
    cmd->SetTarget(perf);
    return 1;
}

int MCCommandMgr::ApplyCommand(CCBase *cmd, ECPerformance *perf)
{
    if (!cmd || !perf)
        return 0;
    // The command window went with the thread that made it: nothing would
    // ever run the command.
    const bool deliverable = IsWindow(s_hWnd);
    perf->Ref();
    InitCommand(cmd, perf);
    if (deliverable && cmd->IsSynchronous())
    {
        SendMessageW(s_hWnd, CommandMessage, 0, reinterpret_cast<LPARAM>(cmd));
        return 1;
    }
    if (deliverable && PostMessageW(s_hWnd, CommandMessage, 0, reinterpret_cast<LPARAM>(cmd)))
        return 1;
    Undeliverable(cmd, perf);
    perf->Unref(1);
    ReportUndeliverable();
    return 0;
}

int MCCommandMgr::ApplyCommands(MCCommandList *list, ECPerformance *perf)
{
    if (!list || !perf || list->IsEmpty())
        return 0;
    const bool deliverable = IsWindow(s_hWnd);
    perf->Ref();
    auto batch = std::make_unique<CommandList>();
    // The list is synchronous when every command is (MCCommandList::
    // IsSynchronous), found on the way instead of by another walk.
    bool synchronous = true;
    for (POSITION pos = list->GetHeadPosition(); pos;)
    {
        auto *cmd = static_cast<CCBase *>(list->GetNext(pos));
        if (!cmd)
            continue;
        synchronous = synchronous && cmd->IsSynchronous();
        InitCommand(cmd, perf);
        batch->AddTail(cmd);
    }
    // From here the window owns the heap list and deletes it.
    if (deliverable && synchronous)
    {
        SendMessageW(s_hWnd, CommandMessage, 1, reinterpret_cast<LPARAM>(batch.release()));
        return 1;
    }
    if (deliverable && PostMessageW(s_hWnd, CommandMessage, 1, reinterpret_cast<LPARAM>(batch.get())))
    {
        batch.release();
        return 1;
    }
    while (!batch->IsEmpty())
        if (CCBase *cmd = batch->RemoveHead())
            Undeliverable(cmd, perf);
    perf->Unref(1);
    ReportUndeliverable();
    return 0;
}

int MCCommandMgr::OnCommandMsg(unsigned int wParam, long lParam)
{
    if (wParam == 0)
    {
        auto *cmd = reinterpret_cast<CCBase *>(lParam);
        MCCommandMgr *mgr = cmd ? ManagerOf(cmd->GetTarget()) : nullptr;
        if (!mgr)
            return 0;
        if (mgr->m_pTimer && !cmd->IsSynchronous())
            mgr->m_pTimer->AddCommand(cmd);
        else
        {
            CommandList list;
            list.AddTail(cmd);
            mgr->OnCommand(list);
        }
    }
    else if (wParam == 1)
    {
        // Deleted here whatever the handlers of the batch throw.
        std::unique_ptr<CommandList> list(reinterpret_cast<CommandList *>(lParam));
        if (!list)
            return 0;
        if (MCCommandMgr *mgr = ManagerOf(list->GetTarget()))
        {
            if (mgr->m_pTimer && !list->IsSynchronous())
                mgr->m_pTimer->AddCommands(list.get());
            else
                mgr->OnCommand(*list);
        }
    }
    return 0;
}

// ---- The batch ----

int MCCommandMgr::OnCommand(CommandList &list)
{
    if (list.IsEmpty())
        return 0;
    ECPerformance *target = list.GetTarget();

    // Whatever happens inside, the commands get back the references of
    // InitCommand and of the list, the lock is left and the document gets
    // back the reference of its Apply. The document may die at the very end.
    // One walk gives back both references of each command: a long batch is
    // bound by the memory its walks touch.
    struct BatchEnd
    {
        CommandList &list;
        ECPerformance *target;
        ~BatchEnd()
        {
            // The reference of InitCommand keeps each command alive
            // through the removal of its node.
            while (!list.IsEmpty())
                if (CCBase *cmd = list.RemoveHead())
                    cmd->Unref(1);
            if (target)
            {
                target->Unlock();
                target->Unref(1);
            }
        }
    };
    if (target)
        target->Lock();
    BatchEnd end{list, target};
    if (!target)
        return 0;

    int result = Prepare(list);
    if (result)
        result = Process(list);
    if (result)
        result = Finish(list, target);
    return result;
}

int MCCommandMgr::CallHandlers(int phase, CommandList &list)
{
    if (m_handlers.IsEmpty())
        return 1;
    // A handler may add or remove handlers while it runs: the pass calls
    // those listed when it began and not removed since.
    MCFuncList::Pass pass(m_handlers);
    int answer = 1;
    while (const MCFuncList::CALLBACK_REC *rec = pass.Next())
    {
        int result = rec->pfn(m_pOwner, phase, &list, rec->userData);
        if (result == -1)
            return -1;
        if (result == 0)
            answer = 0;
    }
    return answer;
}

int MCCommandMgr::Prepare(CommandList &list)
{
    for (POSITION pos = list.GetHeadPosition(); pos;)
    {
        CCBase *cmd = list.GetNext(pos);
        cmd->SetCommandPhase(CCBase::PhasePrepare);
        if (!cmd->Prepare())
            return Abort(cmd);
    }
    // A handler that answers 0 asks for another look at the prepared batch;
    // the passes go on until none asks, without a limit.
    for (;;)
    {
        int answer = CallHandlers(0, list);
        if (answer == -1)
            return 0;
        if (answer != 0)
            return 1;
    }
}

int MCCommandMgr::Process(CommandList &list)
{
    for (POSITION pos = list.GetHeadPosition(); pos;)
    {
        CCBase *cmd = list.GetNext(pos);
        cmd->SetCommandPhase(CCBase::PhaseProcess);
        if (!cmd->Process())
            return Abort(cmd);
    }
    // A refusal here does not roll back: the tree stays changed, and since
    // Finish does not run, nothing is filed or announced.
    return CallHandlers(1, list) == 1 ? 1 : 0;
}

int MCCommandMgr::Finish(CommandList &list, ECPerformance *)
{
    // A state handler that throws on the announcement must not leave the
    // rest of the batch unfinished and the counters raised: the batch is
    // finished first, then the exception goes on to the host.
    std::exception_ptr failure;
    for (POSITION pos = list.GetHeadPosition(); pos;)
    {
        CCBase *cmd = list.GetNext(pos);
        cmd->SetCommandPhase(CCBase::PhaseFinish);
        if (!cmd->Finish())
        {
            Abort(cmd);
            RethrowIfAny(failure);
            return 0;
        }
        if (cmd->IsRecordUndo() && m_pUndoItem)
        {
            m_pUndoItem->AddCommand(cmd);
            --m_nUndoPending;
            if (!m_bUndoMode && m_nUndoPending == 0)
                FinishUndo();
        }
        if (cmd->IsRecordNotify())
        {
            if (m_pNotifyState)
                m_pNotifyState->AddCommand(cmd);
            --m_nNotifyPending;
            if (!m_bNotifyMode && m_nNotifyPending == 0)
                KeepFirstException(failure, [this] { FinishNotify(); });
        }
    }
    RethrowIfAny(failure);
    return 1;
}

int MCCommandMgr::Abort(CCBase *cmd)
{
    cmd->Abort();
    auto *record = new SCCommand(SCCommand::CodeAborted);
    record->SetSynchronous(1);
    record->AddCommand(cmd);
    record->Apply(m_pOwner);
    return 0;
}

// ---- Brackets ----

void MCCommandMgr::BeginUndo(ECPerformance *perf, CString &name)
{
    if (MCCommandMgr *mgr = ManagerOf(perf))
    {
        mgr->SetUndoMode(1, &name);
        mgr->SetNotifyMode(1);
    }
}

void MCCommandMgr::EndUndo(ECPerformance *perf)
{
    if (MCCommandMgr *mgr = ManagerOf(perf))
    {
        mgr->SetUndoMode(0, nullptr);
        mgr->SetNotifyMode(0);
    }
}

void MCCommandMgr::BeginNotify(ECPerformance *perf)
{
    if (MCCommandMgr *mgr = ManagerOf(perf))
        mgr->SetNotifyMode(1);
}

void MCCommandMgr::EndNotify(ECPerformance *perf)
{
    if (MCCommandMgr *mgr = ManagerOf(perf))
        mgr->SetNotifyMode(0);
}

void MCCommandMgr::SetUndoMode(int mode, CString *name)
{
    const unsigned on = mode ? 1 : 0;
    if (on == m_bUndoMode)
        return;
    m_bUndoMode = on;
    if (on)
    {
        FinishUndo();
        m_pUndoItem = new MCUndoItem(name ? *name : CString());
    }
    else if (m_nUndoPending == 0)
        FinishUndo();
}

void MCCommandMgr::SetNotifyMode(int mode)
{
    const unsigned on = mode ? 1 : 0;
    if (on == m_bNotifyMode)
        return;
    m_bNotifyMode = on;
    if (on)
    {
        if (!m_pNotifyState)
        {
            m_pNotifyState = new SCCommand(SCCommand::CodeFinished);
            m_pNotifyState->SetSynchronous(1);
        }
    }
    else if (m_nNotifyPending == 0)
        FinishNotify();
}

void MCCommandMgr::FinishNotify()
{
    if (!m_pNotifyState || m_pNotifyState->GetCommands().IsEmpty())
        return;
    SCCommand *record = m_pNotifyState;
    m_pNotifyState = nullptr;
    record->Apply(m_pOwner);
}

void MCCommandMgr::Trash(MCUndoItem *item)
{
    if (item)
        s_trashList.AddTail(item);
}

void MCCommandMgr::FinishUndo()
{
    CSingleLock lock(&s_trashCS, TRUE);
    if (!m_pUndoItem)
        return;
    if (!m_pUndoItem->IsEmpty())
    {
        // The undone steps at the head are the redo branch, which a new step
        // drops.
        for (int n = m_nUndoIndex; n > 0 && !m_undoList.IsEmpty(); --n)
            Trash(m_undoList.RemoveHead());
        m_undoList.AddHead(m_pUndoItem);
        while (m_undoList.GetCount() > s_nUndoCount)
            Trash(m_undoList.RemoveTail());
    }
    else
        Trash(m_pUndoItem);
    m_pUndoItem = nullptr;
    m_nUndoIndex = 0;
}

void MCCommandMgr::OnIdle()
{
    CSingleLock lock(&s_trashCS, TRUE);
    while (!s_trashList.IsEmpty())
        delete s_trashList.RemoveHead();
}

int MCCommandMgr::GetTrashCount()
{
    CSingleLock lock(&s_trashCS, TRUE);
    return s_trashList.GetCount();
}

int MCCommandMgr::GetUndoLevels()
{
    return s_nUndoCount;
}

void MCCommandMgr::SetUndoLevels(int levels)
{
    s_nUndoCount = levels < 0 ? 0 : levels > MaxUndoLevels ? MaxUndoLevels : levels;
}

// ---- Handlers and rate ----

void MCCommandMgr::AddCommandHandler(MCFuncList::CALLBACK_FUNC fn, void *data, int index)
{
    POSITION pos = m_handlers.GetHeadPosition();
    for (int i = 0; i < index && pos; ++i)
        m_handlers.GetNext(pos);
    if (pos)
        m_handlers.InsertCallback(fn, data, pos);
    else
        m_handlers.AddCallback(fn, data);
}

void MCCommandMgr::RemoveCommandHandlers()
{
    m_handlers.RemoveCallbacks();
}

void MCCommandMgr::SetCommandRate(unsigned int ms)
{
    // The old timer delivers what it holds as it goes; by then it is no
    // longer this manager's, so nothing queues on it meanwhile.
    MCCommandTimer *old = m_pTimer;
    m_pTimer = nullptr;
    if (old)
        old->Release(this);
    if (ms)
        m_pTimer = new MCCommandTimer(this, ms);
}

// ---- Undo history ----

int MCCommandMgr::Undo(int)
{
    if (m_nUndoIndex < 0 || m_nUndoPending > 0)
        return 0;
    int n = GetMaxLevelOfTheSameAction(0);
    const int left = m_undoList.GetCount() - m_nUndoIndex;
    if (n > left)
        n = left;
    if (n < 1)
        return 0;
    SetNotifyMode(1);
    m_bUndoing = 1;
    // The steps are undone whatever the state handlers throw; the index, the
    // flag and the notify mode move as if they had not, and the first
    // exception reaches the host afterwards.
    std::exception_ptr failure;
    for (int done = 0; done < n; ++done)
    {
        // Looked up afresh: the state handlers that an undo calls may have
        // changed the history.
        MCUndoItem *item = m_undoList.GetAt(m_undoList.FindIndex(m_nUndoIndex));
        if (!item)
            break;
        KeepFirstException(failure, [item] { item->UndoCommands(); });
        ++m_nUndoIndex;
    }
    m_bUndoing = 0;
    KeepFirstException(failure, [this] { SetNotifyMode(0); });
    RethrowIfAny(failure);
    return 1;
}

int MCCommandMgr::Redo(int)
{
    if (m_nUndoIndex < 1)
        return 0;
    int n = GetMaxLevelOfTheSameAction(1);
    if (n > m_nUndoIndex)
        n = m_nUndoIndex;
    if (n < 1)
        return 0;
    SetNotifyMode(1);
    std::exception_ptr failure;
    for (int done = 0; done < n && m_nUndoIndex > 0; ++done)
    {
        MCUndoItem *item = m_undoList.GetAt(m_undoList.FindIndex(m_nUndoIndex - 1));
        if (!item)
            break;
        KeepFirstException(failure, [item] { item->RedoCommands(); });
        --m_nUndoIndex;
    }
    KeepFirstException(failure, [this] { SetNotifyMode(0); });
    RethrowIfAny(failure);
    return 1;
}

void MCCommandMgr::SetUndoIndex(int index)
{
    if (index < m_nUndoIndex)
        Redo(m_nUndoIndex - index);
    else
        Undo(index - m_nUndoIndex);
}

int MCCommandMgr::GetMaxLevelOfTheSameAction(int redo)
{
    int count = 1;
    CString reference;
    POSITION pos = m_undoList.FindIndex(redo ? m_nUndoIndex - 1 : m_nUndoIndex);
    while (pos)
    {
        MCUndoItem *item = redo ? m_undoList.GetPrev(pos) : m_undoList.GetNext(pos);
        if (!item || item->GetName().IsEmpty())
            continue;
        CString name = item->GetName();
        if (reference.IsEmpty())
            reference = name;
        else if (IsCreatedInOneAction(reference, name))
            ++count;
        else
            break;
    }
    return count;
}

int MCCommandMgr::IsCreatedInOneAction(CString &first, CString &second)
{
    CString marker = MCLanguageManager::GetText(L"InternalSystemData", L"ID_STRING_THE_SAME_ACTION");
    if (marker.IsEmpty() || first.IsEmpty() || second.IsEmpty())
        return 0;
    return std::wcsstr(first.GetString(), marker.GetString()) && std::wcscmp(first.GetString(), second.GetString()) == 0
               ? 1
               : 0;
}

int MCCommandMgr::ClearUndo()
{
    FinishUndo();
    while (!m_undoList.IsEmpty())
        delete m_undoList.RemoveHead();
    m_nUndoIndex = -1;
    return 1;
}

int MCCommandMgr::GetUndoString(CString &out, int index)
{
    out.Empty();
    if (m_nUndoIndex < 0)
        return 0;
    return GetStepName(out, index == -1 ? m_nUndoIndex : index);
}

int MCCommandMgr::GetRedoString(CString &out, int index)
{
    out.Empty();
    if (m_nUndoIndex < 1)
        return 0;
    return GetStepName(out, index == -1 ? m_nUndoIndex - 1 : index);
}

int MCCommandMgr::GetStepName(CString &out, int index) const
{
    MCUndoItem *item = m_undoList.GetAt(m_undoList.FindIndex(index));
    if (!item)
        return 0;
    out = item->GetName();
    return 1;
}
