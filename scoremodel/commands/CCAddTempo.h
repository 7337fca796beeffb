// CCAddTempo: adds tempo points to the tempo map under undo (command id 10).
//
// A CCAddEnvPoint that takes a tempo (ECTempo) only: Add answers null for any
// other event. A tempo given no parent goes into the score's tempo map (made if
// there is none yet). The map recalculates the clock times of its points. Its
// undo is a CCRemoveEnvPoint of the same events (as for every CCAddEnvPoint),
// and redo a second Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAddEnvPoint.h>

class SCOREMODEL_API CCAddTempo : public CCAddEnvPoint
{
    DECLARE_DYNCREATE(CCAddTempo)

public:
    CCAddTempo();
    // Add(event, parent, FCMidi::MidiNull()).
    CCAddTempo(ECBase *event, ECBase *parent);

    // Null for an event that is not a tempo (ECTempo).
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;

    // 10.
    int GetCommandId() override;
    // Finds the parent of each item that has none (see above).
    int Prepare() override;

protected:
    ~CCAddTempo() override;
};
