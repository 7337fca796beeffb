#include <scoremodel/events/marks/ECSystemMessage.h>

#include <scoremodel/platform/CArchive.h>

#include <algorithm>
#include <cstring>
#include <vector>

IMPLEMENT_SERIAL(ECSystemMessage, ECWithTime, VERSIONABLE_SCHEMA | 3)

namespace
{
// The schema that brought the message.
constexpr UINT kSchemaMessage = 3;
// Bytes read at a time, so a corrupt length runs into the end of the stream
// before it can ask for gigabytes.
constexpr UINT kReadChunk = 64 * 1024;

// The bytes the message holds: the length set, but no more than the buffer.
UINT HeldBytes(const FCMidiSysEx &message)
{
    return message.GetSysExBuf() ? message.GetSysExBufLength() : 0;
}
} // namespace

ECSystemMessage::~ECSystemMessage() = default;

CObject *ECSystemMessage::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECSystemMessage)))
        *this = *static_cast<ECSystemMessage *>(src);
    return this;
}

int ECSystemMessage::GetEventId() const
{
    return EVENT_ID_SYSTEM_MESSAGE;
}

int ECSystemMessage::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONDUCTOR_STAFF);
    return 1;
}

ECSystemMessage &ECSystemMessage::operator=(const ECSystemMessage &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        m_message = other.m_message;
    }
    return *this;
}

int ECSystemMessage::operator==(const ECSystemMessage &other) const
{
    const UINT length = HeldBytes(m_message);
    return ECWithTime::operator==(other) && length == HeldBytes(other.m_message) &&
           (length == 0 || std::memcmp(m_message.GetSysExBuf(), other.m_message.GetSysExBuf(), length) == 0);
}

void ECSystemMessage::Serialize(CArchive &ar)
{
    const UINT schema = ar.IsStoring() ? kSchemaMessage : ar.GetObjectSchema();
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        const UINT length = HeldBytes(m_message);
        ar << static_cast<DWORD>(length);
        if (length)
            ar.Write(m_message.GetSysExBuf(), length);
        return;
    }
    if (schema != static_cast<UINT>(-1) && schema < kSchemaMessage)
        return;
    DWORD length = 0;
    ar >> length;
    std::vector<BYTE> bytes;
    while (bytes.size() < length)
    {
        const UINT chunk = static_cast<UINT>(std::min<size_t>(kReadChunk, length - bytes.size()));
        const size_t at = bytes.size();
        bytes.resize(at + chunk);
        ar.Read(bytes.data() + at, chunk); // throws at the end of the stream
    }
    m_message = FCMidiSysEx();
    if (!bytes.empty())
        m_message.SetSysExBuf(bytes.data(), static_cast<unsigned int>(bytes.size()), 1);
}
