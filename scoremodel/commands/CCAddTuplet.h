// CCAddTuplet: adds tuplets with their notes (command id 13).
//
// Add remembers the notes below each tuplet when it is listed. If a tuplet
// has lost its notes by the time the command is prepared (its removal
// handed them to the measure), Prepare gives them back. Undo removes each
// tuplet's notes and then the tuplet; a command with no notes remembered
// undoes nothing.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>

#include <map>
#include <memory>

class SCOREMODEL_API CCAddTuplet : public CCAdd
{
    DECLARE_DYNCREATE(CCAddTuplet)

public:
    CCAddTuplet();

    // CCAdd::Add, then the notes below `child` are remembered for the item.
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;
    // 13.
    int GetCommandId() override;
    // The base's; then every tuplet without a note gets its notes back.
    int Prepare() override;
    void Undo() override;

    // The notes of the first item; an empty list without items.
    EventList &GetNoteList();

protected:
    ~CCAddTuplet() override;

private:
    std::map<CCAddItem *, std::unique_ptr<EventList>> m_notes;
    EventList m_noNotes;
};
