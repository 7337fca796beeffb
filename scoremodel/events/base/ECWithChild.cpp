#include <scoremodel/events/base/ECWithChild.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECWithChild, ECBase, VERSIONABLE_SCHEMA | 2)

ECWithChild::ECWithChild() = default;

ECWithChild::ECWithChild(const ECWithChild &other) : ECBase(other)
{
    *this = other;
}

ECWithChild::~ECWithChild()
{
    m_state |= StateDying;
    RemoveChildren(1);
}

ECWithChild &ECWithChild::operator=(const ECWithChild &other)
{
    if (this != &other)
        ECBase::operator=(other);
    return *this;
}

CObject *ECWithChild::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECWithChild)))
        *this = *static_cast<ECWithChild *>(src);
    return this;
}

int ECWithChild::GetEventId() const
{
    return EVENT_ID_WITH_CHILD;
}

int ECWithChild::GetParentTypes(CArray<int, int> &)
{
    return 0;
}

ECBase::EventList *ECWithChild::GetChildren()
{
    return &m_children;
}

int ECWithChild::AddChild(ECBase *child, int sorted)
{
    if (!child || child == this)
        return 0;
    // Every list node holds a reference, so an event nobody holds (a new
    // one, the common case) is in no list and needs no search.
    if (child->GetRefCount() > 0 && m_children.Contains(child))
        return 0;
    m_children.AddEvent(child, sorted);
    child->AddParent(this);
    UpdateHasChildren();
    return 1;
}

int ECWithChild::RemoveChild(ECBase *child, int deep)
{
    if (!child || !m_children.Find(child))
        return 0;
    KeepAlive self(this);
    child->Ref();
    if (deep)
        child->RemoveChildren(1);
    if (child->RemoveParent(this))
    {
        // Look again: what ran above may have moved the child's node.
        if (POSITION pos = m_children.Find(child))
            m_children.RemoveAt(pos);
    }
    child->Unref(1);
    UpdateHasChildren();
    return 1;
}

int ECWithChild::RemoveChildren(int deep)
{
    // A container that is its own descendant (only a corrupt graph) is
    // already being emptied further up the stack.
    if (m_state & StateRemoving)
        return 1;
    KeepAlive self(this);
    m_state |= StateRemoving;
    while (!m_children.IsEmpty())
    {
        ECBase *child = m_children.GetTail();
        if (!child)
        {
            m_children.RemoveTail();
            continue;
        }
        child->Ref();
        if (deep)
            child->RemoveChildren(1);
        child->RemoveParent(this);
        if (!m_children.IsEmpty() && m_children.GetTail() == child)
            m_children.RemoveTail();
        child->Unref(1);
    }
    SetFlag(FlagHasChildren, false);
    m_state &= static_cast<BYTE>(~StateRemoving);
    return 1;
}

void ECWithChild::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
        UpdateHasChildren(); // the list may have been edited directly
    ECBase::Serialize(ar);
    if (m_flags & FlagHasChildren)
    {
        m_children.SerializeFromParent(ar, this);
        if (ar.IsLoading())
            UpdateHasChildren(); // rejected children leave no trace
    }
}
