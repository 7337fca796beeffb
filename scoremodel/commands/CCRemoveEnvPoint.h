// CCRemoveEnvPoint: removes points from their envelopes under undo (command id
// 40).
//
// A CCRemove that takes envelope points only (ECEnvPoint and its kin: tempo,
// dynamics, pedals, controllers, transposition, compression): Remove answers
// null for any other event. The envelope recalculates what it derives from its
// points: the clock times of a tempo map, the bar/pulse/tick positions of a
// meter map. Its undo is a CCAddEnvPoint of the same events, which puts each
// back under the parent that held it, in its old place in the list, and brings
// the derived data up to date again (see DerivedOwners.h); redo is a second
// Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCRemove.h>

class SCOREMODEL_API CCRemoveEnvPoint : public CCRemove
{
    DECLARE_DYNCREATE(CCRemoveEnvPoint)

public:
    CCRemoveEnvPoint();
    explicit CCRemoveEnvPoint(ECBase *event);

    using CCRemove::Remove;
    // Null for an event that is not an envelope point.
    CCRemoveItem *Remove(ECBase *event) override;

    // 40.
    int GetCommandId() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCRemoveEnvPoint() override;
};
