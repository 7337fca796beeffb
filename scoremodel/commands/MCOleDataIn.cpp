#include <scoremodel/commands/MCOleDataIn.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/platform/Exceptions.h>

#include <exception>
#include <string>

MCOleDataIn::~MCOleDataIn()
{
    ReleaseEvents();
}

// An event a paste has put into a tree is the tree's now: only our
// reference goes. One that is still ours alone is taken down with its
// children, which hold it in turn.
void MCOleDataIn::ReleaseEvents()
{
    for (ECBase *event : m_events)
    {
        ECBase::EventList *parents = event->GetParents();
        if (!parents || parents->IsEmpty())
            event->RemoveChildren(1);
        event->Unref(1);
    }
    m_events.clear();
}

int MCOleDataIn::SetBuffer(const wchar_t *format, const BYTE *bytes, size_t size)
{
    const CString name(format ? format : L"");
    std::vector<BYTE> *target = name == MCOleDataInfo::kInfoFormat   ? &m_infoBytes
                                : name == MCOleDataInfo::kDataFormat ? &m_dataBytes
                                                                     : nullptr;
    if (!target || (!bytes && size))
        return 0;
    target->assign(bytes, bytes + size);
    return 1;
}

int MCOleDataIn::ReadInfo()
{
    m_error.clear();
    if (m_infoBytes.empty() || m_infoBytes.size() > 0xFFFFFFFFu)
    {
        m_error = "no clipboard info";
        return 0;
    }
    CMemFile file(m_infoBytes.data(), static_cast<UINT>(m_infoBytes.size()));
    try
    {
        CArchive ar(&file, CArchive::load);
        MCOleDataInfo info;
        info.Serialize(ar);
        m_info = info;
    }
    catch (const CException &e)
    {
        m_error = std::string("clipboard info: ") + e.what();
        return 0;
    }
    return 1;
}

int MCOleDataIn::Read()
{
    ReleaseEvents();
    if (!ReadInfo())
        return 0;
    if (m_dataBytes.empty() || m_dataBytes.size() > 0xFFFFFFFFu)
    {
        m_error = "no clipboard data";
        return 0;
    }
    CMemFile file(m_dataBytes.data(), static_cast<UINT>(m_dataBytes.size()));
    CArchive ar(&file, CArchive::load);
    std::vector<ECBase *> events;
    try
    {
        const DWORD_PTR count = ar.ReadCount();
        if (count != static_cast<DWORD_PTR>(m_info.GetCount()))
            throw CArchiveException(CArchiveException::badIndex, "the data holds " + std::to_string(count) +
                                                                     " events, the info " +
                                                                     std::to_string(m_info.GetCount()));
        for (DWORD_PTR i = 0; i < count; ++i)
        {
            auto *event = static_cast<ECBase *>(ar.ReadObject(RUNTIME_CLASS(ECBase)));
            if (!event)
                throw CArchiveException(CArchiveException::badIndex, "a null event");
            events.push_back(event);
        }
        if (ar.GetBytesRemaining() > 0)
            throw CArchiveException(CArchiveException::genericException, "bytes after the last event");
    }
    catch (const CException &e)
    {
        ECBase::ReleaseLoadedObjects(ar.GetLoadedObjects());
        m_error = std::string("clipboard data: ") + e.what();
        return 0;
    }
    for (ECBase *event : events)
        event->Ref();
    m_events = std::move(events);
    return 1;
}

ECBase *MCOleDataIn::GetEvent(int index) const
{
    if (index < 0 || index >= GetCount())
        return nullptr;
    return m_events[static_cast<size_t>(index)];
}
