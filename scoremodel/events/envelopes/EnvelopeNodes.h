// Direct steps through the node chain of an envelope's child list, for the
// envelope family's hot loops: the list's own GetNext/GetPrev would copy the
// element out and move a position by reference at every step.
//
// REQUIRES: `pos` is a valid, non-null position of an MCObList-based list.
#pragma once

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/MCObList.h>

namespace envelope_nodes
{
using Node = MCObList::Node;

inline Node *AsNode(POSITION pos)
{
    return reinterpret_cast<Node *>(pos);
}
inline POSITION Prev(POSITION pos)
{
    return reinterpret_cast<POSITION>(AsNode(pos)->pPrev);
}
inline POSITION Next(POSITION pos)
{
    return reinterpret_cast<POSITION>(AsNode(pos)->pNext);
}
// The event at `pos` as a T; the caller knows the list holds only Ts.
template <class T>
inline T *ItemAt(POSITION pos)
{
    return static_cast<T *>(static_cast<ECBase *>(AsNode(pos)->data));
}
} // namespace envelope_nodes
