#include <scoremodel/events/base/MCFuncList.h>

#include <new>
#include <vector>

MCFuncList::~MCFuncList()
{
    RemoveCallbacks();
}

POSITION MCFuncList::AddCallback(CALLBACK_FUNC pfn, void *userData)
{
    auto *rec = new (std::nothrow) CALLBACK_REC{pfn, nullptr, nullptr, userData};
    if (!rec)
        return nullptr;
    POSITION pos = AddTail(rec);
    if (!pos)
        delete rec;
    return pos;
}

POSITION MCFuncList::InsertCallback(CALLBACK_FUNC pfn, void *userData, POSITION pos)
{
    auto *rec = new (std::nothrow) CALLBACK_REC{pfn, nullptr, nullptr, userData};
    if (!rec)
        return nullptr;
    POSITION inserted = pos ? InsertBefore(pos, rec) : AddHead(rec);
    if (!inserted)
        delete rec;
    return inserted;
}

int MCFuncList::RemoveCallback(CALLBACK_FUNC pfn)
{
    // The list holds record pointers, never function pointers, so this
    // search cannot succeed; see the header.
    POSITION pos = Find(reinterpret_cast<const void *>(pfn));
    if (pos)
    {
        delete static_cast<CALLBACK_REC *>(GetAt(pos));
        RemoveAt(pos);
    }
    return 0;
}

void MCFuncList::RemoveCallbacks()
{
    while (!IsEmpty())
        delete static_cast<CALLBACK_REC *>(RemoveTail());
}

int MCFuncList::CallCallbacks(ECBase *document, int code, void *argument)
{
    // Call from a copy of the records: a handler may add or remove handlers
    // (even RemoveCallbacks) while it runs without pulling the list from
    // under this loop.
    std::vector<CALLBACK_REC> records;
    records.reserve(static_cast<size_t>(GetCount()));
    for (POSITION pos = GetHeadPosition(); pos;)
        if (auto *rec = static_cast<CALLBACK_REC *>(GetNext(pos)))
            records.push_back(*rec);
    for (const CALLBACK_REC &rec : records)
        if (rec.pfn)
            rec.pfn(document, code, argument, rec.userData);
    return 0;
}
