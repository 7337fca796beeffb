// ECFlowControl: a flow-control mark on the conductor staff: where playback
// jumps or stops (a segno, a coda, "D.C. al Fine").
//
// The kind is one of FlowKind; a new mark is FlowNone. GetFlowControlString
// (text/MCDisplayText.h) gives its words. operator= copies the kind.
//
// Archive record (schema 3): that of ECWithTimeChild, then the kind (1
// byte). Records of schema 2 end before it, and the kind stays FlowNone; a
// kind beyond FlowLast reads as FlowNone.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTimeChild.h>

class SCOREMODEL_API ECFlowControl : public ECWithTimeChild
{
    DECLARE_SERIAL(ECFlowControl)

public:
    enum FlowKind : int
    {
        FlowNone = 0,
        FlowSegno = 1,
        FlowCoda = 2,
        FlowFine = 3,
        FlowDaCapo = 4,         // D.C.
        FlowDaCapoAlFine = 5,   // D.C. al Fine
        FlowDaCapoAlCoda = 6,   // D.C. al Coda
        FlowDalSegno = 7,       // D.S.
        FlowDalSegnoAlFine = 8, // D.S. al Fine
        FlowDalSegnoAlCoda = 9, // D.S. al Coda
        FlowToCoda = 10,
        FlowLast = FlowToCoda
    };

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 24.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    int GetFlowKind() const { return m_nKind; }
    // A kind outside FlowNone..FlowLast changes nothing.
    void SetFlowKind(int kind);

    ECFlowControl &operator=(const ECFlowControl &other)
    {
        ECWithTimeChild::operator=(other);
        m_nKind = other.m_nKind;
        return *this;
    }
    int operator==(const ECFlowControl &other) const
    {
        return ECWithTimeChild::operator==(other) && m_nKind == other.m_nKind;
    }
    int operator!=(const ECFlowControl &other) const { return !(*this == other); }

protected:
    ~ECFlowControl() override;

    int m_nKind = FlowNone;
};
