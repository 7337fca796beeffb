// ECGroup: binds events that are not neighbours in the tree (the notes of a
// beam, slur or tie).
//
// Its one value is the group type, kept in the spare byte of ECBase, whose
// bits set the group's life rules:
//
//   0x01  the group lets go of its children when its last parent goes
//   0x02  the group leaves its parents when its last child goes
//   0x04  bit 0x08 follows the parents: set while the group has none,
//         clear while it has some
//   0x08  the group is closed: RemoveChild and RemoveChildren refuse with 0
//
// So a group of type 0x05 lives under its staff and stays closed while it is
// taken out of the tree, for a command that puts it back whole; one of type
// 0x03 lives exactly as long as it has both a parent and a child.
//
// operator= copies the time part and the type; operator== compares both.
//
// Archive record: that of ECWithTimeChild, then the type as one byte, read
// from version 3 on (below that the constructor's type stands).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECGroup : public ECWithTimeChild
{
    DECLARE_SERIAL(ECGroup)

public:
    enum GroupType : BYTE
    {
        RemoveChildrenWithLastParent = 0x01,
        LeaveParentsWithLastChild = 0x02,
        ClosedWhileParentless = 0x04,
        Closed = 0x08
    };

    ECGroup() = default;
    explicit ECGroup(BYTE type) { SetSpareByte(type); }

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 28.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    virtual BYTE GetGroupType() const { return GetSpareByte(); }
    virtual void SetGroupType(BYTE type) { SetSpareByte(type); }
    // 1 when any of `bits` is set.
    virtual int HasType(BYTE bits) const { return (GetSpareByte() & bits) ? 1 : 0; }
    virtual void AddGroupType(BYTE bits) { SetSpareByte(static_cast<BYTE>(GetSpareByte() | bits)); }
    virtual void RemoveGroupType(BYTE bits) { SetSpareByte(static_cast<BYTE>(GetSpareByte() & ~bits)); }

    // The base operations, then the life rules of the type bits.
    int AddParent(ECBase *parent) override;
    int RemoveParent(ECBase *parent) override;
    int RemoveFromParents() override;
    // 0, touching nothing, while the group is closed.
    int RemoveChild(ECBase *child, int deep) override;
    // Also 0 while closed, but only for a shallow removal. A deep one takes
    // the subtree down for good (a document closing, a discarded paste):
    // each note holds its groups as parents, so a closed group that kept its
    // notes then would keep them, and they it, for ever.
    int RemoveChildren(int deep) override;
    // A group taken out of the tree lets go of its children (a closed one
    // keeps them), so that no note keeps a parent that is not in the tree;
    // the remove command keeps the links for its undo.
    int RemoveFromChildren() override;

    ECGroup &operator=(const ECGroup &other)
    {
        ECWithTimeChild::operator=(other);
        SetSpareByte(other.GetSpareByte());
        return *this;
    }
    int operator==(const ECGroup &other) const
    {
        return ECWithTimeChild::operator==(other) && GetSpareByte() == other.GetSpareByte();
    }
    int operator!=(const ECGroup &other) const { return !(*this == other); }

protected:
    ~ECGroup() override;

    // After a removal: when no note is left among the children, the rest
    // go too (a tie, slur or glissando means nothing without notes).
    void RemoveChildrenWhenNoNoteIsLeft();
};
