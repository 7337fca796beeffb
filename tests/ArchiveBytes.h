// Byte-level helpers of the archive tests: store into a memory file and take
// the bytes, load bytes back, and name the cause of a failure.
#pragma once

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

#include <functional>
#include <initializer_list>
#include <cstring>
#include <memory>
#include <vector>

namespace archive_bytes
{
using Bytes = std::vector<BYTE>;

// Closes the archive before taking the bytes, so Close must flush, and the
// archive's own destructor then closes a second time.
inline Bytes Store(const std::function<void(CArchive &)> &write, int nBufSize = 4096)
{
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store, nBufSize);
        write(ar);
        ar.Close();
    }
    Bytes out(static_cast<size_t>(mem.GetLength()));
    mem.SeekToBegin();
    if (!out.empty())
        mem.Read(out.data(), static_cast<UINT>(out.size()));
    return out;
}

// A memory file that, like a pipe, cannot tell its length, so the archive
// cannot check counts against the bytes left.
class StreamFile : public CMemFile
{
public:
    using CMemFile::CMemFile;
    ULONGLONG GetLength() const override { throw CFileException(CFileException::badSeek, 0, "stream"); }
};

// Loads through a read-only attached buffer, then frees whatever the archive
// created, whether read succeeded or threw.
inline void Load(const Bytes &bytes, const std::function<void(CArchive &)> &read, int nBufSize = 4096,
                 bool bLengthKnown = true)
{
    static const BYTE kNothing = 0;
    const BYTE *p = bytes.empty() ? &kNothing : bytes.data();
    const UINT n = static_cast<UINT>(bytes.size());
    std::unique_ptr<CMemFile> mem = bLengthKnown ? std::make_unique<CMemFile>(p, n) : std::make_unique<StreamFile>(p, n);
    CArchive ar(mem.get(), CArchive::load, nBufSize);
    struct FreeLoaded
    {
        CArchive &ar;
        ~FreeLoaded()
        {
            for (CObject *o : ar.GetLoadedObjects())
                delete o;
        }
    } freeLoaded{ar};
    read(ar);
}

// A 32-bit value as the archive stores it (little-endian).
inline Bytes Le32(int value)
{
    Bytes out(4);
    std::memcpy(out.data(), &value, 4);
    return out;
}

// Loads as a document of `version` would, for the scope's duration.
class VersionScope
{
public:
    explicit VersionScope(int version)
    {
        s_version = version;
        m_previous = SetActiveArchiveVersionSource([] { return s_version; });
    }
    ~VersionScope() { SetActiveArchiveVersionSource(m_previous); }
    VersionScope(const VersionScope &) = delete;
    VersionScope &operator=(const VersionScope &) = delete;

private:
    static inline int s_version = 0;
    ARCHIVEVERSIONFUNC m_previous;
};

inline Bytes Concat(std::initializer_list<Bytes> parts)
{
    Bytes out;
    for (const Bytes &p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

// What CauseOf gives for a refused operation rather than a bad stream.
inline constexpr int kNotSupported = -2;

// The cause of the archive exception f throws, or -1 when it throws nothing.
inline int CauseOf(const std::function<void()> &f)
{
    try
    {
        f();
    }
    catch (const CArchiveException &e)
    {
        return e.m_cause;
    }
    catch (const CNotSupportedException &)
    {
        return kNotSupported;
    }
    return -1;
}
} // namespace archive_bytes
