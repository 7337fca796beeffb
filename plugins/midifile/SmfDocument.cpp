#include "SmfDocument.h"

#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>
#include <scoremodel/events/envelopes/ECControllerPoints.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/marks/ECSystemMessage.h>
#include <scoremodel/events/media/ECLyric.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/plugins/CPluginData.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>
#include <queue>
#include <set>

IMPLEMENT_SERIAL(SmfEventData, DCBase, 1)

CObject *SmfEventData::Copy(CObject *src)
{
    if (auto *other = dynamic_cast<SmfEventData *>(src))
    {
        m_value = other->m_value;
        m_value2 = other->m_value2;
    }
    return this;
}

void SmfEventData::SetNote(int pitch, int velocity, int release, int channel)
{
    m_value.SetValue(static_cast<int>((pitch & 0xFF) | (velocity & 0xFF) << 8 | (release & 0xFF) << 16 |
                                      static_cast<unsigned>(channel & 0xFF) << 24));
}

void SmfEventData::SetChannel(int channel)
{
    m_value.SetValue(static_cast<int>(static_cast<unsigned>(channel & 0xFF) << 24));
}


namespace smf
{
namespace
{
using EventList = ECBase::EventList;

CPluginData s_noteData(RUNTIME_CLASS(SmfEventData), kSmfViewCode, EVENT_ID_NOTE);
CPluginData s_staffData(RUNTIME_CLASS(SmfEventData), kSmfViewCode, EVENT_ID_STAFF);
CPluginData s_conductorData(RUNTIME_CLASS(SmfEventData), kSmfViewCode, EVENT_ID_CONDUCTOR_STAFF);

// By run-time class, not dynamic_cast: the class lives in this module, and a
// type test across modules compares names, which a million notes feel.
SmfEventData *DataOf(ECBase *event, int create)
{
    DCBase *data = event->GetData(kSmfViewCode, create);
    return data && data->GetRuntimeClass() == RUNTIME_CLASS(SmfEventData) ? static_cast<SmfEventData *>(data)
                                                                          : nullptr;
}

// An event made here dies with this holder unless a list took it. It takes
// no reference of its own: a list searches for an event it might already
// hold only when someone holds it, and that search, once per add, would
// make a bar of many notes quadratic.
template <class T> class Fresh
{
public:
    explicit Fresh(T *event) : m_event(event) {}
    ~Fresh()
    {
        if (m_event->GetRefCount() == 0)
        {
            m_event->Ref();
            m_event->Unref(1);
        }
    }
    Fresh(const Fresh &) = delete;
    Fresh &operator=(const Fresh &) = delete;

private:
    T *m_event;
};

// A float of quarter notes whose tempo gives exactly `micros` back.
float BpmFor(uint32_t micros, bool &exact)
{
    const double wanted = 60000000.0 / micros;
    float bpm = static_cast<float>(wanted);
    for (int step = 0; step < 8; ++step)
    {
        for (float candidate : {bpm, std::nextafter(bpm, 0.0f), std::nextafter(bpm, 1e9f)})
            if (std::llround(60000000.0 / candidate) == static_cast<long long>(micros))
            {
                exact = true;
                return candidate;
            }
        bpm = wanted < bpm ? std::nextafter(bpm, 0.0f) : std::nextafter(bpm, 1e9f);
    }
    exact = false;
    return static_cast<float>(wanted);
}

uint32_t MicrosFor(float bpm)
{
    if (!(bpm > 0.0f))
        return 500000;
    return static_cast<uint32_t>(std::clamp<long long>(std::llround(60000000.0 / bpm), 1, 0xFFFFFF));
}

struct PendingNote
{
    uint32_t start, end;
    uint8_t pitch, velocity, release;
    int staff;
};

class Importer
{
public:
    Importer(const File &file, ECPerformance *doc, const ImportLimits &limits)
        : m_file(file), m_doc(doc), m_limits(limits)
    {
    }

    ImportReport Run()
    {
        ECConductor *conductor = m_doc->GetConductor();
        m_cs = conductor ? conductor->GetConductorStaff() : nullptr;
        if (!m_cs)
            throw std::runtime_error("the document has no conductor staff");
        m_report.tracks = m_file.tracks.size();
        m_report.events = m_file.EventCount();
        m_report.warnings = m_file.warnings;
        if (SmfEventData *data = DataOf(m_cs, 1))
            data->SetDivision(m_file.division);
        ReadConductorMaps();
        MakeStaves();
        LayOutMeasures();
        for (size_t i = 0; i < m_file.tracks.size(); ++i)
            ReadTrack(static_cast<int>(i));
        PlaceNotes();
        m_report.staves = static_cast<size_t>(m_cs->GetMaxStaffNumber());
        m_report.bars = static_cast<size_t>(m_cs->GetMaxMeasureNumber() + 1);
        return m_report;
    }

private:
    MCTime At(uint32_t tick)
    {
        const float beats = static_cast<float>(static_cast<double>(tick) / m_file.division);
        if (std::llround(static_cast<double>(beats) * m_file.division) != static_cast<long long>(tick))
            ++m_report.rounded;
        return MCTime(beats);
    }

    void ReadConductorMaps()
    {
        ECTempoEnv *tempi = m_cs->GetTempoEnv();
        ECMeterEnv *meters = m_cs->GetMeterEnv();
        if (!tempi || !meters)
            throw std::runtime_error("the document refused its tempo or meter map");
        std::vector<std::pair<uint32_t, uint32_t>> tempoChanges, meterChanges;
        for (const Track &track : m_file.tracks)
            for (const Event &e : track.events)
            {
                if (e.status != kStatusMeta)
                    continue;
                const uint8_t *p = m_file.Payload(e);
                if (e.meta == kMetaTempo)
                {
                    const uint32_t micros = e.length >= 3 ? (p[0] << 16) | (p[1] << 8) | p[2] : 0;
                    if (e.length != 3 || micros == 0)
                        Skip("tempo event of " + std::to_string(e.length) + " bytes or of 0 microseconds");
                    else
                        tempoChanges.emplace_back(e.tick, micros);
                }
                else if (e.meta == kMetaTimeSignature)
                {
                    if (e.length < 2 || p[0] == 0 || p[1] > 6)
                    {
                        Skip("time signature that is not n/1 to n/64");
                        continue;
                    }
                    meterChanges.emplace_back(e.tick, p[0] | p[1] << 8);
                }
            }
        // One change per time in each map; the later one wins.
        auto lastPerTick = [this](std::vector<std::pair<uint32_t, uint32_t>> &changes) {
            std::stable_sort(changes.begin(), changes.end(),
                             [](const auto &a, const auto &b) { return a.first < b.first; });
            std::vector<std::pair<uint32_t, uint32_t>> kept;
            for (const auto &change : changes)
            {
                if (!kept.empty() && kept.back().first == change.first)
                {
                    kept.back() = change;
                    ++m_report.superseded;
                }
                else
                    kept.push_back(change);
            }
            changes.swap(kept);
        };
        lastPerTick(meterChanges);
        for (const auto &[tick, value] : meterChanges)
        {
            auto *meter = new ECMeter(static_cast<unsigned char>(value & 0xFF),
                                      static_cast<unsigned char>(1u << (value >> 8)), 255);
            Fresh<ECMeter> hold(meter);
            MCTime at = At(tick);
            meter->SetTime(&at);
            meters->AddChild(meter, 1);
        }
        lastPerTick(tempoChanges);
        if (tempoChanges.empty() || tempoChanges.front().first != 0)
            tempoChanges.insert(tempoChanges.begin(), {0u, 500000u});
        for (const auto &[tick, micros] : tempoChanges)
        {
            auto *tempo = new ECTempo(1, MCTime::TimeZero());
            Fresh<ECTempo> hold(tempo);
            MCTime at = At(tick);
            tempo->SetTime(&at);
            bool exact = true;
            tempo->SetTempo(BpmFor(micros, exact), 1.0f);
            if (!exact)
                ++m_report.rounded;
            tempi->AddChild(tempo, 1);
        }
    }

    // Staves in track, then channel order; a track with staff-bound meta
    // events and no channel message gets one staff without a channel.
    void MakeStaves()
    {
        std::set<std::pair<int, int>> wanted;
        bool needAny = false;
        for (size_t i = 0; i < m_file.tracks.size(); ++i)
        {
            const bool conductorTrack = i == 0 && m_file.format == 1;
            bool channels = false, staffBound = false;
            for (const Event &e : m_file.tracks[i].events)
            {
                if (e.IsChannel())
                {
                    wanted.insert({static_cast<int>(i), e.Channel()});
                    channels = true;
                }
                else if (e.status == kStatusMeta)
                {
                    const bool text = e.meta >= kMetaText && e.meta <= kMetaCuePoint;
                    if (e.meta == kMetaLyric || IsChord(e) || (text && !conductorTrack))
                        staffBound = true;
                    if (e.meta == kMetaKeySignature || e.meta == kMetaLyric || IsChord(e))
                        needAny = true;
                }
            }
            if (staffBound && !channels && !conductorTrack)
                wanted.insert({static_cast<int>(i), kNoChannel});
        }
        if (wanted.empty() && needAny)
            wanted.insert({0, kNoChannel});
        if (wanted.size() > static_cast<size_t>(m_limits.staves))
            throw std::runtime_error("the file asks for " + std::to_string(wanted.size()) + " staves, more than " +
                                     std::to_string(m_limits.staves));
        for (const auto &[track, channel] : wanted)
        {
            ECStaff *staff = m_cs->GetStaff(m_cs->GetMaxStaffNumber() + 1, 1);
            if (!staff)
                throw std::runtime_error("the document refused a staff");
            if (SmfEventData *data = DataOf(staff, 1))
                data->SetChannel(channel);
            const int number = m_cs->GetStaffNumber(staff);
            m_staffOf[{track, channel}] = number;
            if (!m_homeOf.count(track))
                m_homeOf[track] = number;
        }
    }

    void LayOutMeasures()
    {
        uint32_t last = 0;
        for (const Track &track : m_file.tracks)
            last = std::max(last, track.endTick);
        const int rows = m_cs->GetMaxStaffNumber() + 1;
        const double end = static_cast<double>(last) / m_file.division;
        const double bars = EstimateBars(end);
        if (bars > m_limits.bars || bars * rows > m_limits.measures)
            TooLong(rows);
        // In steps, so that a limit is found before the measures exist.
        for (double at = 0.0;; at = std::min(end, at + 64.0))
        {
            MCTime t(static_cast<float>(at));
            if (!m_cs->GetConductorMeasureAtTime(t, 1, 1))
                throw std::runtime_error("the measures up to beat " + std::to_string(at) + " could not be made");
            const long made = m_cs->GetMaxMeasureNumber() + 1;
            if (made > m_limits.bars || made * rows > m_limits.measures)
                TooLong(rows);
            if (at >= end)
                break;
        }
        auto &columns = m_cs->GetConductorMeasures();
        for (int i = 0; i < columns.GetSize(); ++i)
            m_columnTick.push_back(TickOf(*columns[i]->GetTime()));
        m_endTick = TickOf(m_cs->GetMaxMeasureEndTime());
    }

    [[noreturn]] void TooLong(int rows) const
    {
        throw std::runtime_error("the file lasts more than " +
                                 std::to_string(std::min<long>(m_limits.bars, m_limits.measures / rows)) + " bars of " +
                                 std::to_string(rows - 1) + " staves");
    }

    // The bars the meters cut up to `end` (in quarters), counted before any
    // exists, so that a file too long is refused at once.
    double EstimateBars(double end) const
    {
        double bars = 0.0, at = 0.0, length = 4.0;
        ECMeterEnv *meters = m_cs->FindMeterEnv();
        ECBase::EventList *points = meters ? meters->GetChildren() : nullptr;
        for (POSITION pos = points ? points->GetHeadPosition() : nullptr; pos;)
            if (auto *meter = dynamic_cast<ECMeter *>(points->GetNext(pos)))
            {
                const double t = std::min<double>(meter->GetTime()->GetSeconds(), end);
                bars += std::ceil(std::max(0.0, t - at) / length);
                at = std::max(at, t);
                length = std::max(1.0 / 32, 4.0 * meter->GetNumerator() / std::max(1, int(meter->GetDenominator())));
            }
        return bars + std::ceil(std::max(0.0, end - at) / length) + 1.0;
    }

    uint32_t TickOf(const MCTime &t) const
    {
        return static_cast<uint32_t>(
            std::clamp<long long>(std::llround(static_cast<double>(t.GetSeconds()) * m_file.division), 0, kMaxTick));
    }

    int Column(uint32_t tick) const
    {
        auto it = std::upper_bound(m_columnTick.begin(), m_columnTick.end(), tick);
        return std::max(0, static_cast<int>(it - m_columnTick.begin()) - 1);
    }

    ECMeasure *MeasureAt(int staff, uint32_t tick)
    {
        ECConductorMeasure *column = m_cs->GetConductorMeasures()[Column(tick)];
        ECMeasure *measure = column->GetMeasureOnTrack(staff);
        if (!measure)
            throw std::runtime_error("staff " + std::to_string(staff) + " has no measure at tick " +
                                     std::to_string(tick));
        return measure;
    }

    // The characters of a text event: UTF-8 where the bytes are that, else
    // one character per byte (Latin-1, what older files hold), so that no
    // byte is lost to a replacement character.
    CString TextOf(const Event &e) const
    {
        const std::string bytes = m_file.PayloadText(e);
        CString utf8 = CString::FromUtf8(bytes.data(), static_cast<int>(bytes.size()));
        if (utf8.ToUtf8() == bytes)
            return utf8;
        std::wstring latin(bytes.begin(), bytes.end());
        for (size_t i = 0; i < bytes.size(); ++i)
            latin[i] = static_cast<unsigned char>(bytes[i]);
        return CString(latin.data(), static_cast<int>(latin.size()));
    }

    static bool IsChord(const Event &e)
    {
        return e.status == kStatusMeta && e.meta == kMetaSequencerSpecific && (e.length == 5 || e.length == 6);
    }

    bool IsChordRecord(const Event &e) const
    {
        return IsChord(e) && std::equal(kChordRecord, kChordRecord + 3, m_file.Payload(e));
    }

    void Skip(const std::string &what)
    {
        ++m_report.skipped;
        if (m_skippedKinds.insert(what).second)
            m_report.warnings.push_back("skipped: " + what);
    }

    // Envelopes of a staff by kind: controllers by number, key pressure by
    // kPolyKeys + key, and the three single ones by a negative number.
    static constexpr int kPolyKeys = 1000;

    template <class Env> Env *Envelope(int staff, int key, std::map<std::pair<int, int>, ECEnvelope *> &cache)
    {
        ECEnvelope *&env = cache[{staff, key}];
        if (!env)
        {
            auto *made = new Env;
            Fresh<Env> hold(made);
            if constexpr (std::is_same_v<Env, ECControllerEnv>)
                made->SetControllerType(key);
            if constexpr (std::is_same_v<Env, ECPolyPressureEnv>)
                made->SetKey(key - kPolyKeys);
            made->SetVoiceTrack(0, staff);
            if (!m_cs->GetStaff(staff, 0)->AddChild(made, 1))
                throw std::runtime_error("a staff refused an envelope");
            env = made;
        }
        return static_cast<Env *>(env);
    }

    void AddPoint(ECEnvelope *env, ECEnvPoint *point, uint32_t tick, float value, int staff)
    {
        Fresh<ECEnvPoint> hold(point);
        MCTime at = At(tick);
        point->SetTime(&at);
        point->SetValue(value);
        point->SetVoiceTrack(0, staff);
        if (env->AddChild(point, 1))
            return;
        // An envelope holds one point per time: the later message wins, as
        // it would on a synthesizer.
        if (auto *tail = dynamic_cast<ECEnvPoint *>(env->GetChildren()->GetTail()))
            if (*tail->GetTime() == at)
            {
                tail->SetValue(value);
                ++m_report.superseded;
            }
    }

    void ReadTrack(int index)
    {
        const Track &track = m_file.tracks[index];
        const bool conductorTrack = index == 0 && m_file.format == 1;
        std::map<int, std::deque<std::pair<uint32_t, uint8_t>>> open; // channel << 8 | pitch
        for (const Event &e : track.events)
        {
            if (e.IsChannel())
            {
                const int staff = m_staffOf.at({index, e.Channel()});
                const int key = e.Channel() << 8 | e.data1;
                if (e.IsNoteOn())
                    open[key].emplace_back(e.tick, e.data2);
                else if (e.IsNoteOff())
                {
                    auto it = open.find(key);
                    if (it == open.end() || it->second.empty())
                    {
                        ++m_report.unmatchedOffs;
                        continue;
                    }
                    const auto [start, velocity] = it->second.front();
                    it->second.pop_front();
                    const uint8_t release = e.Kind() == 0x90 ? 0x80 : e.data2;
                    m_notes.push_back({start, e.tick, e.data1, velocity, release, staff});
                }
                else
                    ReadChannelMessage(e, staff);
                continue;
            }
            if (e.status == kStatusSysEx || e.status == kStatusSysExEscape)
            {
                auto *message = new ECSystemMessage;
                Fresh<ECSystemMessage> hold(message);
                std::vector<BYTE> bytes;
                if (e.status == kStatusSysEx)
                    bytes.push_back(kStatusSysEx);
                bytes.insert(bytes.end(), m_file.Payload(e), m_file.Payload(e) + e.length);
                message->GetMessage().SetSysExBuf(bytes.data(), static_cast<unsigned>(bytes.size()), 1);
                MCTime at = At(e.tick);
                message->SetTime(&at);
                message->SetVoiceTrack(0, 0);
                m_cs->AddChild(message, 1);
                continue;
            }
            ReadMeta(e, index, conductorTrack);
        }
        for (auto &[key, starts] : open)
            for (const auto &[start, velocity] : starts)
            {
                ++m_report.unfinishedNotes;
                m_notes.push_back({start, track.endTick, static_cast<uint8_t>(key & 0x7F), velocity, 0,
                                   m_staffOf.at({index, key >> 8})});
            }
    }

    void ReadChannelMessage(const Event &e, int staff)
    {
        switch (e.Kind())
        {
        case 0xA0:
            AddPoint(Envelope<ECPolyPressureEnv>(staff, kPolyKeys + e.data1, m_envelopes), new ECPolyPressure, e.tick,
                     e.data2, staff);
            break;
        case 0xB0:
            if (e.data1 >= 120)
                Skip("channel mode message (controller 120 to 127)");
            else
            {
                auto *point = new ECControlChange;
                point->SetControllerNum(e.data1);
                AddPoint(Envelope<ECControllerEnv>(staff, e.data1, m_envelopes), point, e.tick, e.data2, staff);
            }
            break;
        case 0xC0:
            AddPoint(Envelope<ECPatchEnv>(staff, -1, m_envelopes), new ECProgramChange, e.tick,
                     ECPatchEnv::MakePatchValue(0, 0, e.data1), staff);
            break;
        case 0xD0:
            AddPoint(Envelope<ECChanPressureEnv>(staff, -2, m_envelopes), new ECChannelPressure, e.tick, e.data1,
                     staff);
            break;
        case 0xE0:
            AddPoint(Envelope<ECPitchBendEnv>(staff, -3, m_envelopes), new ECPitchBend, e.tick,
                     static_cast<float>(e.data1 | (e.data2 << 7)), staff);
            break;
        }
    }

    void ReadMeta(const Event &e, int index, bool conductorTrack)
    {
        const uint8_t *p = m_file.Payload(e);
        auto home = [&]() {
            auto it = m_homeOf.find(index);
            return it != m_homeOf.end() ? it->second : 1;
        };
        switch (e.meta)
        {
        case kMetaTempo:
        case kMetaTimeSignature:
            return; // read with the maps
        case kMetaKeySignature:
        {
            const int sf = e.length == 2 ? static_cast<int8_t>(p[0]) : 99;
            if (sf < -7 || sf > 7 || p[1] > 1)
            {
                Skip("key signature out of -7 to 7 or of mode above 1");
                return;
            }
            for (int staff = 1; staff <= m_cs->GetMaxStaffNumber(); ++staff)
            {
                auto *key = new ECKey(static_cast<unsigned char>(std::max(sf, 0)),
                                      static_cast<unsigned char>(std::max(-sf, 0)), p[1]);
                Fresh<ECKey> hold(key);
                MCTime at = At(e.tick);
                key->SetTime(&at);
                key->SetVoiceTrack(0, staff);
                MeasureAt(staff, e.tick)->AddChild(key, 1);
            }
            return;
        }
        case kMetaLyric:
        {
            auto *lyric = new ECLyric;
            Fresh<ECLyric> hold(lyric);
            lyric->SetText(TextOf(e));
            lyric->SetTextType(kTextTypeBase + kMetaLyric);
            MCTime at = At(e.tick);
            lyric->SetTime(&at);
            lyric->SetVoiceTrack(0, home());
            MeasureAt(home(), e.tick)->AddChild(lyric, 1);
            return;
        }
        case kMetaSequencerSpecific:
            if (IsChordRecord(e))
            {
                auto *chord = new ECChordSymbol;
                Fresh<ECChordSymbol> hold(chord);
                chord->SetChordRoot(chord->GetZeltoChordRootFromMidi(p[3]));
                chord->SetChordFlavor(chord->GetChordTypeForSetting2Zelto(p[4]));
                chord->SetChordBass(e.length == 6 && p[5] ? chord->GetZeltoChordRootFromMidi(p[5]) : 0);
                chord->SetChordStyle(1);
                MCTime at = At(e.tick);
                chord->SetTime(&at);
                chord->SetVoiceTrack(0, home());
                MeasureAt(home(), e.tick)->AddChild(chord, 1);
            }
            else
                Skip("sequencer-specific event of another kind");
            return;
        default:
            break;
        }
        if (e.meta >= kMetaText && e.meta <= kMetaCuePoint)
        {
            auto *text = new ECText;
            Fresh<ECText> hold(text);
            text->SetText(TextOf(e));
            text->SetTextType(kTextTypeBase + e.meta);
            MCTime at = At(e.tick);
            text->SetTime(&at);
            ECStaff *staff = conductorTrack ? m_cs : m_cs->GetStaff(home(), 0);
            text->SetVoiceTrack(0, conductorTrack ? 0 : home());
            staff->AddChild(text, 1);
            return;
        }
        char kind[48];
        std::snprintf(kind, sizeof kind, "meta event FF %02X", e.meta);
        Skip(kind);
    }

    void PlaceNotes()
    {
        std::stable_sort(m_notes.begin(), m_notes.end(), [](const PendingNote &a, const PendingNote &b) {
            return a.staff != b.staff ? a.staff < b.staff : a.start < b.start;
        });
        long extraPieces = 0;
        for (const PendingNote &n : m_notes)
        {
            ++m_report.notes;
            const int channel = DataOf(m_cs->GetStaff(n.staff, 0), 0)
                                    ? DataOf(m_cs->GetStaff(n.staff, 0), 0)->GetChannel()
                                    : 0;
            int column = Column(n.start);
            std::vector<std::pair<uint32_t, uint32_t>> pieces;
            uint32_t from = n.start;
            for (;;)
            {
                const uint32_t bar = column + 1 < static_cast<int>(m_columnTick.size()) ? m_columnTick[column + 1]
                                                                                          : m_endTick;
                if (n.end <= bar || bar <= from || column + 1 >= static_cast<int>(m_columnTick.size()))
                {
                    pieces.emplace_back(from, n.end);
                    break;
                }
                pieces.emplace_back(from, bar);
                from = bar;
                ++column;
            }
            extraPieces += static_cast<long>(pieces.size()) - 1;
            if (extraPieces > m_limits.tiePieces)
                throw std::runtime_error("the notes cross more than " + std::to_string(m_limits.tiePieces) + " bar lines");
            ECTie *tie = nullptr;
            if (pieces.size() > 1)
            {
                tie = new ECTie;
                Fresh<ECTie> hold(tie);
                MCTime at = At(n.start);
                tie->SetTime(&at);
                tie->SetVoiceTrack(0, n.staff);
                m_cs->GetStaff(n.staff, 0)->AddChild(tie, 1);
            }
            for (const auto &[s, e] : pieces)
            {
                auto *note = new ECNote;
                Fresh<ECNote> hold(note);
                MCTime at = At(s);
                MCTime length(static_cast<float>(static_cast<double>(e - s) / m_file.division));
                note->SetTime(&at);
                note->SetDuration(&length);
                note->SetMidiPitch(n.pitch);
                note->SetVoiceTrack(0, n.staff);
                MeasureAt(n.staff, s)->AddChild(note, 1);
                if (SmfEventData *data = DataOf(note, 1))
                    data->SetNote(n.pitch, n.velocity, n.release, channel);
                if (tie)
                    tie->AddChild(note, 1);
            }
        }
    }

    const File &m_file;
    ECPerformance *m_doc;
    ImportLimits m_limits;
    ECConductorStaff *m_cs = nullptr;
    ImportReport m_report;
    std::map<std::pair<int, int>, int> m_staffOf;
    std::map<int, int> m_homeOf;
    std::map<std::pair<int, int>, ECEnvelope *> m_envelopes;
    std::vector<uint32_t> m_columnTick;
    uint32_t m_endTick = 0;
    std::vector<PendingNote> m_notes;
    std::set<std::string> m_skippedKinds;
};

// ---- Export ----

// Order of events at one tick: texts and maps, system messages, note offs,
// other channel messages, note ons, and last the offs of notes of no length.
struct Pending
{
    // Tick, then order, then the sequence of making: one sort key.
    uint64_t key;
    Event event;
};

class Exporter
{
public:
    explicit Exporter(ECPerformance *doc) : m_doc(doc) {}

    File Run(size_t *skipped)
    {
        ECConductor *conductor = m_doc->GetConductor();
        m_cs = conductor ? conductor->GetConductorStaff() : nullptr;
        if (!m_cs)
            throw std::runtime_error("the document has no conductor staff");
        if (SmfEventData *data = DataOf(m_cs, 0))
            if (data->GetDivision() > 0 && data->GetDivision() <= 0x7FFF)
                m_file.division = static_cast<uint16_t>(data->GetDivision());
        m_file.format = 1;
        WriteConductor();
        for (int staff = 1; staff <= m_cs->GetMaxStaffNumber(); ++staff)
            WriteStaff(staff);
        if (skipped)
            *skipped = m_skipped;
        return std::move(m_file);
    }

private:
    uint32_t Tick(const MCTime *t) const
    {
        const double v = static_cast<double>(t->GetSeconds()) * m_file.division;
        return static_cast<uint32_t>(std::clamp<long long>(std::llround(v), 0, kMaxTick));
    }

    uint64_t Key(const std::vector<Pending> &, int order, uint32_t tick)
    {
        if (m_sequence >= (1u << 28))
            throw std::runtime_error("more than 2^28 events on one staff");
        return static_cast<uint64_t>(tick) << 32 | static_cast<uint64_t>(order) << 28 | m_sequence++;
    }

    void Meta(std::vector<Pending> &out, int order, uint32_t tick, uint8_t type, const std::string &bytes)
    {
        out.push_back({Key(out, order, tick), m_file.MakeEvent(tick, kStatusMeta, type, bytes.data(), bytes.size())});
    }

    void Channel(std::vector<Pending> &out, int order, uint32_t tick, int status, int d1, int d2)
    {
        Event e;
        e.tick = tick;
        e.status = static_cast<uint8_t>(status);
        e.data1 = static_cast<uint8_t>(std::clamp(d1, 0, 127));
        e.data2 = static_cast<uint8_t>(std::clamp(d2, 0, 127));
        out.push_back({Key(out, order, tick), e});
    }

    // The notes come in time order and their offs through a small heap, so
    // only the other events need a sort; the two streams then merge. A score
    // whose notes are out of order in their measures is sorted whole.
    void Flush(std::vector<Pending> &events)
    {
        auto byKey = [](const Pending &a, const Pending &b) { return a.key < b.key; };
        while (!m_offs.empty())
        {
            m_notes.push_back(m_offs.top());
            m_offs.pop();
        }
        std::sort(events.begin(), events.end(), byKey);
        m_merged.clear();
        m_merged.reserve(events.size() + m_notes.size());
        std::merge(m_notes.begin(), m_notes.end(), events.begin(), events.end(), std::back_inserter(m_merged), byKey);
        if (!std::is_sorted(m_merged.begin(), m_merged.end(), byKey))
            std::sort(m_merged.begin(), m_merged.end(), byKey);
        Track &track = m_file.tracks.emplace_back();
        track.events.reserve(m_merged.size());
        for (const Pending &p : m_merged)
            track.events.push_back(p.event);
        track.endTick = track.events.empty() ? 0 : track.events.back().tick;
        events.clear();
        m_notes.clear();
        m_sequence = 0;
    }

    // A note on joins the note stream after the offs that come before it.
    void AddNote(const Pending &on, const Pending &off)
    {
        while (!m_offs.empty() && m_offs.top().key < on.key)
        {
            m_notes.push_back(m_offs.top());
            m_offs.pop();
        }
        m_notes.push_back(on);
        m_offs.push(off);
    }

    static std::string Utf8(const CString &text) { return text.ToUtf8(); }

    void Text(std::vector<Pending> &out, ECText *text)
    {
        const int type = text->GetTextType() - kTextTypeBase;
        const uint8_t meta = type >= kMetaText && type <= kMetaCuePoint ? static_cast<uint8_t>(type) : static_cast<uint8_t>(kMetaText);
        Meta(out, 0, Tick(text->GetTime()), meta, Utf8(text->GetText()));
    }

    void WriteConductor()
    {
        std::vector<Pending> &out = m_others;
        if (ECTempoEnv *tempi = m_cs->FindTempoEnv())
        {
            std::vector<ECTempo *> points;
            for (POSITION pos = tempi->GetChildren()->GetHeadPosition(); pos;)
                if (auto *tempo = dynamic_cast<ECTempo *>(tempi->GetChildren()->GetNext(pos)))
                    points.push_back(tempo);
            auto write = [&](uint32_t tick, uint32_t us) {
                const char bytes[3] = {static_cast<char>(us >> 16), static_cast<char>(us >> 8), static_cast<char>(us)};
                Meta(out, 0, tick, kMetaTempo, std::string(bytes, 3));
            };
            for (size_t i = 0; i < points.size(); ++i)
            {
                const uint32_t tick = Tick(points[i]->GetTime());
                if (points[i]->GetStyle() == 0 || i + 1 == points.size())
                {
                    write(tick, MicrosFor(points[i]->GetTempo(1.0f)));
                    continue;
                }
                // A ramp: one tempo per sixteenth, each the one that spends
                // the clock time the map gives that sixteenth.
                const double from = points[i]->GetTime()->GetSeconds();
                const double to = points[i + 1]->GetTime()->GetSeconds();
                for (double beat = from; beat < to; beat += 0.25)
                {
                    const double next = std::min(to, beat + 0.25);
                    MCTime a(static_cast<float>(beat)), b(static_cast<float>(next));
                    tempi->GetClockTime(a);
                    tempi->GetClockTime(b);
                    const double seconds = (b.GetSeconds() - a.GetSeconds()) / (next - beat);
                    const long long us = std::isfinite(seconds) ? std::llround(seconds * 1e6) : 500000;
                    MCTime at(static_cast<float>(beat));
                    write(Tick(&at), static_cast<uint32_t>(std::clamp<long long>(us, 1, 0xFFFFFF)));
                }
            }
        }
        if (ECMeterEnv *meters = m_cs->FindMeterEnv())
            for (POSITION pos = meters->GetChildren()->GetHeadPosition(); pos;)
                if (auto *meter = dynamic_cast<ECMeter *>(meters->GetChildren()->GetNext(pos)))
                {
                    const int d = meter->GetDenominator();
                    int log = 0;
                    while (log < 7 && (1 << log) < d)
                        ++log;
                    if (meter->GetNumerator() == 0 || (1 << log) != d)
                    {
                        ++m_skipped;
                        continue;
                    }
                    // Clocks per metronome click: the beat of the meter,
                    // a dotted quarter for the compound ones.
                    const int n = meter->GetNumerator();
                    const int clocks = (d >= 8 && n % 3 == 0 && n > 3) ? 3 * 96 / d : 96 / d;
                    const char bytes[4] = {static_cast<char>(n), static_cast<char>(log),
                                           static_cast<char>(std::clamp(clocks, 1, 127)), 8};
                    Meta(out, 0, Tick(meter->GetTime()), kMetaTimeSignature, std::string(bytes, 4));
                }
        // Keys stand in every staff; the file holds each once.
        std::set<std::pair<uint32_t, int>> keys;
        EventList measures;
        for (int staff = 1; staff <= m_cs->GetMaxStaffNumber(); ++staff)
        {
            m_cs->GetMeasures(staff, 1, m_cs->GetMaxMeasureNumber() + 1, measures);
            for (POSITION mp = measures.GetHeadPosition(); mp;)
            {
                EventList *children = measures.GetNext(mp)->GetChildren();
                for (POSITION pos = children ? children->GetHeadPosition() : nullptr; pos;)
                    if (auto *key = dynamic_cast<ECKey *>(children->GetNext(pos)))
                    {
                        const int sf = key->GetNumSharps() ? key->GetNumSharps() : -key->GetNumFlats();
                        keys.insert({Tick(key->GetTime()), (sf & 0xFF) | (key->GetMode() << 8)});
                    }
            }
        }
        for (const auto &[tick, value] : keys)
        {
            const char bytes[2] = {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
            Meta(out, 0, tick, kMetaKeySignature, std::string(bytes, 2));
        }
        EventList *children = m_cs->GetChildren();
        for (POSITION pos = children ? children->GetHeadPosition() : nullptr; pos;)
        {
            ECBase *event = children->GetNext(pos);
            if (auto *message = dynamic_cast<ECSystemMessage *>(event))
            {
                const FCMidiSysEx &m = message->GetMessage();
                const BYTE *buffer = m.GetSysExBuf();
                const unsigned length = buffer ? m.GetSysExBufLength() : 0;
                const bool f0 = length > 0 && buffer[0] == kStatusSysEx;
                const uint8_t status = f0 ? kStatusSysEx : kStatusSysExEscape;
                const uint32_t tick = Tick(message->GetTime());
                out.push_back({Key(out, 1, tick), m_file.MakeEvent(tick, status, 0, buffer + (f0 ? 1 : 0),
                                                                   length - (f0 ? 1 : 0))});
            }
            else if (auto *text = dynamic_cast<ECText *>(event))
                Text(out, text);
        }
        Flush(out);
    }

    void WriteStaff(int number)
    {
        ECStaff *staff = m_cs->GetStaff(number, 0);
        std::vector<Pending> &out = m_others;
        SmfEventData *staffData = DataOf(staff, 0);
        int channel = staffData ? staffData->GetChannel() : (number - 1) % 16;
        if (channel > 15)
            channel = (number - 1) % 16;
        EventList *children = staff->GetChildren();
        for (POSITION pos = children ? children->GetHeadPosition() : nullptr; pos;)
        {
            ECBase *event = children->GetNext(pos);
            if (auto *text = dynamic_cast<ECText *>(event))
                Text(out, text);
            else if (auto *env = dynamic_cast<ECEnvelope *>(event))
                WriteEnvelope(out, env, channel);
        }
        EventList measures;
        m_cs->GetMeasures(number, 1, m_cs->GetMaxMeasureNumber() + 1, measures);
        for (POSITION mp = measures.GetHeadPosition(); mp;)
        {
            EventList *events = measures.GetNext(mp)->GetChildren();
            for (POSITION pos = events ? events->GetHeadPosition() : nullptr; pos;)
            {
                ECBase *event = events->GetNext(pos);
                const int id = event->GetEventId();
                if (id == EVENT_ID_NOTE || id == EVENT_ID_GRACE_NOTE)
                    WriteNote(out, static_cast<ECNote *>(event), channel);
                else if (id == EVENT_ID_LYRIC)
                    Meta(out, 0, Tick(event->GetTime()), kMetaLyric, Utf8(static_cast<ECLyric *>(event)->GetText()));
                else if (id == EVENT_ID_CHORD_SYMBOL)
                {
                    auto *chord = static_cast<ECChordSymbol *>(event);
                    std::string bytes(reinterpret_cast<const char *>(kChordRecord), 3);
                    bytes += static_cast<char>(chord->SetMidiWriteChordRootFromZelto(
                        static_cast<unsigned char>(chord->GetChordRoot())));
                    const unsigned char flavour = static_cast<unsigned char>(chord->GetChordFlavor());
                    bytes += static_cast<char>(chord->GetChordTypeForWritting2Midi(flavour));
                    if (chord->GetChordBass() > 0)
                        bytes += static_cast<char>(chord->SetMidiWriteChordRootFromZelto(
                            static_cast<unsigned char>(chord->GetChordBass())));
                    Meta(out, 0, Tick(chord->GetTime()), kMetaSequencerSpecific, bytes);
                }
            }
        }
        Flush(out);
    }

    void WriteNote(std::vector<Pending> &out, ECNote *note, int channel)
    {
        ECTie *tie = nullptr;
        if (EventList *parents = note->GetParents())
            for (POSITION pos = parents->GetHeadPosition(); pos && !tie;)
            {
                ECBase *parent = parents->GetNext(pos);
                if (parent->GetEventId() == EVENT_ID_TIE)
                    tie = static_cast<ECTie *>(parent);
            }
        ECNote *last = note;
        if (tie)
        {
            // The first piece speaks for the tied note; the others are in
            // it. The tie keeps its pieces in time order.
            EventList *pieces = tie->GetChildren();
            if (pieces->IsEmpty() || pieces->GetHead() != note)
                return;
            if (auto *tail = dynamic_cast<ECNote *>(pieces->GetTail()))
                last = tail;
        }
        const uint32_t start = Tick(note->GetTime());
        const uint32_t end = Tick(last->GetTime()) + Tick(last->GetDuration());
        SmfEventData *data = DataOf(note, 0);
        const int pitch = data ? data->GetPitch() : note->GetMidiPitch();
        const int velocity = data && data->GetVelocity() ? data->GetVelocity() : 64;
        const int release = data ? data->GetRelease() : 0;
        if (data && data->GetChannel() < 16)
            channel = data->GetChannel();
        Channel(out, 4, start, 0x90 | channel, pitch, velocity);
        const int order = end == start ? 5 : 2;
        if (release & 0x80)
            Channel(out, order, std::max(end, start), 0x90 | channel, pitch, 0);
        else
            Channel(out, order, std::max(end, start), 0x80 | channel, pitch, release);
        const Pending off = out.back();
        out.pop_back();
        const Pending on = out.back();
        out.pop_back();
        AddNote(on, off);
    }

    void WriteEnvelope(std::vector<Pending> &out, ECEnvelope *env, int channel)
    {
        EventList *points = env->GetChildren();
        std::vector<ECEnvPoint *> list;
        for (POSITION pos = points ? points->GetHeadPosition() : nullptr; pos;)
            if (auto *point = dynamic_cast<ECEnvPoint *>(points->GetNext(pos)))
                list.push_back(point);
        auto emit = [&](uint32_t tick, float value) {
            const int v = static_cast<int>(std::lround(value));
            if (auto *controller = dynamic_cast<ECControllerEnv *>(env))
                Channel(out, 3, tick, 0xB0 | channel, controller->GetControllerType(), v);
            else if (dynamic_cast<ECPatchEnv *>(env))
                Channel(out, 3, tick, 0xC0 | channel, ECPatchEnv::GetProgram(value), 0);
            else if (dynamic_cast<ECPitchBendEnv *>(env))
            {
                const int bend = std::clamp(v, 0, 16383);
                Channel(out, 3, tick, 0xE0 | channel, bend & 0x7F, bend >> 7);
            }
            else if (dynamic_cast<ECChanPressureEnv *>(env))
                Channel(out, 3, tick, 0xD0 | channel, v, 0);
            else if (auto *poly = dynamic_cast<ECPolyPressureEnv *>(env))
                Channel(out, 3, tick, 0xA0 | channel, poly->GetKey(), v);
            else
                ++m_skipped;
        };
        for (size_t i = 0; i < list.size(); ++i)
        {
            ECEnvPoint *point = list[i];
            const uint32_t tick = Tick(point->GetTime());
            emit(tick, point->GetValue());
            if (point->GetStyle() == 0 || i + 1 == list.size())
                continue;
            // A ramp: the envelope's own samples up to the next point.
            MCTime from = *point->GetTime();
            MCTime to = *list[i + 1]->GetTime();
            EValueList samples;
            env->Reset();
            env->GetValues(from, to, 1.0f, samples, 1);
            uint32_t lastTick = tick;
            for (POSITION pos = samples.GetHeadPosition(); pos;)
            {
                EVALUE *sample = samples.GetNext(pos);
                const uint32_t at = Tick(&sample->time);
                if (at > lastTick && at < Tick(&to))
                {
                    emit(at, sample->value);
                    lastTick = at;
                }
                delete sample;
            }
        }
    }

    struct Later
    {
        bool operator()(const Pending &a, const Pending &b) const { return a.key > b.key; }
    };

    ECPerformance *m_doc;
    ECConductorStaff *m_cs = nullptr;
    File m_file;
    size_t m_skipped = 0;
    uint32_t m_sequence = 0;
    std::vector<Pending> m_notes, m_merged, m_others;
    std::priority_queue<Pending, std::vector<Pending>, Later> m_offs;
};
} // namespace

std::string ImportReport::Summary() const
{
    std::string s = std::to_string(tracks) + " tracks, " + std::to_string(events) + " events, " +
                    std::to_string(notes) + " notes on " + std::to_string(staves) + " staves, " +
                    std::to_string(bars) + " bars";
    if (rounded)
        s += "; " + std::to_string(rounded) + " times rounded to the nearest tick";
    else
        s += "; every time exact";
    if (skipped)
        s += "; " + std::to_string(skipped) + " events skipped";
    if (superseded)
        s += "; " + std::to_string(superseded) + " changes replaced by a later one at the same time";
    if (unmatchedOffs)
        s += "; " + std::to_string(unmatchedOffs) + " note offs without a note";
    if (unfinishedNotes)
        s += "; " + std::to_string(unfinishedNotes) + " notes ended at the end of their track";
    return s;
}

ImportReport Import(const File &file, ECPerformance *doc, const ImportLimits &limits)
{
    return Importer(file, doc, limits).Run();
}

File Export(ECPerformance *doc, size_t *skipped)
{
    return Exporter(doc).Run(skipped);
}

void RegisterEventData()
{
    CPluginData::AddPlugin(&s_noteData);
    CPluginData::AddPlugin(&s_staffData);
    CPluginData::AddPlugin(&s_conductorData);
}

void UnregisterEventData()
{
    CPluginData::RemovePlugin(&s_noteData);
    CPluginData::RemovePlugin(&s_staffData);
    CPluginData::RemovePlugin(&s_conductorData);
}

} // namespace smf
