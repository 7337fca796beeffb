#include <scoremodel/events/base/LCBase.h>

#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(LCBase, CObject, VERSIONABLE_SCHEMA | 2)

void LCBase::Serialize(CArchive &ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
        ar << m_bEnabled << m_nPriority;
    else
        ar >> m_bEnabled >> m_nPriority;
}

CObject *LCBase::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(LCBase)))
        *this = *static_cast<LCBase *>(src);
    return this;
}

LCBase &LCBase::operator=(const LCBase &other)
{
    if (this != &other)
    {
        m_bEnabled = other.m_bEnabled;
        m_nPriority = other.m_nPriority;
    }
    return *this;
}

int LCBase::operator==(const LCBase &other) const
{
    return m_bEnabled == other.m_bEnabled && m_nPriority == other.m_nPriority;
}
