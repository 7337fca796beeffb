#include <scoremodel/events/notes/ECGroup.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECGroup, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECGroup::~ECGroup() = default;

CObject *ECGroup::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECGroup)))
        *this = *static_cast<ECGroup *>(src);
    return this;
}

int ECGroup::GetEventId() const
{
    return EVENT_ID_GROUP;
}

int ECGroup::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

int ECGroup::AddParent(ECBase *parent)
{
    const int result = ECWithTimeChild::AddParent(parent);
    if (result && HasType(ClosedWhileParentless))
        RemoveGroupType(Closed);
    return result;
}

int ECGroup::RemoveParent(ECBase *parent)
{
    const int result = ECWithTimeChild::RemoveParent(parent);
    if (!result)
        return result;
    const bool parentless = GetParents()->IsEmpty();
    if (HasType(ClosedWhileParentless))
    {
        if (parentless)
            AddGroupType(Closed);
        else
            RemoveGroupType(Closed);
    }
    else if (HasType(RemoveChildrenWithLastParent) && parentless)
    {
        RemoveChildren(0);
    }
    return 1;
}

int ECGroup::RemoveFromParents()
{
    if (HasType(ClosedWhileParentless))
        AddGroupType(Closed);
    return ECWithTimeChild::RemoveFromParents();
}

int ECGroup::RemoveChild(ECBase *child, int deep)
{
    if (HasType(Closed))
        return 0;
    return ECWithTimeChild::RemoveChild(child, deep);
}

int ECGroup::RemoveChildren(int deep)
{
    if (HasType(Closed) && !deep)
        return 0;
    KeepAlive self(this);
    if (ECWithTimeChild::RemoveChildren(deep) && HasType(LeaveParentsWithLastChild) && m_children.IsEmpty())
        RemoveFromParents();
    return 1;
}

int ECGroup::RemoveFromChildren()
{
    return RemoveChildren(0);
}

void ECGroup::RemoveChildrenWhenNoNoteIsLeft()
{
    if (!m_children.FindEvent(EVENT_ID_NOTE))
        RemoveChildren(0);
}

void ECGroup::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    if (ar.IsStoring() || ActiveArchiveVersion() >= ArchiveVersionPackedMarks)
        SerializeSpareByte(ar);
}
