// CTypedPtrList: a typed façade over a pointer list.
//
// BASE_CLASS is a doubly linked list of untyped pointers (the model's
// MCObList, MCEventList, MCPtrList, MCCommandList...). The façade is that
// list, with TYPE in and out of every element operation instead of CObject *
// or void *. It adds no behaviour, no storage and no checks: every call goes
// to the base through a BASE_CLASS reference, so the base's virtual node
// management (a list that takes a reference on each element, say) runs as
// if the base were called directly.
//
//     CTypedPtrList<MCEventList, ECBase *> children;
//     children.AddTail(pNote);
//     for (POSITION pos = children.GetHeadPosition(); pos;)
//         ECBase *pEvent = children.GetNext(pos);
//
// Cost, POSITION validity and thread safety are the base's. Elements are
// converted with static_cast, so TYPE must be a complete class where an
// element operation is used; a TYPE with several bases is adjusted
// correctly.
//
// BASE_CLASS needs: a constructor from the int block size; AddHead, AddTail,
// InsertBefore, InsertAfter taking an element; GetHead, GetTail, RemoveHead,
// RemoveTail, GetAt(POSITION), GetNext(POSITION &), GetPrev(POSITION &)
// returning an element; SetAt(POSITION, element); Find(element, POSITION).
// Operations without an element (RemoveAt, RemoveAll, FindIndex, GetCount,
// IsEmpty, GetHeadPosition, GetTailPosition) are the base's own, inherited
// unchanged. A façade member is only compiled when it is used, so a base may
// lack the operations nobody calls.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/Types.h>

#include <type_traits>
#include <utility>

template <class BASE_CLASS, class TYPE>
class SCOREMODEL_API CTypedPtrList : public BASE_CLASS
{
    static_assert(std::is_pointer_v<TYPE>, "CTypedPtrList holds pointers");

public:
    // nBlockSize goes to the base unchanged (the model's lists ignore it).
    explicit CTypedPtrList(int nBlockSize = 10) : BASE_CLASS(nBlockSize) {}

    // ---- Head and tail --------------------------------------------------------

    // REQUIRES: the list is not empty (the base decides what happens if it is).
    TYPE GetHead() const { return FromBase(Base().GetHead()); }
    TYPE GetTail() const { return FromBase(Base().GetTail()); }
    // Unlinks the head or tail and returns its element.
    TYPE RemoveHead() { return FromBase(Base().RemoveHead()); }
    TYPE RemoveTail() { return FromBase(Base().RemoveTail()); }
    // Return the new element's position (as the base does).
    decltype(auto) AddHead(TYPE newElement) { return Base().AddHead(ToBase(newElement)); }
    decltype(auto) AddTail(TYPE newElement) { return Base().AddTail(ToBase(newElement)); }
    // Add every element of another list, keeping its order.
    decltype(auto) AddHead(BASE_CLASS *pNewList) { return Base().AddHead(pNewList); }
    decltype(auto) AddTail(BASE_CLASS *pNewList) { return Base().AddTail(pNewList); }

    // ---- Walking ----------------------------------------------------------------

    // The element at rPosition; rPosition moves to the next (previous) node,
    // or null past the end.
    TYPE GetNext(POSITION &rPosition) const { return FromBase(Base().GetNext(rPosition)); }
    TYPE GetPrev(POSITION &rPosition) const { return FromBase(Base().GetPrev(rPosition)); }
    // The same, skipping elements that are not of pClass (any element if pClass
    // is null); null at the end.
    TYPE GetNext(POSITION &rPosition, CRuntimeClass *pClass) const
    {
        return FromBase(Base().GetNext(rPosition, pClass));
    }
    TYPE GetPrev(POSITION &rPosition, CRuntimeClass *pClass) const
    {
        return FromBase(Base().GetPrev(rPosition, pClass));
    }
    TYPE GetAt(POSITION position) const { return FromBase(Base().GetAt(position)); }
    // Hides the base's untyped (virtual) SetAt on purpose: a typed list takes
    // only its own type.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual"
#endif
    void SetAt(POSITION position, TYPE newElement) { Base().SetAt(position, ToBase(newElement)); }
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

    // ---- Inserting ---------------------------------------------------------------

    // A null position means the head for InsertBefore and the tail for
    // InsertAfter, when the base allows it.
    decltype(auto) InsertBefore(POSITION position, TYPE newElement)
    {
        return Base().InsertBefore(position, ToBase(newElement));
    }
    decltype(auto) InsertAfter(POSITION position, TYPE newElement)
    {
        return Base().InsertAfter(position, ToBase(newElement));
    }
    decltype(auto) InsertBefore(POSITION position, BASE_CLASS *pNewList)
    {
        return Base().InsertBefore(position, pNewList);
    }
    decltype(auto) InsertAfter(POSITION position, BASE_CLASS *pNewList)
    {
        return Base().InsertAfter(position, pNewList);
    }

    // ---- Searching ---------------------------------------------------------------

    // The first node holding searchValue after startAfter (from the head if
    // null), or null.
    POSITION Find(TYPE searchValue, POSITION startAfter = nullptr) const
    {
        return Base().Find(ToBase(searchValue), startAfter);
    }

private:
    // Calls go through the base by reference, so its virtual functions
    // dispatch. Const members reach the base's non-const readers too: the
    // model's lists do not all offer const overloads, and readers change
    // nothing.
    BASE_CLASS &Base() const { return const_cast<BASE_CLASS &>(static_cast<const BASE_CLASS &>(*this)); }

    template <class ELEMENT>
    static TYPE FromBase(ELEMENT &&element)
    {
        return CTypedPtrCast<TYPE>(static_cast<std::remove_cvref_t<ELEMENT>>(element));
    }

    static auto ToBase(TYPE element)
    {
        using BaseElement = std::remove_cvref_t<decltype(std::declval<BASE_CLASS &>().GetHead())>;
        return CTypedPtrCast<BaseElement>(element);
    }
};
