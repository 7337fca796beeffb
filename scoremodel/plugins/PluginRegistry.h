// What the plug-in registries share: making an object of a registered class
// with a test of its type. Not part of the library's interface.
#pragma once

#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/platform/CObject.h>

// A new object of `objectClass` when that class derives from `baseClass` and
// can be made; null otherwise (nothing is leaked). The caller casts the
// result to the base's type.
inline CObject *CreatePluginObject(CRuntimeClass *objectClass, CRuntimeClass *baseClass)
{
    if (!objectClass || !objectClass->IsDerivedFrom(baseClass))
        return nullptr;
    CObject *object = objectClass->CreateObject();
    if (object && !object->IsKindOf(baseClass))
    {
        delete object;
        return nullptr;
    }
    return object;
}

// The file reader and writer registries: lists of entries in registration
// order, of which the first of a type answers.
namespace PluginFileList
{
inline void Add(MCPtrList &list, void *entry)
{
    if (entry)
        list.AddTail(entry);
}

inline void Remove(MCPtrList &list, void *entry)
{
    if (POSITION pos = list.Find(entry))
        list.RemoveAt(pos);
}

// A new object from the first ENTRY of `type`, typed by `baseClass`; null
// when no entry has the type or it cannot make one.
template <class ENTRY>
CObject *CreateFirst(const MCPtrList &list, int type, CRuntimeClass *baseClass)
{
    for (POSITION pos = list.GetHeadPosition(); pos;)
    {
        auto *entry = static_cast<ENTRY *>(list.GetNext(pos));
        if (entry && entry->GetFileType() == type)
            return CreatePluginObject(entry->GetFileClass(), baseClass);
    }
    return nullptr;
}
} // namespace PluginFileList
