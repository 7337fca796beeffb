// CCRemoveClef: removes clefs from their measures under undo (command id 39).
//
// A CCRemove that takes a clef (ECClef) only: Remove answers null for any other
// event. The staff's clef cache follows: the clef in force is the one before
// it. Its undo is a CCAddClef of the same events, which puts each back under
// the parent that held it, in its old place in the list, and brings the derived
// data up to date again (see DerivedOwners.h); redo is a second Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCRemove.h>

class SCOREMODEL_API CCRemoveClef : public CCRemove
{
    DECLARE_DYNCREATE(CCRemoveClef)

public:
    CCRemoveClef();
    explicit CCRemoveClef(ECBase *event);

    using CCRemove::Remove;
    // Null for an event that is not a clef (ECClef).
    CCRemoveItem *Remove(ECBase *event) override;

    // 39.
    int GetCommandId() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCRemoveClef() override;
};
