// CArchive: the platform's binary object archive, byte for byte, so that a
// document written elsewhere in this format loads here and the other way
// round.
//
// An archive wraps a CFile for one direction: `store` writes, `load` reads.
// Fields go through the stream operators, little-endian with fixed widths:
//
//   BYTE, char, signed char, bool      1 byte (bool loads as "not zero")
//   WORD, short                        2 bytes
//   DWORD, UINT, LONG, int, float      4 bytes
//   long, unsigned long                4 bytes, as the platform's long is
//   double, long long, ULONGLONG       8 bytes
//   CString                            UTF-16 with the wide-string marker
//   CStringA                           its bytes, in the narrow form
//
// Objects go through WriteObject/ReadObject (or `ar << pOb`, `ar >> pOb`):
// the first time an object is written its class record (by name and schema)
// and its own Serialize follow; later it is written as a back reference, so
// shared and cyclic graphs come back as one object each. Classes and objects
// share one index space that starts at 1 and is handed out in the order the
// stream meets them, which is why a reader must take exactly the same steps
// as the writer (including every MapObject).
//
// Tags of the format (a WORD each, in front of an object):
//   0x0000                    null pointer
//   0xFFFF + class record     a new class, its object follows
//                             (class record: WORD schema, WORD name length,
//                             the ASCII name)
//   0x8000 | index            a class seen before, its object follows
//   index                     an object seen before
//   0x7FFF + DWORD            an index above 0x7FFE; a class index carries
//                             0x80000000 in the DWORD
//
// Loading untrusted bytes: every failure is a CArchiveException (a short
// stream gives `endOfFile`), never a crash. When the file's length is known
// (a regular file or a CMemFile), counts and string lengths are checked
// against the bytes that are left before anything is reserved; when it is
// not (a pipe), strings grow only as their bytes arrive. Nested objects are
// limited in depth (SetMaxObjectDepth) so a hostile stream can't exhaust the
// stack.
//
// Ownership on load: the archive creates objects but never owns or frees
// them. If a load fails half-way, GetLoadedObjects() lists every object the
// archive created during this load, in creation order, so the caller can
// release the half-built graph (events by their reference counts, plain
// objects by delete). Objects entered with MapObject are not in that list.
//
// Thread-safety: an archive, like its file, is used by one thread at a time.
//
//     CMemFile mem;
//     {
//         CArchive ar(&mem, CArchive::store);
//         ar << pShape;                       // WriteObject
//     }                                       // flushed at destruction
//     mem.SeekToBegin();
//     CArchive ar(&mem, CArchive::load);
//     CShape *pLoaded = nullptr;              // a DECLARE_SERIAL class
//     try { ar >> pLoaded; }                  // ReadObject(RUNTIME_CLASS(CShape))
//     catch (const CArchiveException &) { /* release ar.GetLoadedObjects() */ }
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CFile.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/Types.h>

#include <bit>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

static_assert(std::endian::native == std::endian::little,
              "the archive copies scalars in memory order, which is little-endian on every supported target");

class SCOREMODEL_API CArchive
{
public:
    // Modes, combined with |: store or load, and bNoFlushOnDelete to keep
    // the destructor from writing out a storing archive's buffer.
    enum Mode : UINT
    {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2,
        bNoByteSwap = 4
    };

    // The format's tags (see the header comment).
    static constexpr WORD wNullTag = 0;
    static constexpr WORD wNewClassTag = 0xFFFF;
    static constexpr WORD wClassTag = 0x8000;
    static constexpr DWORD dwBigClassTag = 0x80000000u;
    static constexpr WORD wBigObjectTag = 0x7FFF;
    // The most indices (classes plus objects) one archive hands out.
    static constexpr DWORD nMaxMapCount = 0x3FFFFFFE;
    // The longest class name the format carries; longer names can't be read
    // back, so they aren't written either.
    static constexpr UINT nMaxClassNameLength = 63;
    static constexpr UINT nDefaultMaxObjectDepth = 1024;
    // GetBytesRemaining when the file has no length.
    static constexpr ULONGLONG unknownLength = ~0ull;

    // An archive over pFile, which must stay open while the archive is. A
    // loading archive starts at the file's position. nBufSize is the size of
    // the buffer (at least 128); lpBuf lends one instead of allocating it.
    // Throws CInvalidArgException for a null file or a too small lent buffer.
    CArchive(CFile *pFile, UINT nMode, int nBufSize = 4096, void *lpBuf = nullptr);
    CArchive(const CArchive &) = delete;
    CArchive &operator=(const CArchive &) = delete;
    // Closes the archive (a storing one writes out its buffer unless
    // bNoFlushOnDelete is set). Errors are swallowed here; call Close to see them.
    ~CArchive();

    // ---- State --------------------------------------------------------------

    BOOL IsLoading() const { return (m_nMode & load) != 0; }
    BOOL IsStoring() const { return (m_nMode & load) == 0; }
    BOOL IsByteSwapping() const { return FALSE; }
    // True when a loading archive has no unread bytes buffered.
    BOOL IsBufferEmpty() const { return m_pRCur == m_pREnd; }
    CFile *GetFile() const { return m_pFile; }
    // Loading: the bytes not yet read (buffered plus still in the file), or
    // unknownLength when the file has no length.
    ULONGLONG GetBytesRemaining() const;

    // Storing: writes the buffer to the file. Loading: gives back the unread
    // buffered bytes by seeking the file back (when it can), so the file's
    // position is where reading stopped.
    void Flush();
    // Flushes and detaches from the file; later use throws. Closing twice does
    // nothing. The file itself stays open.
    void Close();
    // Detaches from the file without writing anything; never throws.
    void Abort();

    // ---- Raw blocks ---------------------------------------------------------

    // Reads exactly nMax bytes and returns nMax. A stream that ends sooner
    // throws CArchiveException endOfFile: a short raw block is corruption,
    // not a result to check.
    UINT Read(void *lpBuf, UINT nMax);
    void Write(const void *lpBuf, UINT nMax);

    // ---- Counts -------------------------------------------------------------

    // A WORD below 0xFFFF; else 0xFFFF and a DWORD below 0xFFFFFFFF; else
    // 0xFFFF, 0xFFFFFFFF and a 64-bit count.
    void WriteCount(DWORD_PTR dwCount);
    // Reads a count. Every counted element takes at least one byte, so a
    // count above GetBytesRemaining() throws endOfFile before any caller
    // reserves room for it.
    DWORD_PTR ReadCount();

    // ---- Scalars ------------------------------------------------------------

    CArchive &operator<<(BYTE by) { return Put(by); }
    CArchive &operator<<(char ch) { return Put(ch); }
    CArchive &operator<<(signed char ch) { return Put(ch); }
    CArchive &operator<<(bool b) { return Put(static_cast<BYTE>(b ? 1 : 0)); }
    CArchive &operator<<(WORD w) { return Put(w); }
    CArchive &operator<<(short w) { return Put(w); }
    CArchive &operator<<(DWORD dw) { return Put(dw); }
    CArchive &operator<<(LONG l) { return Put(l); }
    CArchive &operator<<(long l) { return Put(static_cast<LONG>(l)); }
    CArchive &operator<<(unsigned long dw) { return Put(static_cast<DWORD>(dw)); }
    CArchive &operator<<(long long dw) { return Put(dw); }
    CArchive &operator<<(unsigned long long dw) { return Put(dw); }
    CArchive &operator<<(float f) { return Put(f); }
    CArchive &operator<<(double d) { return Put(d); }
    // A wide character has no fixed width in the format; write a CString.
    CArchive &operator<<(wchar_t) = delete;
    // Any pointer but an object's would otherwise be written as a bool.
    template <typename T>
        requires(!std::is_base_of_v<CObject, T>)
    CArchive &operator<<(const T *) = delete;

    CArchive &operator>>(BYTE &by) { return Get(by); }
    CArchive &operator>>(char &ch) { return Get(ch); }
    CArchive &operator>>(signed char &ch) { return Get(ch); }
    CArchive &operator>>(bool &b)
    {
        BYTE by;
        Get(by);
        b = by != 0;
        return *this;
    }
    CArchive &operator>>(WORD &w) { return Get(w); }
    CArchive &operator>>(short &w) { return Get(w); }
    CArchive &operator>>(DWORD &dw) { return Get(dw); }
    CArchive &operator>>(LONG &l) { return Get(l); }
    CArchive &operator>>(long &l)
    {
        LONG v;
        Get(v);
        l = v;
        return *this;
    }
    CArchive &operator>>(unsigned long &dw)
    {
        DWORD v;
        Get(v);
        dw = v;
        return *this;
    }
    CArchive &operator>>(long long &dw) { return Get(dw); }
    CArchive &operator>>(unsigned long long &dw) { return Get(dw); }
    CArchive &operator>>(float &f) { return Get(f); }
    CArchive &operator>>(double &d) { return Get(d); }
    CArchive &operator>>(wchar_t &) = delete;

    // ---- Strings ------------------------------------------------------------

    // A CString is stored wide: 0xFF, the WORD 0xFFFE, the length in UTF-16
    // units (see AfxWriteStringLength), then the units. Characters beyond
    // U+FFFF become surrogate pairs; values that are no character become
    // U+FFFD.
    CArchive &operator<<(const CString &str);
    // A CStringA is stored narrow: the length, then its bytes unchanged.
    CArchive &operator<<(const CStringA &str);
    // Reads either form. A narrow string becomes one character per byte
    // (Windows-1252, which is what narrow text from the platform is); a wide
    // one is decoded from UTF-16, keeping a lone surrogate as its value.
    CArchive &operator>>(CString &str);
    // Reads either form. A narrow string's bytes are taken unchanged; a wide
    // one is converted to UTF-8.
    CArchive &operator>>(CStringA &str);

    // ---- Objects ------------------------------------------------------------

    // Writes a null tag, a back reference, or the class and the object with
    // its Serialize. The object is entered in the map before its Serialize
    // runs, so references back to it from inside are written as references.
    // Throws CNotSupportedException for a class that is not serializable
    // (schema 0xFFFF), as the platform does.
    void WriteObject(const CObject *pOb);
    // Reads what WriteObject wrote: null, an object read before, or a new
    // object made by its class's CreateObject and filled by its Serialize
    // (with GetObjectSchema giving the stored schema). Throws
    // CArchiveException: badClass for an unknown class, a class that can't be
    // created, or one not derived from pClassRefRequested (null accepts any);
    // badSchema for a stored schema that differs from a class that is not
    // VERSIONABLE_SCHEMA; badIndex for a reference to nothing read yet or to
    // the wrong kind of entry; endOfFile for a short stream; genericException
    // for objects nested deeper than the limit.
    CObject *ReadObject(const CRuntimeClass *pClassRefRequested);

    // Writes a class tag (a new class record or a back reference to one).
    void WriteClass(const CRuntimeClass *pClassRef);
    // Reads a class tag. With pObTag given, an object tag is not an error:
    // the result is null and *pObTag holds the object's index. The stored
    // schema goes to *pSchema, or, without it, to GetObjectSchema.
    CRuntimeClass *ReadClass(const CRuntimeClass *pClassRefRequested = nullptr, UINT *pSchema = nullptr,
                             DWORD *pObTag = nullptr);
    // WriteClass when storing, ReadClass when loading.
    void SerializeClass(const CRuntimeClass *pClassRef);

    // Enters an object in the map without writing or reading anything, so
    // that later references to it are back references. A document root that
    // is saved by calling its own Serialize is entered this way first, on
    // both sides, at the same point of the stream. Each call takes an index,
    // even for an object mapped before. A null pointer does nothing.
    void MapObject(const CObject *pOb);

    // The schema stored with the object being loaded; only meaningful inside
    // its Serialize, and only once: the value is then reset to (UINT)-1.
    UINT GetObjectSchema();
    void SetObjectSchema(UINT nSchema) { m_nObjectSchema = nSchema; }

    // Loading: every object this archive created, in creation order,
    // including those whose Serialize threw. The archive never frees them.
    const std::vector<CObject *> &GetLoadedObjects() const { return m_loadedObjects; }
    // Loading: for a loader that destroys what it has just read. The objects
    // created since GetLoadedObjects() had nFirst entries leave that list, and
    // later references to them read as null instead of leading to freed
    // memory.
    void ForgetLoadedObjects(size_t nFirst);
    // Loading: whether pOb is an object ReadObject made whose Serialize is
    // still running, so that a reference to it read now comes from inside
    // its own record. Cheap: it looks only at the objects being read, one
    // per level of nesting.
    BOOL IsLoadingObject(const CObject *pOb) const;

    // The deepest nesting of objects a load accepts (each ReadObject of a new
    // object inside another's Serialize is one level).
    void SetMaxObjectDepth(UINT nDepth) { m_nMaxDepth = nDepth; }
    UINT GetMaxObjectDepth() const { return m_nMaxDepth; }

    // Sizing hints for the object maps: expected entries.
    void SetStoreParams(UINT nHashSize = 2053, UINT nBlockSize = 128);
    void SetLoadParams(UINT nGrowBy = 1024);

private:
    // Open-addressing map from an object or class pointer to its index; keys
    // are never null. Lookup is one hash and a short linear probe.
    class PointerMap
    {
    public:
        // The index stored for key, or 0.
        DWORD Lookup(const void *key) const;
        // Stores or replaces key's index.
        void Set(const void *key, DWORD value);
        void Reserve(size_t nEntries);

    private:
        struct Slot
        {
            const void *key;
            DWORD value;
        };
        void Rehash(size_t nSlots);
        std::unique_ptr<Slot[]> m_slots;
        size_t m_mask = 0;
        size_t m_count = 0;
    };

    // One entry of the load map: index 0 is null, then classes and objects
    // in stream order.
    // An object's entry keeps its class, so that checking a back reference
    // doesn't touch the object itself (a cache miss per reference otherwise).
    struct LoadEntry
    {
        void *p;
        const CRuntimeClass *pClass; // objects: the object's class
        UINT nSchema;                // classes: the schema stored with the class
        bool bClass;
    };

    // The fast paths: one compare and a copy while the buffer has room. In
    // the wrong mode the pointers for that direction are null, so the slow
    // path runs and throws. The slow path hands back the cursor, so that the
    // cursor stays in a register across a run of fields instead of making a
    // round trip through memory for each one.
    template <typename T>
    CArchive &Put(T v)
    {
        BYTE *cur = m_pWCur;
        if (static_cast<size_t>(m_pWEnd - cur) < sizeof(T)) [[unlikely]]
            cur = MakeRoom(sizeof(T));
        std::memcpy(cur, &v, sizeof(T));
        m_pWCur = cur + sizeof(T);
        return *this;
    }
    template <typename T>
    CArchive &Get(T &v)
    {
        const BYTE *cur = m_pRCur;
        if (static_cast<size_t>(m_pREnd - cur) < sizeof(T)) [[unlikely]]
            cur = MakeAvailable(sizeof(T));
        std::memcpy(&v, cur, sizeof(T));
        m_pRCur = cur + sizeof(T);
        return *this;
    }

    // Empties the buffer into the file and returns the write cursor.
    BYTE *MakeRoom(size_t n);
    // Fills the buffer with at least n bytes and returns the read cursor.
    const BYTE *MakeAvailable(size_t n);
    void CheckStoring() const;
    void CheckLoading() const;
    void FlushBuffer();
    // Makes at least n (<= buffer size) bytes available or throws endOfFile.
    void FillBuffer(size_t n);
    // Throws endOfFile when the file's length is known and fewer than n bytes are left.
    void CheckAvailable(ULONGLONG n) const;
    void CheckCount() const;
    void WriteIndex(DWORD nIndex, DWORD dwClassBit);
    CRuntimeClass *LoadClassRecord(UINT *pSchema);
    // Reads nLength characters of nCharSize bytes as code points (narrow:
    // Windows-1252; wide: UTF-16).
    void ReadStringBody(std::wstring &out, UINT_PTR nLength, int nCharSize);
    void ReadNarrowBody(std::string &out, UINT_PTR nLength);

    CFile *m_pFile;
    UINT m_nMode;
    std::unique_ptr<BYTE[]> m_ownBuffer;
    BYTE *m_lpBufStart;
    size_t m_nBufSize;
    // Storing: the free part of the buffer. Null when loading.
    BYTE *m_pWCur = nullptr;
    BYTE *m_pWEnd = nullptr;
    // Loading: the unread part of the buffer. Null when storing.
    const BYTE *m_pRCur = nullptr;
    const BYTE *m_pREnd = nullptr;
    bool m_bLengthKnown = false;
    ULONGLONG m_nFileLeft = 0; // bytes in the file not yet buffered

    DWORD m_nMapCount = 1; // the next index to hand out
    PointerMap m_storeMap;
    std::vector<LoadEntry> m_loadArray;
    std::vector<CObject *> m_loadedObjects;
    UINT m_nObjectSchema = (UINT)-1;
    // Loading: the objects whose Serialize is running, outermost first.
    std::vector<const CObject *> m_loading;
    UINT m_nMaxDepth = nDefaultMaxObjectDepth;
};

// The platform's string length prefix. Unicode adds the marker 0xFF 0xFFFE.
// Then: a BYTE below 0xFF; else 0xFF and a WORD below 0xFFFE; else 0xFF,
// 0xFFFF and a DWORD below 0xFFFFFFFF; else 0xFF, 0xFFFF, 0xFFFFFFFF and a
// 64-bit length.
SCOREMODEL_API void AfxWriteStringLength(CArchive &ar, UINT_PTR nLength, BOOL bUnicode);
// Reads a length prefix; nCharSize becomes 1 (narrow) or 2 (wide). A length
// above INT_MAX throws CArchiveException genericException.
SCOREMODEL_API UINT_PTR AfxReadStringLength(CArchive &ar, int &nCharSize);

// `ar << pOb` is WriteObject; `ar >> pOb` is ReadObject of any class. The
// typed `ar >> pNote` of a DECLARE_SERIAL class checks the class.
SCOREMODEL_API CArchive &operator<<(CArchive &ar, const CObject *pOb);
SCOREMODEL_API CArchive &operator>>(CArchive &ar, CObject *&pOb);
SCOREMODEL_API CArchive &operator>>(CArchive &ar, const CObject *&pOb);
