#include <scoremodel/platform/Preferences.h>

#include <scoremodel/platform/CommonPaths.h>
#include <scoremodel/platform/MCIniFile.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const char *const PreferencesFileName = "preferences.ini";

std::atomic<void (*)(const char *)> s_saveFault{nullptr};

// What identifies one version of the file on disk. Every save renames a new
// file into place, so the inode changes along with the times.
struct FileStamp
{
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1;
    long long modified = 0;
    long long changed = 0;

    bool operator==(const FileStamp &) const = default;
};

bool StampOf(const std::string &path, FileStamp &stamp)
{
    struct stat st;
    if (::stat(path.c_str(), &st) != 0)
        return false;
    stamp.device = st.st_dev;
    stamp.inode = st.st_ino;
    stamp.size = st.st_size;
    stamp.modified = static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
    stamp.changed = static_cast<long long>(st.st_ctim.tv_sec) * 1000000000LL + st.st_ctim.tv_nsec;
    return true;
}

// The parsed file of the last load, keyed by path and stamp.
struct Cache
{
    std::mutex lock;
    std::string path;
    FileStamp stamp;
    bool valid = false;
    MCIniFile file;
};

Cache &TheCache()
{
    static Cache cache;
    return cache;
}

std::string PreferencesPath()
{
    const std::string folder = MCGetUserFolder().ToUtf8();
    if (folder.empty())
        return std::string();
    return folder + (folder.back() == '/' ? "" : "/") + PreferencesFileName;
}

bool ParseInt(const std::string &text, int &value)
{
    const char *first = text.data();
    const char *last = text.data() + text.size();
    if (first != last && *first == '+')
        ++first;
    int parsed = 0;
    const auto [end, error] = std::from_chars(first, last, parsed);
    if (error != std::errc() || end != last || first == last)
        return false;
    value = parsed;
    return true;
}

bool WriteAll(int fd, const std::string &data)
{
    size_t done = 0;
    while (done < data.size())
    {
        const ssize_t wrote = ::write(fd, data.data() + done, data.size() - done);
        if (wrote < 0)
        {
            if (errno == EINTR)
                continue;
            return false;
        }
        done += static_cast<size_t>(wrote);
    }
    return true;
}

// Holds an exclusive lock on the folder while a save reads, changes and
// replaces the file. Without locks (some network file systems) the save goes
// on unguarded rather than failing.
class FolderLock
{
public:
    explicit FolderLock(const std::string &folder)
    {
        m_fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (m_fd >= 0)
            while (::flock(m_fd, LOCK_EX) != 0 && errno == EINTR)
            {
            }
    }
    ~FolderLock()
    {
        if (m_fd >= 0)
            ::close(m_fd); // releases the lock
    }
    FolderLock(const FolderLock &) = delete;
    FolderLock &operator=(const FolderLock &) = delete;

private:
    int m_fd = -1;
};

// Writes text to path through a temporary file and a rename. False, with the
// old file untouched, on any failure.
bool ReplaceFile(const std::string &path, const std::string &text, mode_t mode)
{
    // One name is enough: the folder lock admits one writer at a time. A
    // leftover of a crashed save is removed rather than reused, since a file
    // that already exists keeps its own permissions and owner (and may even
    // be a link elsewhere), and those would become the preferences file's.
    const std::string temporary = path + ".tmp";
    ::unlink(temporary.c_str());
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0)
        return false;
    if (!WriteAll(fd, text) || ::fsync(fd) != 0)
    {
        ::close(fd);
        ::unlink(temporary.c_str());
        return false;
    }
    if (::close(fd) != 0)
    {
        ::unlink(temporary.c_str());
        return false;
    }
    if (auto fault = s_saveFault.load())
        fault(temporary.c_str());
    // The folder is not synced after the rename: a power loss may then bring
    // back the old file, which is as consistent as the new one, and saving
    // stays a single disk flush.
    if (::rename(temporary.c_str(), path.c_str()) != 0)
    {
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}
} // namespace

CString MCGetPreferencesPath()
{
    const std::string path = PreferencesPath();
    return CString::FromUtf8(path.c_str(), static_cast<int>(path.size()));
}

int LoadIntPreference(const CString &section, const CString &key, int defaultValue)
{
    const std::string path = PreferencesPath();
    if (path.empty())
        return defaultValue;

    Cache &cache = TheCache();
    std::lock_guard<std::mutex> guard(cache.lock);
    FileStamp stamp;
    if (!StampOf(path, stamp))
    {
        cache.valid = false;
        return defaultValue;
    }
    if (!cache.valid || cache.path != path || !(cache.stamp == stamp))
    {
        cache.valid = false;
        if (cache.file.Load(path) != MCIniFile::ok)
            return defaultValue;
        cache.path = path;
        cache.stamp = stamp;
        cache.valid = true;
    }
    const std::string *text = cache.file.Find(section.ToUtf8(), key.ToUtf8());
    int value = defaultValue;
    if (text == nullptr || !ParseInt(*text, value))
        return defaultValue;
    return value;
}

BOOL SaveIntPreference(const CString &section, const CString &key, int value)
{
    const std::string sectionName = section.ToUtf8();
    const std::string keyName = key.ToUtf8();
    if (!MCIniFile::IsValidSectionName(sectionName) || !MCIniFile::IsValidKeyName(keyName))
        return FALSE;
    const CString folder = MCGetUserFolder();
    const std::string path = PreferencesPath();
    if (path.empty() || !MCCreateFolder(folder))
        return FALSE;

    Cache &cache = TheCache();
    std::lock_guard<std::mutex> guard(cache.lock);
    FolderLock folderLock(folder.ToUtf8());

    // Read afresh under the lock: another process may have saved since our
    // last load.
    MCIniFile file;
    const MCIniFile::Status status = file.Load(path);
    if (status == MCIniFile::unreadable)
        return FALSE;
    const std::string text = std::to_string(value);
    const std::string *old = file.Find(sectionName, keyName);
    if (old == nullptr || *old != text)
    {
        if (!file.Set(sectionName, keyName, text))
            return FALSE;
        // Keep the permissions the user gave the file.
        mode_t mode = 0666;
        struct stat st;
        if (status == MCIniFile::ok && ::stat(path.c_str(), &st) == 0)
            mode = st.st_mode & 0777;
        if (!ReplaceFile(path, file.Serialize(), mode))
            return FALSE;
    }
    FileStamp stamp;
    cache.valid = StampOf(path, stamp);
    if (cache.valid)
    {
        cache.path = path;
        cache.stamp = stamp;
        cache.file = std::move(file);
    }
    return TRUE;
}

void MCSetPreferenceSaveFault(void (*fault)(const char *temporaryPath))
{
    s_saveFault.store(fault);
}
