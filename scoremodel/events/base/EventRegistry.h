// The event registry: from an event id to its class.
//
// Each id maps to a class name, and the name to the class through the
// run-time class table (CRuntimeClass::FromName), which every class fills by
// itself when the library loads. So the registry needs no list of classes to
// include and no registration call: a class answers as soon as it is built
// into the library, and an id whose class is not (yet) there answers null.
// A class found under the name must derive from ECBase, or the id answers
// null too.
//
// Some ids are refused although their classes exist: the bank selects (3,
// 4), the envelope containers and their generic points (11, 19, 22, 23, 34,
// 38, 39, 42, 46, 48, 52, 53, 58), the glissando (26) and the video (70) are
// made by their owners, never by id; 63, 68, 69 and 76 belong to no class.
//
//     ECBase *pNote = CreateEventW(EVENT_ID_NOTE);   // count 0: Ref it to keep it
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/platform/CObject.h>

class ECBase;

// The run-time class of an id the registry serves; null for any other id
// (negative ones and those above 78 included) and for a class not built.
SCOREMODEL_API CRuntimeClass *GetEventRuntimeClass(int id);

// A new event of the id's class, with reference count 0; null where
// GetEventRuntimeClass gives null.
SCOREMODEL_API ECBase *CreateEventW(int id);

// The class name of an id in the table, served or not ("ECNote" for 37);
// null for an id that belongs to no class.
SCOREMODEL_API const char *GetEventClassName(int id);
