// CCAddClef: adds clefs to measures under undo (command id 1).
//
// A CCAdd that takes a clef (ECClef) only: Add answers null for any other
// event. A clef given no parent goes into the measure of its track at its time,
// if there is one (none is made). The staff's clef cache follows. Its undo is a
// CCRemoveClef of the same events, and redo a second Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>

class SCOREMODEL_API CCAddClef : public CCAdd
{
    DECLARE_DYNCREATE(CCAddClef)

public:
    CCAddClef();
    // Add(event, parent, FCMidi::MidiNull()).
    CCAddClef(ECBase *event, ECBase *parent);

    // Null for an event that is not a clef (ECClef).
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;

    // 1.
    int GetCommandId() override;
    // Finds the parent of each item that has none (see above).
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCAddClef() override;
};
