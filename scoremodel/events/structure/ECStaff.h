// ECStaff: a track with measures, the home of the notes of one part.
//
// Track numbers 1 to n are the staves of the score, in the conductor staff's
// staff array; the chord staff (staff type 9, track 0x7FC) is a staff that
// stands apart from that numbering. Structural: voice 14.
//
// The staff type (7 bits) and the staff-empty flag (the top bit) share the
// spare byte of the event. Types the model branches on: 1, a staff of two
// hands; 4, tablature; 9, the chord staff. Others are carried for the views.
//
// Archive record: that of ECTrack, then the spare byte raw, the percussion
// map (2 bytes), the percussion MIDI pitch (1 byte), the staff lines (4
// bytes) and the staff size (BYTE). Loading reads the percussion fields, the
// lines and the size only from document version 5 on.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/structure/ECTrack.h>

class SCOREMODEL_API ECStaff : public ECTrack
{
    DECLARE_SERIAL(ECStaff)

public:
    // The staff types the model itself branches on.
    enum : BYTE
    {
        StaffTypeTwoHands = 1,
        StaffTypeTablature = 4,
        StaffTypeChord = 9
    };

    // Type 0, empty.
    ECStaff();
    explicit ECStaff(BYTE type);

    void Serialize(CArchive &ar) override;
    // On load below document version 16: a staff size of 8 becomes 32 and 9
    // becomes 33.
    void PostSerialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 55.
    int GetEventId() const override;
    // ECConductor.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Staff properties ----

    BYTE GetStaffType() const { return static_cast<BYTE>(GetSpareByte() & 0x7F); }
    // Stores 7 bits and keeps the empty flag.
    void SetStaffType(BYTE type) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x80) | (type & 0x7F))); }
    int IsStaffEmpty() const { return (GetSpareByte() & 0x80) ? 1 : 0; }
    void SetStaffEmpty(int empty) { SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x7F) | (empty ? 0x80 : 0))); }

    BYTE GetStaffSize() const { return m_staffSize; }
    void SetStaffSize(BYTE size) { m_staffSize = size; }
    // Notehead, degree and voice of a percussion staff, packed in 16 bits.
    WORD GetPercussionStaffMap() const { return m_percussionMap; }
    void SetPercussionStaffMap(WORD map) { m_percussionMap = map; }
    BYTE GetPercussionStaffMidiPitch() const { return m_percussionPitch; }
    void SetPercussionStaffMidiPitch(BYTE pitch) { m_percussionPitch = pitch; }
    int GetStaffLines() const { return m_nStaffLines; }
    void SetStaffLines(int lines) { m_nStaffLines = lines; }
    int GetJianpuOffsetY() const { return m_nJianpuOffsetY; }
    void SetJianpuOffsetY(int offset) { m_nJianpuOffsetY = offset; }
    int GetJianpuMode() const { return m_nJianpuMode; }
    void SetJianpuMode(int mode) { m_nJianpuMode = mode; }

    // Assigns the ECTrack part, then the staff type (not the empty flag),
    // the staff size, the staff lines and the jianpu offset. The percussion
    // fields and the jianpu mode are not copied.
    ECStaff &operator=(const ECStaff &other);
    // Staff type, staff size and staff lines.
    int operator==(const ECStaff &other) const;
    int operator!=(const ECStaff &other) const { return !(*this == other); }

protected:
    ECStaff(const ECStaff &other);
    ~ECStaff() override;

    BYTE m_staffSize = 0x20;
    WORD m_percussionMap = 0x0D0;
    BYTE m_percussionPitch = 0x23;
    int m_nStaffLines = 5;
    int m_nJianpuOffsetY = 1000;
    int m_nJianpuMode = 0;
};
