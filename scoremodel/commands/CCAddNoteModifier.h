// CCAddNoteModifier: adds a mark to a note or chord (command id 7).
//
// An accent or tremolo given a chord lands on each of the chord's notes as
// a copy of its own, and the given mark is released: a chord never carries
// one. The other marks a note can take (accidental, arpeggio, mordent,
// ornament, trill, turn) are added as given; any other event is refused
// (Add returns null).
//
// A finger mark replaces a finger of the same range on its note: Process
// takes the old one out, and Undo takes the new one off without bringing
// the old one back. The replacement is one-way on purpose.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCAdd.h>

class SCOREMODEL_API CCAddNoteModifier : public CCAdd
{
    DECLARE_DYNCREATE(CCAddNoteModifier)

public:
    CCAddNoteModifier();
    CCAddNoteModifier(ECBase *child, ECBase *parent);

    // `midi` is not used. For an accent or tremolo on a chord, the item of
    // the last note (null for a chord without notes).
    CCAddItem *Add(ECBase *child, ECBase *parent, FCMidi &midi) override;
    // 7.
    int GetCommandId() override;
    // Takes out the finger that the new one replaces, then CCAdd::Process.
    int Process() override;

protected:
    ~CCAddNoteModifier() override;

private:
    ECBase *m_pReplacedFinger = nullptr;
    ECBase *m_pReplacedFingerNote = nullptr;
};
