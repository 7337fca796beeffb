// CCAddEnvPoint: adds points to envelopes under undo (command id 3).
//
// A CCAdd that takes envelope points (ECEnvPoint and its kin) only: Add answers
// null for any other event. The envelope recalculates what it derives from its
// points (clock times, bar/pulse/tick positions). A point at a time the
// envelope has taken already is refused by the envelope and stays out; an item
// without a parent places nothing. Its undo is a CCRemoveEnvPoint of the same
// events, and redo a second Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>

class SCOREMODEL_API CCAddEnvPoint : public CCAdd
{
    DECLARE_DYNCREATE(CCAddEnvPoint)

public:
    CCAddEnvPoint();
    // Add(event, parent, FCMidi::MidiNull()).
    CCAddEnvPoint(ECBase *event, ECBase *parent);

    // Null for an event that is not envelope points (ECEnvPoint and its kin).
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;

    // 3.
    int GetCommandId() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCAddEnvPoint() override;
};
