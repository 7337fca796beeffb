// CCRemoveTrack: takes a track out of the document (command id 44).
//
// Process notes where the track stands (its staff or wave track number) and
// hands it to ECConductor::RemoveTrack; the staves or wave tracks behind it
// move down. Undo places the same object back at the same number through
// InsertTrack. The command holds a reference on its track from construction
// to destruction, so the track outlives its removal for as long as the undo
// history keeps the command.
//
// Process refuses a track that is not placed in the document.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>

class ECTrack;

class SCOREMODEL_API CCRemoveTrack : public CCBase
{
    DECLARE_DYNCREATE(CCRemoveTrack)

public:
    // No track: Prepare refuses.
    CCRemoveTrack();
    explicit CCRemoveTrack(ECTrack *track);

    // 44.
    int GetCommandId() override;
    // The base's, and 0 without a track.
    int Prepare() override;
    // ECConductor::RemoveTrack; 0 when the track is not placed.
    int Process() override;
    // ECConductor::InsertTrack at the place the track had.
    void Undo() override;

    ECTrack *GetTrack() const { return m_pTrack; }

protected:
    // Gives back the hold on the track (ECTrack::ReleaseHold).
    ~CCRemoveTrack() override;

private:
    ECTrack *m_pTrack = nullptr;
    // The index InsertTrack takes to put the track back; -1 before Process.
    int m_nIndex = -1;
};
