// The bytes of a Standard MIDI File, read and written without any document:
// the chunk structure, the events of each track with absolute times, and the
// rules a file has to keep. The document mapping (SmfImport, SmfExport)
// stands on this layer; the fuzzer and the benchmarks use it alone.
//
// Reading is strict where a file cannot be understood and lenient where it
// can: a bad structure (a truncated chunk, a length past the end, a data
// byte where a status is needed, a variable-length quantity of more than
// four bytes, a real-time status inside a track) throws SmfError with the
// byte offset; what only departs from the rules (a missing end of track,
// format 2, more tracks than the header says) is read and listed as a
// warning.
//
// Memory: an event is 16 bytes; the bytes of system exclusive and meta
// events sit in one pool per file. Nothing is reserved from a count or a
// length the file states: the vectors grow with what is really there, so
// a header that announces a billion events costs nothing until the bytes
// exist.
//
// Writing: format 1 (or 0 with one track), the division as stored, running
// status for channel messages, an end of track at the track's end tick.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace smf
{

// A structural fault of a file, with the offset of the byte that broke it.
class SmfError : public std::runtime_error
{
public:
    SmfError(size_t offset, const std::string &what);
    size_t Offset() const { return m_offset; }

private:
    size_t m_offset;
};

enum : uint8_t
{
    kStatusSysEx = 0xF0,      // payload without the F0, usually ending in F7
    kStatusSysExEscape = 0xF7, // payload sent as it is
    kStatusMeta = 0xFF,
};

enum : uint8_t
{
    kMetaSequenceNumber = 0x00,
    kMetaText = 0x01,
    kMetaCopyright = 0x02,
    kMetaTrackName = 0x03,
    kMetaInstrument = 0x04,
    kMetaLyric = 0x05,
    kMetaMarker = 0x06,
    kMetaCuePoint = 0x07,
    kMetaChannelPrefix = 0x20,
    kMetaPort = 0x21,
    kMetaEndOfTrack = 0x2F,
    kMetaTempo = 0x51,
    kMetaSmpteOffset = 0x54,
    kMetaTimeSignature = 0x58,
    kMetaKeySignature = 0x59,
    kMetaSequencerSpecific = 0x7F,
};

// One event. For a channel message `status` is 0x80 to 0xEF and the data
// bytes follow (data2 0 for the one-byte messages C0 and D0); for the other
// three kinds the payload is `length` bytes at `offset` in the file's pool.
struct Event
{
    uint32_t tick = 0;
    uint8_t status = 0;
    uint8_t meta = 0;
    uint8_t data1 = 0;
    uint8_t data2 = 0;
    uint32_t offset = 0;
    uint32_t length = 0;

    bool IsChannel() const { return status >= 0x80 && status < 0xF0; }
    uint8_t Kind() const { return status & 0xF0; }
    uint8_t Channel() const { return status & 0x0F; }
    // A note on with velocity 0 is a note off.
    bool IsNoteOn() const { return Kind() == 0x90 && data2 > 0; }
    bool IsNoteOff() const { return Kind() == 0x80 || (Kind() == 0x90 && data2 == 0); }
};

struct Track
{
    std::vector<Event> events;
    // The time of the end of track; at least the time of the last event.
    uint32_t endTick = 0;
};

struct File
{
    int format = 1;
    // Ticks per quarter note (1 to 0x7FFF).
    uint16_t division = 480;
    std::vector<Track> tracks;
    std::vector<uint8_t> pool;
    // What the reader accepted but a careful writer would not have written.
    std::vector<std::string> warnings;

    const uint8_t *Payload(const Event &e) const { return pool.data() + e.offset; }
    std::string PayloadText(const Event &e) const;
    // Appends bytes to the pool and returns the event that points at them.
    Event MakeEvent(uint32_t tick, uint8_t status, uint8_t meta, const void *bytes, size_t length);
    size_t EventCount() const;
};

// Limits that no real file reaches and that keep a hostile one cheap.
constexpr size_t kMaxFileSize = size_t(1) << 31;
constexpr uint32_t kMaxTick = 0x7FFFFFFF;

// Reads a whole file. Throws SmfError on a structural fault.
File Parse(const uint8_t *data, size_t size);
inline File Parse(const std::vector<uint8_t> &bytes) { return Parse(bytes.data(), bytes.size()); }

// The file's bytes. Events of each track must stand in time order. Throws
// std::invalid_argument for what no file can hold (a tick past kMaxTick, a
// data byte of 0x80 or more, a division out of range, more than 65535
// tracks).
std::vector<uint8_t> Serialize(const File &file);

// A variable-length quantity, as the writer emits it (at most four bytes).
void AppendVarLen(std::vector<uint8_t> &out, uint32_t value);

} // namespace smf
