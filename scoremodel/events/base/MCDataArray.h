// MCDataArray: the data attachments of one event, a small array of DCBase
// pointers indexed by slot.
//
// Its size is a BYTE, so it has at most 255 slots; a new array has 2 empty
// slots. The size changes only through SetSize (and the growing calls built
// on it), which copies the surviving pointers into a fresh block and zeroes
// the new slots. The array does not own what it holds: ECBase::RemoveData
// deletes attachments.
//
// Most events never carry an attachment, so the block is not allocated until
// a non-null pointer is stored or a slot reference is asked for: an empty
// array costs its three words and no heap. Reading an unallocated slot gives
// null, exactly as a zeroed block would.
//
// Attachment type and slot: an attachment type (the plug-in's view code) maps
// to a slot through TypeToIndex, and back through IndexToViewCode:
//
//     type  0 1 2 3 4 5 6 7      (8 and above use slot 0)
//     slot  0 3 1 5 2 4 6 7
//
// Archive record (schema 0), counting only attachments of a serialisable
// class: BYTE count, BYTE highest slot, then per attachment its BYTE view code
// and the object. Documents before version 3 stored a variable-length count
// and the objects position by position instead.
//
// No lock: the array belongs to the thread that owns its event.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/Types.h>

class DCBase;

class SCOREMODEL_API MCDataArray : public CObject
{
    DECLARE_SERIAL(MCDataArray)

public:
    static constexpr int kMaxSize = 255;

    // Two empty slots, no block yet.
    MCDataArray() = default;
    ~MCDataArray() override;
    MCDataArray(const MCDataArray &) = delete;
    MCDataArray &operator=(const MCDataArray &) = delete;

    int GetSize() const { return m_nSize; }
    // Resizes to `nNewSize` clamped to 0..255: a fresh block with the
    // surviving pointers and null new slots. Dropped pointers are not deleted.
    void SetSize(int nNewSize);
    // The pointer in a slot; null outside 0..GetSize()-1.
    DCBase *GetAt(int nIndex) const;
    // A reference to a slot. Throws CInvalidArgException outside the range.
    DCBase *&ElementAt(int nIndex);
    DCBase *&operator[](int nIndex) { return ElementAt(nIndex); }
    DCBase *operator[](int nIndex) const { return GetAt(nIndex); }
    // Stores into an existing slot; an index outside the range does nothing.
    void SetAt(int nIndex, DCBase *newElement);
    // Stores, growing the array first when the index is past the end; an
    // index outside 0..254 does nothing.
    void SetAtGrow(int nIndex, DCBase *newElement);
    // Appends a slot holding `newElement`; returns its index, or -1 when the
    // array is already at 255 slots.
    int Add(DCBase *newElement);
    // Size 0; the attachments are not deleted.
    void RemoveAll();

    // The slot of an attachment type: 0,3,1,5,2,4,6,7 for types 0..7, slot 0
    // for any other type.
    static int TypeToIndex(int type);
    // The view code of a slot: 0,2,4,1,5,3,6,7 for slots 0..7, 0 otherwise.
    static int IndexToViewCode(int index);

    void Serialize(CArchive &ar) override;

private:
    // Allocates the block for the current size if there is none.
    void Materialize();
    // Reads one attachment into `slot`. Throws CArchiveException for one read
    // before (it belongs to another array) or a slot that is taken.
    void LoadAttachment(CArchive &ar, int slot);

    DCBase **m_pData = nullptr;
    BYTE m_nSize = 2;
};
