// The mirror list of a mirrored event (a tempo, a meter): the event keeps
// its staff-level images and each image points back at the event.
#pragma once

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/notes/ECMirror.h>

namespace mirror_links
{
// Appends `mirror` (null is ignored) and points it at `event`.
inline void Add(ECBase::EventList &mirrors, ECMirror *mirror, ECBase *event)
{
    if (!mirror)
        return;
    mirrors.AddTail(mirror);
    mirror->SetMirrorEvent(event, 0);
}

// Unlinks and drops `mirror` when the list holds it.
inline void Remove(ECBase::EventList &mirrors, ECMirror *mirror)
{
    if (!mirror)
        return;
    POSITION pos = mirrors.Find(mirror);
    if (!pos)
        return;
    mirror->SetMirrorEvent(nullptr, 0);
    mirrors.RemoveAt(pos);
}

// Unlinks every mirror and empties the list.
inline void RemoveAll(ECBase::EventList &mirrors)
{
    for (POSITION pos = mirrors.GetHeadPosition(); pos;)
        static_cast<ECMirror *>(mirrors.GetNext(pos))->SetMirrorEvent(nullptr, 0);
    mirrors.RemoveAll();
}
} // namespace mirror_links
