#include <scoremodel/platform/CommonPaths.h>

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <mutex>
#include <pwd.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#ifndef SCOREMODEL_INSTALL_DATADIR
#define SCOREMODEL_INSTALL_DATADIR "share/scoremodel"
#endif

namespace
{
const char *const UserTabInstrumentsName = "TabInstruments.xml";
const char *const InstrumentsFolderName = "instruments";

std::string GetEnv(const char *name)
{
    const char *value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

bool IsFolder(const std::string &path)
{
    struct stat st;
    return !path.empty() && ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string StripTrailingSlashes(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// Joins a folder and a name; an empty folder stays "no such place".
std::string Join(const std::string &folder, const char *name)
{
    if (folder.empty())
        return std::string();
    if (folder.back() == '/')
        return folder + name;
    return folder + '/' + name;
}

std::string HomeFolder()
{
    std::string home = GetEnv("HOME");
    if (!home.empty())
        return home;
    std::vector<char> buffer(16384);
    struct passwd pw;
    struct passwd *result = nullptr;
    if (::getpwuid_r(::getuid(), &pw, buffer.data(), buffer.size(), &result) == 0 && result && result->pw_dir)
        return result->pw_dir;
    return std::string();
}

std::string UserFolder()
{
    const std::string redirect = GetEnv("SCOREMODEL_USER_DIR");
    if (!redirect.empty())
        return StripTrailingSlashes(redirect);
    // A relative XDG_CONFIG_HOME is to be ignored, as the XDG rules say.
    const std::string xdg = GetEnv("XDG_CONFIG_HOME");
    if (!xdg.empty() && xdg.front() == '/')
        return Join(StripTrailingSlashes(xdg), "scoremodel");
    const std::string home = HomeFolder();
    if (home.empty())
        return std::string();
    return Join(StripTrailingSlashes(home), ".config/scoremodel");
}

std::string DataFolderBeside(const std::string &modulePath)
{
    const std::string installDataDir = SCOREMODEL_INSTALL_DATADIR;
    if (!installDataDir.empty() && installDataDir.front() == '/')
        return IsFolder(installDataDir) ? installDataDir : std::string();
    const size_t slash = modulePath.rfind('/');
    if (slash == std::string::npos)
        return std::string();
    const std::string moduleFolder = modulePath.substr(0, slash);
    for (const char *up : {"/../", "/../../"})
    {
        const std::string candidate = moduleFolder + up + installDataDir;
        if (IsFolder(candidate))
        {
            char *resolved = ::realpath(candidate.c_str(), nullptr);
            std::string result = resolved ? std::string(resolved) : candidate;
            std::free(resolved);
            return result;
        }
    }
    return std::string();
}

// The installed data does not move while the process runs, so the search
// beside the library is done once.
std::string InstalledDataFolder()
{
    static std::once_flag once;
    static std::string folder;
    std::call_once(once, [] {
        Dl_info info{};
        if (::dladdr(reinterpret_cast<void *>(&MCGetDataFolder), &info) == 0 || info.dli_fname == nullptr)
            return;
        char *resolved = ::realpath(info.dli_fname, nullptr);
        const std::string modulePath = resolved ? std::string(resolved) : std::string(info.dli_fname);
        std::free(resolved);
        folder = DataFolderBeside(modulePath);
    });
    return folder;
}

std::string DataFolder()
{
    const std::string redirect = GetEnv("SCOREMODEL_DATA_DIR");
    if (!redirect.empty())
        return StripTrailingSlashes(redirect);
    return InstalledDataFolder();
}

CString FromPath(const std::string &path)
{
    return CString::FromUtf8(path.c_str(), static_cast<int>(path.size()));
}
} // namespace

CString MCGetUserFolder()
{
    return FromPath(UserFolder());
}

CString MCGetDataFolder()
{
    return FromPath(DataFolder());
}

CString MCGetDataFolderBeside(const CString &modulePath)
{
    return FromPath(DataFolderBeside(modulePath.ToUtf8()));
}

BOOL MCCreateFolder(const CString &path)
{
    const std::string target = StripTrailingSlashes(path.ToUtf8());
    if (target.empty())
        return FALSE;
    // Walk down from the root, making each missing part.
    for (size_t pos = target.find('/', 1); ; pos = target.find('/', pos + 1))
    {
        const std::string part = target.substr(0, pos);
        if (::mkdir(part.c_str(), 0777) != 0 && errno != EEXIST)
            return FALSE;
        if (pos == std::string::npos)
            break;
    }
    return IsFolder(target) ? TRUE : FALSE;
}

CString MCGetInstrumentPath()
{
    return FromPath(Join(DataFolder(), InstrumentsFolderName));
}

CString MCGetUserTabInstrumentsPath()
{
    return FromPath(Join(UserFolder(), UserTabInstrumentsName));
}

CString MCGetAppTabInstrumentsPath()
{
    return FromPath(Join(Join(DataFolder(), InstrumentsFolderName), UserTabInstrumentsName));
}

BOOL MCFileExists(const CString &path)
{
    const std::string file = path.ToUtf8();
    struct stat st;
    return !file.empty() && ::stat(file.c_str(), &st) == 0 && S_ISREG(st.st_mode) ? TRUE : FALSE;
}
