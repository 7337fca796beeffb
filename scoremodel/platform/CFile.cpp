#include <scoremodel/platform/CFile.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

// ---- CFile ------------------------------------------------------------------

CFile::CFile() : m_hFile(hFileNull), m_nOpenFlags(0), m_bCloseOnDelete(false)
{
}

CFile::CFile(int hFile) : m_hFile(hFile), m_nOpenFlags(modeReadWrite), m_bCloseOnDelete(false)
{
}

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags) : CFile()
{
    CFileException error(CFileException::none, 0, std::string());
    if (!Open(lpszFileName, nOpenFlags, &error))
        throw error;
}

CFile::CFile(LPCSTR lpszFileName, UINT nOpenFlags) : CFile()
{
    CFileException error(CFileException::none, 0, std::string());
    if (!Open(lpszFileName, nOpenFlags, &error))
        throw error;
}

CFile::~CFile()
{
    if (m_hFile != hFileNull && m_bCloseOnDelete)
        Abort();
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException *pError)
{
    const CStringA name(lpszFileName ? lpszFileName : L"");
    return Open(name.GetString(), nOpenFlags, pError);
}

BOOL CFile::Open(LPCSTR lpszFileName, UINT nOpenFlags, CFileException *pError)
{
    const std::string name = lpszFileName ? lpszFileName : "";
    auto fail = [&](int cause, int osError) {
        if (pError)
            *pError = CFileException(cause, osError, name);
        return FALSE;
    };
    if (m_hFile != hFileNull)
        return fail(CFileException::genericException, 0);
    if (name.empty())
        return fail(CFileException::badPath, ENOENT);

    int flags = O_CLOEXEC;
    switch (nOpenFlags & 3)
    {
    case modeRead: flags |= O_RDONLY; break;
    case modeWrite: flags |= O_WRONLY; break;
    case modeReadWrite: flags |= O_RDWR; break;
    default: return fail(CFileException::genericException, EINVAL);
    }
    if (nOpenFlags & modeCreate)
    {
        flags |= O_CREAT;
        if (!(nOpenFlags & modeNoTruncate))
            flags |= O_TRUNC;
    }
    if (nOpenFlags & osWriteThrough)
        flags |= O_DSYNC;

    int fd;
    do
        fd = ::open(name.c_str(), flags, 0666);
    while (fd < 0 && errno == EINTR);
    if (fd < 0)
    {
        const int err = errno;
        return fail(CFileException::OsErrorToCause(err), err);
    }
    struct stat st;
    if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode))
    {
        ::close(fd);
        return fail(CFileException::accessDenied, EISDIR);
    }
    m_hFile = fd;
    m_strFileName = name;
    m_nOpenFlags = nOpenFlags;
    m_bCloseOnDelete = true;
    return TRUE;
}

void CFile::Close()
{
    if (m_hFile == hFileNull)
        return;
    const int fd = m_hFile;
    m_hFile = hFileNull;
    m_bCloseOnDelete = false;
    // A close interrupted by a signal has released the descriptor on Linux;
    // retrying could close someone else's.
    if (::close(fd) != 0 && errno != EINTR)
        ThrowOsError(errno);
}

void CFile::Abort()
{
    if (m_hFile == hFileNull)
        return;
    ::close(m_hFile);
    m_hFile = hFileNull;
    m_bCloseOnDelete = false;
}

CString CFile::GetFilePath() const
{
    return CString::FromUtf8(m_strFileName.c_str(), (int)m_strFileName.size());
}

CString CFile::GetFileName() const
{
    const size_t slash = m_strFileName.find_last_of('/');
    const std::string leaf = slash == std::string::npos ? m_strFileName : m_strFileName.substr(slash + 1);
    return CString::FromUtf8(leaf.c_str(), (int)leaf.size());
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom)
{
    if (m_hFile == hFileNull)
        ThrowCause(CFileException::invalidFile);
    int whence;
    switch (nFrom)
    {
    case begin: whence = SEEK_SET; break;
    case current: whence = SEEK_CUR; break;
    case end: whence = SEEK_END; break;
    default: ThrowCause(CFileException::badSeek);
    }
    const off_t pos = ::lseek(m_hFile, (off_t)lOff, whence);
    if (pos < 0)
        ThrowOsError(errno);
    return (ULONGLONG)pos;
}

ULONGLONG CFile::GetPosition() const
{
    if (m_hFile == hFileNull)
        ThrowCause(CFileException::invalidFile);
    const off_t pos = ::lseek(m_hFile, 0, SEEK_CUR);
    if (pos < 0)
        ThrowOsError(errno);
    return (ULONGLONG)pos;
}

ULONGLONG CFile::GetLength() const
{
    if (m_hFile == hFileNull)
        ThrowCause(CFileException::invalidFile);
    struct stat st;
    if (::fstat(m_hFile, &st) != 0)
        ThrowOsError(errno);
    // Only regular files and block devices have a length worth trusting; a
    // pipe reports 0 however much is still to come.
    if (S_ISREG(st.st_mode))
        return (ULONGLONG)st.st_size;
    if (S_ISBLK(st.st_mode))
    {
        const off_t here = ::lseek(m_hFile, 0, SEEK_CUR);
        const off_t last = here < 0 ? -1 : ::lseek(m_hFile, 0, SEEK_END);
        if (last >= 0 && ::lseek(m_hFile, here, SEEK_SET) >= 0)
            return (ULONGLONG)last;
    }
    ThrowCause(CFileException::badSeek);
}

void CFile::SetLength(ULONGLONG dwNewLen)
{
    if (m_hFile == hFileNull)
        ThrowCause(CFileException::invalidFile);
    int rc;
    do
        rc = ::ftruncate(m_hFile, (off_t)dwNewLen);
    while (rc != 0 && errno == EINTR);
    if (rc != 0)
        ThrowOsError(errno);
}

UINT CFile::Read(void *lpBuf, UINT nCount)
{
    if (m_hFile == hFileNull)
        ThrowCause(CFileException::invalidFile);
    if (nCount == 0)
        return 0;
    if (!lpBuf)
        throw CInvalidArgException("CFile::Read into a null buffer");
    if ((m_nOpenFlags & 3) == modeWrite)
        ThrowCause(CFileException::accessDenied);
    BYTE *p = static_cast<BYTE *>(lpBuf);
    UINT done = 0;
    while (done < nCount)
    {
        const ssize_t n = ::read(m_hFile, p + done, nCount - done);
        if (n < 0)
        {
            if (errno == EINTR)
                continue;
            ThrowOsError(errno);
        }
        if (n == 0)
            break;
        done += (UINT)n;
    }
    return done;
}

void CFile::Write(const void *lpBuf, UINT nCount)
{
    if (m_hFile == hFileNull)
        ThrowCause(CFileException::invalidFile);
    if (nCount == 0)
        return;
    if (!lpBuf)
        throw CInvalidArgException("CFile::Write from a null buffer");
    if ((m_nOpenFlags & 3) == modeRead)
        ThrowCause(CFileException::accessDenied);
    const BYTE *p = static_cast<const BYTE *>(lpBuf);
    UINT done = 0;
    while (done < nCount)
    {
        const ssize_t n = ::write(m_hFile, p + done, nCount - done);
        if (n < 0)
        {
            if (errno == EINTR)
                continue;
            ThrowOsError(errno);
        }
        if (n == 0)
            ThrowCause(CFileException::diskFull);
        done += (UINT)n;
    }
}

void CFile::Flush()
{
    if (m_hFile == hFileNull || (m_nOpenFlags & 3) == modeRead)
        return;
    if (::fsync(m_hFile) != 0 && errno != EINVAL && errno != EROFS)
        ThrowOsError(errno);
}

void CFile::ThrowOsError(int osError) const
{
    throw CFileException(CFileException::OsErrorToCause(osError), osError, m_strFileName);
}

void CFile::ThrowCause(int cause) const
{
    throw CFileException(cause, 0, m_strFileName);
}

// ---- CMemFile ---------------------------------------------------------------

CMemFile::CMemFile(UINT nGrowBytes)
    : m_lpBuffer(nullptr), m_nBufferSize(0), m_nFileSize(0), m_nPosition(0), m_nGrowBytes(nGrowBytes ? nGrowBytes : 1024),
      m_bAutoDelete(true), m_bReadOnly(false)
{
    m_nOpenFlags = modeReadWrite;
}

CMemFile::CMemFile(BYTE *lpBuffer, UINT nBufferSize, UINT nGrowBytes) : CMemFile()
{
    Attach(lpBuffer, nBufferSize, nGrowBytes);
}

CMemFile::CMemFile(const BYTE *lpBuffer, UINT nBufferSize) : CMemFile()
{
    Attach(lpBuffer, nBufferSize);
}

CMemFile::~CMemFile()
{
    Close();
}

void CMemFile::Attach(BYTE *lpBuffer, UINT nBufferSize, UINT nGrowBytes)
{
    Close();
    if (!lpBuffer && nBufferSize)
        throw CInvalidArgException("CMemFile::Attach of a null buffer");
    m_lpBuffer = lpBuffer;
    m_nBufferSize = nBufferSize;
    m_nFileSize = nGrowBytes == 0 ? nBufferSize : 0;
    m_nPosition = 0;
    m_nGrowBytes = nGrowBytes;
    m_bAutoDelete = false;
    m_bReadOnly = false;
}

void CMemFile::Attach(const BYTE *lpBuffer, UINT nBufferSize)
{
    // The buffer is never written through this file: every write path checks
    // m_bReadOnly first.
    Attach(const_cast<BYTE *>(lpBuffer), nBufferSize, 0);
    m_bReadOnly = true;
}

BYTE *CMemFile::Detach()
{
    BYTE *p = m_lpBuffer;
    m_lpBuffer = nullptr;
    m_nBufferSize = m_nFileSize = m_nPosition = 0;
    m_bAutoDelete = true;
    m_bReadOnly = false;
    if (!m_nGrowBytes)
        m_nGrowBytes = 1024;
    return p;
}

void CMemFile::Close()
{
    if (m_bAutoDelete)
        std::free(m_lpBuffer);
    Detach();
}

ULONGLONG CMemFile::Seek(LONGLONG lOff, UINT nFrom)
{
    LONGLONG base;
    switch (nFrom)
    {
    case begin: base = 0; break;
    case current: base = (LONGLONG)m_nPosition; break;
    case end: base = (LONGLONG)m_nFileSize; break;
    default: ThrowCause(CFileException::badSeek);
    }
    LONGLONG pos;
    if (__builtin_add_overflow(base, lOff, &pos) || pos < 0)
        ThrowCause(CFileException::badSeek);
    m_nPosition = (size_t)pos;
    return (ULONGLONG)pos;
}

void CMemFile::SetLength(ULONGLONG dwNewLen)
{
    if (m_bReadOnly)
        ThrowCause(CFileException::accessDenied);
    if (dwNewLen > (ULONGLONG)SIZE_MAX / 2)
        ThrowCause(CFileException::diskFull);
    const size_t n = (size_t)dwNewLen;
    if (n > m_nBufferSize)
        GrowFile(n);
    if (n > m_nFileSize)
        std::memset(m_lpBuffer + m_nFileSize, 0, n - m_nFileSize);
    m_nFileSize = n;
}

UINT CMemFile::Read(void *lpBuf, UINT nCount)
{
    if (nCount == 0 || m_nPosition >= m_nFileSize)
        return 0;
    if (!lpBuf)
        throw CInvalidArgException("CMemFile::Read into a null buffer");
    const size_t n = std::min<size_t>(nCount, m_nFileSize - m_nPosition);
    std::memcpy(lpBuf, m_lpBuffer + m_nPosition, n);
    m_nPosition += n;
    return (UINT)n;
}

void CMemFile::Write(const void *lpBuf, UINT nCount)
{
    if (m_bReadOnly)
        ThrowCause(CFileException::accessDenied);
    if (nCount == 0)
        return;
    if (!lpBuf)
        throw CInvalidArgException("CMemFile::Write from a null buffer");
    const size_t end = m_nPosition + nCount;
    if (end > m_nBufferSize)
        GrowFile(end);
    // A write after a seek past the end leaves no stale bytes in the gap.
    if (m_nPosition > m_nFileSize)
        std::memset(m_lpBuffer + m_nFileSize, 0, m_nPosition - m_nFileSize);
    std::memcpy(m_lpBuffer + m_nPosition, lpBuf, nCount);
    m_nPosition = end;
    if (end > m_nFileSize)
        m_nFileSize = end;
}

void CMemFile::GrowFile(size_t nNewSize)
{
    if (nNewSize <= m_nBufferSize)
        return;
    if (m_nGrowBytes == 0 || nNewSize > SIZE_MAX / 4)
        ThrowCause(CFileException::diskFull);
    // Doubling keeps a long run of small writes linear in total; nGrowBytes
    // is the smallest step, as the platform's callers expect.
    size_t size = std::max({nNewSize, m_nBufferSize * 2, m_nBufferSize + m_nGrowBytes});
    size = (size + m_nGrowBytes - 1) / m_nGrowBytes * m_nGrowBytes;
    BYTE *p;
    if (m_bAutoDelete)
    {
        p = static_cast<BYTE *>(std::realloc(m_lpBuffer, size));
        if (!p)
            throw std::bad_alloc();
    }
    else
    {
        p = static_cast<BYTE *>(std::malloc(size));
        if (!p)
            throw std::bad_alloc();
        if (m_nFileSize)
            std::memcpy(p, m_lpBuffer, m_nFileSize);
        m_bAutoDelete = true;
    }
    m_lpBuffer = p;
    m_nBufferSize = size;
}
