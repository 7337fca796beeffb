#include <scoremodel/events/base/ECBase.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/MCEventWalk.h>
#include <scoremodel/platform/CArchive.h>
// The one place where the event bases reach up into the plug-in registry:
// GetData(type, 1) makes attachments through it by design.
#include <scoremodel/plugins/CPluginData.h>

#include <unordered_set>

IMPLEMENT_SERIAL(ECBase, CObject, VERSIONABLE_SCHEMA | 2)

static_assert(sizeof(ECBase) <= 72, "the state bits and the high count must stay in padding");

ECBase::ECBase() = default;

ECBase::ECBase(const ECBase &other) : CObject()
{
    *this = other;
}

ECBase::~ECBase()
{
    m_state |= StateDying;
    RemoveData(-1);
    // m_parents releases the parents as it is destroyed.
}

ECBase &ECBase::operator=(const ECBase &)
{
    return *this;
}

// ---- Reference count ----

int ECBase::Ref()
{
    DWORD count = static_cast<DWORD>(GetRefCount());
    if (count != 0xFFFFFFFFu)
        SetRefCount(count + 1);
    return GetRefCount();
}

int ECBase::Unref(int deleteAtZero)
{
    DWORD count = static_cast<DWORD>(GetRefCount());
    if (count > 0)
        SetRefCount(--count);
    if (deleteAtZero && count == 0 && !(m_state & StateDying))
    {
        m_state |= StateDying;
        delete this;
        return 0;
    }
    return static_cast<int>(count);
}

// ---- Identity ----

CObject *ECBase::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECBase)))
        *this = *static_cast<ECBase *>(src);
    return this;
}

int ECBase::GetEventId() const
{
    return EVENT_ID_BASE;
}

int ECBase::GetParentTypes(CArray<int, int> &)
{
    return 0;
}

// ---- Selection and hit marks ----

int ECBase::IsSelected(unsigned mask)
{
    return static_cast<int>(GetSelectedFlag() & mask);
}

void ECBase::SetSelected(int on, unsigned mask)
{
    unsigned field = GetSelectedFlag();
    field = on ? (field | (mask & 3u)) : (field & (mask ^ 3u));
    m_flags = static_cast<BYTE>((m_flags & ~FlagSelection) | ((field & 3u) << 2));
}

unsigned ECBase::GetSelectedFlag()
{
    return (m_flags & FlagSelection) >> 2;
}

int ECBase::IsHited(unsigned mask)
{
    return static_cast<int>(m_hitFlags & mask);
}

void ECBase::SetHit(int on, unsigned mask)
{
    m_hitFlags = on ? (m_hitFlags | mask) : (m_hitFlags & (mask ^ 3u));
}

unsigned ECBase::GetHitFlag()
{
    return m_hitFlags;
}

// ---- Time and voice ----

MCTime *ECBase::GetTime()
{
    return nullptr;
}

void ECBase::SetTime(MCTime *)
{
}

MCTime *ECBase::GetDuration()
{
    return nullptr;
}

void ECBase::SetDuration(MCTime *)
{
}

MCVoiceTrack *ECBase::GetVoiceTrack()
{
    return nullptr;
}

void ECBase::SetVoiceTrack(int, int)
{
}

void ECBase::SetVoiceTrack(MCVoiceTrack *)
{
}

int ECBase::GetVoice()
{
    MCVoiceTrack *vt = GetVoiceTrack();
    return vt ? vt->GetVoice() : 15;
}

void ECBase::SetVoice(int voice)
{
    if (MCVoiceTrack *vt = GetVoiceTrack())
        vt->SetVoice(static_cast<unsigned>(voice));
}

int ECBase::GetTrack()
{
    MCVoiceTrack *vt = GetVoiceTrack();
    return vt ? vt->GetTrack() : 0x7FF;
}

void ECBase::SetTrack(int track)
{
    if (MCVoiceTrack *vt = GetVoiceTrack())
        vt->SetTrack(static_cast<unsigned>(track));
}

// ---- Parents ----

ECBase::EventList *ECBase::GetParents()
{
    return &m_parents;
}

ECBase *ECBase::GetAncestor(int id, int depth)
{
    return MCEventWalk::FindFirst(this, id, depth, true);
}

int ECBase::AddParent(ECBase *parent)
{
    m_parents.AddTail(parent);
    return 1;
}

int ECBase::RemoveParent(ECBase *parent)
{
    return m_parents.RemoveEvent(parent);
}

int ECBase::RemoveFromParents()
{
    KeepAlive self(this);
    // Work from a held copy: each RemoveChild takes a parent out of the list
    // being walked and may release that parent's last holder.
    std::vector<ECBase *> parents;
    parents.reserve(static_cast<size_t>(m_parents.GetCount()));
    for (POSITION pos = m_parents.GetHeadPosition(); pos;)
        if (ECBase *parent = m_parents.GetNext(pos))
        {
            parent->Ref();
            parents.push_back(parent);
        }
    for (ECBase *parent : parents)
        parent->RemoveChild(this, 0);
    for (ECBase *parent : parents)
        parent->Unref(1);
    return 1;
}

// ---- Children ----

ECBase::EventList *ECBase::GetChildren()
{
    return nullptr;
}

ECBase *ECBase::GetDescendant(int id, int depth)
{
    return MCEventWalk::FindFirst(this, id, depth, false);
}

int ECBase::AddChild(ECBase *, int)
{
    return 0;
}

int ECBase::RemoveChild(ECBase *, int)
{
    return 0;
}

int ECBase::RemoveChildren(int)
{
    return 0;
}

int ECBase::RemoveFromChildren()
{
    return 0;
}

// ---- Data attachments ----

DCBase *ECBase::GetData(int type, int create)
{
    int slot = MCDataArray::TypeToIndex(type);
    DCBase *data = m_data.GetAt(slot);
    if (data)
    {
        if (type == 6 || type == 7)
            data->SetOwner(this);
        return data;
    }
    if (!create)
        return nullptr;
    data = CPluginData::CreateData(type, this);
    if (!data)
        return nullptr;
    m_data.SetAtGrow(slot, data);
    if (m_data.GetAt(slot) != data)
    {
        delete data; // no room for it (cannot happen for slots 0..7)
        return nullptr;
    }
    if (data->IsSerializable())
        SetFlag(FlagHasData, true);
    return data;
}

MCDataArray *ECBase::GetData()
{
    return &m_data;
}

void ECBase::RemoveData(int type)
{
    if (type == -1)
    {
        for (int i = 0; i < m_data.GetSize(); ++i)
            if (DCBase *data = m_data.GetAt(i))
            {
                m_data.SetAt(i, nullptr);
                delete data;
            }
        m_data.RemoveAll();
        SetFlag(FlagHasData, false);
        return;
    }
    int slot = MCDataArray::TypeToIndex(type);
    if (DCBase *data = m_data.GetAt(slot))
    {
        m_data.SetAt(slot, nullptr);
        delete data;
    }
    UpdateHasData();
}

void ECBase::UpdateHasData()
{
    bool any = false;
    for (int i = 0; i < m_data.GetSize() && !any; ++i)
        if (DCBase *data = m_data.GetAt(i))
            any = data->IsSerializable();
    SetFlag(FlagHasData, any);
}

// ---- Archive ----

void ECBase::PostSerialize(CArchive &)
{
}

ECBase *ECBase::GetMemberEvent(int)
{
    return nullptr;
}

int ECBase::IsValid()
{
    return 1;
}

void ECBase::SerializeSpareByte(CArchive &ar)
{
    if (ar.IsStoring())
        ar << m_spare;
    else
        ar >> m_spare;
}

void ECBase::Serialize(CArchive &ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
    {
        // The flag follows the array, which a caller may have filled directly.
        UpdateHasData();
        ar << m_flags;
        if (m_flags & FlagHasData)
            m_data.Serialize(ar);
        return;
    }

    BYTE flags = 0;
    ar >> flags;
    // Stored attachments replace any this event already had.
    if (flags & FlagHasData)
        RemoveData(-1);
    m_flags = flags;
    if (m_flags & FlagHasData)
        m_data.Serialize(ar);
    // The views' selection does not survive a save.
    m_flags = static_cast<BYTE>(m_flags & ~FlagSelection);
}

void ECBase::CheckHeldWhileLoading(CArchive &ar, const ECBase *event)
{
    if (ar.IsLoadingObject(event))
        throw CArchiveException(CArchiveException::genericException,
                                std::string("a ") + event->GetRuntimeClass()->m_lpszClassName +
                                    " is among its own descendants");
}

void ECBase::ReleaseLoadedObjects(const std::vector<CObject *> &objects)
{
    std::vector<ECBase *> events;
    std::unordered_set<const CObject *> released;
    std::unordered_set<const CObject *> attached;
    for (CObject *object : objects)
        if (object && object->IsKindOf(RUNTIME_CLASS(ECBase)) && released.insert(object).second)
        {
            auto *event = static_cast<ECBase *>(object);
            event->Ref(); // nothing dies while the links come apart
            events.push_back(event);
            for (int i = 0; i < event->m_data.GetSize(); ++i)
                if (DCBase *data = event->m_data.GetAt(i))
                    attached.insert(data);
        }
    // Links to events outside the set come apart on both ends, so that
    // nothing that survives points at an event released here.
    for (ECBase *event : events)
    {
        if (EventList *children = event->GetChildren())
        {
            for (POSITION pos = children->GetHeadPosition(); pos;)
                if (ECBase *child = children->GetNext(pos); child && !released.count(child))
                    while (child->m_parents.RemoveEvent(event))
                        ;
            children->RemoveAll();
        }
        event->SetFlag(FlagHasChildren, false);
        for (POSITION pos = event->m_parents.GetHeadPosition(); pos;)
            if (ECBase *parent = event->m_parents.GetNext(pos); parent && !released.count(parent))
                if (EventList *siblings = parent->GetChildren())
                    while (siblings->RemoveEvent(event))
                        ;
        event->m_parents.RemoveAll();
    }
    for (CObject *object : objects)
        if (object && !object->IsKindOf(RUNTIME_CLASS(ECBase)) && !attached.count(object) &&
            released.insert(object).second)
            delete object;
    for (ECBase *event : events)
        event->Unref(1);
}
