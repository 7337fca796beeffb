#include <scoremodel/platform/CObject.h>

#include <cstring>
#include <string>
#include <unordered_map>

namespace
{
// Function-local so that registrations from static initializers of any
// translation unit find the table constructed.
std::unordered_map<std::string, CRuntimeClass *> &ClassTable()
{
    static std::unordered_map<std::string, CRuntimeClass *> table;
    return table;
}
} // namespace

CRuntimeClass CObject::classCObject = {"CObject", (int)sizeof(CObject), 0xFFFF, nullptr, nullptr};

static const CClassInit s_classInitCObject(&CObject::classCObject);

CObject *CRuntimeClass::CreateObject() const
{
    return m_pfnCreateObject ? m_pfnCreateObject() : nullptr;
}

CRuntimeClass *CRuntimeClass::FromName(LPCSTR lpszClassName)
{
    if (!lpszClassName)
        return nullptr;
    auto &table = ClassTable();
    auto it = table.find(lpszClassName);
    return it == table.end() ? nullptr : it->second;
}

CObject *CRuntimeClass::CreateObject(LPCSTR lpszClassName)
{
    CRuntimeClass *pClass = FromName(lpszClassName);
    return pClass ? pClass->CreateObject() : nullptr;
}

void CRuntimeClass::Register(CRuntimeClass *pClass)
{
    if (pClass && pClass->m_lpszClassName)
        ClassTable()[pClass->m_lpszClassName] = pClass;
}

CRuntimeClass *CObject::GetRuntimeClass() const
{
    return &classCObject;
}

void CObject::Serialize(CArchive &)
{
}

BOOL CObject::IsKindOf(const CRuntimeClass *pClass) const
{
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

BOOL CObject::IsSerializable() const
{
    return (GetRuntimeClass()->m_wSchema & ~VERSIONABLE_SCHEMA) != 0xFFFF;
}
