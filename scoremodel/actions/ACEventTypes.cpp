#include <scoremodel/actions/ACEventTypes.h>

ACEventTypes::ACEventTypes(int nSlots)
{
    if (nSlots > 0)
    {
        m_types.SetSize(nSlots);
        for (int &slot : m_types)
            slot = -1;
    }
}

void ACEventTypes::AddEvtType(int id)
{
    m_types.SetAtGrow(m_nTypeCount, id);
    ++m_nTypeCount;
}

void ACEventTypes::AddEvtTypes(CArray<int, int> &ids)
{
    // Read by index, so passing this list's own array appends a copy of it.
    const INT_PTR n = ids.GetSize();
    for (INT_PTR i = 0; i < n; ++i)
        AddEvtType(ids[i]);
}

void ACEventTypes::RemoveEvtType(int id)
{
    for (int i = 0; i < m_nTypeCount; ++i)
    {
        if (m_types[i] == id)
        {
            m_types.RemoveAt(i);
            --m_nTypeCount;
            return;
        }
    }
}

void ACEventTypes::RemoveEvtTypes()
{
    m_types.RemoveAll();
    m_nTypeCount = 0;
}
