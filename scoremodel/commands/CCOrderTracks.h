// CCOrderTracks: puts the staves of the document into a new order (command
// id 34).
//
// The order names, for each new staff number from 1, the number the staff
// has now: {2, 3, 1} makes staff 2 the first, staff 3 the second and staff
// 1 the third. The staves are the same objects afterwards, renumbered; what
// they hold moves with them. Undo puts back the order Process found, and a
// redo applies the same permutation again.
//
//     CArray<int, int> order;                      // swap the first two staves
//     order.Add(2); order.Add(1); order.Add(3);
//     (new CCOrderTracks(order))->Apply(document);
//
// Process refuses (0) an order that is not a permutation of 1 to the number
// of staves the document has when the command runs. The chord staff, the
// conductor staff and wave tracks keep their places.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/platform/CArray.h>

#include <vector>

class ECTrack;

class SCOREMODEL_API CCOrderTracks : public CCBase
{
    DECLARE_DYNCREATE(CCOrderTracks)

public:
    // No order: Prepare refuses.
    CCOrderTracks();
    explicit CCOrderTracks(const CArray<int, int> &order);

    // 34.
    int GetCommandId() override;
    // The base's, and 0 without an order.
    int Prepare() override;
    // Renumbers the staves; 0 for an order that is not a permutation.
    int Process() override;
    // The order Process found.
    void Undo() override;

    const std::vector<int> &GetOrder() const { return m_order; }

protected:
    // Gives back the holds on the staves (ECTrack::ReleaseHold).
    ~CCOrderTracks() override;

private:
    // Takes every staff out and puts them back, numbered 1 up, in `staves`.
    void Place(const std::vector<ECTrack *> &staves);
    void ReleaseStaves();

    std::vector<int> m_order;
    std::vector<ECTrack *> m_before; // held: Ref'd while the command lives
};
