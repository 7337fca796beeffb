// MCStateMgr: delivers a document's state records to its host.
//
// One manager lives inside each ECPerformance. A record applied to the
// document (SCBase::Apply or ApplyState) travels as message 0x3280 to one
// hidden window shared by all documents: sent when the record is
// synchronous, posted otherwise. On delivery the record's DoState runs, then
// the document's handlers from the first added, then the global handler:
//
//     int OnState(ECBase *document, int code, void *state, void *user);
//     doc->AddStateHandler(OnState, view);       // code is always 0
//     MCStateMgr::SetGlobalHandler(OnAnyState, app);
//
// A record without a document goes to the main window of the delivering
// thread (MCMessageLoop::SetMainWindow), by send, with the same message;
// none of the handlers sees it. After delivery the record is deleted unless
// its auto delete is off. A record applied once the window is gone is
// deleted at once.
//
// Threads. Records are delivered on the thread that owns the window, the
// thread of the first manager (or of the first SetGlobalHandler), unless the
// host named the document thread first (MCCommandMgr::SetDocumentThread). A posted
// record holds a reference on its document until delivery. The handler
// lists are not locked: they belong to the document thread.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/MCFuncList.h>
#include <scoremodel/platform/Window.h>

class ECPerformance;
class SCBase;

class SCOREMODEL_API MCStateMgr
{
public:
    // The message that carries a record; the long parameter is the SCBase *.
    static constexpr UINT StateMessage = 0x3280;

    // The first manager made registers the window class and makes the state
    // window (on this thread).
    MCStateMgr();
    ~MCStateMgr();
    MCStateMgr(const MCStateMgr &) = delete;
    MCStateMgr &operator=(const MCStateMgr &) = delete;

    // Delivers the record (see the header comment). Nothing for null; a
    // record is deleted when the window is gone.
    static void ApplyState(SCBase *state, ECPerformance *perf);
    // The handler called after the document's handlers for every record that
    // has a document; null removes it. Makes the window if needed.
    static void SetGlobalHandler(MCFuncList::CALLBACK_FUNC fn, void *data);

    // Makes the state window on the calling thread, replacing one that
    // another thread made; MCCommandMgr::SetDocumentThread calls it. 1 on
    // success.
    static int SetDocumentThread();

    void AddStateHandler(MCFuncList::CALLBACK_FUNC fn, void *data);
    void RemoveStateHandlers();

    // The window's handler of StateMessage; always 0. An exception from a
    // handler goes on to the sender, after the record is deleted (if auto
    // delete) and the document's reference given back, as on a delivery.
    static int OnStateMsg(unsigned int wParam, long lParam);
    // Calls the handlers, then the global handler, then gives back the
    // reference the record took on the owner (also when a handler throws).
    void OnState(SCBase *state);

    void SetOwner(ECPerformance *owner) { m_pOwner = owner; }
    ECPerformance *GetOwner() const { return m_pOwner; }

    // The state window; null before the first manager.
    static HWND GetWindow() { return s_hWnd; }

protected:
    static void Initialize();
    static LRESULT StateWndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);

private:
    ECPerformance *m_pOwner = nullptr;
    MCFuncList m_handlers;

    static MCFuncList::CALLBACK_FUNC s_pfnGlobalHandler;
    static void *s_pGlobalData;
    static BOOL s_bInitialized;
    static HWND s_hWnd;
};
