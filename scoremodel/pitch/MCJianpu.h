// MCJianpu: the numbered-notation state that a walk carries from event to
// event.
//
// Numbered notation places some objects (measures, slurs, ties, tempo marks,
// texts) by an offset of their own, and a walk over the tree may have to
// handle such an object for either of two offset modes. MCJianpu holds the
// mode and a pair of 32-bit words that the walk's actions read and write;
// what the pair means is the business of the action that uses it. The
// traversal action ACOffsetBase saves both around every event, so a change
// made at one event is seen below it and undone when the walk leaves it.
//
//     MCJianpu info;
//     info.SetMode(MCJianpu::ModeBoth);   // offset objects run for 0 and 2
//     find.SetJianpuInfo(info);
//
// A plain value: no lock, copy freely.
#pragma once

#include <scoremodel/Export.h>

class SCOREMODEL_API MCJianpu
{
public:
    enum Mode : int
    {
        ModeFirst = 0,   // the first offset mode
        ModePlain = 1,   // no offset mode: every event is handled once
        ModeSecond = 2,  // the second offset mode
        ModeBoth = 3,    // offset objects are handled for ModeFirst, then ModeSecond
        ModeCount = 4
    };

    // The pair of words a walk carries.
    struct Pair
    {
        int first = 0;
        int second = 0;

        bool operator==(const Pair &other) const { return first == other.first && second == other.second; }
        bool operator!=(const Pair &other) const { return !(*this == other); }
    };

    // Mode 0, pair (0, 0).
    MCJianpu() = default;
    MCJianpu(int mode, const Pair &pair);

    int GetMode() const { return m_nMode; }
    // A mode outside 0..3 changes nothing.
    void SetMode(int mode);

    const Pair &GetPair() const { return m_pair; }
    void SetPair(const Pair &pair) { m_pair = pair; }
    void SetPair(int first, int second);

    bool operator==(const MCJianpu &other) const { return m_nMode == other.m_nMode && m_pair == other.m_pair; }
    bool operator!=(const MCJianpu &other) const { return !(*this == other); }

private:
    int m_nMode = ModeFirst;
    Pair m_pair;
};
