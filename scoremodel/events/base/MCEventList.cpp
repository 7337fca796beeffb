#include <scoremodel/events/base/MCEventList.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/MCEventWalk.h>
#include <scoremodel/platform/CArchive.h>

#include <cmath>
#include <unordered_map>
#include <vector>

IMPLEMENT_SERIAL(MCEventList, MCObList, VERSIONABLE_SCHEMA | 1)

namespace
{
MCEventList::MIRRORFUNC s_mirrorResolver = nullptr;

inline ECBase *AsEvent(CObject *element)
{
    return static_cast<ECBase *>(element);
}

inline MCObList::Node *AsNode(POSITION pos)
{
    return reinterpret_cast<MCObList::Node *>(pos);
}

inline POSITION AsPosition(MCObList::Node *node)
{
    return reinterpret_cast<POSITION>(node);
}

// The default comparison reduced to numbers, for lists where that is exact:
// no event time is a bar/pulse/tick time or a NaN. MCTime then compares plain
// floats, so the comparison is a total preorder on (has a time, value).
struct TimeKey
{
    bool timed;
    float value;
};

inline int CompareKeys(const TimeKey &a, const TimeKey &b)
{
    if (!a.timed || !b.timed)
        return static_cast<int>(a.timed) - static_cast<int>(b.timed);
    return a.value > b.value ? 1 : (a.value < b.value ? -1 : 0);
}

bool MakeKeys(ECBase *const *elements, size_t count, std::vector<TimeKey> &keys)
{
    keys.resize(count);
    for (size_t i = 0; i < count; ++i)
    {
        if (!elements[i])
            return false; // leave a null element to the literal procedure
        MCTime *time = elements[i]->GetTime();
        if (!time)
        {
            keys[i] = {false, 0.0f};
            continue;
        }
        if (time->GetMode() == MCTime::TimeModeBarPulseTick)
            return false;
        float value = time->GetSeconds();
        if (std::isnan(value))
            return false;
        keys[i] = {true, value};
    }
    return true;
}

// The exchange sort on keys, skipping every pass that cannot swap. A pass
// from position i swaps nothing exactly when key i is not above any later
// key, that is, not above the minimum of the keys behind it (the comparison
// being a total preorder). The suffix minima stay valid while passes are
// skipped and are rebuilt behind a pass that swapped, so a sorted list (or
// prefix) costs one comparison per element and any other input no more than
// twice the literal procedure.
void ExchangeSortKeys(ECBase **elements, std::vector<TimeKey> &keys)
{
    const size_t n = keys.size();
    size_t sortedUpTo = 1;
    while (sortedUpTo < n && CompareKeys(keys[sortedUpTo - 1], keys[sortedUpTo]) <= 0)
        ++sortedUpTo;
    if (sortedUpTo >= n)
        return; // in order already: no pass would swap
    // minBehind[i]: the index of a minimal key among positions i..n-1.
    std::vector<size_t> minBehind(n);
    auto rebuild = [&](size_t from) {
        minBehind[n - 1] = n - 1;
        for (size_t k = n - 1; k-- > from;)
            minBehind[k] = CompareKeys(keys[k], keys[minBehind[k + 1]]) <= 0 ? k : minBehind[k + 1];
    };
    rebuild(0);
    for (size_t i = 0; i + 1 < n; ++i)
    {
        if (CompareKeys(keys[i], keys[minBehind[i + 1]]) <= 0)
            continue;
        for (size_t j = i + 1; j < n; ++j)
        {
            if (CompareKeys(keys[i], keys[j]) > 0)
            {
                std::swap(keys[i], keys[j]);
                std::swap(elements[i], elements[j]);
            }
        }
        rebuild(i + 1);
    }
}
} // namespace

MCEventList::MCEventList(int nBlockSize) : MCObList(nBlockSize)
{
}

MCEventList::~MCEventList()
{
    // Here, unlike in the base destructor, this class's FreeNode still runs.
    RemoveAll();
}

void MCEventList::SetMirrorResolver(MIRRORFUNC resolver)
{
    s_mirrorResolver = resolver;
}

// ---- Node hooks ----

MCObList::Node *MCEventList::NewNode(Node *pPrev, Node *pNext, CObject *element)
{
    Node *node = MCObList::NewNode(pPrev, pNext, element);
    if (element)
        AsEvent(element)->Ref();
    return node;
}

void MCEventList::FreeNode(Node *pNode)
{
    CObject *element = pNode->data;
    MCObList::FreeNode(pNode);
    if (element)
        AsEvent(element)->Unref(1);
}

void MCEventList::SetAt(POSITION pos, CObject *newElement)
{
    Node *node = AsNode(pos);
    if (!node)
        return;
    CObject *old = node->data;
    if (newElement)
        AsEvent(newElement)->Ref();
    ReplaceElement(node, newElement);
    if (old)
        AsEvent(old)->Unref(1);
}

// ---- Child list record ----

void MCEventList::SerializeFromParent(CArchive &ar, ECBase *parent)
{
    if (ar.IsStoring())
    {
        ar.WriteCount(static_cast<DWORD_PTR>(m_nCount));
        for (Node *node = m_pNodeHead; node; node = node->pNext)
            ar.WriteObject(node->data);
        return;
    }

    DWORD_PTR count = ar.ReadCount();
    for (DWORD_PTR i = 0; i < count; ++i)
    {
        const size_t made = ar.GetLoadedObjects().size();
        ECBase *event = nullptr;
        ar >> event;
        if (!event)
            continue;
        if (!event->IsValid())
        {
            // An event this read made dies here, with everything made while
            // it was read; the archive forgets them, so a later reference
            // reads as null instead of reaching freed memory. One read
            // before belongs to whoever made it and is only left out.
            const std::vector<CObject *> &loaded = ar.GetLoadedObjects();
            if (loaded.size() > made && loaded[made] == event)
            {
                const std::vector<CObject *> dropped(loaded.begin() + static_cast<std::ptrdiff_t>(made), loaded.end());
                ar.ForgetLoadedObjects(made);
                ECBase::ReleaseLoadedObjects(dropped);
            }
            continue;
        }
        ECBase::CheckHeldWhileLoading(ar, event);
        // A list node holds a reference: an event nobody holds is not here.
        // With a parent, the event's own short parent list answers first, so
        // that a long list is searched only for a real double.
        if (event->GetRefCount() > 0 && (!parent || event->GetParents()->Contains(parent)) && Contains(event))
            continue;
        AddTail(event);
        if (parent)
            event->GetParents()->AddTail(parent);
    }
}

// ---- Adding and removing ----

POSITION MCEventList::AddEvent(ECBase *event, int sorted)
{
    if (!event)
        return nullptr;
    if (!sorted)
        return AddTail(event);
    MCTime *time = event->GetTime();
    if (!time)
        return AddHead(event);
    POSITION pos = FindTimeReverse(time, nullptr);
    return pos ? InsertAfter(pos, event) : AddHead(event);
}

void MCEventList::AddEvents(MCEventList *events, int sorted)
{
    if (!events)
        return;
    if (!sorted)
    {
        AddTail(events);
        return;
    }
    // Bounded by the count, so adding a list to itself ends.
    Node *node = events->m_pNodeHead;
    for (int n = events->m_nCount; n > 0 && node; --n)
    {
        Node *next = node->pNext;
        AddEvent(AsEvent(node->data), sorted);
        node = next;
    }
}

int MCEventList::RemoveEvent(ECBase *event)
{
    POSITION pos = Find(event);
    if (!pos)
        return 0;
    RemoveAt(pos);
    return 1;
}

void MCEventList::RemoveEvents(MCEventList *events)
{
    if (!events)
        return;
    if (events == this)
    {
        RemoveAll();
        return;
    }
    for (Node *node = events->m_pNodeHead; node; node = node->pNext)
        RemoveEvent(AsEvent(node->data));
}

CTypedPtrList<MCEventList, ECBase *> *MCEventList::RemoveEventType(int id)
{
    auto *moved = new CTypedPtrList<MCEventList, ECBase *>;
    for (Node *node = m_pNodeHead; node;)
    {
        Node *next = node->pNext;
        ECBase *event = AsEvent(node->data);
        if (event && event->GetEventId() == id)
        {
            moved->AddTail(event); // the new list's reference keeps it alive
            Unlink(node);
            FreeNode(node);
        }
        node = next;
    }
    return moved;
}

// ---- Event ids ----

int MCEventList::GetEventType(int ignoreMeasures)
{
    int type = -1;
    for (Node *node = m_pNodeHead; node; node = node->pNext)
    {
        ECBase *event = AsEvent(node->data);
        if (!event)
            continue;
        int id = event->GetEventId();
        if (ignoreMeasures && id == EVENT_ID_MEASURE)
            continue;
        if (type == -1)
            type = id;
        else if (type != id)
            return -2;
    }
    return type;
}

int MCEventList::GetEventTypes(CArray<int, int> &ids)
{
    for (Node *node = m_pNodeHead; node; node = node->pNext)
    {
        ECBase *event = AsEvent(node->data);
        if (!event)
            continue;
        int id = event->GetEventId();
        bool known = false;
        for (INT_PTR i = 0; i < ids.GetSize() && !known; ++i)
            known = ids[i] == id;
        if (!known)
            ids.Add(id);
    }
    return static_cast<int>(ids.GetSize());
}

int MCEventList::ContainsEventType(int id)
{
    return FindEvent(id, nullptr) ? 1 : 0;
}

// ---- Searching ----

POSITION MCEventList::FindTime(MCTime *time, POSITION after) const
{
    if (!time)
        return nullptr;
    Node *node = after ? AsNode(after)->pNext : m_pNodeHead;
    for (; node; node = node->pNext)
    {
        ECBase *event = AsEvent(node->data);
        MCTime *eventTime = event ? event->GetTime() : nullptr;
        if (eventTime && *time < *eventTime)
            return AsPosition(node);
    }
    return nullptr;
}

POSITION MCEventList::FindTimeReverse(MCTime *time, POSITION before) const
{
    if (!time)
        return nullptr;
    Node *node = before ? AsNode(before)->pPrev : m_pNodeTail;
    for (; node; node = node->pPrev)
    {
        ECBase *event = AsEvent(node->data);
        MCTime *eventTime = event ? event->GetTime() : nullptr;
        if (eventTime && *time >= *eventTime)
            return AsPosition(node);
    }
    return nullptr;
}

POSITION MCEventList::FindEvent(int id, POSITION after) const
{
    Node *node = after ? AsNode(after)->pNext : m_pNodeHead;
    for (; node; node = node->pNext)
        if (node->data && AsEvent(node->data)->GetEventId() == id)
            return AsPosition(node);
    return nullptr;
}

POSITION MCEventList::FindEventReverse(int id, POSITION before) const
{
    Node *node = before ? AsNode(before)->pPrev : m_pNodeTail;
    for (; node; node = node->pPrev)
        if (node->data && AsEvent(node->data)->GetEventId() == id)
            return AsPosition(node);
    return nullptr;
}

// ---- Sorting ----

int MCEventList::CompareTime(ECBase *a, ECBase *b)
{
    MCTime *ta = a ? a->GetTime() : nullptr;
    MCTime *tb = b ? b->GetTime() : nullptr;
    if (!ta && !tb)
        return 0;
    if (!tb)
        return 1;
    if (!ta)
        return -1;
    if (*ta > *tb)
        return 1;
    if (*ta < *tb)
        return -1;
    return 0;
}

void MCEventList::ExchangeSort(ECBase **elements, size_t count, COMPAREFUNC compare)
{
    for (size_t i = 0; i + 1 < count; ++i)
        for (size_t j = i + 1; j < count; ++j)
            if (compare(elements[i], elements[j]) > 0)
                std::swap(elements[i], elements[j]);
}

void MCEventList::StoreOrder(ECBase *const *elements)
{
    size_t i = 0;
    for (Node *node = m_pNodeHead; node; node = node->pNext, ++i)
        if (node->data != elements[i])
            ReplaceElement(node, elements[i]);
}

void MCEventList::Sort(COMPAREFUNC compare)
{
    if (!compare || m_nCount < 2)
        return;
    std::vector<ECBase *> elements;
    elements.reserve(static_cast<size_t>(m_nCount));
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        elements.push_back(AsEvent(node->data));

    std::vector<TimeKey> keys;
    if (compare == &MCEventList::CompareTime && MakeKeys(elements.data(), elements.size(), keys))
        ExchangeSortKeys(elements.data(), keys);
    else
        ExchangeSort(elements.data(), elements.size(), compare);
    StoreOrder(elements.data());
}

void MCEventList::Sort()
{
    Sort(&MCEventList::CompareTime);
}

// ---- Mirrors, duplicates, ancestors ----

void MCEventList::ReplaceMirrors(int removeDuplicates)
{
    CRuntimeClass *mirrorClass = CRuntimeClass::FromName("ECMirror");
    if (mirrorClass)
    {
        for (Node *node = m_pNodeHead; node;)
        {
            Node *next = node->pNext;
            if (node->data && node->data->IsKindOf(mirrorClass))
            {
                ECBase *source = s_mirrorResolver ? s_mirrorResolver(AsEvent(node->data)) : nullptr;
                if (source)
                    InsertBefore(AsPosition(node), source);
                Unlink(node);
                FreeNode(node);
            }
            node = next;
        }
    }
    if (removeDuplicates)
        RemoveDuplicates();
}

void MCEventList::RemoveDuplicates()
{
    if (m_nCount < 2)
        return;
    // How many occurrences of each element lie at or behind the walk.
    std::unordered_map<CObject *, int> remaining;
    remaining.reserve(static_cast<size_t>(m_nCount));
    for (Node *node = m_pNodeHead; node; node = node->pNext)
        ++remaining[node->data];
    if (remaining.size() == static_cast<size_t>(m_nCount))
        return;
    for (Node *node = m_pNodeHead; node;)
    {
        Node *next = node->pNext;
        int &left = remaining[node->data];
        if (left > 1)
        {
            --left;
            Unlink(node);
            FreeNode(node); // another occurrence still holds the element
        }
        node = next;
    }
}

void MCEventList::CollapseToAncestors(CArray<int, int> *keepIds)
{
    // Gather the descendants first, holding them, then remove them; the
    // events of this list stay alive throughout since this list holds them.
    CTypedPtrList<MCEventList, ECBase *> beneath;
    std::vector<ECBase *> found;
    for (Node *node = m_pNodeHead; node; node = node->pNext)
    {
        ECBase *event = AsEvent(node->data);
        if (!event)
            continue;
        if (keepIds)
        {
            int id = event->GetEventId();
            bool keep = false;
            for (INT_PTR i = 0; i < keepIds->GetSize() && !keep; ++i)
                keep = (*keepIds)[i] == id;
            if (keep)
                continue;
        }
        found.clear();
        MCEventWalk::CollectAll(event, found);
        // The event itself leaves its own result (its first occurrence).
        bool skippedSelf = false;
        for (ECBase *e : found)
        {
            if (e == event && !skippedSelf)
            {
                skippedSelf = true;
                continue;
            }
            beneath.AddTail(e);
        }
    }
    beneath.RemoveDuplicates();
    RemoveEvents(&beneath);
}
