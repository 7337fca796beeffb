#include <scoremodel/instruments/XMLInstrumentParser.h>

#include <scoremodel/instruments/XMLInstrumentParserFaults.h>
#include <scoremodel/platform/CommonPaths.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MessageBox.h>

#include <pugixml.hpp>

#include <cctype>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace
{
InstrumentPersistFault g_persistFault = InstrumentPersistFault::None;

// The platform's decimal reading: blanks, a sign, digits; clamped.
int ReadDecimal(const char *text)
{
    if (!text)
        return 0;
    while (*text == ' ' || *text == '\t' || *text == '\r' || *text == '\n')
        ++text;
    bool negative = false;
    if (*text == '+' || *text == '-')
        negative = *text++ == '-';
    long long value = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
    {
        value = value * 10 + (*text - '0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;
    }
    if (negative)
        return static_cast<int>(-value);
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

// The reader is lenient where XML is not: it takes several root elements.
// Such a file is damaged, not a list to edit.
bool OneRootOnly(const pugi::xml_document &document)
{
    int elements = 0;
    for (pugi::xml_node node = document.first_child(); node; node = node.next_sibling())
        if (node.type() == pugi::node_element)
            ++elements;
    return elements == 1;
}

// Syncs the folder so that the rename itself survives a crash. Best effort:
// some file systems refuse to sync a folder.
void SyncFolder(const std::string &file)
{
    const size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : file.substr(0, slash);
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0)
    {
        ::fsync(fd);
        ::close(fd);
    }
}

// Puts `text` at `target` through a temporary file beside it: written,
// flushed and synced, then renamed over the target, so that the target is
// either the old file or the whole new one. False, with no temporary left
// and the target untouched, when any step fails.
bool WriteAtomically(const std::string &target, const std::string &text)
{
    std::string temporary = target + ".XXXXXX";
    const int fd = g_persistFault == InstrumentPersistFault::CreateTemporary
                       ? -1
                       : ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0)
        return false;
    FILE *file = ::fdopen(fd, "wb");
    if (!file)
    {
        ::close(fd);
        ::unlink(temporary.c_str());
        return false;
    }
    // The injected full disk takes the first half and then refuses.
    const size_t room = g_persistFault == InstrumentPersistFault::WriteHalf ? text.size() / 2 : text.size();
    bool ok = std::fwrite(text.data(), 1, room, file) == room && room == text.size();
    ok = ok && std::fflush(file) == 0 && ::fsync(::fileno(file)) == 0 &&
         g_persistFault != InstrumentPersistFault::Sync;
    ok = std::fclose(file) == 0 && ok;
    ok = ok && g_persistFault != InstrumentPersistFault::Rename &&
         std::rename(temporary.c_str(), target.c_str()) == 0;
    if (!ok)
    {
        ::unlink(temporary.c_str());
        return false;
    }
    SyncFolder(target);
    return true;
}
} // namespace

void SetInstrumentPersistFault(InstrumentPersistFault fault)
{
    g_persistFault = fault;
}

const char *const XMLInstrumentParser::m_sNodeNames[ElementCount] = {
    "instrument", "name", "description", "strings", "frets", "distance", "sound", "tune", "frequency"};

const char *XMLInstrumentParser::GetNodeName(int index)
{
    return index >= 0 && index < ElementCount ? m_sNodeNames[index] : nullptr;
}

XMLInstrumentParser *XMLInstrumentParser::GetInstance()
{
    static XMLInstrumentParser instance;
    return &instance;
}

XMLInstrumentParser::XMLInstrumentParser()
{
    ParseStartFile();
}

XMLInstrumentParser::~XMLInstrumentParser()
{
    ClearCache();
}

void XMLInstrumentParser::ClearCache()
{
    for (MCInstrument *instrument : m_instruments)
        delete instrument;
    m_instruments.RemoveAll();
    m_nameList.RemoveAll();
}

void XMLInstrumentParser::ShowMessage(const wchar_t *key)
{
    MCMessageBox(MCLanguageManager::GetText(L"TuDataModel_Misc_XMLInstrumentParser", key), MB_OK | MB_ICONERROR);
}

// ---- Loading ------------------------------------------------------------------

int XMLInstrumentParser::ParseStartFile()
{
    CString path = MCGetUserTabInstrumentsPath();
    if (!MCFileExists(path))
        path = MCGetAppTabInstrumentsPath();
    return ParseXMLFromFile(path);
}

int XMLInstrumentParser::ParseXMLFromFile(const wchar_t *path)
{
    ClearCache();
    Document().reset();
    std::string file;
    if (path)
        to_mbc(CString(path), file);
    // A folder opens like a file on this platform; it is no instrument file.
    pugi::xml_parse_result result;
    if (file.empty() || !MCFileExists(CString(path)))
        result.status = pugi::status_file_not_found;
    else
        result = Document().load_file(file.c_str(), pugi::parse_default, pugi::encoding_auto);
    if (result && !OneRootOnly(Document()))
        result.status = pugi::status_no_document_element;
    if (!result)
    {
        Document().reset();
        const bool unreadable = result.status == pugi::status_file_not_found ||
                                result.status == pugi::status_io_error ||
                                result.status == pugi::status_out_of_memory;
        ShowMessage(unreadable ? L"IDD_DM_MB_TEXT15" : L"IDD_DM_MB_TEXT16");
        return 0;
    }
    ParseRoot(Document().document_element());
    return 1;
}

void XMLInstrumentParser::ParseRoot(pugi::xml_node root)
{
    for (pugi::xml_node child = root.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element && Equals(child.name(), m_sNodeNames[ElementInstrument]))
            ParseInstrument(child);
}

// The field an element of an instrument fills, by its name; ElementCount
// for names the reader skips. One test of the first letter, then one full
// comparison: the reader runs once per element of the file.
int XMLInstrumentParser::FieldOf(const char *name)
{
    int candidate = ElementCount;
    switch (name[0])
    {
    case 'n': candidate = ElementName; break;
    case 'd': candidate = name[1] == 'e' ? ElementDescription : ElementDistance; break;
    case 's': candidate = ElementStrings; break;
    case 'f': candidate = ElementFrets; break;
    case 't': candidate = ElementTune; break;
    default: return ElementCount;
    }
    return Equals(name, m_sNodeNames[candidate]) ? candidate : ElementCount;
}

void XMLInstrumentParser::ParseInstrument(pugi::xml_node node)
{
    auto instrument = std::make_unique<MCInstrument>();
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
    {
        if (child.type() != pugi::node_element)
            continue;
        switch (FieldOf(child.name()))
        {
        case ElementName: instrument->SetName(FromDocumentText(child.child_value())); break;
        case ElementDescription: instrument->SetDescription(FromDocumentText(child.child_value())); break;
        case ElementStrings: instrument->SetStringsCount(ReadDecimal(child.child_value())); break;
        case ElementFrets: instrument->SetFretsCount(ReadDecimal(child.child_value())); break;
        case ElementDistance: instrument->SetFingerDistance(ReadDecimal(child.child_value())); break;
        case ElementTune: ParseTune(child, *instrument); break;
        default: break;
        }
    }
    m_nameList.Add(instrument->GetName());
    m_instruments.Add(instrument.get());
    instrument.release();
}

void XMLInstrumentParser::ParseTune(pugi::xml_node node, MCInstrument &instrument)
{
    // Straight into the instrument's own array, which SetTunes then marks
    // as set without a copy; room for 8 strings before it grows.
    CArray<int, int> &tunes = instrument.GetTunes();
    tunes.SetSize(0, 8);
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element && Equals(child.name(), m_sNodeNames[ElementFrequency]))
            tunes.Add(ReadDecimal(child.child_value()));
    instrument.SetTunes(tunes);
}

// ---- Cached arrays ----------------------------------------------------------------

CArray<CString, CString> &XMLInstrumentParser::GetInstrumentNameList(int refresh)
{
    if (refresh)
    {
        ClearCache();
        ParseRoot(Document().document_element());
    }
    return m_nameList;
}

CArray<MCInstrument *, MCInstrument *> &XMLInstrumentParser::GetInstruments(int refresh)
{
    GetInstrumentNameList(refresh);
    return m_instruments;
}

MCInstrument XMLInstrumentParser::GetInstrument(int index, int refresh)
{
    GetInstruments(refresh);
    if (index < 0 || index >= m_instruments.GetSize())
        return MCInstrument();
    return *m_instruments[index];
}

int XMLInstrumentParser::ExistsInstrument(const MCInstrument &instrument)
{
    for (MCInstrument *cached : m_instruments)
        if (cached->Equals(instrument))
            return 1;
    return 0;
}

// ---- Editing the document ------------------------------------------------------------

pugi::xml_node XMLInstrumentParser::Root()
{
    pugi::xml_node root = Document().document_element();
    if (!root)
        root = Document().append_child("instruments");
    return root;
}

pugi::xml_node XMLInstrumentParser::InstrumentNodeAt(int index)
{
    if (index < 0)
        return pugi::xml_node();
    for (pugi::xml_node child = Root().first_child(); child; child = child.next_sibling())
        if (child.type() == pugi::node_element && Equals(child.name(), m_sNodeNames[ElementInstrument]) &&
            index-- == 0)
            return child;
    return pugi::xml_node();
}

void XMLInstrumentParser::CreateInstrumentNode(pugi::xml_node node, const MCInstrument &instrument)
{
    std::string name;
    to_utf8(instrument.GetName(), name);
    node.append_child(m_sNodeNames[ElementName]).text().set(name.c_str());
    node.append_child(m_sNodeNames[ElementStrings]).text().set(instrument.GetStringsCount());
    node.append_child(m_sNodeNames[ElementFrets]).text().set(instrument.GetFretsCount());
    pugi::xml_node tune = node.append_child(m_sNodeNames[ElementTune]);
    for (int value : instrument.GetTunes())
        tune.append_child(m_sNodeNames[ElementFrequency]).text().set(value);
}

int XMLInstrumentParser::AddInstrument(MCInstrument &instrument)
{
    CreateInstrumentNode(Root().append_child(m_sNodeNames[ElementInstrument]), instrument);
    return static_cast<int>(m_instruments.GetSize());
}

int XMLInstrumentParser::DelInstrument(int index)
{
    if (!ExistsInstrument(GetInstrument(index, 0)))
        return 0;
    pugi::xml_node node = InstrumentNodeAt(index);
    return node && Root().remove_child(node) ? 1 : 0;
}

int XMLInstrumentParser::EditInstrument(int index, MCInstrument instrument)
{
    pugi::xml_node old = InstrumentNodeAt(index);
    if (!old)
        return 0;
    pugi::xml_node root = Root();
    CreateInstrumentNode(root.insert_child_before(m_sNodeNames[ElementInstrument], old), instrument);
    return root.remove_child(old) ? 1 : 0;
}

// ---- Saving ------------------------------------------------------------------------

int XMLInstrumentParser::Persist()
{
    const CString path = MCGetUserTabInstrumentsPath();
    std::string target;
    to_mbc(path, target);
    const size_t slash = target.rfind('/');
    const bool folder = !target.empty() && (slash == std::string::npos || slash == 0 ||
                                            MCCreateFolder(CString::FromUtf8(target.substr(0, slash).c_str())));
    if (folder)
    {
        struct Collect : pugi::xml_writer
        {
            std::string text;
            void write(const void *data, size_t size) override { text.append(static_cast<const char *>(data), size); }
        } collect;
        Document().save(collect, "  ", pugi::format_default, pugi::encoding_utf8);
        if (WriteAtomically(target, collect.text))
            return 1;
    }
    CString message = MCLanguageManager::GetText(L"Util", L"ERROR_SAVE_FILE_F");
    // Replace, not Format: a path may hold a '%' of its own.
    message.Replace(L"%s", path.IsEmpty() ? CString(L"?") : path);
    MCMessageBox(message, MB_OK | MB_ICONERROR);
    return 0;
}
