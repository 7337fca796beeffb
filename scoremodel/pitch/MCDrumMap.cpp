#include <scoremodel/pitch/MCDrumMap.h>

#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CommonPaths.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/MCIniFile.h>

#include <string>
#include <vector>

const wchar_t *const MCDrumMap::kFileName = L"Mapping.ini";
const char *const MCDrumMap::kSection = "DrumMap";

namespace
{
// A whole decimal number in 0..limit, or -1.
int Number(const std::string &text, int limit)
{
    if (text.empty() || text.size() > 4)
        return -1;
    int value = 0;
    for (char c : text)
    {
        if (c < '0' || c > '9')
            return -1;
        value = value * 10 + (c - '0');
    }
    return value <= limit ? value : -1;
}

std::string Trim(const std::string &text)
{
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return std::string();
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string> Fields(const std::string &text)
{
    std::vector<std::string> fields;
    size_t start = 0;
    for (;;)
    {
        const size_t semicolon = text.find(';', start);
        fields.push_back(Trim(text.substr(start, semicolon - start)));
        if (semicolon == std::string::npos)
            return fields;
        start = semicolon + 1;
    }
}

// The item of a line's text, or false for a line to skip.
bool ParseItem(int note, const std::string &text, MapItem &item)
{
    const std::vector<std::string> fields = Fields(text);
    if (fields.size() > 4 || fields[0].empty())
        return false;
    item = MapItem(note, CString::FromUtf8(fields[0].c_str()));
    const int limits[] = {0, 127, MapItem::HeadLast, 127};
    int values[4] = {0, note, MapItem::HeadNormal, note};
    for (size_t i = 1; i < fields.size(); ++i)
        if ((values[i] = Number(fields[i], limits[i])) < 0)
            return false;
    item.SetDisplayNote(values[1]);
    item.SetHead(values[2]);
    item.SetPlayNote(values[3]);
    return true;
}

// Replaces the map's items with those of the section. A free function, so
// the INI reader stays out of the exported class.
void Fill(MCDrumMap &map, const MCIniFile &ini)
{
    map.RemoveAll();
    for (int note = 0; note < 128; ++note)
    {
        const std::string *value = ini.Find(MCDrumMap::kSection, std::to_string(note));
        MapItem item;
        if (value && ParseItem(note, *value, item))
            map.SetItem(item);
    }
}
} // namespace

MCDrumMap::MCDrumMap()
{
    RemoveAll();
}

void MCDrumMap::RemoveAll()
{
    for (int i = 0; i < 128; ++i)
    {
        m_items[i] = MapItem();
        m_used[i] = false;
    }
    m_nCount = 0;
}

void MCDrumMap::LoadText(const CStringA &text)
{
    MCIniFile ini;
    ini.Parse(std::string_view(text.GetString(), static_cast<size_t>(text.GetLength())));
    Fill(*this, ini);
}


int MCDrumMap::Load(const CString &path)
{
    RemoveAll();
    MCIniFile ini;
    if (ini.Load(path.ToUtf8()) != MCIniFile::ok)
        return 0;
    Fill(*this, ini);
    return 1;
}

int MCDrumMap::LoadDefault()
{
    const CString folder = MCGetDataFolder();
    if (folder.IsEmpty())
    {
        RemoveAll();
        return 0;
    }
    return Load(folder + L"/" + kFileName);
}

const MapItem *MCDrumMap::GetItem(int note) const
{
    if (note < 0 || note > 127 || !m_used[note])
        return nullptr;
    return &m_items[note];
}

void MCDrumMap::SetItem(const MapItem &item)
{
    const int note = item.GetNote();
    if (!m_used[note])
        ++m_nCount;
    m_used[note] = true;
    m_items[note] = item;
}

void MCDrumMap::RemoveItem(int note)
{
    if (note < 0 || note > 127 || !m_used[note])
        return;
    m_used[note] = false;
    m_items[note] = MapItem();
    --m_nCount;
}

void MCDrumMap::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
    {
        ar << static_cast<WORD>(m_nCount);
        for (int note = 0; note < 128; ++note)
            if (m_used[note])
                m_items[note].Serialize(ar);
        return;
    }
    WORD count = 0;
    ar >> count;
    if (count > 128)
        throw CArchiveException(CArchiveException::badIndex, "drum map with " + std::to_string(count) + " items");
    MCDrumMap loaded;
    for (WORD i = 0; i < count; ++i)
    {
        MapItem item;
        item.Serialize(ar);
        if (loaded.GetItem(item.GetNote()))
            throw CArchiveException(CArchiveException::badIndex,
                                    "drum map key " + std::to_string(item.GetNote()) + " twice");
        loaded.SetItem(item);
    }
    *this = loaded;
}

bool MCDrumMap::operator==(const MCDrumMap &other) const
{
    if (m_nCount != other.m_nCount)
        return false;
    for (int note = 0; note < 128; ++note)
        if (m_used[note] != other.m_used[note] || (m_used[note] && m_items[note] != other.m_items[note]))
            return false;
    return true;
}
