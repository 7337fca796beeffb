#include <scoremodel/pitch/MapItem.h>

#include <scoremodel/platform/CArchive.h>

namespace
{
bool IsKey(int note)
{
    return note >= 0 && note <= 127;
}
} // namespace

MapItem::MapItem(int note, const CString &name) : m_name(name)
{
    const BYTE key = static_cast<BYTE>(IsKey(note) ? note : 0);
    m_nNote = m_nDisplayNote = m_nPlayNote = key;
}

void MapItem::SetNote(int note)
{
    if (IsKey(note))
        m_nNote = static_cast<BYTE>(note);
}

void MapItem::SetDisplayNote(int note)
{
    if (IsKey(note))
        m_nDisplayNote = static_cast<BYTE>(note);
}

void MapItem::SetHead(int head)
{
    if (head >= HeadNormal && head <= HeadLast)
        m_nHead = static_cast<BYTE>(head);
}

void MapItem::SetPlayNote(int note)
{
    if (IsKey(note))
        m_nPlayNote = static_cast<BYTE>(note);
}

void MapItem::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
    {
        ar << m_nNote << m_nDisplayNote << m_nHead << m_nPlayNote << m_name;
        return;
    }
    BYTE note = 0, display = 0, head = 0, play = 0;
    ar >> note >> display >> head >> play >> m_name;
    m_nNote = IsKey(note) ? note : 0;
    m_nDisplayNote = IsKey(display) ? display : m_nNote;
    m_nHead = head <= HeadLast ? head : static_cast<BYTE>(HeadNormal);
    m_nPlayNote = IsKey(play) ? play : m_nNote;
}

bool MapItem::operator==(const MapItem &other) const
{
    return m_nNote == other.m_nNote && m_nDisplayNote == other.m_nDisplayNote && m_nHead == other.m_nHead &&
           m_nPlayNote == other.m_nPlayNote && m_name == other.m_name;
}
