// What the staff-level signatures (ECKey, ECClef) share: the time change
// that goes through the staff's cache. Internal to the library.
//
// The time change. A staff keeps its keys and clefs in a cache sorted by
// time, so it must never see a changed time while the
// event is still filed in it: the event leaves the cache of its nearest
// ECStaff ancestor (event id 55), takes the new time and is filed again,
// under the hand it belongs to. An event with no staff above it only takes
// the time.

#pragma once

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECBase.h>

// Sets `*time` on `event` through `setTime` (the class's base setter), with
// the staff's cache around it as described above. Nothing for a null time.
void SetStaffCachedTime(ECBase *event, MCTime *time, int hand, void (*setTime)(ECBase *, MCTime *));

