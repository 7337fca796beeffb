#include <scoremodel/events/base/MCDataArray.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/Exceptions.h>

#include <algorithm>
#include <string>

IMPLEMENT_SERIAL(MCDataArray, CObject, 0)

namespace
{
constexpr int kTypeToIndex[8] = {0, 3, 1, 5, 2, 4, 6, 7};
constexpr int kIndexToViewCode[8] = {0, 2, 4, 1, 5, 3, 6, 7};
} // namespace

MCDataArray::~MCDataArray()
{
    delete[] m_pData;
}

void MCDataArray::Materialize()
{
    if (!m_pData && m_nSize > 0)
        m_pData = new DCBase *[m_nSize]();
}

void MCDataArray::SetSize(int nNewSize)
{
    nNewSize = std::clamp(nNewSize, 0, kMaxSize);
    if (!m_pData || nNewSize == 0)
    {
        // Every slot is null already, or none survives: no block is needed.
        delete[] m_pData;
        m_pData = nullptr;
        m_nSize = static_cast<BYTE>(nNewSize);
        return;
    }
    DCBase **block = new DCBase *[nNewSize]();
    std::copy_n(m_pData, std::min<int>(nNewSize, m_nSize), block);
    delete[] m_pData;
    m_pData = block;
    m_nSize = static_cast<BYTE>(nNewSize);
}

DCBase *MCDataArray::GetAt(int nIndex) const
{
    if (nIndex < 0 || nIndex >= m_nSize || !m_pData)
        return nullptr;
    return m_pData[nIndex];
}

DCBase *&MCDataArray::ElementAt(int nIndex)
{
    if (nIndex < 0 || nIndex >= m_nSize)
        throw CInvalidArgException("MCDataArray::ElementAt: index " + std::to_string(nIndex) + " outside size " +
                                   std::to_string(m_nSize));
    Materialize();
    return m_pData[nIndex];
}

void MCDataArray::SetAt(int nIndex, DCBase *newElement)
{
    if (nIndex < 0 || nIndex >= m_nSize)
        return;
    if (!m_pData && !newElement)
        return;
    Materialize();
    m_pData[nIndex] = newElement;
}

void MCDataArray::SetAtGrow(int nIndex, DCBase *newElement)
{
    if (nIndex < 0 || nIndex >= kMaxSize)
        return;
    if (nIndex >= m_nSize)
        SetSize(nIndex + 1);
    SetAt(nIndex, newElement);
}

int MCDataArray::Add(DCBase *newElement)
{
    int index = m_nSize;
    if (index >= kMaxSize)
        return -1;
    SetAtGrow(index, newElement);
    return index;
}

void MCDataArray::RemoveAll()
{
    delete[] m_pData;
    m_pData = nullptr;
    m_nSize = 0;
}

int MCDataArray::TypeToIndex(int type)
{
    return (type >= 0 && type < 8) ? kTypeToIndex[type] : 0;
}

int MCDataArray::IndexToViewCode(int index)
{
    return (index >= 0 && index < 8) ? kIndexToViewCode[index] : 0;
}

void MCDataArray::Serialize(CArchive &ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
    {
        int count = 0;
        int highest = 0;
        for (int i = 0; i < m_nSize; ++i)
        {
            DCBase *data = GetAt(i);
            if (data && data->IsSerializable())
            {
                ++count;
                highest = i;
            }
        }
        ar << static_cast<BYTE>(count) << static_cast<BYTE>(highest);
        for (int i = 0; i < m_nSize; ++i)
        {
            DCBase *data = GetAt(i);
            if (data && data->IsSerializable())
            {
                ar << static_cast<BYTE>(IndexToViewCode(i));
                ar.WriteObject(data);
            }
        }
        return;
    }

    if (ActiveArchiveVersion() >= ArchiveVersionAttachmentSlots)
    {
        BYTE count = 0;
        BYTE highest = 0;
        ar >> count >> highest;
        SetSize(highest + 1);
        for (int i = 0; i < count; ++i)
        {
            BYTE code = 0;
            ar >> code;
            // A code whose slot lies past the stored highest one (a corrupt
            // record) still finds its slot rather than being lost.
            LoadAttachment(ar, TypeToIndex(code));
        }
        return;
    }

    // The old layout: a count, then one object per position; position p is
    // the attachment type p, so it lives in slot TypeToIndex(p).
    DWORD_PTR count = ar.ReadCount();
    int highest = 0;
    for (DWORD_PTR p = 0; p < count && p < 8; ++p)
        highest = std::max(highest, TypeToIndex(static_cast<int>(p)));
    if (count > 0)
        SetSize(highest + 1);
    for (DWORD_PTR p = 0; p < count; ++p)
        LoadAttachment(ar, TypeToIndex(p < 8 ? static_cast<int>(p) : 8));
}

void MCDataArray::LoadAttachment(CArchive &ar, int slot)
{
    const size_t made = ar.GetLoadedObjects().size();
    auto *data = static_cast<DCBase *>(ar.ReadObject(RUNTIME_CLASS(DCBase)));
    if (!data)
        return;
    // The array owns its attachments, so each must be new to this stream and
    // have a slot of its own: a shared one would be deleted twice, and one
    // put over another would leak it.
    if (ar.GetLoadedObjects().size() <= made || ar.GetLoadedObjects()[made] != data)
        throw CArchiveException(CArchiveException::badIndex, "an attachment that belongs to another event");
    if (GetAt(slot))
        throw CArchiveException(CArchiveException::genericException,
                                "two attachments in slot " + std::to_string(slot));
    SetAtGrow(slot, data);
}
