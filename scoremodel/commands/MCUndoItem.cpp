#include <scoremodel/commands/MCUndoItem.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/state/SCCommand.h>

#include <memory>

void MCUndoItem::AddCommand(CCBase *cmd)
{
    if (!cmd)
        return;
    m_commands.AddTail(cmd);
    if (!m_pTarget)
        m_pTarget = cmd->GetTarget();
}

void MCUndoItem::RemoveCommand(CCBase *cmd)
{
    if (POSITION pos = m_commands.Find(cmd))
        m_commands.RemoveAt(pos);
}

void MCUndoItem::UndoCommands()
{
    // Owned here until it is applied, in case a command's Undo throws.
    auto record = std::make_unique<SCCommand>(SCCommand::CodeUndone);
    for (POSITION pos = m_commands.GetTailPosition(); pos;)
    {
        CCBase *cmd = m_commands.GetPrev(pos);
        // Whatever a command applies while it undoes must stand before the
        // next older command is undone.
        const int synchronous = cmd->IsSynchronous();
        cmd->SetSynchronous(1);
        cmd->Undo();
        cmd->SetSynchronous(synchronous);
        record->AddCommand(cmd);
    }
    record->SetSynchronous(1);
    record.release()->Apply(m_pTarget);
}

void MCUndoItem::RedoCommands()
{
    m_commands.Apply(m_pTarget);
}
