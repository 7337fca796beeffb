// Run-time classes: the root object, class descriptors and the macros that
// declare and implement them.
//
// Every class declared with DECLARE_SERIAL/IMPLEMENT_SERIAL registers its
// descriptor by name when the library is loaded, so an archive can create an
// object from the class name it reads. Descriptors are plain constant data;
// registration only adds them to a name table and is not thread-safe against
// concurrent loading of libraries (nothing in the model does that).
//
//   class ECNote : public ECWithTime {
//       DECLARE_SERIAL(ECNote)
//       ...
//   };
//   IMPLEMENT_SERIAL(ECNote, ECWithTime, VERSIONABLE_SCHEMA | 2)   // in the .cpp
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

class CArchive;
class CObject;

// Marks a schema that accepts any stored schema on load; the record then reads
// the stored one through CArchive::GetObjectSchema.
#define VERSIONABLE_SCHEMA (0x80000000u)

struct SCOREMODEL_API CRuntimeClass
{
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema; // 0xFFFF: never written to an archive
    CObject *(*m_pfnCreateObject)();
    CRuntimeClass *m_pBaseClass;

    // A new object of this class, or null if the class is abstract.
    CObject *CreateObject() const;
    // True when this class is pBaseClass or derives from it.
    BOOL IsDerivedFrom(const CRuntimeClass *pBaseClass) const
    {
        for (const CRuntimeClass *p = this; p; p = p->m_pBaseClass)
            if (p == pBaseClass)
                return TRUE;
        return FALSE;
    }

    // The registered class with this name, or null.
    static CRuntimeClass *FromName(LPCSTR lpszClassName);
    // A new object of the registered class with this name, or null.
    static CObject *CreateObject(LPCSTR lpszClassName);
    // Enters a class in the name table; a later class of the same name wins.
    static void Register(CRuntimeClass *pClass);
};

class SCOREMODEL_API CObject
{
public:
    static CRuntimeClass classCObject;

    virtual ~CObject() = default;
    virtual CRuntimeClass *GetRuntimeClass() const;
    virtual void Serialize(CArchive &ar);

    BOOL IsKindOf(const CRuntimeClass *pClass) const;
    // True when the class may be written to an archive (its schema is not 0xFFFF).
    BOOL IsSerializable() const;

protected:
    CObject() = default;
    CObject(const CObject &) = default;
    CObject &operator=(const CObject &) = default;
};

// Reads an object of the expected class; used by the stream operators that
// IMPLEMENT_SERIAL defines, so that this header need not include CArchive.h.
SCOREMODEL_API CObject *AfxReadObjectOfClass(CArchive &ar, CRuntimeClass *pClassRefRequested);

// Registers a descriptor when the library is loaded.
struct SCOREMODEL_API CClassInit
{
    explicit CClassInit(CRuntimeClass *pClass) { CRuntimeClass::Register(pClass); }
};

#define RUNTIME_CLASS(class_name) (&class_name::class##class_name)

#define DECLARE_DYNAMIC(class_name)                                                                                    \
public:                                                                                                                \
    static CRuntimeClass class##class_name;                                                                            \
    CRuntimeClass *GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name)                                                                                  \
    DECLARE_DYNAMIC(class_name)                                                                                        \
    static CObject *CreateObject();

#define DECLARE_SERIAL(class_name)                                                                                     \
    DECLARE_DYNCREATE(class_name)                                                                                      \
    friend CArchive &operator>>(CArchive &ar, class_name *&pOb);

#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, pfnNew)                                           \
    CRuntimeClass class_name::class##class_name = {#class_name, (int)sizeof(class_name), (wSchema), (pfnNew),          \
                                                   RUNTIME_CLASS(base_class_name)};                                    \
    CRuntimeClass *class_name::GetRuntimeClass() const { return RUNTIME_CLASS(class_name); }                          \
    static const CClassInit _classInit_##class_name(RUNTIME_CLASS(class_name));

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                                 \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                                                               \
    CObject *class_name::CreateObject() { return new class_name; }                                                    \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, class_name::CreateObject)

#define IMPLEMENT_SERIAL(class_name, base_class_name, wSchema)                                                         \
    CObject *class_name::CreateObject() { return new class_name; }                                                    \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, class_name::CreateObject)                            \
    [[maybe_unused]] CArchive &operator>>(CArchive &ar, class_name *&pOb)                                              \
    {                                                                                                                  \
        pOb = static_cast<class_name *>(AfxReadObjectOfClass(ar, RUNTIME_CLASS(class_name)));                       \
        return ar;                                                                                                     \
    }
