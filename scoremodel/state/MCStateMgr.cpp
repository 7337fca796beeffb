#include <scoremodel/state/MCStateMgr.h>

#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/state/SCBase.h>

MCFuncList::CALLBACK_FUNC MCStateMgr::s_pfnGlobalHandler = nullptr;
void *MCStateMgr::s_pGlobalData = nullptr;
BOOL MCStateMgr::s_bInitialized = FALSE;
HWND MCStateMgr::s_hWnd = nullptr;

namespace
{
const wchar_t *const s_className = L"MCStateMgr";
} // namespace

MCStateMgr::MCStateMgr()
{
    Initialize();
}

MCStateMgr::~MCStateMgr()
{
    RemoveStateHandlers();
}

void MCStateMgr::Initialize()
{
    if (!s_bInitialized)
    {
        WNDCLASSW wc = {};
        wc.lpfnWndProc = StateWndProc;
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

int MCStateMgr::SetDocumentThread()
{
    Initialize();
    HWND hWnd = s_bInitialized ? MCMessageLoop::OwnWindowOfClass(s_hWnd, s_className) : nullptr;
    if (!hWnd)
        return 0;
    s_hWnd = hWnd;
    return 1;
}

LRESULT MCStateMgr::StateWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == StateMessage)
        return OnStateMsg(static_cast<unsigned int>(wParam), static_cast<long>(lParam));
    return DefWindowProcW(hWnd, message, wParam, lParam);
}

void MCStateMgr::ApplyState(SCBase *state, ECPerformance *perf)
{
    if (!state)
        return;
    if (!IsWindow(s_hWnd))
    {
        delete state;
        return;
    }
    state->SetTarget(perf);
    if (perf)
        perf->Ref();
    if (state->IsSynchronous())
        SendMessageW(s_hWnd, StateMessage, 0, reinterpret_cast<LPARAM>(state));
    else if (!PostMessageW(s_hWnd, StateMessage, 0, reinterpret_cast<LPARAM>(state)))
    {
        // The window went in the meantime: the record is let go as if it had
        // been delivered to nobody.
        if (perf)
            perf->Unref(1);
        delete state;
    }
}

void MCStateMgr::SetGlobalHandler(MCFuncList::CALLBACK_FUNC fn, void *data)
{
    Initialize();
    s_pfnGlobalHandler = fn;
    s_pGlobalData = data;
}

void MCStateMgr::AddStateHandler(MCFuncList::CALLBACK_FUNC fn, void *data)
{
    m_handlers.AddCallback(fn, data);
}

void MCStateMgr::RemoveStateHandlers()
{
    m_handlers.RemoveCallbacks();
}

int MCStateMgr::OnStateMsg(unsigned int wParam, long lParam)
{
    auto *state = reinterpret_cast<SCBase *>(lParam);
    if (!state)
        return 0;
    // Delivered or not, an auto-delete record is gone afterwards.
    struct DeleteAfter
    {
        SCBase *state;
        ~DeleteAfter()
        {
            if (state->IsAutoDelete())
                delete state;
        }
    } deleteAfter{state};
    state->DoState();
    if (ECPerformance *target = state->GetTarget())
        target->GetStateMgr()->OnState(state);
    else if (HWND main = MCMessageLoop::GetMainWindow())
        SendMessageW(main, StateMessage, wParam, lParam);
    return 0;
}

void MCStateMgr::OnState(SCBase *state)
{
    // The reference ApplyState took, given back last, whatever a handler
    // throws; the document may go with it.
    struct GiveBack
    {
        ECPerformance *owner;
        ~GiveBack()
        {
            if (owner)
                owner->Unref(1);
        }
    } giveBack{m_pOwner};
    m_handlers.CallCallbacks(m_pOwner, 0, state);
    if (s_pfnGlobalHandler)
        s_pfnGlobalHandler(m_pOwner, 0, state, s_pGlobalData);
}
