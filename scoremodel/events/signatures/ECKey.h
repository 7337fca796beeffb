// ECKey: a key signature in a measure, told as a count of sharps and a count
// of flats.
//
//     ECKey *key = new ECKey(0, 3, 0);   // three flats
//     key->Transpose(2);                  // up a whole tone: one flat
//
// Value: one byte of bit fields, sharps (3 bits, 0 to 7), flats (3 bits),
// mode (1 bit, the host's, passed through) and hand (1 bit, which hand of a
// two-handed staff). Nothing keeps sharps and flats from both being set;
// the pitch rules read the sharps first. Setters keep the low bits of their
// argument.
//
// The key keeps a list of its ECMirror images (not reference-owning of the
// key: each mirror holds a plain pointer back); the destructor unlinks them.
//
// Moving a key (SetTime) takes it out of its staff's sorted key cache and
// files it again, so the cache never sees a time change in place.
//
// Copying: the copy constructor carries the four fields and the time;
// operator= (and so Copy) the four fields and, as ECWithTime::operator=
// does for every event, not the time. Mirrors never copy. operator==
// compares the four fields only: two equal keys at different times are
// equal.
//
// Archive record, behind ECWithTime: one BYTE, sharps in bits 0 to 2, flats
// in 3 to 5, mode in 6, hand in 7. Documents before version 3 hold a signed
// WORD (positive: sharps, negative: its absolute value as flats) and two
// BYTEs that are read and dropped, so mode and hand load as 0. Mirrors are
// not stored.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/MCEventList.h>

class ECMirror;

class SCOREMODEL_API ECKey : public ECWithTime
{
    DECLARE_SERIAL(ECKey)

public:
    // No sharps, no flats, mode and hand 0.
    ECKey();
    // The low 3, 3 and 1 bits of the arguments; hand 0.
    ECKey(unsigned char sharps, unsigned char flats, unsigned char mode);
    ECKey(const ECKey &other);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 29.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;
    // Moves the key with its staff's cache (see the class comment); nothing
    // for null.
    void SetTime(MCTime *time) override;

    // ---- Value ----

    unsigned char GetNumSharps() const { return m_sharps; }
    void SetNumSharps(unsigned char sharps) { m_sharps = sharps & 7; }
    unsigned char GetNumFlats() const { return m_flats; }
    void SetNumFlats(unsigned char flats) { m_flats = flats & 7; }
    unsigned char GetMode() const { return m_mode; }
    // Bit 0 of `mode`.
    void SetMode(int mode) { m_mode = mode & 1; }
    unsigned char GetHand() const { return m_hand; }
    void SetHand(unsigned char hand) { m_hand = hand & 1; }

    // Moves the key up by `semitones` (through MCPitchUtils::TransposeKey);
    // 0 does nothing. The argument is unsigned on purpose: 255 is a rise of
    // 255 semitones, 3 modulo 12, not a fall of one. Mode and hand stay.
    void Transpose(unsigned char semitones);

    // ---- Mirrors ----

    // Appends the mirror and points it at this key; nothing for null.
    void AddMirror(ECMirror *mirror);
    // Unlinks the mirror and takes it out of the list; nothing for null or a
    // mirror not listed.
    void RemoveMirror(ECMirror *mirror);
    // Unlinks every mirror and empties the list.
    void RemoveMirrors();
    EventList *GetMirrors() { return &m_mirrors; }

    ECKey &operator=(const ECKey &other);
    int operator==(const ECKey &other) const;
    int operator!=(const ECKey &other) const { return !(*this == other); }

protected:
    ~ECKey() override;

private:
    // The record's byte.
    BYTE GetPackedValue() const;
    void SetPackedValue(BYTE value);

    unsigned char m_sharps : 3 = 0;
    unsigned char m_flats : 3 = 0;
    unsigned char m_mode : 1 = 0;
    unsigned char m_hand : 1 = 0;
    EventList m_mirrors;
};
