// ACPostSerialize: runs the second section of a document archive over the
// tree.
//
// After the tree section is written or read, this walk calls PostSerialize
// with the archive on every event, and then on each of its data attachments,
// in walk order: the records of the post section (mirror links, references
// between staves) stand in the stream in exactly that order. The records read
// the document's version themselves (ActiveArchiveVersion), which the caller
// sets before the walk.
//
// Beams, slurs and ties are not entered (result 1): their notes are reached
// through the measures, and must not be written twice.
//
//     ACPostSerialize post(ar);
//     post.Apply(pPerformance);
//
// Archive errors (CArchiveException) pass through the walk to the caller.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACBase.h>

class CArchive;

class SCOREMODEL_API ACPostSerialize : public ACBase
{
public:
    // Keeps a pointer to `ar`, which must outlive the action.
    explicit ACPostSerialize(CArchive &ar);
    ~ACPostSerialize() override;

    // -1 for null. PostSerialize on the event, then on each attachment from
    // slot 0 up; 1 for a beam, slur or tie, 0 otherwise.
    int DoAction(ECBase *e) override;

    CArchive *GetArchive() const { return m_pArchive; }

protected:
    CArchive *m_pArchive;
};
