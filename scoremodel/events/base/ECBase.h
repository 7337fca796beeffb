// ECBase: the root of every event, the objects a score is made of.
//
// An event has an id (GetEventId), a flag byte, a reference count, selection
// and hit marks, data attachments and a list of parents. ECWithChild adds a
// child list, ECWithTime a time and a voice/track word, ECWithTimeChild both.
//
// The tree is a graph: the parent list may hold several parents (a note is a
// child of its measure, its beam and its tuplet at once), and GetParentTypes
// says which ids may be parents.
//
// Ownership. Events are reference counted, and lists do the counting: a list
// that holds an event holds one reference on it, and since the parent list is
// such a list, a child holds a reference on each of its parents too. An event
// made by new or CreateObject has count 0 and belongs to no one; whoever keeps
// one outside any list (a command, a test) calls Ref() and later Unref(1).
// Unref(1) that takes the count to 0 deletes the event, and the destructor is
// protected, so nothing else deletes an event. A parent and its children hold
// each other, so a subtree is taken down by its holder through
// RemoveChild(child, 1) or RemoveChildren(1), which detach and release
// everything beneath; an event inside it that something else still holds
// survives, detached from the parent that let it go.
//
// An operation never destroys the event it runs on while it runs: a parent
// whose last holder was the child it removes dies when RemoveChild returns.
// An event that nobody held (count 0) is never destroyed by an operation on
// it; its creator releases it with Unref(1).
//
// Flags: bit 0 hasData (a serialisable attachment exists), bit 1
// hasChildren (the child list is not empty), bits 2-3 the selection field,
// bits 4-7 unused here and carried unchanged through the archive. The spare
// byte beside the flags belongs to derived classes (a type, a unit count).
//
// Copy convention: operator= copies a class's own value fields and calls the
// base's; never parents, children, attachments, flags, count or hit marks.
// ECBase::operator= copies nothing; operator== of ECBase is identity.
//
// Threads: nothing locks; an event belongs to the thread that holds its
// performance. Reference counts are plain, not atomic.
//
// Archive record (schema 2): the flag byte raw (selection bits included),
// then the attachments when hasData is set. On load the selection bits are
// cleared; the count and the hit marks are never stored.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/MCDataArray.h>
#include <scoremodel/events/base/MCEventList.h>
#include <scoremodel/events/base/MCVoiceTrack.h>
#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CTypedPtrList.h>

#include <vector>

class CArchive;
class DCBase;
class MCTime;

class SCOREMODEL_API ECBase : public CObject
{
    DECLARE_SERIAL(ECBase)

    // The bar-structure commands write lists back as they recorded them.
    friend class MCStructureJournal;

public:
    typedef CTypedPtrList<MCEventList, ECBase *> EventList;

    enum : BYTE
    {
        FlagHasData = 0x01,
        FlagHasChildren = 0x02,
        FlagSelection = 0x0C,
        // Bits 4-7: not used by the model, kept through the archive.
        FlagSpare = 0xF0
    };

    ECBase();

    void Serialize(CArchive &ar) override;

    // ---- Identity and copying ----

    // Calls this class's operator= with `src` when `src` is of this class
    // (or derived from it); returns this either way.
    virtual CObject *Copy(CObject *src);
    // This class's id; 6 for ECBase.
    virtual int GetEventId() const;
    // Appends the ids of the classes that may be parents; 1 if any, else 0.
    virtual int GetParentTypes(CArray<int, int> &types);

    // ---- Selection and hit marks (the views' business) ----

    // The two-bit selection field AND `mask`.
    virtual int IsSelected(unsigned mask);
    // `on`: field |= mask & 3. Not `on`: field &= mask ^ 3.
    virtual void SetSelected(int on, unsigned mask);
    virtual unsigned GetSelectedFlag();
    // The hit word AND `mask`.
    virtual int IsHited(unsigned mask);
    // `on`: word |= mask. Not `on`: word &= mask ^ 3, so clearing any mask
    // also clears every bit above bit 1. The asymmetry is wanted.
    virtual void SetHit(int on, unsigned mask);
    virtual unsigned GetHitFlag();

    // ---- Time and voice ----

    // Null here: an ECBase has no time. ECWithTime and ECWithTimeChild return
    // their member.
    virtual MCTime *GetTime();
    // Nothing here.
    virtual void SetTime(MCTime *time);
    // Null here; events with a length return it.
    virtual MCTime *GetDuration();
    virtual void SetDuration(MCTime *duration);
    // Null here.
    virtual MCVoiceTrack *GetVoiceTrack();
    virtual void SetVoiceTrack(int voice, int track);
    virtual void SetVoiceTrack(MCVoiceTrack *voiceTrack);
    // 15 when there is no voice/track word or it is converted.
    virtual int GetVoice();
    // Through GetVoiceTrack; nothing without one.
    virtual void SetVoice(int voice);
    // 0x7FF when there is no voice/track word or it is converted.
    virtual int GetTrack();
    virtual void SetTrack(int track);

    // ---- Parents ----

    virtual EventList *GetParents();
    // The first event of `id` met walking up from this event (this event
    // included) through the parent lists, depth first, head first; `depth`
    // limits the levels climbed (-1: no limit). Null when none.
    virtual ECBase *GetAncestor(int id, int depth = -1);
    // Appends `parent` to the parent list, without a search; returns 1.
    virtual int AddParent(ECBase *parent);
    // Removes the first occurrence of `parent`; 1, or 0 if absent.
    virtual int RemoveParent(ECBase *parent);
    // parent->RemoveChild(this, 0) for each parent; returns 1. This event dies
    // at the end if nothing else holds it.
    virtual int RemoveFromParents();

    // ---- Children ----

    // Null here: an ECBase has no children.
    virtual EventList *GetChildren();
    // The first event of `id` met walking down from this event (this event
    // included), depth first, head first, not entering beams, slurs, ties or
    // glissandi; `depth` limits the levels (-1: no limit). Null when none.
    virtual ECBase *GetDescendant(int id, int depth = -1);
    // 0 here: an ECBase takes no children.
    virtual int AddChild(ECBase *child, int sorted);
    virtual int RemoveChild(ECBase *child, int deep);
    virtual int RemoveChildren(int deep);
    // 0 here.
    virtual int RemoveFromChildren();
    // The events this one holds by a member of its own, outside or beside its
    // child list, by index from 0 without gaps; null past the last (at once
    // here). A loaded event that has no parent must be one of these, or the
    // load refuses it as outside the tree; a record that reads such a member
    // passes it to CheckHeldWhileLoading before holding it.
    virtual ECBase *GetMemberEvent(int index);

    // ---- Data attachments ----

    // The attachment of a type (see MCDataArray for type and slot). When
    // there is none and `create` is non-zero, asks the plug-in registry for
    // one (CPluginData::CreateData), stores it and sets hasData if its class
    // is serialisable. Types 6 and 7 get SetOwner(this) when found. Null when
    // there is none and none could be made.
    virtual DCBase *GetData(int type, int create);
    virtual MCDataArray *GetData();
    // -1: deletes every attachment and empties the array. Otherwise deletes
    // the attachment of that type and empties its slot. hasData then says
    // whether a serialisable attachment remains.
    virtual void RemoveData(int type);

    // ---- Archive ----

    // Runs in the archive's second section; nothing here.
    virtual void PostSerialize(CArchive &ar);
    // 1 here; a class that can be loaded in an unusable state says 0, and the
    // loader drops it.
    virtual int IsValid();

    // ---- Reference count ----

    // Adds one holder; returns the new count.
    int Ref();
    // Removes one holder unless the count is already 0. When `deleteAtZero`
    // is non-zero and the count is then 0, the event deletes itself and 0 is
    // returned; otherwise the count. So Unref(1) on an event nobody holds (a
    // fresh one, or one an archive made) destroys it.
    int Unref(int deleteAtZero);
    // The number of holders. The count is 16 bits wide in the original
    // layout; it widens here so that a parent with more than 65535 children
    // (each child's parent list holds a reference) keeps an exact count.
    int GetRefCount() const { return static_cast<int>(m_nRefLow | (static_cast<DWORD>(m_nRefHigh) << 16)); }

    // The raw flag byte (see the header comment).
    BYTE GetFlags() const { return m_flags; }

    // Releases what a failed load left behind: every event the archive
    // created (CArchive::GetLoadedObjects) is detached from its parents and
    // children, on both ends of each link, and released, its attachments
    // with it; other objects are deleted. An event outside the list that
    // something else holds survives, with no link into the released ones.
    // Objects listed twice are released once.
    static void ReleaseLoadedObjects(const std::vector<CObject *> &objects);
    // Loading: refuses (CArchiveException) to hold `event` as a child or a
    // member when its own record is still being read, since it would become
    // its own descendant. Every link that a record makes while it is read
    // passes here, so a loaded tree has no cycle by construction.
    static void CheckHeldWhileLoading(CArchive &ar, const ECBase *event);

    ECBase &operator=(const ECBase &other);
    // Identity.
    int operator==(const ECBase &other) const { return this == &other; }
    int operator!=(const ECBase &other) const { return !(*this == other); }

protected:
    // A fresh event (count 0, no links); copies nothing, like operator=.
    ECBase(const ECBase &other);
    // Deletes the attachments; the lists release their elements.
    ~ECBase() override;

    void SetFlag(BYTE flag, bool on) { m_flags = static_cast<BYTE>(on ? (m_flags | flag) : (m_flags & ~flag)); }
    // hasData from the attachments now present.
    void UpdateHasData();

    // The byte beside the flags that derived classes use for a value of their own.
    BYTE GetSpareByte() const { return m_spare; }
    void SetSpareByte(BYTE value) { m_spare = value; }
    // The record of the small marks that keep their value in the spare
    // byte: the byte written and read raw, after the base record.
    void SerializeSpareByte(CArchive &ar);

    // Keeps an event alive across an operation that may release its last
    // holder: if the operation does, the event dies when the guard ends. An
    // event that nobody held when the guard began is left alive, as it was.
    class KeepAlive
    {
    public:
        explicit KeepAlive(ECBase *event) : m_event(event), m_wasHeld(event->GetRefCount() > 0) { m_event->Ref(); }
        ~KeepAlive() { m_event->Unref(m_wasHeld ? 1 : 0); }
        KeepAlive(const KeepAlive &) = delete;
        KeepAlive &operator=(const KeepAlive &) = delete;

    private:
        ECBase *m_event;
        bool m_wasHeld;
    };

    // Internal state bits, in a byte that costs no space (see below).
    enum : BYTE
    {
        StateDying = 0x01,      // being destroyed: Unref never deletes again
        StateRemoving = 0x02,   // inside RemoveChildren: a cycle stops here
        StateRecorded = 0x04,   // in the record of a running bar-structure command
        StateVisited = 0x08     // passed by that command's walk of the tree
    };

    BYTE m_flags = 0;
    BYTE m_spare = 0;
    WORD m_nRefLow = 0;
    DWORD m_hitFlags = 0;
    // The attachment array's tail padding holds the state bits and the high
    // half of the reference count, so they add nothing to an event's size.
    [[no_unique_address]] MCDataArray m_data;
    BYTE m_state = 0;
    WORD m_nRefHigh = 0;
    EventList m_parents;

private:
    void SetRefCount(DWORD count)
    {
        m_nRefLow = static_cast<WORD>(count & 0xFFFF);
        m_nRefHigh = static_cast<WORD>(count >> 16);
    }
};
