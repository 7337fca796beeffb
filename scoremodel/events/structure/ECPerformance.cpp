#include <scoremodel/events/structure/ECPerformance.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECPerformance, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECPerformance *ECPerformance::s_pActivePerformance = nullptr;

namespace
{
// The record loaders of the event bases ask ActiveArchiveVersion(); from the
// moment the library is loaded it answers with the active document's version.
const ARCHIVEVERSIONFUNC s_previousVersionSource = SetActiveArchiveVersionSource(&ECPerformance::GetActiveVersion);
} // namespace

ECPerformance::ECPerformance()
{
    m_commandMgr.SetOwner(this);
    m_stateMgr.SetOwner(this);
}

ECPerformance::~ECPerformance()
{
    if (s_pActivePerformance == this)
        s_pActivePerformance = nullptr;
}

ECPerformance &ECPerformance::operator=(const ECPerformance &other)
{
    if (this != &other)
        ECWithTimeChild::operator=(other);
    return *this;
}

CObject *ECPerformance::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPerformance)))
        *this = *static_cast<ECPerformance *>(src);
    return this;
}

int ECPerformance::GetEventId() const
{
    return EVENT_ID_PERFORMANCE;
}

int ECPerformance::GetParentTypes(CArray<int, int> &)
{
    return 0;
}

ECPerformance *ECPerformance::GetActivePerformance()
{
    return s_pActivePerformance;
}

ECPerformance *ECPerformance::SetActivePerformance(ECPerformance *performance)
{
    ECPerformance *previous = s_pActivePerformance;
    s_pActivePerformance = performance;
    return previous;
}

int ECPerformance::GetActiveVersion()
{
    return s_pActivePerformance ? s_pActivePerformance->m_nVersion : 0x7FFFFFFF;
}

ECConductor *ECPerformance::GetConductor()
{
    if (!m_pConductor)
        m_pConductor = static_cast<ECConductor *>(GetDescendant(EVENT_ID_CONDUCTOR, -1));
    return m_pConductor;
}

int ECPerformance::RemoveChild(ECBase *child, int deep)
{
    // Forgotten before the base runs: the conductor may die inside it.
    if (child && child == m_pConductor)
        m_pConductor = nullptr;
    return ECWithTimeChild::RemoveChild(child, deep);
}

int ECPerformance::RemoveChildren(int deep)
{
    m_pConductor = nullptr;
    return ECWithTimeChild::RemoveChildren(deep);
}

void ECPerformance::Serialize(CArchive &ar)
{
    // The lock is held for the whole tree, and let go even when the archive
    // throws.
    struct Unlocker
    {
        ECPerformance *performance;
        ~Unlocker() { performance->Unlock(); }
    };
    Lock();
    Unlocker unlocker{this};
    ECWithTimeChild::Serialize(ar);
    if (!ar.IsStoring())
        GetConductor();
}

// ---- Forwarders ----

void ECPerformance::AddCommandHandler(MCFuncList::CALLBACK_FUNC fn, void *userData)
{
    m_commandMgr.AddCommandHandler(fn, userData, 0x7FFFFFFF);
}

void ECPerformance::RemoveCommandHandlers()
{
    m_commandMgr.RemoveCommandHandlers();
}

void ECPerformance::SetCommandRate(unsigned int ms)
{
    m_commandMgr.SetCommandRate(ms);
}

int ECPerformance::Undo(int count)
{
    return m_commandMgr.Undo(count);
}

int ECPerformance::Redo(int count)
{
    return m_commandMgr.Redo(count);
}

int ECPerformance::GetUndoIndex()
{
    return m_commandMgr.GetUndoIndex();
}

void ECPerformance::SetUndoIndex(int index)
{
    m_commandMgr.SetUndoIndex(index);
}

int ECPerformance::GetUndoCount()
{
    return m_commandMgr.GetUndoCount();
}

int ECPerformance::ClearUndo()
{
    return m_commandMgr.ClearUndo();
}

int ECPerformance::GetUndoString(CString &out, int index)
{
    return m_commandMgr.GetUndoString(out, index);
}

int ECPerformance::GetRedoString(CString &out, int index)
{
    return m_commandMgr.GetRedoString(out, index);
}

void ECPerformance::AddStateHandler(MCFuncList::CALLBACK_FUNC fn, void *userData)
{
    m_stateMgr.AddStateHandler(fn, userData);
}

void ECPerformance::RemoveStateHandlers()
{
    m_stateMgr.RemoveStateHandlers();
}
