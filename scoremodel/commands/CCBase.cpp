#include <scoremodel/commands/CCBase.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/notes/ECMirror.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/structure/ECPerformance.h>

#include <algorithm>
#include <unordered_set>
#include <vector>

IMPLEMENT_DYNCREATE(CCBase, CObject)

namespace
{
// The children of `event`, each once and each with a reference taken, so
// that none dies while the caller still looks at it. Linear in the number of
// children: a set tells the repeats once the list is long enough for a
// search of the kept ones to cost more than hashing.
std::vector<ECBase *> HoldChildren(ECBase *event)
{
    std::vector<ECBase *> held;
    CCBase::EventList *children = event->GetChildren();
    if (!children)
        return held;
    constexpr int kShortList = 16;
    const int count = children->GetCount();
    held.reserve(static_cast<size_t>(count));
    std::unordered_set<ECBase *> seen;
    if (count > kShortList)
        seen.reserve(static_cast<size_t>(count));
    for (POSITION pos = children->GetHeadPosition(); pos;)
    {
        ECBase *child = children->GetNext(pos);
        if (!child)
            continue;
        const bool repeat = count > kShortList ? !seen.insert(child).second
                                               : std::find(held.begin(), held.end(), child) != held.end();
        if (!repeat)
        {
            child->Ref();
            held.push_back(child);
        }
    }
    return held;
}

// How many references `event` gets from the parent lists of its own
// children: the part of its count that its subtree holds.
int ReferencesFromOwnChildren(ECBase *event)
{
    int count = 0;
    for (ECBase *child : HoldChildren(event))
    {
        CCBase::EventList *parents = child->GetParents();
        for (POSITION pos = parents ? parents->GetHeadPosition() : nullptr; pos;)
            if (parents->GetNext(pos) == event)
                ++count;
        child->Unref(0);
    }
    return count;
}

// True when nothing outside its own subtree holds `child` but the one
// reference of the caller: no parent, no command, no list.
bool HeldOnlyByItsSubtree(ECBase *child)
{
    CCBase::EventList *parents = child->GetParents();
    return (parents == nullptr || parents->IsEmpty()) &&
           child->GetRefCount() == 1 + ReferencesFromOwnChildren(child);
}

// Detaches the children of `event` shallowly, as a discard does. A parent
// and its children hold each other, so a child that nothing outside its own
// subtree holds would live on by that ring alone, out of everyone's reach; it
// lets go of its children in the same way and dies. A child held elsewhere
// keeps its subtree whole.
void ReleaseChildren(ECBase *event)
{
    const std::vector<ECBase *> children = HoldChildren(event);
    event->RemoveChildren(0);
    for (ECBase *child : children)
    {
        if (HeldOnlyByItsSubtree(child))
            ReleaseChildren(child);
        child->Unref(1);
    }
}

// The mirror list of an event that holds mirrors, or null. Clefs, keys,
// meters, tempi and the texts of type 21 and 22 hold them.
CCBase::EventList *MirrorsOf(ECBase *event)
{
    switch (event->GetEventId())
    {
    case EVENT_ID_CLEF:
        return static_cast<ECClef *>(event)->GetMirrors();
    case EVENT_ID_KEY:
        return static_cast<ECKey *>(event)->GetMirrors();
    case EVENT_ID_METER:
        return &static_cast<ECMeter *>(event)->GetMirrors();
    case EVENT_ID_TEMPO:
        return static_cast<ECTempo *>(event)->GetMirrors();
    case EVENT_ID_TEXT:
        return static_cast<ECText *>(event)->IsMirrorText() ? static_cast<ECText *>(event)->GetMirrors() : nullptr;
    default:
        return nullptr;
    }
}

// A mirror lets go of the event it stands for before it leaves the tree:
// the mirror may live on in the undo history while its source dies, and a
// link left behind would point at freed memory. The update flag also takes
// the mirror off its source's list of mirrors.
void ReleaseMirrorSource(ECBase *event)
{
    if (event->GetEventId() == EVENT_ID_MIRROR)
        static_cast<ECMirror *>(event)->SetMirrorEvent(nullptr, 1);
}
} // namespace

CCBase::CCBase()
    : m_bSynchronous(0), m_bCanUndo(1), m_bRecordUndo(0), m_bRecordNotify(0), m_bUndoing(0), m_nPhase(PhasePrepare)
{
}

CCBase::~CCBase()
{
    delete m_pDiscardList;
}

int CCBase::GetCommandId()
{
    return COMMAND_ID_BASE;
}

int CCBase::Apply(ECPerformance *document)
{
    return MCCommandMgr::ApplyCommand(this, document);
}

int CCBase::Prepare()
{
    m_pConductor = m_pTarget ? m_pTarget->GetConductor() : nullptr;
    return m_pConductor ? 1 : 0;
}

int CCBase::Process()
{
    ProcessDiscardList();
    return 1;
}

int CCBase::Finish()
{
    return 1;
}

void CCBase::Abort()
{
}

void CCBase::Undo()
{
}

unsigned short CCBase::Unref(int bDelete)
{
    if (m_nRefCount > 0)
        --m_nRefCount;
    if (bDelete && m_nRefCount == 0)
    {
        delete this;
        return 0;
    }
    return m_nRefCount;
}

void CCBase::Discard(ECBase *event)
{
    if (!event)
        return;
    if (!m_pDiscardList)
        m_pDiscardList = new EventList;
    else if (m_pDiscardList->Find(event))
        return;
    m_pDiscardList->AddTail(event);
}

void CCBase::Discard(EventList *events)
{
    if (!events)
        return;
    for (POSITION pos = events->GetHeadPosition(); pos;)
    {
        ECBase *event = events->GetNext(pos);
        if (!event)
            continue;
        if (m_pDiscardList && m_pDiscardList->Find(event))
            return;
        Discard(event);
    }
}

void CCBase::DiscardMirrors(ECBase *event)
{
    if (!event)
        return;
    if (EventList *mirrors = MirrorsOf(event))
        Discard(mirrors);
}

void CCBase::ProcessDiscardList()
{
    if (!m_pDiscardList)
        return;
    // Taken off the command first: a detached event may release what holds
    // this command, and nothing may reach the list while it is walked.
    EventList *discarded = m_pDiscardList;
    m_pDiscardList = nullptr;
    for (POSITION pos = discarded->GetHeadPosition(); pos;)
    {
        ECBase *event = discarded->GetNext(pos);
        ReleaseMirrorSource(event);
        event->Ref();
        event->RemoveFromParents();
        ReleaseChildren(event);
        event->Unref(1);
    }
    delete discarded;
}
