// ECBrac: a bracket or brace that joins staves, placed at a conductor
// measure.
//
// One byte holds the bracket: its type in the low 7 bits and the primary
// mark in the top bit, kept in the spare byte of ECBase. The group id, which
// ties the brackets of one staff group together, is a separate byte that no
// record holds: after a load it is 0 until the caller that rebuilds the
// groups sets it. operator= copies both; operator== compares both.
//
// Archive record: that of ECBase, then the type byte raw.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

class SCOREMODEL_API ECBrac : public ECBase
{
    DECLARE_SERIAL(ECBrac)

public:
    CObject *Copy(CObject *src) override;
    // 8.
    int GetEventId() const override;
    // ECConductorMeasure.
    int GetParentTypes(CArray<int, int> &types) override;
    void Serialize(CArchive &ar) override;

    // 0 to 127; higher bits are dropped.
    virtual BYTE GetBracType() const { return GetSpareByte() & 0x7F; }
    virtual void SetBracType(BYTE type) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x80) | (type & 0x7F))); }
    virtual BYTE GetGroupID() const { return m_groupId; }
    // 1 for the primary bracket of its group.
    virtual int GetPrimary() const { return (GetSpareByte() & 0x80) ? 1 : 0; }
    // Sets the group id and the primary mark (any non-zero `primary`).
    virtual void SetGroupID(BYTE groupId, int primary);

    ECBrac &operator=(const ECBrac &other)
    {
        ECBase::operator=(other);
        SetSpareByte(other.GetSpareByte());
        m_groupId = other.m_groupId;
        return *this;
    }
    int operator==(const ECBrac &other) const
    {
        return GetSpareByte() == other.GetSpareByte() && m_groupId == other.m_groupId;
    }
    int operator!=(const ECBrac &other) const { return !(*this == other); }

protected:
    ~ECBrac() override;

private:
    BYTE m_groupId = 0;
};
