// CCRemoveKey: removes keys from their measures under undo (command id 41).
//
// A CCRemove that takes a key (ECKey) only: Remove answers null for any other
// event. The staff's key cache follows: the key in force is the one before it.
// Its undo is a CCAddKey of the same events, which puts each back under the
// parent that held it, in its old place in the list, and brings the derived
// data up to date again (see DerivedOwners.h); redo is a second Process.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCRemove.h>

class SCOREMODEL_API CCRemoveKey : public CCRemove
{
    DECLARE_DYNCREATE(CCRemoveKey)

public:
    CCRemoveKey();
    explicit CCRemoveKey(ECBase *event);

    using CCRemove::Remove;
    // Null for an event that is not a key (ECKey).
    CCRemoveItem *Remove(ECBase *event) override;

    // 41.
    int GetCommandId() override;
    int Process() override;
    void Undo() override;

protected:
    ~CCRemoveKey() override;
};
