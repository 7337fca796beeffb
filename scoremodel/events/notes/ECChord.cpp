#include <scoremodel/events/notes/ECChord.h>

IMPLEMENT_SERIAL(ECChord, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECChord::~ECChord() = default;

CObject *ECChord::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChord)))
        *this = *static_cast<ECChord *>(src);
    return this;
}

int ECChord::GetEventId() const
{
    return EVENT_ID_CHORD;
}

int ECChord::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    types.Add(EVENT_ID_BEAM);
    types.Add(EVENT_ID_TUPLET);
    return 1;
}

int ECChord::RemoveChild(ECBase *child, int deep)
{
    KeepAlive self(this);
    if (!ECWithChild::RemoveChild(child, deep))
        return 0;
    if (!m_children.FindEvent(EVENT_ID_NOTE))
        ECWithChild::RemoveChildren(0);
    if (!(GetFlags() & FlagHasChildren))
        RemoveFromParents();
    return 1;
}

int ECChord::RemoveChildren(int deep)
{
    KeepAlive self(this);
    const int result = ECWithChild::RemoveChildren(deep);
    RemoveFromParents();
    return result;
}

int ECChord::RemoveFromParents()
{
    KeepAlive self(this);
    if (ECBase *measure = GetAncestor(EVENT_ID_MEASURE))
    {
        // AddChild passes over a note the measure holds already.
        for (POSITION pos = m_children.GetHeadPosition(); pos;)
        {
            ECBase *child = m_children.GetNext(pos);
            if (child && child->GetEventId() == EVENT_ID_NOTE)
                measure->AddChild(child, 1);
        }
    }
    ECWithChild::RemoveChildren(0);
    return ECBase::RemoveFromParents();
}
