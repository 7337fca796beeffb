// ConfigureRemove: turns a selection into the commands that take it out of
// the document.
//
//     CTypedPtrList<MCCommandList, CCBase *> commands;
//     if (ConfigureRemove(&selection, commands))
//         commands.Apply(document);
//
// The selection is first reduced to its topmost events (a note selected
// with its own chord goes with the chord, not on its own). Then, by kind:
// structure (barlines, beams, dots, measures, staves, the score itself) is
// passed over; a clef, key or meter goes through its own CCRemoveClef,
// CCRemoveKey or CCRemoveMeter (which re-cuts the bars it governed) unless
// it stands at time zero, where it is kept without a word; a dynamic, pedal, transposition, compression or tempo goes through
// its own CCRemoveEnvPoint; a text of type 3 is not removed but emptied
// through the list's CCEdit; everything else shares one CCRemove. The tempo
// at time zero, and a program change at time zero on voice 0, are kept, and
// the user is told why ("IDS_MSG_REMOVE_FIRST_TEMPO",
// "IDS_MSG_REMOVE_FIRST_PROGRAMCHANGE" of "DataModel", in an information
// box); the walk goes on with the next event.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/events/base/ECBase.h>

// Appends the commands to `commands` (reusing its shared CCRemove and CCEdit
// when it has them). 1 when `commands` is not empty then; 0 for a null list.
SCOREMODEL_API int ConfigureRemove(CTypedPtrList<MCEventList, ECBase *> *events,
                                   CTypedPtrList<MCCommandList, CCBase *> &commands);
