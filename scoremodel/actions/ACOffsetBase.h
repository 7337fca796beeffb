// ACOffsetBase: a walker that carries numbered-notation state (MCJianpu).
//
// Around each event it saves the MCJianpu pair and mode and restores them
// afterwards, so whatever a DoAction changes in them is seen by the events
// below and undone when the walk leaves the event. In mode 3
// (MCJianpu::ModeBoth) an offset object (IsCheckOffsetObj) is walked twice,
// once in mode 0 and once in mode 2, starting from the same pair each time;
// the result of the second run counts, whatever the first one gave. Every
// other event, and every event in modes 0 to 2, is walked once as by ACBase.
//
// So with mode 3 a search meets an offset object, and everything beneath it,
// twice. The list Apply is ACBase's.
//
// Threads: as ACBase.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/pitch/MCJianpu.h>

class SCOREMODEL_API ACOffsetBase : public ACBase
{
public:
    explicit ACOffsetBase(int bReverse = 0);
    ~ACOffsetBase() override;

    int Apply(EventList *list, int bContinue) override;
    // See the header; -1 for a null event.
    int Apply(ECBase *e) override;

    // ---- Numbered notation (virtual, in this order) ----

    // Takes a copy of `info`.
    virtual void SetJianpuInfo(MCJianpu &info);
    // The state the walk carries; a DoAction may change it.
    virtual MCJianpu &GetJianpuInfo();
    // 1 for the objects placed by an offset of their own: conductor measure,
    // measure, slur, tempo, text, tie. 0 otherwise and for null.
    virtual int IsCheckOffsetObj(ECBase *e);

    // The pair as it stood when the walk entered the event now being visited.
    const MCJianpu::Pair &GetSavedPair() const { return m_savedPair; }

protected:
    MCJianpu::Pair m_savedPair;
    MCJianpu m_jianpu;
};
