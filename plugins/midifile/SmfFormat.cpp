#include "SmfFormat.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace smf
{
namespace
{
std::string Hex(unsigned value)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%02X", value);
    return text;
}

// A cursor over the file that names the offset of every fault.
class Reader
{
public:
    Reader(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}

    size_t Offset() const { return m_pos; }
    size_t Left() const { return m_size - m_pos; }
    bool AtEnd() const { return m_pos >= m_size; }

    uint8_t Byte(const char *what)
    {
        if (m_pos >= m_size)
            throw SmfError(m_pos, std::string("the file ends inside ") + what);
        return m_data[m_pos++];
    }
    uint8_t Peek() const { return m_data[m_pos]; }
    uint32_t Big(int bytes, const char *what)
    {
        if (Left() < static_cast<size_t>(bytes))
            throw SmfError(m_pos, std::string("the file ends inside ") + what);
        uint32_t value = 0;
        for (int i = 0; i < bytes; ++i)
            value = (value << 8) | m_data[m_pos++];
        return value;
    }
    // At most four bytes; the fifth would need a continuation bit the
    // format does not allow.
    uint32_t VarLen(size_t end, const char *what)
    {
        const size_t start = m_pos;
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
        {
            if (m_pos >= end)
                throw SmfError(m_pos, std::string("the track ends inside ") + what);
            const uint8_t b = m_data[m_pos++];
            value = (value << 7) | (b & 0x7F);
            if (!(b & 0x80))
                return value;
        }
        throw SmfError(start, std::string("variable-length quantity of more than four bytes in ") + what);
    }
    const uint8_t *Take(size_t length) { return m_data + (m_pos += length) - length; }
    void Seek(size_t offset) { m_pos = offset; }

private:
    const uint8_t *m_data;
    size_t m_size;
    size_t m_pos = 0;
};

void ReadTrack(Reader &in, size_t end, int index, File &file)
{
    Track &track = file.tracks.emplace_back();
    uint64_t tick = 0;
    uint8_t running = 0;
    bool ended = false;
    const std::string name = "track " + std::to_string(index);
    while (in.Offset() < end)
    {
        tick += in.VarLen(end, "a delta time");
        if (tick > kMaxTick)
            throw SmfError(in.Offset(), name + ": time past " + std::to_string(kMaxTick) + " ticks");
        const size_t at = in.Offset();
        if (at >= end)
            throw SmfError(at, name + ": the track ends after a delta time");
        uint8_t status = in.Peek();
        if (status < 0x80)
        {
            if (!running)
                throw SmfError(at, name + ": data byte " + Hex(status) + " with no running status");
            status = running;
        }
        else
            in.Byte("an event");
        Event event;
        event.tick = static_cast<uint32_t>(tick);
        event.status = status;
        if (status < 0xF0)
        {
            running = status;
            const int count = (status & 0xE0) == 0xC0 ? 1 : 2;
            uint8_t data[2] = {0, 0};
            for (int i = 0; i < count; ++i)
            {
                if (in.Offset() >= end)
                    throw SmfError(in.Offset(), name + ": the track ends inside a channel message");
                data[i] = in.Byte("a channel message");
                if (data[i] & 0x80)
                    throw SmfError(in.Offset() - 1, name + ": status byte " + Hex(data[i]) +
                                                       " where a data byte of " + Hex(status) + " belongs");
            }
            event.data1 = data[0];
            event.data2 = data[1];
            track.events.push_back(event);
            continue;
        }
        if (status == kStatusMeta)
        {
            if (in.Offset() >= end)
                throw SmfError(in.Offset(), name + ": the track ends inside a meta event");
            event.meta = in.Byte("a meta event");
            if (event.meta & 0x80)
                throw SmfError(in.Offset() - 1, name + ": meta type " + Hex(event.meta) + " above 0x7F");
        }
        else if (status != kStatusSysEx && status != kStatusSysExEscape)
            throw SmfError(at, name + ": status " + Hex(status) + " belongs to a live stream, not to a file");
        const size_t lengthAt = in.Offset();
        const uint32_t length = in.VarLen(end, "an event length");
        if (length > end - in.Offset())
            throw SmfError(lengthAt, name + ": event length " + std::to_string(length) + " runs past the track (" +
                                         std::to_string(end - in.Offset()) + " bytes left)");
        const uint8_t *bytes = in.Take(length);
        if (status == kStatusMeta && event.meta == kMetaEndOfTrack)
        {
            track.endTick = event.tick;
            ended = true;
            break;
        }
        track.events.push_back(file.MakeEvent(event.tick, status, event.meta, bytes, length));
    }
    if (!track.events.empty())
        track.endTick = std::max(track.endTick, track.events.back().tick);
    if (!ended)
        file.warnings.push_back(name + ": no end of track");
    else if (in.Offset() < end)
        file.warnings.push_back(name + ": " + std::to_string(end - in.Offset()) +
                                " bytes after the end of track ignored");
    in.Seek(end);
}
} // namespace

SmfError::SmfError(size_t offset, const std::string &what)
    : std::runtime_error("byte " + std::to_string(offset) + ": " + what), m_offset(offset)
{
}

std::string File::PayloadText(const Event &e) const
{
    return std::string(reinterpret_cast<const char *>(Payload(e)), e.length);
}

Event File::MakeEvent(uint32_t tick, uint8_t status, uint8_t meta, const void *bytes, size_t length)
{
    if (length > 0xFFFFFFFFu || pool.size() + length > 0xFFFFFFFFu)
        throw std::length_error("more than 4 GiB of event data");
    Event e;
    e.tick = tick;
    e.status = status;
    e.meta = meta;
    e.offset = static_cast<uint32_t>(pool.size());
    e.length = static_cast<uint32_t>(length);
    const auto *p = static_cast<const uint8_t *>(bytes);
    pool.insert(pool.end(), p, p + length);
    return e;
}

size_t File::EventCount() const
{
    size_t n = 0;
    for (const Track &t : tracks)
        n += t.events.size();
    return n;
}

File Parse(const uint8_t *data, size_t size)
{
    if (size > kMaxFileSize)
        throw SmfError(0, "larger than " + std::to_string(kMaxFileSize >> 20) + " MiB");
    Reader in(data, size);
    if (size < 4 || std::memcmp(data, "MThd", 4) != 0)
        throw SmfError(0, "not a MIDI file: it does not start with \"MThd\"");
    in.Seek(4);
    const uint32_t headerLength = in.Big(4, "the header");
    if (headerLength < 6)
        throw SmfError(4, "header length " + std::to_string(headerLength) + " is below 6");
    if (headerLength > in.Left())
        throw SmfError(4, "header length " + std::to_string(headerLength) + " runs past the end of the file");
    File file;
    const size_t headerEnd = in.Offset() + headerLength;
    file.format = static_cast<int>(in.Big(2, "the header"));
    const uint32_t announced = in.Big(2, "the header");
    const uint32_t division = in.Big(2, "the header");
    in.Seek(headerEnd);
    if (file.format > 2)
        throw SmfError(8, "format " + std::to_string(file.format) + " is none of 0, 1 and 2");
    if (division & 0x8000)
        throw SmfError(12, "time code division (frames per second) is not supported, only ticks per quarter note");
    if (division == 0)
        throw SmfError(12, "division of 0 ticks per quarter note");
    file.division = static_cast<uint16_t>(division);
    if (file.format == 2)
    {
        file.warnings.push_back("format 2 (independent sequences) read as format 1");
        file.format = 1;
    }
    int index = 0;
    while (!in.AtEnd())
    {
        const size_t chunkAt = in.Offset();
        if (in.Left() < 8)
            throw SmfError(chunkAt, "truncated chunk header (" + std::to_string(in.Left()) + " bytes)");
        char id[4];
        std::memcpy(id, in.Take(4), 4);
        const uint32_t length = in.Big(4, "a chunk header");
        if (length > in.Left())
            throw SmfError(chunkAt + 4, "chunk length " + std::to_string(length) + " runs past the end of the file (" +
                                            std::to_string(in.Left()) + " bytes left)");
        if (std::memcmp(id, "MTrk", 4) != 0)
        {
            // Chunks of other kinds are to be skipped, as the format asks.
            file.warnings.push_back("chunk of unknown kind at byte " + std::to_string(chunkAt) + " skipped");
            in.Seek(in.Offset() + length);
            continue;
        }
        if (index == 0xFFFF)
            throw SmfError(chunkAt, "more than 65535 tracks");
        ReadTrack(in, in.Offset() + length, index++, file);
    }
    if (static_cast<uint32_t>(index) < announced)
        throw SmfError(size, "the header announces " + std::to_string(announced) + " tracks, the file holds " +
                                 std::to_string(index));
    if (static_cast<uint32_t>(index) > announced)
        file.warnings.push_back("the header announces " + std::to_string(announced) + " tracks, the file holds " +
                                std::to_string(index));
    if (file.format == 0 && file.tracks.size() > 1)
    {
        file.warnings.push_back("format 0 with " + std::to_string(file.tracks.size()) + " tracks read as format 1");
        file.format = 1;
    }
    return file;
}

void AppendVarLen(std::vector<uint8_t> &out, uint32_t value)
{
    uint8_t bytes[4];
    int n = 0;
    do
    {
        bytes[n++] = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
    } while (value && n < 4);
    while (n > 1)
        out.push_back(bytes[--n] | 0x80);
    out.push_back(bytes[0]);
}

std::vector<uint8_t> Serialize(const File &file)
{
    if (file.division == 0 || file.division > 0x7FFF)
        throw std::invalid_argument("division " + std::to_string(file.division) + " out of 1 to 32767");
    if (file.tracks.size() > 0xFFFF)
        throw std::invalid_argument("more than 65535 tracks");
    const int format = file.format == 0 && file.tracks.size() == 1 ? 0 : 1;
    std::vector<uint8_t> out;
    out.reserve(14 + 12 * file.tracks.size() + 4 * file.EventCount() + file.pool.size());
    auto big = [&out](uint32_t value, int bytes) {
        for (int i = bytes - 1; i >= 0; --i)
            out.push_back(static_cast<uint8_t>(value >> (8 * i)));
    };
    out.insert(out.end(), {'M', 'T', 'h', 'd'});
    big(6, 4);
    big(static_cast<uint32_t>(format), 2);
    big(static_cast<uint32_t>(file.tracks.size()), 2);
    big(file.division, 2);
    for (const Track &track : file.tracks)
    {
        out.insert(out.end(), {'M', 'T', 'r', 'k', 0, 0, 0, 0});
        const size_t start = out.size();
        uint32_t last = 0;
        uint8_t running = 0;
        for (const Event &e : track.events)
        {
            if (e.tick < last || e.tick > kMaxTick)
                throw std::invalid_argument("event at tick " + std::to_string(e.tick) + " out of order or range");
            AppendVarLen(out, e.tick - last);
            last = e.tick;
            if (e.IsChannel())
            {
                if ((e.data1 | e.data2) & 0x80)
                    throw std::invalid_argument("data byte of 0x80 or more");
                if (e.status != running)
                    out.push_back(e.status);
                running = e.status;
                out.push_back(e.data1);
                if ((e.status & 0xE0) != 0xC0)
                    out.push_back(e.data2);
                continue;
            }
            // A system exclusive or meta event ends running status for
            // readers that follow the format to the letter.
            running = 0;
            if (e.status == kStatusMeta)
            {
                out.push_back(kStatusMeta);
                out.push_back(e.meta & 0x7F);
            }
            else if (e.status == kStatusSysEx || e.status == kStatusSysExEscape)
                out.push_back(e.status);
            else
                throw std::invalid_argument("status " + Hex(e.status) + " cannot stand in a file");
            AppendVarLen(out, e.length);
            const uint8_t *p = file.Payload(e);
            out.insert(out.end(), p, p + e.length);
        }
        const uint32_t end = std::max(track.endTick, last);
        if (end > kMaxTick)
            throw std::invalid_argument("end of track out of range");
        AppendVarLen(out, end - last);
        out.insert(out.end(), {kStatusMeta, kMetaEndOfTrack, 0});
        const size_t length = out.size() - start;
        if (length > 0xFFFFFFFFu)
            throw std::invalid_argument("a track of more than 4 GiB");
        for (int i = 0; i < 4; ++i)
            out[start - 4 + i] = static_cast<uint8_t>(length >> (8 * (3 - i)));
    }
    return out;
}

} // namespace smf
