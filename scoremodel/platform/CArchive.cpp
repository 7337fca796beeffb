#include <scoremodel/platform/CArchive.h>

#include <algorithm>
#include <climits>
#include <string>
#include <unordered_set>

namespace
{
// Windows-1252 for 0x80..0x9F; every other byte is its own code point. The
// five bytes the code page leaves undefined map to the C1 controls, as the
// platform's own conversion does.
constexpr wchar_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Strings are read in pieces of this many bytes, so a length from the stream
// never sizes an allocation before its bytes have arrived.
constexpr size_t kStringChunk = 16384;

std::string PrintableName(const char *p, size_t n)
{
    std::string s;
    for (size_t i = 0; i < n; ++i)
        s.push_back(p[i] >= 0x20 && p[i] < 0x7F ? p[i] : '?');
    return s;
}

// Makes room for one more element, growing geometrically.
template <typename V>
void ReserveOneMore(V &v)
{
    if (v.size() == v.capacity())
        v.reserve(std::max<size_t>(64, v.capacity() * 2));
}

// Restores a counter or the object schema when a Serialize returns or throws.
template <typename T>
class ValueScope
{
public:
    ValueScope(T &slot, T value) : m_slot(slot), m_saved(slot) { slot = value; }
    ~ValueScope() { m_slot = m_saved; }
    ValueScope(const ValueScope &) = delete;
    ValueScope &operator=(const ValueScope &) = delete;

private:
    T &m_slot;
    T m_saved;
};
} // namespace

// ---- Pointer map ------------------------------------------------------------

namespace
{
inline size_t HashPointer(const void *p)
{
    // Pointers are aligned and clustered; a multiplicative mix spreads the
    // high bits, which the mask then takes from the top.
    std::uint64_t x = reinterpret_cast<std::uintptr_t>(p);
    x ^= x >> 29;
    x *= 0xBF58476D1CE4E5B9ull;
    x ^= x >> 32;
    return static_cast<size_t>(x);
}
} // namespace

DWORD CArchive::PointerMap::Lookup(const void *key) const
{
    if (!m_slots)
        return 0;
    for (size_t i = HashPointer(key) & m_mask;; i = (i + 1) & m_mask)
    {
        const Slot &s = m_slots[i];
        if (s.key == key)
            return s.value;
        if (!s.key)
            return 0;
    }
}

void CArchive::PointerMap::Set(const void *key, DWORD value)
{
    // At most half full, so probes stay short.
    if (!m_slots || (m_count + 1) * 2 > m_mask + 1)
        Rehash(m_slots ? (m_mask + 1) * 2 : 256);
    for (size_t i = HashPointer(key) & m_mask;; i = (i + 1) & m_mask)
    {
        Slot &s = m_slots[i];
        if (s.key == key)
        {
            s.value = value;
            return;
        }
        if (!s.key)
        {
            s.key = key;
            s.value = value;
            ++m_count;
            return;
        }
    }
}

void CArchive::PointerMap::Reserve(size_t nEntries)
{
    size_t n = 256;
    while (n < nEntries * 2)
        n *= 2;
    if (!m_slots || n > m_mask + 1)
        Rehash(n);
}

void CArchive::PointerMap::Rehash(size_t nSlots)
{
    std::unique_ptr<Slot[]> old = std::move(m_slots);
    const size_t oldSize = old ? m_mask + 1 : 0;
    m_slots.reset(new Slot[nSlots]());
    m_mask = nSlots - 1;
    for (size_t j = 0; j < oldSize; ++j)
    {
        if (!old[j].key)
            continue;
        size_t i = HashPointer(old[j].key) & m_mask;
        while (m_slots[i].key)
            i = (i + 1) & m_mask;
        m_slots[i] = old[j];
    }
}

// ---- Construction and state -------------------------------------------------

CArchive::CArchive(CFile *pFile, UINT nMode, int nBufSize, void *lpBuf) : m_pFile(pFile), m_nMode(nMode)
{
    if (!pFile)
        throw CInvalidArgException("CArchive needs a file");
    if (lpBuf && nBufSize < 128)
        throw CInvalidArgException("CArchive needs a buffer of at least 128 bytes");
    m_nBufSize = static_cast<size_t>(std::max(nBufSize, 128));
    if (lpBuf)
        m_lpBufStart = static_cast<BYTE *>(lpBuf);
    else
    {
        m_ownBuffer.reset(new BYTE[m_nBufSize]);
        m_lpBufStart = m_ownBuffer.get();
    }

    if (IsStoring())
    {
        m_pWCur = m_lpBufStart;
        m_pWEnd = m_lpBufStart + m_nBufSize;
    }
    else
    {
        m_pRCur = m_pREnd = m_lpBufStart;
        // A file without a length (a pipe) throws here; sizes can't be
        // checked against it then, and strings are read piece by piece.
        try
        {
            const ULONGLONG len = pFile->GetLength();
            const ULONGLONG pos = pFile->GetPosition();
            m_nFileLeft = len > pos ? len - pos : 0;
            m_bLengthKnown = true;
        }
        catch (const CFileException &)
        {
            m_bLengthKnown = false;
        }
        m_loadArray.push_back(LoadEntry{nullptr, nullptr, 0, false});
    }
}

CArchive::~CArchive()
{
    if (m_pFile && !(m_nMode & bNoFlushOnDelete))
    {
        try
        {
            Close();
        }
        catch (...)
        {
            // A destructor can't report; Close does.
        }
    }
}

ULONGLONG CArchive::GetBytesRemaining() const
{
    if (!m_bLengthKnown)
        return unknownLength;
    return static_cast<ULONGLONG>(m_pREnd - m_pRCur) + m_nFileLeft;
}

void CArchive::Flush()
{
    if (!m_pFile)
        return;
    if (IsStoring())
    {
        FlushBuffer();
        return;
    }
    const size_t unread = static_cast<size_t>(m_pREnd - m_pRCur);
    if (unread && m_bLengthKnown)
    {
        m_pFile->Seek(-static_cast<LONGLONG>(unread), CFile::current);
        m_nFileLeft += unread;
    }
    m_pRCur = m_pREnd = m_lpBufStart;
}

void CArchive::Close()
{
    if (!m_pFile)
        return;
    Flush();
    Abort();
}

void CArchive::Abort()
{
    m_pFile = nullptr;
    m_pWCur = m_pWEnd = nullptr;
    m_pRCur = m_pREnd = nullptr;
}

void CArchive::CheckStoring() const
{
    if (!m_pFile)
        throw CArchiveException(CArchiveException::genericException, "the archive is closed");
    if (IsLoading())
        throw CArchiveException(CArchiveException::readOnly, "write to an archive opened for loading");
}

void CArchive::CheckLoading() const
{
    if (!m_pFile)
        throw CArchiveException(CArchiveException::genericException, "the archive is closed");
    if (IsStoring())
        throw CArchiveException(CArchiveException::writeOnly, "read from an archive opened for storing");
}

void CArchive::CheckAvailable(ULONGLONG n) const
{
    if (m_bLengthKnown && n > GetBytesRemaining())
        throw CArchiveException(CArchiveException::endOfFile,
                                std::to_string(n) + " bytes wanted, " + std::to_string(GetBytesRemaining()) + " left");
}

// ---- Buffering --------------------------------------------------------------

void CArchive::FlushBuffer()
{
    if (m_pWCur > m_lpBufStart)
    {
        const UINT n = static_cast<UINT>(m_pWCur - m_lpBufStart);
        m_pWCur = m_lpBufStart;
        m_pFile->Write(m_lpBufStart, n);
    }
}

BYTE *CArchive::MakeRoom(size_t)
{
    CheckStoring();
    FlushBuffer();
    return m_pWCur;
}

void CArchive::FillBuffer(size_t n)
{
    size_t avail = static_cast<size_t>(m_pREnd - m_pRCur);
    if (avail >= n)
        return;
    if (avail && m_pRCur != m_lpBufStart)
        std::memmove(m_lpBufStart, m_pRCur, avail);
    m_pRCur = m_lpBufStart;
    m_pREnd = m_lpBufStart + avail;
    while (avail < n)
    {
        size_t want = m_nBufSize - avail;
        if (m_bLengthKnown)
        {
            if (m_nFileLeft == 0)
                break;
            want = static_cast<size_t>(std::min<ULONGLONG>(want, m_nFileLeft));
        }
        const UINT got = m_pFile->Read(m_lpBufStart + avail, static_cast<UINT>(want));
        if (m_bLengthKnown)
            m_nFileLeft = got < want ? 0 : m_nFileLeft - got; // a short read is the real end
        if (got == 0)
            break;
        avail += got;
        m_pREnd += got;
    }
    if (avail < n)
        throw CArchiveException(CArchiveException::endOfFile);
}

const BYTE *CArchive::MakeAvailable(size_t n)
{
    CheckLoading();
    FillBuffer(n);
    return m_pRCur;
}

UINT CArchive::Read(void *lpBuf, UINT nMax)
{
    if (nMax == 0)
        return 0;
    CheckLoading();
    if (!lpBuf)
        throw CInvalidArgException("CArchive::Read into a null buffer");
    CheckAvailable(nMax);
    BYTE *dst = static_cast<BYTE *>(lpBuf);
    size_t left = nMax;
    const size_t take = std::min(left, static_cast<size_t>(m_pREnd - m_pRCur));
    std::memcpy(dst, m_pRCur, take);
    m_pRCur += take;
    dst += take;
    left -= take;
    if (left >= m_nBufSize)
    {
        // A big block skips the buffer.
        const UINT got = m_pFile->Read(dst, static_cast<UINT>(left));
        if (m_bLengthKnown)
            m_nFileLeft = got < left ? 0 : m_nFileLeft - got;
        if (got < left)
            throw CArchiveException(CArchiveException::endOfFile);
    }
    else if (left)
    {
        FillBuffer(left);
        std::memcpy(dst, m_pRCur, left);
        m_pRCur += left;
    }
    return nMax;
}

void CArchive::Write(const void *lpBuf, UINT nMax)
{
    if (nMax == 0)
        return;
    CheckStoring();
    if (!lpBuf)
        throw CInvalidArgException("CArchive::Write from a null buffer");
    const BYTE *src = static_cast<const BYTE *>(lpBuf);
    size_t left = nMax;
    const size_t space = static_cast<size_t>(m_pWEnd - m_pWCur);
    if (left <= space)
    {
        std::memcpy(m_pWCur, src, left);
        m_pWCur += left;
        return;
    }
    std::memcpy(m_pWCur, src, space);
    m_pWCur += space;
    src += space;
    left -= space;
    FlushBuffer();
    if (left >= m_nBufSize)
        m_pFile->Write(src, static_cast<UINT>(left)); // a big block skips the buffer
    else
    {
        std::memcpy(m_pWCur, src, left);
        m_pWCur += left;
    }
}

// ---- Counts -------------------------------------------------------------------

void CArchive::WriteCount(DWORD_PTR dwCount)
{
    if (dwCount < 0xFFFF)
    {
        *this << static_cast<WORD>(dwCount);
        return;
    }
    *this << static_cast<WORD>(0xFFFF);
    if (dwCount < 0xFFFFFFFFu)
    {
        *this << static_cast<DWORD>(dwCount);
        return;
    }
    *this << static_cast<DWORD>(0xFFFFFFFFu);
    *this << static_cast<unsigned long long>(dwCount);
}

DWORD_PTR CArchive::ReadCount()
{
    WORD w;
    *this >> w;
    unsigned long long count = w;
    if (w == 0xFFFF)
    {
        DWORD dw;
        *this >> dw;
        count = dw;
        if (dw == 0xFFFFFFFFu)
            *this >> count;
    }
    CheckAvailable(count);
    return static_cast<DWORD_PTR>(count);
}

// ---- Strings ------------------------------------------------------------------

void AfxWriteStringLength(CArchive &ar, UINT_PTR nLength, BOOL bUnicode)
{
    if (bUnicode)
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFE);
    if (nLength < 0xFF)
        ar << static_cast<BYTE>(nLength);
    else if (nLength < 0xFFFE)
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(nLength);
    else if (nLength < 0xFFFFFFFFu)
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(nLength);
    else
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(0xFFFFFFFFu)
           << static_cast<unsigned long long>(nLength);
}

UINT_PTR AfxReadStringLength(CArchive &ar, int &nCharSize)
{
    nCharSize = 1;
    BYTE b;
    ar >> b;
    if (b < 0xFF)
        return b;
    WORD w;
    ar >> w;
    if (w == 0xFFFE)
    {
        // The wide-string marker; the length starts over.
        nCharSize = 2;
        ar >> b;
        if (b < 0xFF)
            return b;
        ar >> w;
    }
    if (w < 0xFFFF)
        return w;
    DWORD dw;
    ar >> dw;
    if (dw < 0xFFFFFFFFu)
        return dw;
    unsigned long long qw;
    ar >> qw;
    if (qw > static_cast<unsigned long long>(INT_MAX))
        throw CArchiveException(CArchiveException::genericException, "string longer than a string can be");
    return static_cast<UINT_PTR>(qw);
}

CArchive &CArchive::operator<<(const CString &str)
{
    const std::wstring &s = str.Str();
    UINT_PTR units = 0;
    for (wchar_t c : s)
    {
        const DWORD cp = static_cast<DWORD>(c);
        units += (cp >= 0x10000 && cp <= 0x10FFFF) ? 2 : 1;
    }
    AfxWriteStringLength(*this, units, TRUE);

    WORD chunk[1024];
    size_t k = 0;
    for (wchar_t c : s)
    {
        DWORD cp = static_cast<DWORD>(c);
        if (cp > 0x10FFFF)
            cp = 0xFFFD;
        if (cp >= 0x10000)
        {
            cp -= 0x10000;
            chunk[k++] = static_cast<WORD>(0xD800 + (cp >> 10));
            chunk[k++] = static_cast<WORD>(0xDC00 + (cp & 0x3FF));
        }
        else
            chunk[k++] = static_cast<WORD>(cp);
        if (k >= 1022)
        {
            Write(chunk, static_cast<UINT>(k * 2));
            k = 0;
        }
    }
    Write(chunk, static_cast<UINT>(k * 2));
    return *this;
}

CArchive &CArchive::operator<<(const CStringA &str)
{
    const std::string &s = str.Str();
    AfxWriteStringLength(*this, s.size(), FALSE);
    Write(s.data(), static_cast<UINT>(s.size()));
    return *this;
}

void CArchive::ReadStringBody(std::wstring &out, UINT_PTR nLength, int nCharSize)
{
    if (nLength > static_cast<UINT_PTR>(INT_MAX))
        throw CArchiveException(CArchiveException::genericException, "string longer than a string can be");
    CheckAvailable(static_cast<ULONGLONG>(nLength) * nCharSize);
    if (m_bLengthKnown)
        out.reserve(nLength); // checked against the bytes that are there
    BYTE chunk[kStringChunk];
    UINT_PTR left = nLength;
    if (nCharSize == 1)
    {
        while (left)
        {
            const size_t n = std::min<UINT_PTR>(left, sizeof chunk);
            Read(chunk, static_cast<UINT>(n));
            for (size_t i = 0; i < n; ++i)
            {
                const BYTE b = chunk[i];
                out.push_back(b >= 0x80 && b < 0xA0 ? kCp1252High[b - 0x80] : static_cast<wchar_t>(b));
            }
            left -= n;
        }
        return;
    }
    DWORD pendingHigh = 0; // a high surrogate whose partner may start the next piece
    while (left)
    {
        const size_t n = std::min<UINT_PTR>(left, sizeof chunk / 2);
        Read(chunk, static_cast<UINT>(n * 2));
        for (size_t i = 0; i < n; ++i)
        {
            const DWORD u = chunk[2 * i] | (static_cast<DWORD>(chunk[2 * i + 1]) << 8);
            if (pendingHigh)
            {
                if (u >= 0xDC00 && u <= 0xDFFF)
                {
                    out.push_back(static_cast<wchar_t>(0x10000 + ((pendingHigh - 0xD800) << 10) + (u - 0xDC00)));
                    pendingHigh = 0;
                    continue;
                }
                out.push_back(static_cast<wchar_t>(pendingHigh));
                pendingHigh = 0;
            }
            if (u >= 0xD800 && u <= 0xDBFF)
                pendingHigh = u;
            else
                out.push_back(static_cast<wchar_t>(u));
        }
        left -= n;
    }
    if (pendingHigh)
        out.push_back(static_cast<wchar_t>(pendingHigh));
}

void CArchive::ReadNarrowBody(std::string &out, UINT_PTR nLength)
{
    if (nLength > static_cast<UINT_PTR>(INT_MAX))
        throw CArchiveException(CArchiveException::genericException, "string longer than a string can be");
    CheckAvailable(nLength);
    UINT_PTR left = nLength;
    if (m_bLengthKnown)
    {
        out.resize(nLength);
        Read(out.data(), static_cast<UINT>(nLength));
        return;
    }
    char chunk[kStringChunk];
    while (left)
    {
        const size_t n = std::min<UINT_PTR>(left, sizeof chunk);
        Read(chunk, static_cast<UINT>(n));
        out.append(chunk, n);
        left -= n;
    }
}

CArchive &CArchive::operator>>(CString &str)
{
    int nCharSize;
    const UINT_PTR n = AfxReadStringLength(*this, nCharSize);
    std::wstring s;
    ReadStringBody(s, n, nCharSize);
    str = CString(std::wstring_view(s));
    return *this;
}

CArchive &CArchive::operator>>(CStringA &str)
{
    int nCharSize;
    const UINT_PTR n = AfxReadStringLength(*this, nCharSize);
    if (nCharSize == 1)
    {
        std::string s;
        ReadNarrowBody(s, n);
        str = CStringA(std::string_view(s));
        return *this;
    }
    std::wstring s;
    ReadStringBody(s, n, nCharSize);
    str = CStringA(CString(std::wstring_view(s)));
    return *this;
}

// ---- Objects ------------------------------------------------------------------

void CArchive::CheckCount() const
{
    if (m_nMapCount >= nMaxMapCount)
        throw CArchiveException(CArchiveException::badIndex, "too many objects in one archive");
}

void CArchive::WriteIndex(DWORD nIndex, DWORD dwClassBit)
{
    if (nIndex < wBigObjectTag)
        *this << static_cast<WORD>(nIndex | (dwClassBit >> 16));
    else
        *this << wBigObjectTag << (nIndex | dwClassBit);
}

void CArchive::MapObject(const CObject *pOb)
{
    if (!pOb)
        return;
    CheckCount();
    if (IsStoring())
        m_storeMap.Set(pOb, m_nMapCount++);
    else
    {
        m_loadArray.push_back(LoadEntry{const_cast<CObject *>(pOb), pOb->GetRuntimeClass(), 0, false});
        ++m_nMapCount;
    }
}

void CArchive::WriteClass(const CRuntimeClass *pClassRef)
{
    CheckStoring();
    if (!pClassRef || !pClassRef->m_lpszClassName)
        throw CArchiveException(CArchiveException::badClass, "no class to write");
    if ((pClassRef->m_wSchema & ~VERSIONABLE_SCHEMA) == 0xFFFF)
        throw CNotSupportedException(std::string("class ") + pClassRef->m_lpszClassName + " is not serializable");

    if (const DWORD nClassIndex = m_storeMap.Lookup(pClassRef))
    {
        WriteIndex(nClassIndex, dwBigClassTag);
        return;
    }
    const size_t nLen = std::strlen(pClassRef->m_lpszClassName);
    if (nLen > nMaxClassNameLength)
        throw CArchiveException(CArchiveException::badClass,
                                std::string("class name too long for the format: ") + pClassRef->m_lpszClassName);
    CheckCount();
    *this << wNewClassTag << static_cast<WORD>(pClassRef->m_wSchema) << static_cast<WORD>(nLen);
    Write(pClassRef->m_lpszClassName, static_cast<UINT>(nLen));
    m_storeMap.Set(pClassRef, m_nMapCount++);
}

void CArchive::WriteObject(const CObject *pOb)
{
    CheckStoring();
    if (!pOb)
    {
        *this << wNullTag;
        return;
    }
    if (const DWORD nObIndex = m_storeMap.Lookup(pOb))
    {
        WriteIndex(nObIndex, 0);
        return;
    }
    WriteClass(pOb->GetRuntimeClass());
    CheckCount();
    // Entered before its Serialize, so references back to it from inside
    // (a cycle) are written as references.
    m_storeMap.Set(pOb, m_nMapCount++);
    const_cast<CObject *>(pOb)->Serialize(*this);
}

CRuntimeClass *CArchive::LoadClassRecord(UINT *pSchema)
{
    WORD wSchema, nLen;
    *this >> wSchema >> nLen;
    if (nLen > nMaxClassNameLength)
        throw CArchiveException(CArchiveException::badClass, "class name of " + std::to_string(nLen) + " bytes");
    char szClassName[nMaxClassNameLength + 1];
    Read(szClassName, nLen);
    szClassName[nLen] = '\0';
    CRuntimeClass *pClassRef = std::memchr(szClassName, 0, nLen) ? nullptr : CRuntimeClass::FromName(szClassName);
    if (!pClassRef)
        throw CArchiveException(CArchiveException::badClass, "unknown class " + PrintableName(szClassName, nLen));
    if ((pClassRef->m_wSchema & ~VERSIONABLE_SCHEMA) == 0xFFFF || !pClassRef->m_pfnCreateObject)
        throw CArchiveException(CArchiveException::badClass,
                                std::string("class ") + pClassRef->m_lpszClassName + " can't be loaded");
    if ((pClassRef->m_wSchema & ~VERSIONABLE_SCHEMA) != wSchema && !(pClassRef->m_wSchema & VERSIONABLE_SCHEMA))
        throw CArchiveException(CArchiveException::badSchema, std::string("class ") + pClassRef->m_lpszClassName +
                                                                   " stored with schema " + std::to_string(wSchema));
    *pSchema = wSchema;
    return pClassRef;
}

CRuntimeClass *CArchive::ReadClass(const CRuntimeClass *pClassRefRequested, UINT *pSchema, DWORD *pObTag)
{
    CheckLoading();
    WORD wTag;
    *this >> wTag;
    DWORD obTag;
    if (wTag == wBigObjectTag)
        *this >> obTag;
    else
        obTag = (static_cast<DWORD>(wTag & wClassTag) << 16) | (wTag & ~wClassTag);

    if (!(obTag & dwBigClassTag))
    {
        if (!pObTag)
            throw CArchiveException(CArchiveException::badIndex, "an object reference where a class was expected");
        *pObTag = obTag;
        return nullptr;
    }

    CRuntimeClass *pClassRef;
    UINT nSchema;
    if (wTag == wNewClassTag)
    {
        pClassRef = LoadClassRecord(&nSchema);
        CheckCount();
        m_loadArray.push_back(LoadEntry{pClassRef, pClassRef, nSchema, true});
        ++m_nMapCount;
    }
    else
    {
        const DWORD nClassIndex = obTag & ~dwBigClassTag;
        if (nClassIndex == 0 || nClassIndex >= m_loadArray.size() || !m_loadArray[nClassIndex].bClass)
            throw CArchiveException(CArchiveException::badIndex, "class index " + std::to_string(nClassIndex));
        pClassRef = static_cast<CRuntimeClass *>(m_loadArray[nClassIndex].p);
        nSchema = m_loadArray[nClassIndex].nSchema;
    }

    if (pClassRefRequested && !pClassRef->IsDerivedFrom(pClassRefRequested))
        throw CArchiveException(CArchiveException::badClass, std::string(pClassRef->m_lpszClassName) + " is not a " +
                                                                 (pClassRefRequested->m_lpszClassName
                                                                      ? pClassRefRequested->m_lpszClassName
                                                                      : "?"));
    if (pSchema)
        *pSchema = nSchema;
    else
        m_nObjectSchema = nSchema;
    if (pObTag)
        *pObTag = obTag;
    return pClassRef;
}

void CArchive::SerializeClass(const CRuntimeClass *pClassRef)
{
    if (IsStoring())
        WriteClass(pClassRef);
    else
        ReadClass(pClassRef);
}

CObject *CArchive::ReadObject(const CRuntimeClass *pClassRefRequested)
{
    CheckLoading();
    UINT nSchema;
    DWORD obTag;
    CRuntimeClass *pClassRef = ReadClass(pClassRefRequested, &nSchema, &obTag);

    if (!pClassRef)
    {
        if (obTag >= m_loadArray.size() || m_loadArray[obTag].bClass) [[unlikely]]
            throw CArchiveException(CArchiveException::badIndex, "object index " + std::to_string(obTag));
        const LoadEntry &entry = m_loadArray[obTag];
        CObject *pOb = static_cast<CObject *>(entry.p);
        if (pOb && pClassRefRequested && entry.pClass != pClassRefRequested &&
            !entry.pClass->IsDerivedFrom(pClassRefRequested))
            throw CArchiveException(CArchiveException::badClass, "a reference to an object of another class");
        return pOb;
    }

    if (m_loading.size() >= m_nMaxDepth)
        throw CArchiveException(CArchiveException::genericException, "objects nested too deeply");
    CheckCount();
    // Room first, so that an object once made is always in both lists.
    ReserveOneMore(m_loadArray);
    ReserveOneMore(m_loadedObjects);
    CObject *pOb = pClassRef->CreateObject();
    if (!pOb)
        throw CArchiveException(CArchiveException::badClass,
                                std::string("class ") + pClassRef->m_lpszClassName + " can't be created");
    m_loadedObjects.push_back(pOb);
    // Entered before its Serialize, so a reference back to it from inside
    // (a cycle) finds it.
    m_loadArray.push_back(LoadEntry{pOb, pClassRef, 0, false});
    ++m_nMapCount;

    ValueScope<UINT> schema(m_nObjectSchema, nSchema);
    m_loading.push_back(pOb);
    struct Leave
    {
        std::vector<const CObject *> &loading;
        ~Leave() { loading.pop_back(); }
    } leave{m_loading};
    pOb->Serialize(*this);
    return pOb;
}

BOOL CArchive::IsLoadingObject(const CObject *pOb) const
{
    return pOb && std::find(m_loading.rbegin(), m_loading.rend(), pOb) != m_loading.rend();
}

void CArchive::ForgetLoadedObjects(size_t nFirst)
{
    if (nFirst >= m_loadedObjects.size())
        return;
    // Their entries are the newest of the load map, so the search from the
    // end is short.
    const std::unordered_set<const void *> gone(m_loadedObjects.begin() + nFirst, m_loadedObjects.end());
    size_t left = gone.size();
    for (size_t i = m_loadArray.size(); left && i-- > 1;)
        if (!m_loadArray[i].bClass && gone.count(m_loadArray[i].p))
        {
            m_loadArray[i].p = nullptr;
            --left;
        }
    m_loadedObjects.resize(nFirst);
}

UINT CArchive::GetObjectSchema()
{
    const UINT n = m_nObjectSchema;
    m_nObjectSchema = (UINT)-1;
    return n;
}

void CArchive::SetStoreParams(UINT nHashSize, UINT)
{
    if (IsStoring())
        m_storeMap.Reserve(nHashSize);
}

void CArchive::SetLoadParams(UINT nGrowBy)
{
    if (IsLoading())
    {
        m_loadArray.reserve(m_loadArray.size() + nGrowBy);
        m_loadedObjects.reserve(m_loadedObjects.size() + nGrowBy);
    }
}

// ---- Free operators -------------------------------------------------------------

CArchive &operator<<(CArchive &ar, const CObject *pOb)
{
    ar.WriteObject(pOb);
    return ar;
}

CArchive &operator>>(CArchive &ar, CObject *&pOb)
{
    pOb = ar.ReadObject(nullptr);
    return ar;
}

CArchive &operator>>(CArchive &ar, const CObject *&pOb)
{
    pOb = ar.ReadObject(nullptr);
    return ar;
}

CObject *AfxReadObjectOfClass(CArchive &ar, CRuntimeClass *pClassRefRequested)
{
    return ar.ReadObject(pClassRefRequested);
}
