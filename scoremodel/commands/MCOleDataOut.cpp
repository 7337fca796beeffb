#include <scoremodel/commands/MCOleDataOut.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/platform/Exceptions.h>

#include <algorithm>
#include <functional>

namespace
{
std::vector<BYTE> Write(const std::function<void(CArchive &)> &write)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        write(ar);
        ar.Close();
    }
    std::vector<BYTE> bytes(static_cast<size_t>(file.GetLength()));
    file.SeekToBegin();
    if (!bytes.empty())
        file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}
} // namespace

MCOleDataOut::~MCOleDataOut()
{
    Clear();
}

void MCOleDataOut::AddEvent(ECBase *event)
{
    if (!event || std::find(m_events.begin(), m_events.end(), event) != m_events.end())
        return;
    event->Ref();
    m_events.push_back(event);
}

void MCOleDataOut::Clear()
{
    for (ECBase *event : m_events)
        event->Unref(1);
    m_events.clear();
    m_info = MCOleDataInfo();
    m_infoBytes.clear();
    m_dataBytes.clear();
}

int MCOleDataOut::Render()
{
    m_info = MCOleDataInfo();
    m_infoBytes.clear();
    m_dataBytes.clear();
    for (ECBase *event : m_events)
        m_info.Add(event);
    try
    {
        std::vector<BYTE> data = Write([&](CArchive &ar) {
            ar.WriteCount(m_events.size());
            for (ECBase *event : m_events)
                ar.WriteObject(event);
        });
        m_infoBytes = Write([&](CArchive &ar) { m_info.Serialize(ar); });
        m_dataBytes = std::move(data);
    }
    catch (const CNotSupportedException &)
    {
        m_infoBytes.clear();
        return 0;
    }
    return 1;
}

const std::vector<BYTE> &MCOleDataOut::GetBuffer(const wchar_t *format) const
{
    static const std::vector<BYTE> kNone;
    const CString name(format ? format : L"");
    if (name == MCOleDataInfo::kInfoFormat)
        return m_infoBytes;
    if (name == MCOleDataInfo::kDataFormat)
        return m_dataBytes;
    return kNone;
}
