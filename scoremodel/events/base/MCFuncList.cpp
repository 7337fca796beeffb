#include <scoremodel/events/base/MCFuncList.h>

#include <new>
#include <vector>

MCFuncList::~MCFuncList()
{
    m_nPasses = 0;
    RemoveCallbacks();
    for (CALLBACK_REC *rec : m_retired)
        delete rec;
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
    {
        auto *rec = static_cast<CALLBACK_REC *>(RemoveTail());
        if (!rec)
            continue;
        if (m_nPasses == 0)
        {
            delete rec;
            continue;
        }
        // A pass may still hold the record: it learns of the removal from the
        // cleared function and skips it.
        rec->pfn = nullptr;
        try
        {
            m_retired.push_back(rec);
        }
        catch (...)
        {
            // Out of memory: the record is lost rather than freed under a pass.
        }
    }
}

int MCFuncList::CallCallbacks(ECBase *document, int code, void *argument)
{
    Pass pass(*this);
    while (const CALLBACK_REC *rec = pass.Next())
        rec->pfn(document, code, argument, rec->userData);
    return 0;
}

MCFuncList::Pass::Pass(MCFuncList &list) : m_list(list)
{
    m_records.reserve(static_cast<size_t>(list.GetCount()));
    for (POSITION pos = list.GetHeadPosition(); pos;)
        if (auto *rec = static_cast<CALLBACK_REC *>(list.GetNext(pos)))
            m_records.push_back(rec);
    ++m_list.m_nPasses;
}

MCFuncList::Pass::~Pass()
{
    if (--m_list.m_nPasses > 0)
        return;
    for (CALLBACK_REC *rec : m_list.m_retired)
        delete rec;
    m_list.m_retired.clear();
}

const MCFuncList::CALLBACK_REC *MCFuncList::Pass::Next()
{
    while (m_next < m_records.size())
    {
        const CALLBACK_REC *rec = m_records[m_next++];
        if (rec->pfn)
            return rec;
    }
    return nullptr;
}
