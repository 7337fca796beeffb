// Growable arrays with the platform's interface: the CArray template, its
// concrete family (CByteArray, CWordArray, CDWordArray, CUIntArray, CPtrArray,
// CObArray, CStringArray) and the typed pointer façade CTypedPtrArray.
//
// An array owns a contiguous block of elements. Indexes are INT_PTR and are
// always checked: an index outside 0..GetSize()-1 throws CInvalidArgException,
// so a lookup that runs off the end is a clear error and never a stray read.
//
//     CArray<int, int> ids;
//     ids.Add(7);                 // returns the new index, 0
//     ids.InsertAt(3, -1);        // past the end: the array grows to 4
//     ids.RemoveAt(1, 2);         // ids is now {7, -1}
//
// Elements. New slots, from SetSize, SetAtGrow or an InsertAt past the end,
// are value-initialised (TYPE()), so numbers start at 0 and pointers at null.
// ARG_TYPE is how elements are passed in; an element may be passed from the
// array itself (`a.Add(a[0])`) even when the call moves the block.
//
// Complexity. GetAt, SetAt, ElementAt and operator[] are O(1). Add and
// SetAtGrow at the end are amortised O(1): the block grows geometrically, by
// at least half its capacity and at least by the grow-by value given to
// SetSize. InsertAt and RemoveAt are O(n) in the elements behind the index.
//
// Invalidation. Pointers and references into the array (GetData, ElementAt,
// operator[], begin/end) stay valid until the block moves or the element is
// shifted: any call that grows the size past the capacity (Add, SetAtGrow,
// InsertAt, SetSize, Append, Copy), FreeExtra, SetSize(0)/RemoveAll, and for
// elements behind the index InsertAt and RemoveAt. Indexes stay meaningful
// across growth.
//
// Threads. None of this is synchronised; the owner's lock guards an array.
//
// Archive. Serialize writes the element count with the archive's WriteCount,
// then the elements (see SerializeElements). Loading never trusts the count
// for memory: a count that the bytes left in the archive cannot hold is
// refused at once, and where the archive cannot tell (a pipe) the array grows
// only as elements actually arrive. Either way a corrupt count ends in
// CArchiveException endOfFile, not in a huge allocation.
//
// Arrays are not copyable (the platform's are not either); they move, and
// the source is left empty.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/Types.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>

// Throws CInvalidArgException naming the index and the size of the array.
[[noreturn]] SCOREMODEL_API void CArrayThrowBadIndex(const char *operation, INT_PTR nIndex, INT_PTR nSize);
// Throws CInvalidArgException with a message naming the operation.
[[noreturn]] SCOREMODEL_API void CArrayThrowInvalidArg(const char *operation, const char *what);
// Throws CArchiveException(endOfFile): the archive ended inside an array.
[[noreturn]] SCOREMODEL_API void CArrayThrowEndOfFile();

// ---- Element serialization ---------------------------------------------------

// How many elements a load reads before it grows the array again. Growth
// follows the data actually read, so this bounds the memory taken on trust
// when the archive cannot tell how many bytes are left (a pipe).
inline constexpr INT_PTR kArrayLoadChunk = 16384;

// Stores or loads nCount elements of an array whose memory is already sized.
// The default layout is the platform's:
// - a number, bool or enum is its memory, little-endian, written as one block
//   (long and unsigned long go through the archive's operators, which give
//   them the platform's 4 bytes);
// - a class with archive operators goes through them (CString, CStringA);
// - any other trivially copyable record is its memory, byte for byte.
// Specialise this template for a record that needs another layout, before
// the array of that type is first used.
//
// Pointers have no archive layout: an array of pointers with elements throws
// CNotSupportedException (archive objects through CObArray and WriteObject).
// A load that runs out of bytes throws CArchiveException endOfFile.
template <class TYPE>
void SerializeElements(CArchive &ar, TYPE *pElements, INT_PTR nCount);

namespace CArrayDetail
{
template <class TYPE>
concept Archivable = requires(CArchive &ar, TYPE &value) {
    ar << value;
    ar >> value;
};

template <class TYPE>
constexpr bool kPlatformWidth = std::is_same_v<TYPE, long> || std::is_same_v<TYPE, unsigned long>;

// Whole elements per Read or Write call, whose size is a UINT of bytes.
template <class TYPE>
constexpr INT_PTR kElementsPerBlock = (std::max<INT_PTR>)(1, (INT_PTR)(0x7FFFFFFF / sizeof(TYPE)));

// One block per call; the archive only runs on little-endian hosts, so the
// memory is the layout.
template <class TYPE>
void SerializeRaw(CArchive &ar, TYPE *pElements, INT_PTR nCount)
{
    for (INT_PTR done = 0; done < nCount;)
    {
        INT_PTR n = (std::min)(kElementsPerBlock<TYPE>, nCount - done);
        UINT nBytes = (UINT)(n * (INT_PTR)sizeof(TYPE));
        if (ar.IsStoring())
            ar.Write(pElements + done, nBytes);
        else if (ar.Read(pElements + done, nBytes) != nBytes)
            CArrayThrowEndOfFile();
        done += n;
    }
}

// The fewest bytes one stored element of TYPE takes, to refuse a count that
// the rest of the archive cannot hold.
template <class TYPE>
constexpr ULONGLONG kMinStoredBytes = std::is_pointer_v<TYPE> ? 1
                                      : kPlatformWidth<TYPE>  ? 4
                                      : (std::is_arithmetic_v<TYPE> || std::is_enum_v<TYPE>)
                                          ? sizeof(TYPE)
                                          : (Archivable<TYPE> ? 1 : sizeof(TYPE));
} // namespace CArrayDetail

template <class TYPE>
void SerializeElements(CArchive &ar, TYPE *pElements, INT_PTR nCount)
{
    if constexpr (std::is_pointer_v<TYPE> || std::is_member_pointer_v<TYPE>)
    {
        (void)ar;
        (void)pElements;
        if (nCount > 0)
            throw CNotSupportedException("SerializeElements: an array of pointers cannot be archived");
    }
    else if constexpr ((std::is_arithmetic_v<TYPE> || std::is_enum_v<TYPE>) && !CArrayDetail::kPlatformWidth<TYPE>)
    {
        CArrayDetail::SerializeRaw(ar, pElements, nCount);
    }
    else if constexpr (CArrayDetail::Archivable<TYPE>)
    {
        for (INT_PTR i = 0; i < nCount; i++)
        {
            if (ar.IsStoring())
                ar << pElements[i];
            else
                ar >> pElements[i];
        }
    }
    else if constexpr (std::is_trivially_copyable_v<TYPE>)
    {
        CArrayDetail::SerializeRaw(ar, reinterpret_cast<BYTE *>(pElements), nCount * (INT_PTR)sizeof(TYPE));
    }
    else
    {
        (void)ar;
        (void)pElements;
        if (nCount > 0)
            throw CNotSupportedException("SerializeElements: this element type has no archive layout");
    }
}

// ---- CArray --------------------------------------------------------------------

template <class TYPE, class ARG_TYPE = const TYPE &>
class SCOREMODEL_API CArray : public CObject
{
public:
    typedef TYPE BASE_TYPE;
    typedef ARG_TYPE BASE_ARG_TYPE;

    CArray() = default;
    CArray(const CArray &) = delete;
    CArray &operator=(const CArray &) = delete;
    // The source is left empty.
    CArray(CArray &&other) noexcept
        : CObject(), m_pData(std::exchange(other.m_pData, nullptr)), m_nSize(std::exchange(other.m_nSize, 0)),
          m_nMaxSize(std::exchange(other.m_nMaxSize, 0)), m_nGrowBy(other.m_nGrowBy)
    {
    }
    CArray &operator=(CArray &&other) noexcept
    {
        if (this != &other)
        {
            Release();
            m_pData = std::exchange(other.m_pData, nullptr);
            m_nSize = std::exchange(other.m_nSize, 0);
            m_nMaxSize = std::exchange(other.m_nMaxSize, 0);
            m_nGrowBy = other.m_nGrowBy;
        }
        return *this;
    }
    ~CArray() override { Release(); }

    // ---- Size ------------------------------------------------------------------

    INT_PTR GetSize() const { return m_nSize; }
    INT_PTR GetCount() const { return m_nSize; }
    BOOL IsEmpty() const { return m_nSize == 0; }
    // The last valid index; -1 when empty.
    INT_PTR GetUpperBound() const { return m_nSize - 1; }

    // Sets the number of elements. New elements are TYPE(); elements past the
    // new size are destroyed. nGrowBy >= 0 also sets the minimum step by which
    // the block grows later (-1 keeps the current one). SetSize(0) frees the
    // block. A negative size throws CInvalidArgException.
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1)
    {
        if (nNewSize < 0)
            CArrayThrowInvalidArg("CArray::SetSize", "negative size");
        if (nNewSize > MaxElements())
            CArrayThrowInvalidArg("CArray::SetSize", "size too large");
        if (nGrowBy >= 0)
            m_nGrowBy = nGrowBy;
        if (nNewSize == 0)
        {
            Release();
            return;
        }
        if (nNewSize > m_nMaxSize)
            Reallocate(GrowTarget(nNewSize));
        if (nNewSize > m_nSize)
            std::uninitialized_value_construct_n(m_pData + m_nSize, nNewSize - m_nSize);
        else
            std::destroy_n(m_pData + nNewSize, m_nSize - nNewSize);
        m_nSize = nNewSize;
    }

    // Shrinks the block to the number of elements. Moves the elements.
    void FreeExtra()
    {
        if (m_nSize == 0)
            Release();
        else if (m_nSize != m_nMaxSize)
            Reallocate(m_nSize);
    }

    // Destroys every element and frees the block.
    void RemoveAll() { SetSize(0); }

    // ---- Element access (bounds-checked) -------------------------------------

    const TYPE &GetAt(INT_PTR nIndex) const { return m_pData[CheckIndex("CArray::GetAt", nIndex)]; }
    TYPE &GetAt(INT_PTR nIndex) { return m_pData[CheckIndex("CArray::GetAt", nIndex)]; }
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement) { m_pData[CheckIndex("CArray::SetAt", nIndex)] = newElement; }
    const TYPE &ElementAt(INT_PTR nIndex) const { return m_pData[CheckIndex("CArray::ElementAt", nIndex)]; }
    TYPE &ElementAt(INT_PTR nIndex) { return m_pData[CheckIndex("CArray::ElementAt", nIndex)]; }
    const TYPE &operator[](INT_PTR nIndex) const { return GetAt(nIndex); }
    TYPE &operator[](INT_PTR nIndex) { return ElementAt(nIndex); }

    // The block itself; null when the array has never held an element.
    const TYPE *GetData() const { return m_pData; }
    TYPE *GetData() { return m_pData; }

    // Unchecked iteration, for range-for.
    TYPE *begin() { return m_pData; }
    TYPE *end() { return m_pData + m_nSize; }
    const TYPE *begin() const { return m_pData; }
    const TYPE *end() const { return m_pData + m_nSize; }

    // ---- Growing -----------------------------------------------------------------

    // Sets the element at nIndex, growing the array to nIndex + 1 if needed;
    // the gap is TYPE(). A negative index throws CInvalidArgException.
    void SetAtGrow(INT_PTR nIndex, ARG_TYPE newElement)
    {
        if (nIndex < 0)
            CArrayThrowBadIndex("CArray::SetAtGrow", nIndex, m_nSize);
        if (nIndex >= m_nSize)
        {
            if (nIndex >= m_nMaxSize)
            {
                // newElement may live in the block that is about to move.
                TYPE value(newElement);
                SetSize(nIndex + 1);
                m_pData[nIndex] = std::move(value);
                return;
            }
            SetSize(nIndex + 1);
        }
        m_pData[nIndex] = newElement;
    }

    // Appends one element; returns its index.
    INT_PTR Add(ARG_TYPE newElement)
    {
        INT_PTR nIndex = m_nSize;
        SetAtGrow(nIndex, newElement);
        return nIndex;
    }

    // Appends the elements of src (which may be this array); returns the index
    // of the first appended element, the old size.
    INT_PTR Append(const CArray &src)
    {
        INT_PTR nOldSize = m_nSize;
        INT_PTR nCount = src.m_nSize;
        if (nCount > MaxElements() - nOldSize)
            CArrayThrowInvalidArg("CArray::Append", "size too large");
        SetSize(nOldSize + nCount);
        // For src == this, src.m_pData is the moved block and its first
        // nCount elements are the original ones.
        std::copy_n(src.m_pData, nCount, m_pData + nOldSize);
        return nOldSize;
    }

    // Makes this array a copy of src. Copying an array onto itself does nothing.
    void Copy(const CArray &src)
    {
        if (this == &src)
            return;
        SetSize(src.m_nSize);
        std::copy_n(src.m_pData, src.m_nSize, m_pData);
    }

    // ---- Insertion and removal --------------------------------------------------

    // Inserts nCount copies of newElement before nIndex. An index at or past
    // the end grows the array to nIndex + nCount, with TYPE() in any gap.
    // A negative index or a count below 1 throws CInvalidArgException.
    void InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount = 1)
    {
        if (nIndex < 0 || nCount <= 0)
            CArrayThrowInvalidArg("CArray::InsertAt", "negative index or count below 1");
        INT_PTR nOldSize = m_nSize;
        INT_PTR nFirstNew = (std::max)(nIndex, nOldSize);
        if (nCount > MaxElements() - nFirstNew)
            CArrayThrowInvalidArg("CArray::InsertAt", "size too large");
        TYPE value(newElement); // newElement may live in this array
        SetSize(nFirstNew + nCount);
        if (nIndex < nOldSize)
            std::move_backward(m_pData + nIndex, m_pData + nOldSize, m_pData + nOldSize + nCount);
        std::fill_n(m_pData + nIndex, nCount, value);
    }

    // Inserts all elements of *pNewArray before nStartIndex (growing as the
    // single-element form does). pNewArray may be this array. A null array or
    // a negative index throws CInvalidArgException.
    void InsertAt(INT_PTR nStartIndex, const CArray *pNewArray)
    {
        if (!pNewArray)
            CArrayThrowInvalidArg("CArray::InsertAt", "null array");
        if (nStartIndex < 0)
            CArrayThrowBadIndex("CArray::InsertAt", nStartIndex, m_nSize);
        if (pNewArray == this)
        {
            CArray copy;
            copy.Copy(*this);
            InsertAt(nStartIndex, &copy);
            return;
        }
        INT_PTR nCount = pNewArray->m_nSize;
        if (nCount == 0)
            return;
        InsertAt(nStartIndex, pNewArray->m_pData[0], nCount);
        std::copy_n(pNewArray->m_pData + 1, nCount - 1, m_pData + nStartIndex + 1);
    }

    // Removes nCount elements from nIndex on. The range must lie inside the
    // array (nCount 0 at the end is allowed); otherwise CInvalidArgException
    // and the array is unchanged.
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1)
    {
        if (nIndex < 0 || nCount < 0 || nIndex > m_nSize || nCount > m_nSize - nIndex)
            CArrayThrowInvalidArg("CArray::RemoveAt", "range outside the array");
        std::move(m_pData + nIndex + nCount, m_pData + m_nSize, m_pData + nIndex);
        std::destroy_n(m_pData + m_nSize - nCount, nCount);
        m_nSize -= nCount;
    }

    // ---- Archive -------------------------------------------------------------------

    // The count (WriteCount/ReadCount), then SerializeElements<TYPE>.
    void Serialize(CArchive &ar) override
    {
        CObject::Serialize(ar);
        if (ar.IsStoring())
        {
            ar.WriteCount((DWORD_PTR)m_nSize);
            SerializeElements<TYPE>(ar, m_pData, m_nSize);
        }
        else
        {
            LoadInChunks(ar, CArrayDetail::kMinStoredBytes<TYPE>,
                         [&ar](TYPE *pElements, INT_PTR nCount) { SerializeElements<TYPE>(ar, pElements, nCount); });
        }
    }

protected:
    // Reads the count, then hands the elements to readChunk(first, count) a
    // block at a time, growing the array only as far as the data reaches. A
    // count that the bytes left cannot hold, at nMinBytes an element, throws
    // endOfFile before anything is allocated.
    template <class READ_CHUNK>
    void LoadInChunks(CArchive &ar, ULONGLONG nMinBytes, READ_CHUNK readChunk)
    {
        DWORD_PTR nStored = ar.ReadCount();
        ULONGLONG nLeft = ar.GetBytesRemaining();
        if (nStored > (DWORD_PTR)MaxElements() ||
            (nLeft != CArchive::unknownLength && (ULONGLONG)nStored > nLeft / nMinBytes))
            CArrayThrowEndOfFile();
        INT_PTR nTotal = (INT_PTR)nStored;
        SetSize(0);
        for (INT_PTR done = 0; done < nTotal;)
        {
            INT_PTR n = (std::min)(kArrayLoadChunk, nTotal - done);
            SetSize(done + n);
            readChunk(m_pData + done, n);
            done += n;
        }
    }

private:
    static constexpr INT_PTR MaxElements()
    {
        return (INT_PTR)((std::numeric_limits<INT_PTR>::max)() / (INT_PTR)sizeof(TYPE));
    }

    INT_PTR CheckIndex(const char *operation, INT_PTR nIndex) const
    {
        if (nIndex < 0 || nIndex >= m_nSize)
            CArrayThrowBadIndex(operation, nIndex, m_nSize);
        return nIndex;
    }

    // The capacity to allocate for nNeeded elements: geometric, so that
    // appending is amortised O(1), and at least the grow-by step.
    INT_PTR GrowTarget(INT_PTR nNeeded) const
    {
        INT_PTR nStep = (std::max<INT_PTR>)({m_nGrowBy, m_nMaxSize / 2, 4});
        INT_PTR nTarget = m_nMaxSize > MaxElements() - nStep ? MaxElements() : m_nMaxSize + nStep;
        return (std::max)(nNeeded, nTarget);
    }

    // Moves the elements into a block of nNewMax slots (>= m_nSize).
    void Reallocate(INT_PTR nNewMax)
    {
        std::allocator<TYPE> alloc;
        TYPE *pNew = alloc.allocate((size_t)nNewMax);
        try
        {
            if constexpr (std::is_nothrow_move_constructible_v<TYPE> || !std::is_copy_constructible_v<TYPE>)
                std::uninitialized_move_n(m_pData, m_nSize, pNew);
            else
                std::uninitialized_copy_n(m_pData, m_nSize, pNew);
        }
        catch (...)
        {
            alloc.deallocate(pNew, (size_t)nNewMax);
            throw;
        }
        std::destroy_n(m_pData, m_nSize);
        if (m_pData)
            alloc.deallocate(m_pData, (size_t)m_nMaxSize);
        m_pData = pNew;
        m_nMaxSize = nNewMax;
    }

    void Release()
    {
        if (m_pData)
        {
            std::destroy_n(m_pData, m_nSize);
            std::allocator<TYPE>().deallocate(m_pData, (size_t)m_nMaxSize);
        }
        m_pData = nullptr;
        m_nSize = 0;
        m_nMaxSize = 0;
    }

    TYPE *m_pData = nullptr;
    INT_PTR m_nSize = 0;
    INT_PTR m_nMaxSize = 0;
    INT_PTR m_nGrowBy = 0; // 0: geometric growth only
};

// ---- The concrete arrays -------------------------------------------------------

// Bytes; archived as count then one raw block.
class SCOREMODEL_API CByteArray : public CArray<BYTE, BYTE>
{
    DECLARE_SERIAL(CByteArray)
};

// 16-bit words; archived as count then little-endian words.
class SCOREMODEL_API CWordArray : public CArray<WORD, WORD>
{
    DECLARE_SERIAL(CWordArray)
};

// 32-bit words; archived as count then little-endian dwords.
class SCOREMODEL_API CDWordArray : public CArray<DWORD, DWORD>
{
    DECLARE_SERIAL(CDWordArray)
};

// Unsigned ints. UINT is 32 bits here, so the archive layout is CDWordArray's.
class SCOREMODEL_API CUIntArray : public CArray<UINT, UINT>
{
    DECLARE_SERIAL(CUIntArray)
};

// Untyped pointers. Not serialisable: Serialize throws CNotSupportedException.
class SCOREMODEL_API CPtrArray : public CArray<void *, void *>
{
    DECLARE_DYNAMIC(CPtrArray)

public:
    void Serialize(CArchive &ar) override;
};

// Object pointers; archived as count then each element by WriteObject, so an
// object reached twice is stored once. The array does not own its objects.
class SCOREMODEL_API CObArray : public CArray<CObject *, CObject *>
{
    DECLARE_SERIAL(CObArray)

public:
    void Serialize(CArchive &ar) override;
};

// Wide strings; archived as count then each string by the archive's string
// operator. Add and SetAt take a CString or anything that converts to one.
class SCOREMODEL_API CStringArray : public CArray<CString, const CString &>
{
    DECLARE_SERIAL(CStringArray)
};

// ---- CTypedPtrArray ------------------------------------------------------------

// Converts between a façade's element type and its base's pointer type, in
// either direction: up and down casts through static_cast (so a pointer to
// a class with several bases is adjusted correctly), and to or from void *.
// Const on the pointee is dropped, as the base stores plain pointers.
template <class TO, class FROM>
inline TO CTypedPtrCast(FROM p)
{
    if constexpr (std::is_same_v<TO, FROM>)
        return p;
    else if constexpr (std::is_pointer_v<TO> && std::is_pointer_v<FROM>)
        return static_cast<TO>(const_cast<std::remove_cv_t<std::remove_pointer_t<FROM>> *>(p));
    else
        return static_cast<TO>(p);
}

// A writable slot of a typed façade whose base stores BASE_ELEMENT: reads as
// TYPE, takes a TYPE on assignment. It stands in for TYPE & because the slot
// really holds a BASE_ELEMENT and must not be written through another type.
//
//     staves[3] = pStaff;          // stores
//     ECStaff *p = staves[3];      // reads
//     staves[3]->GetNumber();      // reads through
template <class BASE_ELEMENT, class TYPE>
class SCOREMODEL_API CTypedPtrRef
{
public:
    explicit CTypedPtrRef(BASE_ELEMENT &slot) : m_slot(slot) {}
    CTypedPtrRef(const CTypedPtrRef &) = default;

    CTypedPtrRef &operator=(TYPE p)
    {
        m_slot = CTypedPtrCast<BASE_ELEMENT>(p);
        return *this;
    }
    // Copies the other slot's value, not the reference.
    CTypedPtrRef &operator=(const CTypedPtrRef &other)
    {
        m_slot = other.m_slot;
        return *this;
    }
    operator TYPE() const { return CTypedPtrCast<TYPE>(m_slot); }
    TYPE operator->() const { return CTypedPtrCast<TYPE>(m_slot); }

private:
    BASE_ELEMENT &m_slot;
};

// A typed façade over CObArray or CPtrArray: the same array, with TYPE in and
// out instead of CObject * or void *. It adds no behaviour, no storage and no
// checks of its own; the base's bounds checks and archive layout apply.
//
//     CTypedPtrArray<CObArray, ECStaff *> staves;
//     staves.SetSize(16, 4);       // 16 null slots
//     staves[1] = pStaff;
//
// ElementAt and the non-const operator[] return a CTypedPtrRef, which reads
// and writes like TYPE & but cannot bind to a TYPE & variable.
template <class BASE_CLASS, class TYPE>
class SCOREMODEL_API CTypedPtrArray : public BASE_CLASS
{
    static_assert(std::is_pointer_v<TYPE>, "CTypedPtrArray holds pointers");

public:
    using BASE_ELEMENT = typename BASE_CLASS::BASE_TYPE;
    using Ref = CTypedPtrRef<BASE_ELEMENT, TYPE>;

    // Element access, bounds-checked by the base.
    TYPE GetAt(INT_PTR nIndex) const { return CTypedPtrCast<TYPE>(BASE_CLASS::GetAt(nIndex)); }
    Ref ElementAt(INT_PTR nIndex) { return Ref(BASE_CLASS::ElementAt(nIndex)); }
    TYPE operator[](INT_PTR nIndex) const { return GetAt(nIndex); }
    Ref operator[](INT_PTR nIndex) { return ElementAt(nIndex); }
    void SetAt(INT_PTR nIndex, TYPE ptr) { BASE_CLASS::SetAt(nIndex, CTypedPtrCast<BASE_ELEMENT>(ptr)); }

    // Growing and inserting, as in CArray.
    void SetAtGrow(INT_PTR nIndex, TYPE newElement)
    {
        BASE_CLASS::SetAtGrow(nIndex, CTypedPtrCast<BASE_ELEMENT>(newElement));
    }
    INT_PTR Add(TYPE newElement) { return BASE_CLASS::Add(CTypedPtrCast<BASE_ELEMENT>(newElement)); }
    INT_PTR Append(const CTypedPtrArray &src) { return BASE_CLASS::Append(src); }
    void Copy(const CTypedPtrArray &src) { BASE_CLASS::Copy(src); }
    void InsertAt(INT_PTR nIndex, TYPE newElement, INT_PTR nCount = 1)
    {
        BASE_CLASS::InsertAt(nIndex, CTypedPtrCast<BASE_ELEMENT>(newElement), nCount);
    }
    void InsertAt(INT_PTR nStartIndex, const CTypedPtrArray *pNewArray) { BASE_CLASS::InsertAt(nStartIndex, pNewArray); }
};
