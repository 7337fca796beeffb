// CCGroupStaves: brackets staves together, or takes a bracket away (command
// id 32), under undo.
//
//     (new CCGroupStaves(1, 2, 0))->Apply(document);   // staves 1 and 2
//     (CCGroupStaves::Ungroup(id))->Apply(document);   // that group goes
//
// Process hands the range to the conductor staff's groups
// (ECConductorStaff::GroupStaves), which decide between the primary and the
// secondary table and may move crossed groups aside; it refuses (0) what the
// groups refuse. Because a new group can rearrange the others, Process keeps
// both tables as they were and Undo puts them back whole. A redo runs the
// same request on the same tables, and so gets the same id.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/events/structure/MCGroup.h>

class SCOREMODEL_API CCGroupStaves : public CCBase
{
    DECLARE_DYNCREATE(CCGroupStaves)

public:
    // Nothing to do: Prepare refuses.
    CCGroupStaves();
    // Groups the staves `first` to `last` with a bracket of `kind`.
    CCGroupStaves(int first, int last, int kind);
    // A command that removes the group `id`.
    static CCGroupStaves *Ungroup(int id);

    // 32.
    int GetCommandId() override;
    // The base's, and 0 without a request.
    int Prepare() override;
    // 0 when the groups refuse the range or know no group of the id.
    int Process() override;
    // The tables as Process found them.
    void Undo() override;

    // The id of the group made (or removed); -1 before Process.
    int GetGroupId() const { return m_id; }

protected:
    ~CCGroupStaves() override;

private:
    // Names a host's X11 macros (None) cannot reach.
    enum Request
    {
        NoRequest,
        MakeGroup,
        TakeGroupAway
    };
    Request m_action = NoRequest;
    int m_first = 0;
    int m_last = 0;
    int m_kind = 0;
    int m_id = -1;
    MCGroup::GroupTable m_primaryBefore;
    MCGroup::GroupTable m_secondaryBefore;
};
