// What the plug-in registries share: making an object of a registered class
// with a test of its type. Not part of the library's interface.
#pragma once

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
