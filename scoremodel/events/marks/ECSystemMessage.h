// ECSystemMessage: a MIDI system message on the conductor staff.
//
// The event carries one system exclusive message (FCMidiSysEx), which the
// player sends as it is; a new one carries none. operator= copies the
// message (a deep copy).
//
// Archive record (schema 3): that of ECWithTime, then the message: its
// length (4 bytes) and as many bytes. Records of schema 2 end after the
// ECWithTime part. A length longer than the stream is an end-of-file error,
// found before the memory for it is taken.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCMidiSysEx.h>
#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECSystemMessage : public ECWithTime
{
    DECLARE_SERIAL(ECSystemMessage)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 56.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    FCMidiSysEx &GetMessage() { return m_message; }
    const FCMidiSysEx &GetMessage() const { return m_message; }

    ECSystemMessage &operator=(const ECSystemMessage &other);
    // Compares the base part and the bytes of the message.
    int operator==(const ECSystemMessage &other) const;
    int operator!=(const ECSystemMessage &other) const { return !(*this == other); }

protected:
    ~ECSystemMessage() override;

    FCMidiSysEx m_message;
};
