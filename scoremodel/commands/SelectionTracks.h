// The tracks of a selection of events, as the clipboard stores them:
// relative to the lowest track among them.
//
//     int base = GetLowestTrack(&selection);
//     SetRelativeTracks(&selection, base);   // the lowest becomes 0
//
// A tempo of type 24 belongs to no track of its own and does not count for
// the lowest track, but it is moved with the others.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>

// 1 only for an ECTempo of tempo type 24; 0 for null and any other event.
SCOREMODEL_API int IgnoreEvents(ECBase *event);
// The smallest track of the listed events, skipping null entries and those
// IgnoreEvents flags. Track 0 never wins (a running 0 counts as not set), so
// the answer is 0 only when no other track is found; 0 for a null list.
SCOREMODEL_API int GetLowestTrack(CTypedPtrList<MCEventList, ECBase *> *events);
// SetTrack(GetTrack() - base) on every listed event, none skipped.
SCOREMODEL_API void SetRelativeTracks(CTypedPtrList<MCEventList, ECBase *> *events, int base);
