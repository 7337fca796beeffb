// CCCopyTracks: places copies of staves, with everything they hold, in the
// score (command id 18), under undo.
//
//     CArray<int, int> staves;
//     staves.Add(1);                                   // copy staff 1 ...
//     (new CCCopyTracks(staves, 2))->Apply(document);  // ... as staff 2
//
// The first Process makes the copies: each staff goes through the archive,
// as a document save and load would take it, so the copy has its own
// measures, notes, chords, groups and every link between them, and nothing
// it shares with the source. Events a staff only points at outside itself
// (the source of a mirror) are copied with it. The copies then enter as the
// staves numbered from `at` on (at the end for -1), in the order given; the
// staves behind move up. Undo takes the copies out again, and a redo puts
// the same copies back. The command holds them from the first Process to
// its end.
//
// Process refuses (0) a staff number that names no staff, and a copy the
// archive cannot make.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/platform/CArray.h>

#include <vector>

class ECTrack;

class SCOREMODEL_API CCCopyTracks : public CCBase
{
    DECLARE_DYNCREATE(CCCopyTracks)

public:
    // Nothing to copy: Prepare refuses.
    CCCopyTracks();
    CCCopyTracks(const CArray<int, int> &staves, int at);

    // 18.
    int GetCommandId() override;
    // The base's, and 0 without staves.
    int Prepare() override;
    int Process() override;
    // Takes the copies out, the last first.
    void Undo() override;

    // The copies, in the order of the staves given; empty before Process.
    const std::vector<ECTrack *> &GetCopies() const { return m_copies; }

protected:
    // Gives back the holds on the copies (ECTrack::ReleaseHold).
    ~CCCopyTracks() override;

private:
    std::vector<int> m_staves;
    int m_at = -1;
    std::vector<ECTrack *> m_copies;
};
