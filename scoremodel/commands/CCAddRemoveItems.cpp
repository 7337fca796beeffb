#include <scoremodel/commands/CCAddRemoveItems.h>

#include <scoremodel/events/base/ECBase.h>

namespace
{
// Holds `next` in `slot`, giving back what the slot held.
void Hold(ECBase *&slot, ECBase *next)
{
    if (next)
        next->Ref();
    if (slot)
        slot->Unref(1);
    slot = next;
}
} // namespace

CCAddItem::~CCAddItem()
{
    Hold(m_pChild, nullptr);
    Hold(m_pParent, nullptr);
}

void CCAddItem::SetChild(ECBase *child)
{
    Hold(m_pChild, child);
}

void CCAddItem::SetParent(ECBase *parent)
{
    Hold(m_pParent, parent);
}

CCRemoveItem::~CCRemoveItem()
{
    Hold(m_pChild, nullptr);
    Hold(m_pParent, nullptr);
}

void CCRemoveItem::SetChild(ECBase *child)
{
    Hold(m_pChild, child);
    if (!child)
        return;
    CArray<int, int> types;
    child->GetParentTypes(types);
    for (INT_PTR i = 0; i < types.GetSize(); ++i)
        if (ECBase *parent = child->GetAncestor(types[i], -1))
        {
            SetParent(parent);
            return;
        }
}

void CCRemoveItem::SetParent(ECBase *parent)
{
    if (!m_pParent)
        Hold(m_pParent, parent);
}
