// CCBase: the base of every command, the only way a document changes.
//
// A host builds a subclass, fills it and calls Apply(document). The command
// manager (MCCommandMgr) then owns the road: it counts the command into the
// open undo step and notification, delivers it on its hidden window (at once
// when synchronous, later when posted) and runs it in three phases under the
// document lock:
//
//     Prepare()   phase 0: look things up, refuse with 0
//     Process()   phase 1: change the tree (AddChild, RemoveChild, ...)
//     Finish()    phase 2: last word; refuse with 0
//
// A refusal gets Abort() and a state record of code 502; steps already done
// are not reversed. Undo() reverses Process; a redo runs Prepare and Process
// again on the same object, so both must work again after Undo.
//
//     class CCMyEdit : public CCBase {
//         int Prepare() override { if (!CCBase::Prepare()) return 0; ...; return 1; }
//         int Process() override { ...; return CCBase::Process(); }
//     };
//
// Ownership. A command is reference counted like an event, but on its own
// 16-bit count: the manager, the batch list, the undo step and the state
// record each hold one reference, and the command dies with the last Unref(1).
// The destructor is protected for that reason. A command keeps what it took
// out of the tree alive by reference (ECBase::Ref), so undo restores the same
// objects, not copies.
//
// Threads. A command runs on the thread that owns the command window, under
// the document lock (ECPerformance::Lock). Nothing here locks by itself; the
// reference count is not atomic.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CTypedPtrList.h>

class ECConductor;
class ECPerformance;

// Command ids, as GetCommandId reports them. A class that does not override
// GetCommandId reports the id of the class it inherits from. The gaps (17,
// 23, 28, 29, 31, 36, 37) belong to no class.
enum CommandId : int
{
    COMMAND_ID_ADD = 0,
    COMMAND_ID_ADD_CLEF = 1,
    COMMAND_ID_ADD_DYNAMIC = 2,
    COMMAND_ID_ADD_ENV_POINT = 3,
    COMMAND_ID_ADD_KEY = 4,
    COMMAND_ID_ADD_MEASURE = 5,
    COMMAND_ID_ADD_METER = 6,
    COMMAND_ID_ADD_NOTE_MODIFIER = 7,
    COMMAND_ID_ADD_PEDAL = 8,
    COMMAND_ID_ADD_SYS_EX = 9,
    COMMAND_ID_ADD_TEMPO = 10,
    COMMAND_ID_ADD_TRACK = 11,
    COMMAND_ID_ADD_TRANSPOSE = 12,
    COMMAND_ID_ADD_TUPLET = 13,
    COMMAND_ID_ADJUST_MEASURE_CHILDREN = 14,
    COMMAND_ID_BASE = 15,
    COMMAND_ID_COPY = 16,
    COMMAND_ID_COPY_TRACKS = 18,
    COMMAND_ID_DISCARD_VIDEO = 19,
    COMMAND_ID_DRAG = 20,
    COMMAND_ID_DROP = 21,
    COMMAND_ID_EDIT = 22,
    COMMAND_ID_EDIT_DATA = 24,
    COMMAND_ID_EDIT_DURATION = 25,
    COMMAND_ID_EDIT_FILTER = 26,
    COMMAND_ID_EDIT_GRAPH = 27,
    COMMAND_ID_EDIT_TIME = 30,
    COMMAND_ID_GROUP_STAVES = 32,
    COMMAND_ID_LOAD_VIDEO = 33,
    COMMAND_ID_ORDER_TRACKS = 34,
    COMMAND_ID_PASTE = 35,
    COMMAND_ID_REMOVE = 38,
    COMMAND_ID_REMOVE_CLEF = 39,
    COMMAND_ID_REMOVE_ENV_POINT = 40,
    COMMAND_ID_REMOVE_KEY = 41,
    COMMAND_ID_REMOVE_MEASURE = 42,
    COMMAND_ID_REMOVE_METER = 43,
    COMMAND_ID_REMOVE_TRACK = 44,
    // Out of the alphabetical run, and keeps this number.
    COMMAND_ID_ADD_COMPRESS = 45
};

class SCOREMODEL_API CCBase : public CObject
{
    DECLARE_DYNCREATE(CCBase)

public:
    typedef CTypedPtrList<MCEventList, ECBase *> EventList;

    // Phases, as GetCommandPhase reports them while the command runs.
    enum Phase : unsigned
    {
        PhasePrepare = 0,
        PhaseProcess = 1,
        PhaseFinish = 2
    };

    CCBase();

    // ---- The road of a command ----

    // 15 here.
    virtual int GetCommandId();
    // Hands the command to MCCommandMgr::ApplyCommand; 1 when it went on its
    // way, 0 for a null document.
    virtual int Apply(ECPerformance *document);
    // Fetches the conductor of the target into the command; 0 when there is
    // none (or no target), else 1. Every override calls this first and gives
    // up on 0.
    virtual int Prepare();
    // Detaches the events of the discard list (ProcessDiscardList); returns 1.
    virtual int Process();
    // Returns 1.
    virtual int Finish();
    // Called once when this command refused a phase. Nothing here.
    virtual void Abort();
    // Reverses Process. Nothing here.
    virtual void Undo();

    // ---- Flags ----

    // Deliver by direct send (before Apply returns) instead of by post.
    // Default 0.
    void SetSynchronous(int on) { m_bSynchronous = on ? 1 : 0; }
    int IsSynchronous() const { return m_bSynchronous; }
    // May enter the undo history. Default 1.
    void SetCanUndo(int on) { m_bCanUndo = on ? 1 : 0; }
    int CanUndo() const { return m_bCanUndo; }
    // Set by MCCommandMgr::InitCommand: counted in the open undo step, and in
    // the open notification.
    void SetRecordUndo(int on) { m_bRecordUndo = on ? 1 : 0; }
    int IsRecordUndo() const { return m_bRecordUndo; }
    void SetRecordNotify(int on) { m_bRecordNotify = on ? 1 : 0; }
    int IsRecordNotify() const { return m_bRecordNotify; }
    // Applied while the manager undoes (set by InitCommand).
    void SetUndoing(int on) { m_bUndoing = on ? 1 : 0; }
    int IsUndoing() const { return m_bUndoing; }
    // 0 while preparing, 1 while processing, 2 while finishing (4 bits).
    void SetCommandPhase(unsigned phase) { m_nPhase = phase & 0xF; }
    unsigned GetCommandPhase() const { return m_nPhase; }

    // ---- Reference count ----

    // Adds one holder; returns the new count.
    unsigned short Ref() { return ++m_nRefCount; }
    // Removes one holder unless the count is already 0; when `bDelete` is set
    // and the count is then 0, deletes the command and returns 0. Otherwise
    // returns the count.
    unsigned short Unref(int bDelete);
    unsigned short GetRefCount() const { return m_nRefCount; }

    // ---- Target ----

    ECPerformance *GetTarget() const { return m_pTarget; }
    void SetTarget(ECPerformance *target) { m_pTarget = target; }
    // The target's conductor, as Prepare found it; null before.
    ECConductor *GetConductor() const { return m_pConductor; }

    // ---- Discarding events ----

    // The events that Process detaches; null until something is discarded.
    EventList *GetDiscardList() const { return m_pDiscardList; }
    // Puts the event on the discard list unless it is there already; nothing
    // for null.
    void Discard(ECBase *event);
    // Adds the list's events in order, and stops for good at the first one
    // the discard list already holds: the events behind it stay off the list.
    // That early stop is wanted.
    void Discard(EventList *events);
    // Discards the mirrors held by a clef, key, meter, tempo or a text of
    // type 21 or 22; nothing for any other event.
    void DiscardMirrors(ECBase *event);
    // For each discarded event from the head: a mirror lets its source go;
    // then the event leaves its parents and its children (not deeply: a child
    // that something else holds keeps its own children, and one that nothing
    // else holds is released, its children in the same way). Then the list is
    // deleted.
    void ProcessDiscardList();

protected:
    // Only Unref deletes a command. Releases the discard list.
    ~CCBase() override;

private:
    unsigned m_bSynchronous : 1;
    unsigned m_bCanUndo : 1;
    unsigned m_bRecordUndo : 1;
    unsigned m_bRecordNotify : 1;
    unsigned m_bUndoing : 1;
    unsigned m_nPhase : 4;
    unsigned short m_nRefCount = 0;
    EventList *m_pDiscardList = nullptr;
    ECPerformance *m_pTarget = nullptr;
    ECConductor *m_pConductor = nullptr;
};
