// ECPerformance: the root of a document.
//
// The one event without a parent. It owns the document's command manager
// (the road of every edit and the undo history), its state manager (the
// notifications to the host), a re-entrant lock and the version of the file
// being read. Its single structural child is the ECConductor, which a host
// adds right after construction; the free events ECFrame and ECLyricBlock
// stand beside it.
//
//     ECPerformance *doc = new ECPerformance;
//     doc->Ref();                                   // the host's hold
//     doc->AddChild(new ECConductor, 0);
//     doc->AddStateHandler(OnDocumentState, view);
//     ...
//     doc->RemoveChildren(1);                       // the tree goes
//     doc->Unref(1);                                // then the document
//
// The host must hold a reference (Ref) for as long as it uses the document:
// every Apply takes one more and the batch gives it back, so a document that
// nobody holds would die with its first batch. Children hold their parents
// too, so the document dies only once its tree is taken down.
//
// Version. The host calls SetVersion with the number in its own file header
// before it loads, and SetActivePerformance before it loads or saves; the
// record loaders ask GetActiveVersion (through ActiveArchiveVersion, which
// this class answers from library load on).
//
// Threads. Lock/Unlock enter and leave a critical section that the owning
// thread may enter again; commands hold it for a whole batch and Serialize
// for the tree. Everything else, the active performance included, is
// unguarded and belongs to the host's document thread.
//
// Archive record: exactly that of ECWithTimeChild. Loading also fills the
// conductor cache, which a host empties by taking the old tree down first.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/MCFuncList.h>
#include <scoremodel/platform/CCriticalSection.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/state/MCStateMgr.h>

class ECConductor;

class SCOREMODEL_API ECPerformance : public ECWithTimeChild
{
    DECLARE_SERIAL(ECPerformance)

public:
    ECPerformance();

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 44.
    int GetEventId() const override;
    // None: the performance has no parent. Returns 0.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- The active performance ----

    static ECPerformance *GetActivePerformance();
    // Names the document whose version the loaders read; returns the one
    // active before, so the caller can put it back. Null is allowed.
    static ECPerformance *SetActivePerformance(ECPerformance *performance);
    // The version of the active performance; 0x7FFFFFFF when none is active,
    // so an object serialised without a document counts as current.
    static int GetActiveVersion();

    // ---- Version ----

    // The document version of the file being read or last read; 0 at
    // construction. The library never sets it itself.
    int GetVersion() const { return m_nVersion; }
    void SetVersion(int version) { m_nVersion = version; }

    // ---- Structure ----

    // The conductor: the cache, or on first use the first ECConductor among
    // the descendants (kept until the conductor leaves the child list). Null
    // while there is none.
    ECConductor *GetConductor();

    // As ECWithChild's. Removing the conductor also forgets the cache, so a
    // conductor added or loaded later is found and no command reaches the
    // one that went.
    int RemoveChild(ECBase *child, int deep) override;
    int RemoveChildren(int deep) override;

    // ---- Lock ----

    // The document's re-entrant lock; each Lock needs its Unlock.
    void Lock() { m_lock.Lock(); }
    void Unlock() { m_lock.Unlock(); }

    // ---- Command manager ----

    MCCommandMgr *GetCommandMgr() { return &m_commandMgr; }
    // Adds a command handler behind those already there.
    void AddCommandHandler(MCFuncList::CALLBACK_FUNC fn, void *userData);
    void RemoveCommandHandlers();
    // Posted commands wait this many milliseconds to form one batch; 0 runs
    // each on its own.
    void SetCommandRate(unsigned int ms);
    int Undo(int count);
    int Redo(int count);
    int GetUndoIndex();
    void SetUndoIndex(int index);
    int GetUndoCount();
    int ClearUndo();
    int GetUndoString(CString &out, int index);
    int GetRedoString(CString &out, int index);

    // ---- State manager ----

    MCStateMgr *GetStateMgr() { return &m_stateMgr; }
    void AddStateHandler(MCFuncList::CALLBACK_FUNC fn, void *userData);
    void RemoveStateHandlers();

    // Assigns the ECWithTimeChild part only.
    ECPerformance &operator=(const ECPerformance &other);
    // Identity.
    int operator==(const ECPerformance &other) const { return this == &other; }
    int operator!=(const ECPerformance &other) const { return !(*this == other); }

protected:
    // Members go in reverse order: the lock, then the state and command
    // managers (which let go of the undo history), then the tree.
    ~ECPerformance() override;

private:
    ECPerformance(const ECPerformance &) = delete;

    MCCommandMgr m_commandMgr;
    MCStateMgr m_stateMgr;
    int m_nVersion = 0;
    CCriticalSection m_lock;
    ECConductor *m_pConductor = nullptr;

    static ECPerformance *s_pActivePerformance;
};
