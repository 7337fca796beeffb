// ECClef: a clef in a measure.
//
//     ECClef *clef = new ECClef(2);   // clef type 2, first hand
//
// Value: one byte of bit fields, the clef type (7 bits) and the hand (1 bit,
// which hand of a two-handed staff). What a clef type means on the page is
// the host's: this library stores the number and turns no clef into staff
// degrees. Setters keep the low bits, so type 200 is stored as 72.
//
// The clef keeps a list of its ECMirror images, as ECKey does, and moving it
// (SetTime) goes through its staff's sorted clef cache, as for a key.
//
// Copying: the copy constructor carries type, hand and the time; operator=
// (and so Copy) type and hand, read through the other clef's virtual
// getters, and not the time. operator== compares type and hand the same way.
//
// Archive record, behind ECWithTime: one BYTE, type in bits 0 to 6, hand in
// bit 7. Documents before version 3 hold two BYTEs, the type (cut to 7 bits)
// and the hand (bit 0). Mirrors are not stored.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/MCEventList.h>

class ECMirror;

class SCOREMODEL_API ECClef : public ECWithTime
{
    DECLARE_SERIAL(ECClef)

public:
    // Type 0, hand 0.
    ECClef();
    // The low 7 bits of `type`; hand 0.
    explicit ECClef(unsigned char type);
    ECClef(const ECClef &other);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 14.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;
    // Moves the clef with its staff's cache; nothing for null.
    void SetTime(MCTime *time) override;

    // ---- Value ----

    virtual unsigned char GetClefType() const { return m_type; }
    // The low 7 bits.
    virtual void SetClefType(unsigned char type) { m_type = type & 0x7F; }
    virtual unsigned char GetHand() const { return m_hand; }
    // Bit 0.
    virtual void SetHand(unsigned char hand) { m_hand = hand & 1; }

    // ---- Mirrors (as for ECKey) ----

    void AddMirror(ECMirror *mirror);
    void RemoveMirror(ECMirror *mirror);
    void RemoveMirrors();
    EventList *GetMirrors() { return &m_mirrors; }

    ECClef &operator=(const ECClef &other);
    int operator==(const ECClef &other) const;
    int operator!=(const ECClef &other) const { return !(*this == other); }

protected:
    ~ECClef() override;

private:
    unsigned char m_type : 7 = 0;
    unsigned char m_hand : 1 = 0;
    EventList m_mirrors;
};
