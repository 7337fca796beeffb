// MCUndoItem: one undo step, the commands of one bracket.
//
// The step holds a reference on each of its commands, so they outlive the
// batch that ran them; undo calls their Undo from the newest back, redo runs
// the same objects again through the whole road. The target is taken from
// the first command added.
//
// Steps are deleted only by MCCommandMgr::OnIdle or ClearUndo, never while a
// command runs.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/platform/CString.h>

class CCBase;
class ECPerformance;

class SCOREMODEL_API MCUndoItem
{
public:
    explicit MCUndoItem(const CString &name = CString()) : m_name(name) {}
    MCUndoItem(const MCUndoItem &) = delete;
    MCUndoItem &operator=(const MCUndoItem &) = delete;

    const CString &GetName() const { return m_name; }
    CTypedPtrList<MCCommandList, CCBase *> &GetCommands() { return m_commands; }
    ECPerformance *GetTarget() const { return m_pTarget; }
    // No commands.
    int IsEmpty() const { return m_commands.IsEmpty(); }

    // Appends the command (taking a reference); the first one names the
    // target. Nothing for null.
    void AddCommand(CCBase *cmd);
    // Takes the command out if it is there.
    void RemoveCommand(CCBase *cmd);

    // Calls Undo on each command from the newest back, each as if it were
    // synchronous, and announces them with a synchronous record of code 501.
    void UndoCommands();
    // Applies the commands again, in order, to the target.
    void RedoCommands();

private:
    CString m_name;
    CTypedPtrList<MCCommandList, CCBase *> m_commands;
    ECPerformance *m_pTarget = nullptr;
};
