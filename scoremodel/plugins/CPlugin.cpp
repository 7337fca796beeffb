#include <scoremodel/plugins/CPlugin.h>

#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MessageBox.h>
#include <scoremodel/plugins/PluginFolder.h>

#include <dirent.h>
#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

CMap<unsigned int, unsigned int, HINSTANCE__ *, HINSTANCE__ *> CPlugin::s_modules;

namespace
{
const wchar_t kSection[] = L"TuDataModel_Plugins_CPlugins";
const char kFolderName[] = "PlugIns";
const char kSuffix[] = ".so";

CString g_folderOverride;

// The loads InitPlugin took, by handle: FreePlugin drops only these, never a
// load the host or another library holds.
std::map<void *, int> &OwnLoads()
{
    static std::map<void *, int> loads;
    return loads;
}

typedef unsigned int (*VersionEntry)();
typedef int (*InitEntry)();
typedef unsigned int (*IdEntry)();

void ShowMessage(const wchar_t *key, const std::string &detail = std::string())
{
    CString text = MCLanguageManager::GetText(kSection, key);
    if (!detail.empty())
    {
        if (!text.IsEmpty())
            text += L"\n";
        text += CString::FromUtf8(detail.c_str());
    }
    MCMessageBox(text, MB_OK | MB_ICONWARNING);
}

std::string Utf8(const wchar_t *text)
{
    return text ? CString(text).ToUtf8() : std::string();
}

bool EndsWith(const std::string &name, const char *suffix)
{
    const std::string tail(suffix);
    return name.size() > tail.size() && name.compare(name.size() - tail.size(), tail.size(), tail) == 0;
}

// A name with a folder stays as it is; a bare name lies in the plug-in
// folder (the loader would otherwise search its library path for it).
std::string ResolveInFolder(const std::string &file)
{
    if (file.find('/') != std::string::npos)
        return file;
    return CPlugin::GetPluginFolder().ToUtf8() + "/" + file;
}

// The ".so" files of the folder, in name order, so that the first-wins and
// last-wins rules of the registries do not depend on the file system. Empty
// when the folder cannot be read.
std::vector<std::string> PluginFiles(const std::string &folder)
{
    std::vector<std::string> names;
    DIR *dir = folder.empty() ? nullptr : ::opendir(folder.c_str());
    if (!dir)
        return names;
    while (const dirent *entry = ::readdir(dir))
    {
        const std::string name(entry->d_name);
        if (!EndsWith(name, kSuffix))
            continue;
        struct stat st{};
        if (::stat((folder + "/" + name).c_str(), &st) == 0 && S_ISDIR(st.st_mode))
            continue;
        names.push_back(name);
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end());
    return names;
}

void Walk(int (*action)(wchar_t *))
{
    const std::vector<std::string> names = PluginFiles(CPlugin::GetPluginFolder().ToUtf8());
    if (names.empty())
    {
        ShowMessage(L"IDD_DM_MB_TEXT1");
        return;
    }
    for (const std::string &name : names)
    {
        CString wide = CString::FromUtf8(name.c_str());
        std::wstring buffer(wide.GetString());
        action(buffer.data());
    }
}
} // namespace

void MCSetPluginFolderOverride(const CString &folder)
{
    g_folderOverride = folder;
}

CString MCGetModuleFolder()
{
    Dl_info info{};
    link_map *module = nullptr;
    if (::dladdr1(reinterpret_cast<void *>(&MCGetModuleFolder), &info, reinterpret_cast<void **>(&module),
                  RTLD_DL_LINKMAP) == 0)
        return CString();
    // The program itself has an empty name in the loader's list (and dladdr
    // answers with argv[0], which may be relative): ask the kernel instead.
    std::string path;
    if (module && module->l_name && module->l_name[0] != '\0')
        path = module->l_name;
    else
        path = "/proc/self/exe";
    char *resolved = ::realpath(path.c_str(), nullptr);
    if (!resolved)
        return CString();
    std::string full(resolved);
    std::free(resolved);
    const std::string::size_type slash = full.rfind('/');
    full.erase(slash == 0 ? 1 : slash);
    return CString::FromUtf8(full.c_str());
}

CPlugin::~CPlugin() = default;

CString CPlugin::GetPluginFolder()
{
    if (!g_folderOverride.IsEmpty())
        return g_folderOverride;
    const CString module = MCGetModuleFolder();
    if (module.IsEmpty())
        return CString();
    CString folder = module;
    if (folder != L"/")
        folder += L"/";
    folder += CString::FromUtf8(kFolderName);
    return folder;
}

void CPlugin::Initialize()
{
    Walk(&CPlugin::InitPlugin);
}

void CPlugin::UnInitialize()
{
    Walk(&CPlugin::FreePlugin);
}

int CPlugin::InitPlugin(wchar_t *file)
{
    const std::string name = Utf8(file);
    if (name.empty())
    {
        ShowMessage(L"IDD_DM_MB_TEXT2", "(no file name)");
        return 0;
    }
    const std::string path = ResolveInFolder(name);
    // RTLD_NOW: a plug-in that needs a symbol this library lacks fails here,
    // with a message, and not at its first call. RTLD_NODELETE: see the
    // header; registry entries may point into the library forever.
    void *module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!module)
    {
        const char *reason = ::dlerror();
        ShowMessage(L"IDD_DM_MB_TEXT2", reason ? std::string(reason) : path);
        return 0;
    }
    ++OwnLoads()[module];

    auto version = reinterpret_cast<VersionEntry>(::dlsym(module, "GetPluginVersion"));
    if (!version)
        return 0;
    if (version() < 1)
        return 0;
    auto init = reinterpret_cast<InitEntry>(::dlsym(module, "InitPlugins"));
    if (!init)
    {
        ShowMessage(L"IDD_DM_MB_TEXT3", path);
        return 0;
    }
    if (auto id = reinterpret_cast<IdEntry>(::dlsym(module, "GetPluginID")))
        s_modules[id()] = static_cast<HINSTANCE>(module);
    init();
    return 1;
}

int CPlugin::FreePlugin(wchar_t *file)
{
    const std::string name = Utf8(file);
    if (name.empty())
        return 1;
    void *module = ::dlopen(ResolveInFolder(name).c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (!module)
        return 1;
    ::dlclose(module); // the reference RTLD_NOLOAD just took
    auto own = OwnLoads().find(module);
    if (own != OwnLoads().end())
    {
        ::dlclose(module);
        if (--own->second == 0)
            OwnLoads().erase(own);
    }
    return 1;
}

HINSTANCE CPlugin::GetModuleHandleW(unsigned int id)
{
    HINSTANCE module = nullptr;
    if (!s_modules.Lookup(id, module))
        return nullptr;
    return module;
}

int IsModuleLoaded(const wchar_t *name)
{
    const std::string text = Utf8(name);
    if (text.empty())
        return 0;
    void *module = ::dlopen(text.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (!module)
        return 0;
    ::dlclose(module);
    return 1;
}
