// MIDI files made for the tests: one that holds every kind of event the
// reader knows, built through the format layer, and helpers to compare files
// event by event whatever their track layout.
#pragma once

#include <SmfFormat.h>

#include <scoremodel/events/base/ECBase.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <tuple>
#include <vector>

namespace smftest
{
inline void Meta(smf::File &f, smf::Track &t, uint32_t tick, uint8_t type, std::initializer_list<uint8_t> bytes)
{
    const std::vector<uint8_t> data(bytes);
    t.events.push_back(f.MakeEvent(tick, smf::kStatusMeta, type, data.data(), data.size()));
}

inline void MetaText(smf::File &f, smf::Track &t, uint32_t tick, uint8_t type, const std::string &text)
{
    t.events.push_back(f.MakeEvent(tick, smf::kStatusMeta, type, text.data(), text.size()));
}

inline void Channel(smf::Track &t, uint32_t tick, uint8_t status, uint8_t d1, uint8_t d2 = 0)
{
    smf::Event e;
    e.tick = tick;
    e.status = status;
    e.data1 = d1;
    e.data2 = d2;
    t.events.push_back(e);
}

inline void Sort(smf::Track &t)
{
    std::stable_sort(t.events.begin(), t.events.end(),
                     [](const smf::Event &a, const smf::Event &b) { return a.tick < b.tick; });
    t.endTick = t.events.empty() ? 0 : t.events.back().tick;
}

// Format 1 at 96 ticks per quarter: a conductor track with two tempi, two
// meters (4/4, then 3/4 from bar 2), two keys, system messages and texts;
// a track on channel 0 with every channel message, notes ended both ways,
// a note over the bar line, a lyric and chord symbols; a track that plays
// on two channels.
inline smf::File EveryEvent()
{
    smf::File f;
    f.format = 1;
    f.division = 96;
    smf::Track &conductor = f.tracks.emplace_back();
    MetaText(f, conductor, 0, smf::kMetaTrackName, "Conductor");
    Meta(f, conductor, 0, smf::kMetaTempo, {0x07, 0xA1, 0x20});
    Meta(f, conductor, 0, smf::kMetaTimeSignature, {4, 2, 24, 8});
    Meta(f, conductor, 0, smf::kMetaKeySignature, {2, 0});
    MetaText(f, conductor, 0, smf::kMetaCopyright, "(c) nobody");
    MetaText(f, conductor, 0, smf::kMetaText, "plain text");
    MetaText(f, conductor, 96, smf::kMetaMarker, "verse");
    MetaText(f, conductor, 96, smf::kMetaCuePoint, "cue");
    MetaText(f, conductor, 96, smf::kMetaInstrument, "organ");
    const uint8_t gm[] = {0x7E, 0x7F, 0x09, 0x01, 0xF7};
    conductor.events.push_back(f.MakeEvent(0, smf::kStatusSysEx, 0, gm, sizeof gm));
    const uint8_t escape[] = {0xF3, 0x01};
    conductor.events.push_back(f.MakeEvent(12, smf::kStatusSysExEscape, 0, escape, sizeof escape));
    Meta(f, conductor, 384, smf::kMetaTempo, {0x06, 0x1A, 0x80});
    Meta(f, conductor, 384, smf::kMetaTimeSignature, {3, 2, 24, 8});
    Meta(f, conductor, 384, smf::kMetaKeySignature, {0xFD, 1});
    Sort(conductor);

    smf::Track &piano = f.tracks.emplace_back();
    MetaText(f, piano, 0, smf::kMetaTrackName, "Piano");
    Channel(piano, 0, 0xC0, 5);
    Channel(piano, 0, 0xB0, 7, 100);
    Channel(piano, 0, 0xB0, 10, 64);
    Channel(piano, 0, 0xE0, 0x00, 0x40);
    Channel(piano, 48, 0xE0, 0x28, 0x46);
    Channel(piano, 24, 0xD0, 50);
    Channel(piano, 24, 0xA0, 60, 30);
    // Controller 60 beside the pressure of key 60: two envelopes.
    Channel(piano, 30, 0xB0, 60, 11);
    MetaText(f, piano, 0, smf::kMetaLyric, "la");
    Meta(f, piano, 0, smf::kMetaSequencerSpecific, {0x7D, 0x43, 0x48, 0x31, 8});
    Meta(f, piano, 192, smf::kMetaSequencerSpecific, {0x7D, 0x43, 0x48, 0x23, 19, 0x36});
    Channel(piano, 0, 0x90, 60, 100);
    Channel(piano, 96, 0x80, 60, 64);
    Channel(piano, 96, 0x90, 64, 90);
    Channel(piano, 192, 0x90, 64, 0);
    // Over the bar line at 384: tied in the score, one note in the file.
    Channel(piano, 336, 0x90, 67, 80);
    Channel(piano, 432, 0x80, 67, 0);
    Sort(piano);

    smf::Track &band = f.tracks.emplace_back();
    Channel(band, 0, 0x99, 36, 120);
    Channel(band, 48, 0x89, 36, 0);
    Channel(band, 0, 0x91, 48, 70);
    Channel(band, 480, 0x81, 48, 0);
    Sort(band);
    return f;
}

// Every event of a file but the ends of track, with its payload, in one
// sorted list: what must survive a trip whatever the tracks look like.
using Flat = std::vector<std::tuple<uint32_t, int, int, int, int, std::string>>;
inline Flat Flatten(const smf::File &f)
{
    Flat all;
    for (const smf::Track &t : f.tracks)
        for (const smf::Event &e : t.events)
            all.emplace_back(e.tick, e.status, e.meta, e.data1, e.data2, e.IsChannel() ? "" : f.PayloadText(e));
    std::sort(all.begin(), all.end());
    return all;
}
// The children of `parent` of class T, in list order.
template <class T> std::vector<T *> ChildrenOf(ECBase *parent)
{
    std::vector<T *> found;
    ECBase::EventList *children = parent ? parent->GetChildren() : nullptr;
    for (POSITION pos = children ? children->GetHeadPosition() : nullptr; pos;)
        if (auto *event = dynamic_cast<T *>(children->GetNext(pos)))
            found.push_back(event);
    return found;
}
} // namespace smftest
