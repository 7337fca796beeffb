// Files with the platform's interface: `CFile` over an operating-system file
// and `CMemFile` over a block of memory. `CArchive` reads and writes through
// either.
//
// Both are binary and unbuffered: every Read and Write goes straight to the
// descriptor or the memory, so wrap them in a CArchive for many small fields.
// A file object is not thread-safe; one thread uses it at a time.
//
// Errors are thrown as CFileException with the cause that best matches the
// operating system's error (and `m_lOsError` holding errno). Reading past the
// end is not an error: Read returns the bytes that were there.
//
//     CFile file(L"/tmp/song.bin", CFile::modeCreate | CFile::modeWrite);
//     CArchive ar(&file, CArchive::store);
//     ...
//     ar.Close();
//     file.Close();
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/Types.h>

#include <string>

class SCOREMODEL_API CFile
{
public:
    // Open flags, combined with |. One of modeRead, modeWrite and
    // modeReadWrite; modeCreate makes the file (emptying an existing one unless
    // modeNoTruncate is given). The share flags are accepted and have no
    // effect: this system has no mandatory file locks. typeText and
    // typeBinary are the same here; no line ends are translated.
    enum OpenFlags : UINT
    {
        modeRead = 0x00000,
        modeWrite = 0x00001,
        modeReadWrite = 0x00002,
        shareCompat = 0x00000,
        shareExclusive = 0x00010,
        shareDenyWrite = 0x00020,
        shareDenyRead = 0x00030,
        shareDenyNone = 0x00040,
        modeNoInherit = 0x00080,
        modeCreate = 0x01000,
        modeNoTruncate = 0x02000,
        typeText = 0x04000,
        typeBinary = 0x08000,
        osNoBuffer = 0x10000,
        osWriteThrough = 0x20000,
        osRandomAccess = 0x40000,
        osSequentialScan = 0x80000,
    };

    enum SeekPosition : UINT
    {
        begin = 0,
        current = 1,
        end = 2
    };

    static constexpr int hFileNull = -1;

    // A closed file; Open it before use.
    CFile();
    // Wraps an open descriptor. The descriptor is closed by Close, but not by
    // the destructor, since the caller opened it.
    explicit CFile(int hFile);
    // Opens the file or throws CFileException. The name is a path in the
    // process's file system; a wide name is encoded as UTF-8.
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    CFile(LPCSTR lpszFileName, UINT nOpenFlags);
    CFile(const CFile &) = delete;
    CFile &operator=(const CFile &) = delete;
    // Closes a file this object opened, ignoring errors; call Close first to
    // see them.
    virtual ~CFile();

    // ---- Opening and closing ----------------------------------------------

    // Opens the file. Returns FALSE on failure and, when pError is given,
    // fills it with the cause. REQUIRES: the file is closed.
    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException *pError = nullptr);
    BOOL Open(LPCSTR lpszFileName, UINT nOpenFlags, CFileException *pError = nullptr);
    // Closes the file; throws CFileException if the system reports an error
    // (the file is closed all the same). Closing a closed file does nothing.
    virtual void Close();
    // Closes the file and ignores every error.
    virtual void Abort();
    BOOL IsOpen() const { return m_hFile != hFileNull; }

    // The path as given to Open, and its last component.
    CString GetFilePath() const;
    CString GetFileName() const;

    // ---- Position and length ----------------------------------------------

    // Moves the position and returns the new one. A position before the start
    // throws CFileException badSeek; one past the end is allowed (a write
    // there fills the gap with zeros).
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    void SeekToBegin() { Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }
    virtual ULONGLONG GetPosition() const;
    // The length in bytes. Throws CFileException when the file has no length
    // (a pipe or a terminal), which is how a reader learns that it can't
    // check sizes against it.
    virtual ULONGLONG GetLength() const;
    // Truncates or extends (with zeros) the file.
    virtual void SetLength(ULONGLONG dwNewLen);

    // ---- Data -------------------------------------------------------------

    // Reads up to nCount bytes at the position; returns how many were read,
    // fewer only at the end of the file.
    virtual UINT Read(void *lpBuf, UINT nCount);
    // Writes all nCount bytes or throws (diskFull, accessDenied, ...).
    virtual void Write(const void *lpBuf, UINT nCount);
    // Commits written data to the storage device.
    virtual void Flush();

    // The descriptor, or hFileNull when closed.
    int m_hFile;

protected:
    [[noreturn]] void ThrowOsError(int osError) const;
    [[noreturn]] void ThrowCause(int cause) const;

    std::string m_strFileName; // UTF-8
    UINT m_nOpenFlags;
    bool m_bCloseOnDelete;
};

// A file in memory: a growable block that the file owns, or a caller's
// buffer attached for reading (or for writing in place).
//
// A CMemFile made with the default constructor grows as it is written; the
// block grows geometrically (at least by nGrowBytes), so n writes cost O(n)
// in all. Detach hands the block to the caller.
//
//     CMemFile mem;                     // growable
//     { CArchive ar(&mem, CArchive::store); ar << x; }
//     mem.SeekToBegin();
//     { CArchive ar(&mem, CArchive::load); ar >> x; }
//
//     CMemFile in(bytes, size);         // read a const buffer in place
class SCOREMODEL_API CMemFile : public CFile
{
public:
    // An empty, growable file.
    explicit CMemFile(UINT nGrowBytes = 1024);
    // Attaches a caller's buffer (see Attach).
    CMemFile(BYTE *lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    // Attaches a caller's buffer for reading only (see Attach).
    CMemFile(const BYTE *lpBuffer, UINT nBufferSize);
    ~CMemFile() override;

    // Attaches a caller's buffer, which must outlive the attachment; the file
    // never frees it. With nGrowBytes 0 the file holds the buffer's nBufferSize
    // bytes, can be read and overwritten in place, and a write past its end
    // throws CFileException diskFull. With nGrowBytes above 0 the file starts
    // empty over the buffer and, once it outgrows it, moves into a block of
    // its own. Any block held before is released first.
    void Attach(BYTE *lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    // Attaches a caller's buffer of nBufferSize bytes for reading; a write
    // throws CFileException accessDenied.
    void Attach(const BYTE *lpBuffer, UINT nBufferSize);
    // Hands over the block and leaves the file empty and closed. A block the
    // file allocated is the caller's to release with free(); an attached
    // buffer is returned as it was given. Null when the file holds nothing.
    // The bytes are the first GetLength() of the block (read it first).
    BYTE *Detach();

    ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
    ULONGLONG GetPosition() const override { return m_nPosition; }
    ULONGLONG GetLength() const override { return m_nFileSize; }
    void SetLength(ULONGLONG dwNewLen) override;
    UINT Read(void *lpBuf, UINT nCount) override;
    void Write(const void *lpBuf, UINT nCount) override;
    // Nothing to commit; does nothing.
    void Flush() override {}
    // Releases a block the file allocated and leaves it empty; the file can be
    // written again afterwards.
    void Close() override;
    void Abort() override { Close(); }

private:
    // Makes room for nNewSize bytes, growing or moving the block.
    void GrowFile(size_t nNewSize);

    BYTE *m_lpBuffer;
    size_t m_nBufferSize; // bytes in the block
    size_t m_nFileSize;   // bytes that belong to the file
    size_t m_nPosition;
    UINT m_nGrowBytes;
    bool m_bAutoDelete; // the block came from malloc and is ours to free
    bool m_bReadOnly;
};
