#include <scoremodel/events/media/MCMediaFile.h>

#include <scoremodel/platform/CArchive.h>

MCMediaFile::MCMediaFile(const CString &path, LONGLONG offset, LONGLONG length)
    : m_path(path), m_offset(offset < 0 ? 0 : offset), m_length(length < 0 ? 0 : length)
{
}

void MCMediaFile::SetOffset(LONGLONG offset)
{
    if (offset >= 0)
        m_offset = offset;
}

void MCMediaFile::SetLength(LONGLONG length)
{
    if (length >= 0)
        m_length = length;
}

void MCMediaFile::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
    {
        ar << m_path << m_offset << m_length;
        return;
    }
    LONGLONG offset = 0, length = 0;
    ar >> m_path >> offset >> length;
    m_offset = offset < 0 ? 0 : offset;
    m_length = length < 0 ? 0 : length;
}
