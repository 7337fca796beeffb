#include <scoremodel/document/MCDocumentFile.h>

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>
#include <vector>

const BYTE MCDocumentFile::kTag[8] = {0x89, 'S', 'M', 'D', 0x0D, 0x0A, 0x1A, 0x0A};

namespace
{
// Large enough that a file is read and written in few system calls.
constexpr int kArchiveBuffer = 1 << 16;
// The load's maps are sized for one object per this many bytes, up to a cap.
constexpr ULONGLONG kBytesPerObjectHint = 16;
constexpr ULONGLONG kMaxObjectsHint = 1 << 24;

std::string WithPlace(const std::string &problem, const std::string &path, ULONGLONG offset)
{
    std::string s = path.empty() ? std::string("document") : path;
    s += ": " + problem;
    if (offset != MCDocumentException::unknownOffset)
        s += " (at byte " + std::to_string(offset) + ")";
    return s;
}

void PutLE(BYTE *p, ULONGLONG value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        p[i] = static_cast<BYTE>(value >> (8 * i));
}

ULONGLONG GetLE(const BYTE *p, int bytes)
{
    ULONGLONG value = 0;
    for (int i = bytes - 1; i >= 0; --i)
        value = (value << 8) | p[i];
    return value;
}

// Names a performance active for a scope and puts the previous one back.
class ActiveScope
{
public:
    explicit ActiveScope(ECPerformance *performance)
        : m_previous(ECPerformance::SetActivePerformance(performance))
    {
    }
    ~ActiveScope() { ECPerformance::SetActivePerformance(m_previous); }
    ActiveScope(const ActiveScope &) = delete;
    ActiveScope &operator=(const ActiveScope &) = delete;

private:
    ECPerformance *m_previous;
};

// Every event the archive made must hang below the root, and every other
// object must be an attachment of one of them: anything else would outlive
// the document (nothing holds it). The records refuse any link that would
// close a cycle while they are read (ECBase::CheckHeldWhileLoading), so an
// event with a parent, or held by a member of another, leads up to the root
// through its parents and holders; an event with neither does not. One pass
// over what was loaded, in the order it was made, which is close to the
// order of its memory.
void CheckTree(const std::vector<CObject *> &loaded, ECBase *root)
{
    auto refuse = [](const CObject *object, const char *problem) {
        throw CArchiveException(CArchiveException::genericException,
                                std::string("a ") + object->GetRuntimeClass()->m_lpszClassName + problem);
    };
    if (!root->GetParents()->IsEmpty())
        refuse(root, " is among its own descendants");

    std::vector<ECBase *> orphans; // no parent: held by a member, or outside the tree
    std::unordered_set<const CObject *> members;
    std::vector<CObject *> others;
    std::unordered_set<const CObject *> attached;
    auto addMembers = [&members](ECBase *event) {
        for (int i = 0; ECBase *member = event->GetMemberEvent(i); ++i)
            members.insert(member);
    };
    addMembers(root);
    constexpr size_t kAhead = 16; // objects whose memory is fetched ahead of the check
    for (size_t i = 0; i < loaded.size(); ++i)
    {
        if (i + kAhead < loaded.size())
            __builtin_prefetch(loaded[i + kAhead]);
        CObject *object = loaded[i];
        if (!object)
            continue;
        if (!object->IsKindOf(RUNTIME_CLASS(ECBase)))
        {
            others.push_back(object);
            continue;
        }
        auto *event = static_cast<ECBase *>(object);
        if (event->GetParents()->IsEmpty())
            orphans.push_back(event);
        addMembers(event);
        MCDataArray *data = event->GetData();
        for (int slot = 0; slot < data->GetSize(); ++slot)
            if (DCBase *attachment = data->GetAt(slot))
                attached.insert(attachment);
    }
    for (ECBase *event : orphans)
        if (!members.count(event))
            refuse(event, " outside the tree");
    // Records that come to own plain objects of their own will list their
    // classes here.
    for (CObject *object : others)
        if (!attached.count(object))
            refuse(object, " that no event holds");
}

// The post section's walk over a loaded tree meets an event once for every
// path that leads to it. A real document shares an event among a few parents
// (a note in its measure and its tuplet); a stream can describe levels of
// containers that all share all of their children, where the paths double at
// each level and the walk would not end. The load gives up past a budget of
// visits far above what any real document needs.
class LoadPostSerialize : public ACPostSerialize
{
public:
    static constexpr size_t kVisitsPerObject = 16;

    LoadPostSerialize(CArchive &ar, size_t objects) : ACPostSerialize(ar), m_budget(kVisitsPerObject * (objects + 1))
    {
    }

    using ACPostSerialize::Apply;
    int Apply(ECBase *e) override
    {
        if (++m_visits > m_budget)
        {
            m_exhausted = true;
            return ResultFailed;
        }
        return ACPostSerialize::Apply(e);
    }

    bool Exhausted() const { return m_exhausted; }

private:
    size_t m_budget;
    size_t m_visits = 0;
    bool m_exhausted = false;
};

// Releases a failed load: what the archive made and the performance.
void ReleaseFailedLoad(const CArchive &ar, ECPerformance *performance)
{
    std::vector<CObject *> objects = ar.GetLoadedObjects();
    objects.push_back(performance);
    ECBase::ReleaseLoadedObjects(objects);
    performance->Unref(1);
}

std::string PathOf(const CFile &file)
{
    return CStringA(file.GetFilePath()).GetString();
}

ULONGLONG LengthLeft(const CFile &file)
{
    try
    {
        const ULONGLONG length = file.GetLength();
        const ULONGLONG position = file.GetPosition();
        return length > position ? length - position : 0;
    }
    catch (const CFileException &)
    {
        return CArchive::unknownLength;
    }
}

// The path a save replaces: the file a symbolic link points to, not the link.
std::string SaveTarget(const char *path)
{
    struct stat st;
    if (::lstat(path, &st) == 0 && S_ISLNK(st.st_mode))
    {
        char *real = ::realpath(path, nullptr);
        if (real)
        {
            std::string resolved(real);
            std::free(real);
            return resolved;
        }
    }
    return path;
}

void SyncDirectoryOf(const std::string &path)
{
    const size_t slash = path.find_last_of('/');
    const std::string dir = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    const int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0)
    {
        // The rename is done; a directory that can't be synced (some file
        // systems refuse) loses nothing that is not already on its way.
        (void)::fsync(fd);
        ::close(fd);
    }
}
} // namespace

MCDocumentException::MCDocumentException(int cause, const std::string &problem, const std::string &path,
                                         ULONGLONG offset)
    : CArchiveException(cause), m_strProblem(problem), m_strPath(path), m_nOffset(offset)
{
    m_message = WithPlace(problem, path, offset);
}

// ---- The archive ----------------------------------------------------------------

void MCDocumentFile::StoreArchive(CArchive &ar, ECPerformance *performance)
{
    if (!performance)
        throw CInvalidArgException("MCDocumentFile: no performance to store");
    ActiveScope active(performance);
    ar.MapObject(performance);
    performance->Serialize(ar);
    ACPostSerialize post(ar);
    post.Apply(performance);
}

void MCDocumentFile::LoadArchive(CArchive &ar, ECPerformance *performance, int version)
{
    if (!performance)
        throw CInvalidArgException("MCDocumentFile: no performance to load into");
    ActiveScope active(performance);
    performance->SetVersion(version);
    ar.MapObject(performance);
    performance->Serialize(ar);
    // Checked before the post section walks it.
    CheckTree(ar.GetLoadedObjects(), performance);
    const size_t made = ar.GetLoadedObjects().size();
    LoadPostSerialize post(ar, made);
    if (post.Apply(performance) == ACBase::ResultFailed)
        throw CArchiveException(CArchiveException::genericException,
                                post.Exhausted() ? "events are shared along too many paths"
                                                 : "the tree nests too deeply");
    // The post section only links what the tree section made; anything new
    // there would belong to nobody.
    if (ar.GetLoadedObjects().size() != made)
        throw CArchiveException(CArchiveException::genericException,
                                std::string("a ") + ar.GetLoadedObjects()[made]->GetRuntimeClass()->m_lpszClassName +
                                    " made by the post section");
}

// ---- Open files -------------------------------------------------------------------

void MCDocumentFile::Write(CFile &file, ECPerformance *performance)
{
    const ULONGLONG start = file.GetPosition();
    BYTE header[kHeaderSize] = {};
    std::memcpy(header, kTag, sizeof kTag);
    PutLE(header + 8, static_cast<ULONGLONG>(kVersion), 4);
    file.Write(header, kHeaderSize);
    {
        CArchive ar(&file, CArchive::store | CArchive::bNoFlushOnDelete, kArchiveBuffer);
        StoreArchive(ar, performance);
        ar.Close();
    }
    // The length goes in last, so a file cut short anywhere never claims
    // more than it holds.
    const ULONGLONG end = file.GetPosition();
    PutLE(header + 12, end - start - kHeaderSize, 8);
    file.Seek(static_cast<LONGLONG>(start + 12), CFile::begin);
    file.Write(header + 12, 8);
    file.Seek(static_cast<LONGLONG>(end), CFile::begin);
}

ECPerformance *MCDocumentFile::Read(CFile &file, int *version)
{
    const std::string path = PathOf(file);
    ULONGLONG start = 0;
    try
    {
        start = file.GetPosition();
    }
    catch (const CFileException &)
    {
        start = MCDocumentException::unknownOffset; // a pipe: no offsets to tell
    }
    auto at = [start](ULONGLONG offset) {
        return start == MCDocumentException::unknownOffset ? MCDocumentException::unknownOffset : start + offset;
    };

    BYTE header[kHeaderSize];
    const UINT got = file.Read(header, kHeaderSize);
    const UINT tagBytes = got < sizeof kTag ? got : static_cast<UINT>(sizeof kTag);
    if (std::memcmp(header, kTag, tagBytes) != 0 || got == 0)
        throw MCDocumentException(CArchiveException::badClass, "not a scoremodel document (no document tag)", path,
                                  at(0));
    if (got < kHeaderSize)
        throw MCDocumentException(CArchiveException::endOfFile,
                                  "truncated: the header has " + std::to_string(got) + " of its " +
                                      std::to_string(kHeaderSize) + " bytes",
                                  path, at(got));
    const LONG fileVersion = static_cast<LONG>(GetLE(header + 8, 4));
    if (fileVersion < 0 || fileVersion > kVersion)
        throw MCDocumentException(CArchiveException::badSchema,
                                  "document version " + std::to_string(fileVersion) + " (this library reads 0 to " +
                                      std::to_string(kVersion) + ")",
                                  path, at(8));
    const ULONGLONG length = GetLE(header + 12, 8);
    const ULONGLONG left = LengthLeft(file);
    if (left != CArchive::unknownLength && left != length)
        throw MCDocumentException(left < length ? CArchiveException::endOfFile : CArchiveException::genericException,
                                  left < length ? "truncated: the archive has " + std::to_string(left) + " of its " +
                                                      std::to_string(length) + " bytes"
                                                : std::to_string(left - length) +
                                                      " bytes past the end of the document",
                                  path, at(kHeaderSize + std::min(left, length)));

    auto *performance = new ECPerformance;
    performance->Ref();
    CArchive ar(&file, CArchive::load | CArchive::bNoFlushOnDelete, kArchiveBuffer);
    // Room for the objects a document of this length usually holds (an event
    // takes about twenty bytes), so that a large load does not copy its maps
    // over and over as they grow. Only a length the file confirmed counts.
    if (left != CArchive::unknownLength)
        ar.SetLoadParams(static_cast<UINT>(std::min<ULONGLONG>(length / kBytesPerObjectHint, kMaxObjectsHint)));
    auto fail = [&](int cause, const std::string &problem) {
        const ULONGLONG remaining = ar.GetBytesRemaining();
        const ULONGLONG offset =
            remaining == CArchive::unknownLength || remaining > length ? MCDocumentException::unknownOffset
                                                                        : at(kHeaderSize + length - remaining);
        ReleaseFailedLoad(ar, performance);
        return MCDocumentException(cause, "corrupt document: " + problem, path, offset);
    };
    try
    {
        LoadArchive(ar, performance, static_cast<int>(fileVersion));
        const ULONGLONG remaining = ar.GetBytesRemaining();
        if (remaining != 0 && remaining != CArchive::unknownLength)
            throw CArchiveException(CArchiveException::genericException,
                                    std::to_string(remaining) + " bytes the document does not use");
    }
    catch (const CArchiveException &e)
    {
        throw fail(e.m_cause, e.what());
    }
    catch (const CInvalidArgException &e)
    {
        // A record's index or value out of range: the stream is at fault.
        throw fail(CArchiveException::genericException, e.what());
    }
    catch (const CNotSupportedException &e)
    {
        throw fail(CArchiveException::genericException, e.what());
    }
    catch (...)
    {
        ReleaseFailedLoad(ar, performance);
        throw;
    }
    ar.Close();
    if (version)
        *version = static_cast<int>(fileVersion);
    return performance;
}

// ---- Files by path ----------------------------------------------------------------

void MCDocumentFile::Save(ECPerformance *performance, const char *path)
{
    if (!performance || !path || !*path)
        throw CInvalidArgException("MCDocumentFile::Save needs a performance and a path");
    const std::string target = SaveTarget(path);
    struct stat st;
    const bool replacing = ::stat(target.c_str(), &st) == 0;

    // A name of its own for each save, beside the target so that the rename
    // stays on one file system. The file is made exclusively and a link is
    // never followed: whatever already stands at the name (a leftover, or a
    // link planted by someone else) is left alone and the next name tried.
    static std::atomic<unsigned> s_counter{0};
    // The temporary file is the save's own affair: a failure names the
    // target the caller asked for.
    const auto onTarget = [&target](const CFileException &e) {
        return CFileException(e.m_cause, e.m_lOsError, target);
    };
    std::string temp;
    int fd = -1;
    for (int attempt = 0; fd < 0; ++attempt)
    {
        temp = target + ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(++s_counter);
        fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (fd < 0 && (errno != EEXIST || attempt >= 100))
        {
            const int err = errno;
            throw CFileException(CFileException::OsErrorToCause(err), err, target);
        }
    }
    CFile file(fd);
    try
    {
        if (replacing)
            (void)::fchmod(file.m_hFile, st.st_mode & 07777);
        Write(file, performance);
        file.Flush();
        file.Close();
        if (::rename(temp.c_str(), target.c_str()) != 0)
        {
            const int err = errno;
            throw CFileException(CFileException::OsErrorToCause(err), err, target);
        }
    }
    catch (const CFileException &e)
    {
        file.Abort();
        ::unlink(temp.c_str());
        throw onTarget(e);
    }
    catch (...)
    {
        file.Abort();
        ::unlink(temp.c_str());
        throw;
    }
    SyncDirectoryOf(target);
}

ECPerformance *MCDocumentFile::Load(const char *path)
{
    if (!path || !*path)
        throw CInvalidArgException("MCDocumentFile::Load needs a path");
    CFile file(path, CFile::modeRead);
    return Read(file);
}
