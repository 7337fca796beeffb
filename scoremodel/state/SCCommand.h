// SCCommand: the record that carries commands to the views.
//
// Code 500: a batch of commands finished inside a notification bracket.
// Code 501: an undo step was undone (its commands, newest first).
// Code 502: a command refused a phase and was aborted.
//
// The record holds a reference on each command, so the views may read them
// for as long as the record lives.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCCommand : public SCBase
{
public:
    enum : unsigned int
    {
        CodeFinished = 500,
        CodeUndone = 501,
        CodeAborted = 502
    };

    explicit SCCommand(unsigned int code = CodeFinished) : SCBase(code) {}

    CTypedPtrList<MCCommandList, CCBase *> &GetCommands() { return m_commands; }
    // Appends the command, taking a reference; nothing for null.
    void AddCommand(CCBase *cmd);

private:
    CTypedPtrList<MCCommandList, CCBase *> m_commands;
};
