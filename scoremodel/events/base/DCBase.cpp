#include <scoremodel/events/base/DCBase.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(DCBase, CObject, VERSIONABLE_SCHEMA | 2)

DCBase::DCBase() : m_state(1)
{
}

DCBase::DCBase(const DCBase &other) : CObject(), m_state(1)
{
    *this = other;
}

DCBase::~DCBase() = default;

DCBase &DCBase::operator=(const DCBase &)
{
    return *this;
}

int DCBase::operator==(const DCBase &other) const
{
    return m_state.GetValue() == other.m_state.GetValue();
}

CObject *DCBase::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(DCBase)))
        *this = *static_cast<DCBase *>(src);
    return this;
}

void DCBase::PostSerialize(CArchive &)
{
}

int DCBase::IsDirty()
{
    return m_state.GetBitValue(0);
}

void DCBase::SetDirty(int dirty)
{
    m_state.SetBitValue(0, dirty ? 1 : 0);
}

void DCBase::SetOwner(ECBase *owner)
{
    m_owner = owner;
}

void DCBase::SetProperty(enum Property, void *)
{
}

void DCBase::GetProperty(enum Property, void *)
{
}

void DCBase::GetDegree(void *)
{
}

void DCBase::Serialize(CArchive &ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << static_cast<LONG>(m_value.GetValue()) << static_cast<LONG>(m_value2.GetValue());
        ar.WriteObject(m_owner);
        return;
    }

    if (ActiveArchiveVersion() >= ArchiveVersionAttachmentSlots)
    {
        LONG value = 0;
        LONG value2 = 0;
        ar >> value >> value2;
        m_value.SetValue(value);
        m_value2.SetValue(value2);
    }
    else
    {
        LONG flagWord = 0;
        LONG state = 0;
        LONG value = 0;
        ar >> flagWord >> state >> value;
        m_state.SetDirty(flagWord & 1);
        m_state.SetOverride((flagWord >> 1) & 1);
        m_state.SetValue(state);
        m_value.SetValue(value);
    }
    CObject *owner = ar.ReadObject(RUNTIME_CLASS(ECBase));
    m_owner = static_cast<ECBase *>(owner);
}
