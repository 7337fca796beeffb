// CCAddKey: adds keys to measures under undo (command id 4).
//
// A CCAdd that takes a key (ECKey) only: Add answers null for any other event.
// A key given no parent goes into the measure of its track at its time,
// if there is one (none is made). The staff's key cache follows.
// Its undo is a CCRemoveKey of the same events, and redo a second Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>

class SCOREMODEL_API CCAddKey : public CCAdd
{
    DECLARE_DYNCREATE(CCAddKey)

public:
    CCAddKey();
    // Add(event, parent, FCMidi::MidiNull()).
    CCAddKey(ECBase *event, ECBase *parent);

    // Null for an event that is not a key (ECKey).
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;

    // 4.
    int GetCommandId() override;
    // Finds the parent of each item that has none (see above).
    int Prepare() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCAddKey() override;
};
