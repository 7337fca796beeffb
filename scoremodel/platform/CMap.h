// Hash maps with the platform's interface: the CMap template, CMapPtrToPtr,
// CMapStringToPtr, and the typed pointer façade CTypedPtrMap.
//
// A CMap maps unique keys to values. Each association is a node of its own
// that never moves, so a reference to a value (operator[], PLookup) stays
// valid until that key is removed.
//
//     CMap<UINT, UINT, void *, void *> modules;
//     modules[7] = handle;                       // inserts or replaces
//     void *h;
//     if (modules.Lookup(7, h)) ...
//     POSITION pos = modules.GetStartPosition();
//     while (pos) {
//         UINT id; void *module;
//         modules.GetNextAssoc(pos, id, module);
//     }
//
// Iteration order is insertion order: GetStartPosition is the oldest key
// still present, and a key whose value is replaced keeps its place.
//
// Invalidation. A POSITION names the next association to be returned.
// - SetAt, operator[] and InitHashTable never invalidate a POSITION, a value
//   reference or a PLookup pair; a key added during a walk is appended and
//   the walk reaches it.
// - Removing the association that GetNextAssoc just returned is safe, so
//   "walk and remove what you do not want" works.
// - Removing the association a POSITION names (the next one), or RemoveAll,
//   invalidates that POSITION; using it afterwards is undefined.
//
// Complexity. Lookup, SetAt, operator[] and RemoveKey are O(1) on average;
// the bucket table doubles when the map holds more keys than buckets, in
// O(n), without touching the nodes. A walk is O(n).
//
// Hashing. HashKey<ARG_KEY>(key) gives the hash and CompareElements the
// equality; both are templates that a key type may specialise. Numbers,
// enums and pointers hash their value; char and wchar_t pointers, and
// CString/CStringA, hash and compare their text. A map with pointer-to-text
// keys stores the pointer, not a copy: the caller keeps the text alive.
//
// Threads. Not synchronised; the owner's lock guards a map.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/Types.h>

#include <cstring>
#include <cwchar>
#include <type_traits>
#include <utility>

// Throws CInvalidArgException for a null POSITION given to GetNextAssoc.
[[noreturn]] SCOREMODEL_API void CMapThrowNullPosition();

namespace CMapDetail
{
template <class T>
constexpr bool kIsTextPointer = std::is_pointer_v<T> &&
                                (std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, char> ||
                                 std::is_same_v<std::remove_cv_t<std::remove_pointer_t<T>>, wchar_t>);

template <class T>
constexpr bool kIsText = std::is_same_v<T, CString> || std::is_same_v<T, CStringA>;

// Spreads a value over 32 bits (Fibonacci hashing), so keys that differ only
// in their high or low bits (aligned pointers, small ids) still spread.
inline UINT MixBits(ULONGLONG value)
{
    return (UINT)((value * 0x9E3779B97F4A7C15ull) >> 32);
}

// FNV-1a over the characters; a null pointer hashes as the empty text.
template <class XCHAR>
UINT HashText(const XCHAR *psz)
{
    UINT nHash = 2166136261u;
    if (psz)
    {
        for (; *psz; psz++)
        {
            nHash ^= (UINT)(std::make_unsigned_t<XCHAR>)*psz;
            nHash *= 16777619u;
        }
    }
    return nHash;
}

} // namespace CMapDetail

// The hash of a key, as passed to the map (ARG_KEY).
template <class ARG_KEY>
inline UINT HashKey(ARG_KEY key)
{
    using K = std::remove_cvref_t<ARG_KEY>;
    if constexpr (CMapDetail::kIsTextPointer<K>)
        return CMapDetail::HashText(key);
    else if constexpr (CMapDetail::kIsText<K>)
        return CMapDetail::HashText(key.GetString());
    else if constexpr (std::is_pointer_v<K>)
        return CMapDetail::MixBits((ULONGLONG)(UINT_PTR)key);
    else if constexpr (std::is_integral_v<K> || std::is_enum_v<K>)
        return CMapDetail::MixBits((ULONGLONG)key);
    else
        static_assert(sizeof(K) == 0, "specialise HashKey for this key type");
}

// True when a stored key equals a key as passed to the map.
template <class TYPE, class ARG_TYPE>
inline BOOL CompareElements(const TYPE *pElement1, const ARG_TYPE *pElement2)
{
    using A = std::remove_cvref_t<TYPE>;
    using B = std::remove_cvref_t<ARG_TYPE>;
    if constexpr (CMapDetail::kIsTextPointer<A> && CMapDetail::kIsTextPointer<B>)
    {
        const auto *p1 = *pElement1;
        const auto *p2 = *pElement2;
        if (p1 == p2)
            return TRUE;
        if (!p1 || !p2)
            return (!p1 || !*p1) && (!p2 || !*p2); // null equals empty text
        if constexpr (sizeof(*p1) == 1)
            return std::strcmp(p1, p2) == 0;
        else
            return std::wcscmp(p1, p2) == 0;
    }
    else
    {
        return *pElement1 == *pElement2;
    }
}

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class SCOREMODEL_API CMap : public CObject
{
public:
    typedef KEY BASE_KEY;
    typedef ARG_KEY BASE_ARG_KEY;
    typedef VALUE BASE_VALUE;
    typedef ARG_VALUE BASE_ARG_VALUE;

    // One association, as PLookup and PGetFirstAssoc show it.
    class CPair
    {
    public:
        const KEY key;
        VALUE value;

    protected:
        explicit CPair(ARG_KEY keyval) : key(keyval), value() {}
    };

    // nBlockSize is accepted for the platform's signature; nodes are
    // allocated one by one.
    explicit CMap(INT_PTR nBlockSize = 10) { (void)nBlockSize; }
    CMap(const CMap &) = delete;
    CMap &operator=(const CMap &) = delete;
    // The source is left empty.
    CMap(CMap &&other) noexcept : CObject() { Steal(other); }
    CMap &operator=(CMap &&other) noexcept
    {
        if (this != &other)
        {
            RemoveAll();
            delete[] m_pHashTable;
            Steal(other);
        }
        return *this;
    }
    ~CMap() override
    {
        RemoveAll();
        delete[] m_pHashTable;
    }

    // ---- Size -------------------------------------------------------------------

    INT_PTR GetCount() const { return m_nCount; }
    INT_PTR GetSize() const { return m_nCount; }
    BOOL IsEmpty() const { return m_nCount == 0; }

    // ---- Lookup and change ------------------------------------------------------

    // Copies the value of key into rValue; FALSE (rValue untouched) if absent.
    BOOL Lookup(ARG_KEY key, VALUE &rValue) const
    {
        const CAssoc *pAssoc = Find(key, HashKey<ARG_KEY>(key));
        if (!pAssoc)
            return FALSE;
        rValue = pAssoc->value;
        return TRUE;
    }

    // The association of key, or null.
    const CPair *PLookup(ARG_KEY key) const { return Find(key, HashKey<ARG_KEY>(key)); }
    CPair *PLookup(ARG_KEY key) { return Find(key, HashKey<ARG_KEY>(key)); }

    // The value of key, inserted as VALUE() if the key is new.
    VALUE &operator[](ARG_KEY key)
    {
        UINT nHash = HashKey<ARG_KEY>(key);
        if (CAssoc *pAssoc = Find(key, nHash))
            return pAssoc->value;
        return Insert(key, nHash)->value;
    }

    // Inserts key or replaces its value.
    void SetAt(ARG_KEY key, ARG_VALUE newValue) { (*this)[key] = newValue; }

    // Removes key; FALSE if it was not there.
    BOOL RemoveKey(ARG_KEY key)
    {
        if (!m_pHashTable)
            return FALSE;
        UINT nHash = HashKey<ARG_KEY>(key);
        CAssoc **ppLink = &m_pHashTable[nHash % m_nHashTableSize];
        for (CAssoc *pAssoc = *ppLink; pAssoc; ppLink = &pAssoc->pNextInBucket, pAssoc = *ppLink)
        {
            if (pAssoc->nHashValue == nHash && CompareElements(&pAssoc->key, &key))
            {
                *ppLink = pAssoc->pNextInBucket;
                Unlink(pAssoc);
                delete pAssoc;
                m_nCount--;
                return TRUE;
            }
        }
        return FALSE;
    }

    // Removes every association. The bucket count stays.
    void RemoveAll()
    {
        for (CAssoc *pAssoc = m_pFirst; pAssoc;)
        {
            CAssoc *pNext = pAssoc->pNext;
            delete pAssoc;
            pAssoc = pNext;
        }
        m_pFirst = m_pLast = nullptr;
        m_nCount = 0;
        if (m_pHashTable)
            std::fill_n(m_pHashTable, m_nHashTableSize, nullptr);
    }

    // ---- Walking ----------------------------------------------------------------

    // The first association, or null when the map is empty.
    POSITION GetStartPosition() const { return ToPosition(m_pFirst); }

    // Returns the association at rNextPosition and moves rNextPosition to the
    // next one (null after the last). BEFORE_START_POSITION means the first.
    // A null position throws CInvalidArgException.
    void GetNextAssoc(POSITION &rNextPosition, KEY &rKey, VALUE &rValue) const
    {
        CAssoc *pAssoc = rNextPosition == BEFORE_START_POSITION ? m_pFirst : FromPosition(rNextPosition);
        if (!pAssoc)
            CMapThrowNullPosition();
        rNextPosition = ToPosition(pAssoc->pNext);
        rKey = pAssoc->key;
        rValue = pAssoc->value;
    }

    // The same walk by pairs: the first association, then the one after
    // pAssoc; null at the end.
    const CPair *PGetFirstAssoc() const { return m_pFirst; }
    CPair *PGetFirstAssoc() { return m_pFirst; }
    const CPair *PGetNextAssoc(const CPair *pAssoc) const
    {
        return pAssoc ? static_cast<const CAssoc *>(pAssoc)->pNext : nullptr;
    }
    CPair *PGetNextAssoc(const CPair *pAssoc)
    {
        return pAssoc ? static_cast<const CAssoc *>(pAssoc)->pNext : nullptr;
    }

    // ---- Hash table -------------------------------------------------------------

    UINT GetHashTableSize() const { return m_nHashTableSize; }

    // Sets the bucket count (a value of 0 is taken as 1). Allowed at any
    // time: existing keys are redistributed, positions stay valid. With
    // bAllocNow FALSE an empty map allocates the table at the first insert.
    void InitHashTable(UINT nHashSize, BOOL bAllocNow = TRUE)
    {
        m_nHashTableSize = nHashSize ? nHashSize : 1;
        if (bAllocNow || m_nCount)
            Rehash(m_nHashTableSize);
        else
        {
            delete[] m_pHashTable;
            m_pHashTable = nullptr;
        }
    }

private:
    struct CAssoc : CPair
    {
        CAssoc(ARG_KEY keyval, UINT nHash) : CPair(keyval), nHashValue(nHash) {}
        CAssoc *pNextInBucket = nullptr;
        CAssoc *pPrev = nullptr; // insertion order
        CAssoc *pNext = nullptr;
        UINT nHashValue;
    };

    static POSITION ToPosition(CAssoc *pAssoc) { return reinterpret_cast<POSITION>(pAssoc); }
    static CAssoc *FromPosition(POSITION position) { return reinterpret_cast<CAssoc *>(position); }

    CAssoc *Find(ARG_KEY key, UINT nHash) const
    {
        if (!m_pHashTable)
            return nullptr;
        for (CAssoc *pAssoc = m_pHashTable[nHash % m_nHashTableSize]; pAssoc; pAssoc = pAssoc->pNextInBucket)
        {
            if (pAssoc->nHashValue == nHash && CompareElements(&pAssoc->key, &key))
                return pAssoc;
        }
        return nullptr;
    }

    CAssoc *Insert(ARG_KEY key, UINT nHash)
    {
        if (!m_pHashTable)
            Rehash(m_nHashTableSize);
        else if ((UINT_PTR)m_nCount >= m_nHashTableSize && m_nHashTableSize < 0x40000000u)
            Rehash(m_nHashTableSize * 2 + 1);
        CAssoc *pAssoc = new CAssoc(key, nHash);
        CAssoc *&rBucket = m_pHashTable[nHash % m_nHashTableSize];
        pAssoc->pNextInBucket = rBucket;
        rBucket = pAssoc;
        pAssoc->pPrev = m_pLast;
        if (m_pLast)
            m_pLast->pNext = pAssoc;
        else
            m_pFirst = pAssoc;
        m_pLast = pAssoc;
        m_nCount++;
        return pAssoc;
    }

    void Unlink(CAssoc *pAssoc)
    {
        (pAssoc->pPrev ? pAssoc->pPrev->pNext : m_pFirst) = pAssoc->pNext;
        (pAssoc->pNext ? pAssoc->pNext->pPrev : m_pLast) = pAssoc->pPrev;
    }

    // Rebuilds the buckets from the insertion list; nodes do not move.
    void Rehash(UINT nNewSize)
    {
        CAssoc **pTable = new CAssoc *[nNewSize]();
        for (CAssoc *pAssoc = m_pFirst; pAssoc; pAssoc = pAssoc->pNext)
        {
            CAssoc *&rBucket = pTable[pAssoc->nHashValue % nNewSize];
            pAssoc->pNextInBucket = rBucket;
            rBucket = pAssoc;
        }
        delete[] m_pHashTable;
        m_pHashTable = pTable;
        m_nHashTableSize = nNewSize;
    }

    void Steal(CMap &other) noexcept
    {
        m_pHashTable = std::exchange(other.m_pHashTable, nullptr);
        m_nHashTableSize = std::exchange(other.m_nHashTableSize, kDefaultHashTableSize);
        m_nCount = std::exchange(other.m_nCount, 0);
        m_pFirst = std::exchange(other.m_pFirst, nullptr);
        m_pLast = std::exchange(other.m_pLast, nullptr);
    }

    static constexpr UINT kDefaultHashTableSize = 17;

    CAssoc **m_pHashTable = nullptr;
    UINT m_nHashTableSize = kDefaultHashTableSize;
    INT_PTR m_nCount = 0;
    CAssoc *m_pFirst = nullptr;
    CAssoc *m_pLast = nullptr;
};

// ---- The concrete maps -----------------------------------------------------------

// Untyped pointer to untyped pointer, keyed by address.
class SCOREMODEL_API CMapPtrToPtr : public CMap<void *, void *, void *, void *>
{
    DECLARE_DYNAMIC(CMapPtrToPtr)

public:
    using CMap::CMap;
};

// Wide text to untyped pointer. The map keeps its own copy of each key.
class SCOREMODEL_API CMapStringToPtr : public CMap<CString, LPCTSTR, void *, void *>
{
    DECLARE_DYNAMIC(CMapStringToPtr)

public:
    using CMap::CMap;
};

// ---- CTypedPtrMap ------------------------------------------------------------------

// A typed façade over a map whose values are untyped pointers (CMapPtrToPtr,
// CMapStringToPtr, the model's own string maps): the same map, with KEY and
// VALUE in and out. It adds no behaviour; iteration order and invalidation
// are the base's.
//
//     CTypedPtrMap<CMapPtrToPtr, ECBase *, MCGroup *> groups;
//     groups.SetAt(pEvent, pGroup);
//     MCGroup *p;
//     if (groups.Lookup(pEvent, p)) ...
//
// operator[] returns a CTypedPtrRef that reads and writes like VALUE &.
// BASE_CLASS should name its key and value types BASE_KEY, BASE_ARG_KEY and
// BASE_VALUE as CMap does; without them the façade takes KEY for the keys
// and void * for the values.
template <class BASE_CLASS, class KEY, class VALUE>
class SCOREMODEL_API CTypedPtrMap : public BASE_CLASS
{
    static_assert(std::is_pointer_v<VALUE>, "CTypedPtrMap maps to pointers");

    template <class B>
    static auto KeyOf(int) -> typename B::BASE_KEY;
    template <class B>
    static auto KeyOf(...) -> KEY;
    template <class B>
    static auto ArgKeyOf(int) -> typename B::BASE_ARG_KEY;
    template <class B>
    static auto ArgKeyOf(...) -> KEY;
    template <class B>
    static auto ValueOf(int) -> typename B::BASE_VALUE;
    template <class B>
    static auto ValueOf(...) -> void *;

public:
    using BaseKey = decltype(KeyOf<BASE_CLASS>(0));
    using BaseArgKey = decltype(ArgKeyOf<BASE_CLASS>(0));
    using BaseValue = decltype(ValueOf<BASE_CLASS>(0));
    using Ref = CTypedPtrRef<BaseValue, VALUE>;

    using BASE_CLASS::BASE_CLASS;

    // Copies the value of key into rValue; FALSE (rValue untouched) if absent.
    BOOL Lookup(KEY key, VALUE &rValue) const
    {
        BaseValue value{};
        if (!Base().Lookup(CTypedPtrCast<BaseArgKey>(key), value))
            return FALSE;
        rValue = CTypedPtrCast<VALUE>(value);
        return TRUE;
    }
    // The value of key, inserted as null if the key is new.
    Ref operator[](KEY key) { return Ref(Base()[CTypedPtrCast<BaseArgKey>(key)]); }
    void SetAt(KEY key, VALUE newValue)
    {
        Base().SetAt(CTypedPtrCast<BaseArgKey>(key), CTypedPtrCast<BaseValue>(newValue));
    }
    BOOL RemoveKey(KEY key) { return Base().RemoveKey(CTypedPtrCast<BaseArgKey>(key)); }
    void GetNextAssoc(POSITION &rPosition, KEY &rKey, VALUE &rValue) const
    {
        BaseKey key{};
        BaseValue value{};
        Base().GetNextAssoc(rPosition, key, value);
        rKey = CTypedPtrCast<KEY>(key);
        rValue = CTypedPtrCast<VALUE>(value);
    }

private:
    BASE_CLASS &Base() const { return const_cast<BASE_CLASS &>(static_cast<const BASE_CLASS &>(*this)); }
};
