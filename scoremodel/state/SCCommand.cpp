#include <scoremodel/state/SCCommand.h>

#include <scoremodel/commands/CCBase.h>

void SCCommand::AddCommand(CCBase *cmd)
{
    if (cmd)
        m_commands.AddTail(cmd);
}
