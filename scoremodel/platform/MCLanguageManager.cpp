#include <scoremodel/platform/MCLanguageManager.h>

#include <scoremodel/platform/CommonPaths.h>
#include <scoremodel/platform/MCIniFile.h>

#include <mutex>
#include <string>

const wchar_t *const MCLanguageManager::DefaultLanguageId = L"EN";

struct MCLanguageManager::Tables
{
    std::mutex lock;
    std::string languageId = "EN";
    std::string folderOverride; // the host's folder, or empty
    std::string loadedFolder;   // where the tables below were read from
    bool loaded = false;
    MCIniFile chosen;  // the chosen language
    MCIniFile english; // fills the keys the chosen language lacks; empty when English is chosen
    MCIniFile host;    // texts set with SetText
};

namespace
{
const char *const LanguageFileSuffix = ".lang";
const size_t MaxIdLength = 32;

// Upper-cases a valid id; empty for an invalid one. Ids become file names,
// so nothing that could leave the folder ("..", "/") gets through.
std::string NormalizeId(const CString &languageId)
{
    const std::string id = languageId.ToUtf8();
    if (id.empty() || id.size() > MaxIdLength)
        return std::string();
    std::string normalized;
    for (char c : id)
    {
        if (c >= 'a' && c <= 'z')
            normalized += static_cast<char>(c - 'a' + 'A');
        else if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-')
            normalized += c;
        else
            return std::string();
    }
    return normalized;
}

std::string FileOf(const std::string &folder, const std::string &id)
{
    if (folder.empty() || id.empty())
        return std::string();
    return folder + (folder.back() == '/' ? "" : "/") + id + LanguageFileSuffix;
}

CString FromUtf8(const std::string &text)
{
    return CString::FromUtf8(text.c_str(), static_cast<int>(text.size()));
}
} // namespace

MCLanguageManager::MCLanguageManager() : m_tables(new Tables)
{
}

MCLanguageManager::~MCLanguageManager()
{
    delete m_tables;
}

MCLanguageManager *MCLanguageManager::GetInstance()
{
    // Never destroyed, so that texts stay available to code that runs while
    // the process exits.
    static MCLanguageManager *const instance = new MCLanguageManager;
    return instance;
}

namespace
{
std::string CurrentFolder(const std::string &folderOverride)
{
    if (!folderOverride.empty())
        return folderOverride;
    const std::string data = MCGetDataFolder().ToUtf8();
    if (data.empty())
        return std::string();
    return data + (data.back() == '/' ? "" : "/") + "languages";
}

// Reads the English file beside the chosen one, unless English is chosen.
void LoadEnglish(MCIniFile &english, const std::string &folder, const std::string &chosenId)
{
    const std::string englishId = "EN";
    if (chosenId == englishId)
        english.Clear();
    else
        english.Load(FileOf(folder, englishId)); // a failure leaves it empty
}
} // namespace

CString MCLanguageManager::GetText(const CString &section, const CString &key)
{
    Tables &t = *GetInstance()->m_tables;
    const std::string sectionName = section.ToUtf8();
    const std::string keyName = key.ToUtf8();

    std::lock_guard<std::mutex> guard(t.lock);
    if (const std::string *text = t.host.Find(sectionName, keyName))
        return FromUtf8(*text);

    const std::string folder = CurrentFolder(t.folderOverride);
    if (!t.loaded || folder != t.loadedFolder)
    {
        t.chosen.Load(FileOf(folder, t.languageId)); // a failure leaves it empty
        LoadEnglish(t.english, folder, t.languageId);
        t.loadedFolder = folder;
        t.loaded = true;
    }
    if (const std::string *text = t.chosen.Find(sectionName, keyName))
        return FromUtf8(*text);
    if (const std::string *text = t.english.Find(sectionName, keyName))
        return FromUtf8(*text);
    return CString();
}

CString MCLanguageManager::GetLanguageId()
{
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    return FromUtf8(t.languageId);
}

BOOL MCLanguageManager::LoadLanguage(const CString &languageId)
{
    const std::string id = NormalizeId(languageId);
    if (id.empty())
        return FALSE;
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    const std::string folder = CurrentFolder(t.folderOverride);
    const std::string path = FileOf(folder, id);
    if (path.empty())
        return FALSE;
    MCIniFile file;
    if (file.Load(path) != MCIniFile::ok)
        return FALSE;
    t.chosen = std::move(file);
    t.languageId = id;
    LoadEnglish(t.english, folder, id);
    t.loadedFolder = folder;
    t.loaded = true;
    return TRUE;
}

CString MCLanguageManager::GetLanguageFolder()
{
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    return FromUtf8(CurrentFolder(t.folderOverride));
}

void MCLanguageManager::SetLanguageFolder(const CString &folder)
{
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    t.folderOverride = folder.ToUtf8();
    t.loaded = false;
}

CString MCLanguageManager::GetLanguageFilePath(const CString &languageId)
{
    const std::string id = NormalizeId(languageId);
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    return FromUtf8(FileOf(CurrentFolder(t.folderOverride), id));
}

void MCLanguageManager::SetText(const CString &section, const CString &key, const CString &text)
{
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    t.host.Set(section.ToUtf8(), key.ToUtf8(), text.ToUtf8());
}

void MCLanguageManager::ClearHostTexts()
{
    Tables &t = *GetInstance()->m_tables;
    std::lock_guard<std::mutex> guard(t.lock);
    t.host.Clear();
}
