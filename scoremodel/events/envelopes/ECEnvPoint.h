// ECEnvPoint: one value of an envelope at a time.
//
// A point holds a value and a flag byte: bit 0 anchor, bit 1 anchor head,
// bits 2 to 5 the style (0 holds the value until the next point, 1 ramps
// linearly to it; no other style means anything), bit 6 the hand. A new
// point has flags 0 and the value 3.4028235e38.
//
// operator== compares the four flag parts and the value, never the time, so
// two equal points may stand at different times. operator= copies the base
// part, the flags and the value.
//
// Archive record: that of ECWithTime, then BYTE flags and float value. A
// document older than version 3 has neither: the point then loads as an
// anchor head with style 1, hand 0, and the value as constructed.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>

class ECEnvelope;

class SCOREMODEL_API ECEnvPoint : public ECWithTime
{
    DECLARE_SERIAL(ECEnvPoint)

public:
    ECEnvPoint();
    ECEnvPoint(const ECEnvPoint &other);

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 23.
    int GetEventId() const override;
    // ECEnvelope.
    int GetParentTypes(CArray<int, int> &types) override;

    // ---- Value ----

    virtual float GetValue() { return m_value; }
    virtual void SetValue(float value) { m_value = value; }
    // Appends the members of this point's anchor group, found through its
    // envelope (the first parent ancestor of a parent type); 0 without an
    // envelope, else 1 when `list` is not empty afterwards.
    virtual int GetAnchorList(EventList &list);

    // ---- Flags ----

    int IsAnchor() const { return m_pointFlags & 0x01; }
    void SetAnchor(int on) { SetPointBit(0x01, on); }
    int IsAnchorHead() const { return (m_pointFlags >> 1) & 0x01; }
    void SetAnchorHead(int on) { SetPointBit(0x02, on); }
    int GetStyle() const { return (m_pointFlags >> 2) & 0x0F; }
    // Keeps the low 4 bits.
    void SetStyle(int style) { m_pointFlags = static_cast<BYTE>((m_pointFlags & ~0x3C) | ((style & 0x0F) << 2)); }
    int GetHand() const { return (m_pointFlags >> 6) & 0x01; }
    void SetHand(int hand) { SetPointBit(0x40, hand & 1); }
    BYTE GetPointFlags() const { return m_pointFlags; }

    ECEnvPoint &operator=(const ECEnvPoint &other);
    int operator==(const ECEnvPoint &other) const;
    int operator!=(const ECEnvPoint &other) const { return !(*this == other); }

protected:
    ~ECEnvPoint() override;

    void SetPointBit(BYTE bit, int on)
    {
        m_pointFlags = static_cast<BYTE>(on ? (m_pointFlags | bit) : (m_pointFlags & ~bit));
    }

    BYTE m_pointFlags = 0;
    float m_value = 3.4028235e38f;
};
