// @FAMILYDOC@
//
//   ECControllerEnv    the values of one controller (limits 0 to 127).
//   ECPatchEnv         the program changes of a staff, packed values.
//   ECPitchBendEnv     the pitch bend of a staff (0 to 16383, default 8192).
//   ECChanPressureEnv  the channel pressure of a staff (0 to 127).
//   ECPolyPressureEnv  the pressure of one key of a staff (0 to 127).
//   ECRPNEnv           the values of one registered parameter (0 to 16383).
//   ECNRPNEnv          the values of one non-registered parameter.
//
// The parent lists are not symmetrical on purpose: controller and NRPN
// envelopes may hang under staves and tracks, the others under staves only.
//
// Records behind ECEnvelope's: ECControllerEnv a BYTE (controller type in
// bits 0 to 6, the 14-bit flag in bit 7); ECPolyPressureEnv a BYTE key;
// ECRPNEnv and ECNRPNEnv the 14-bit flag BYTE only, so their type bytes are
// not archived and come back 0 from a load; the others nothing.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvelope.h>

class SCOREMODEL_API ECControllerEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECControllerEnv)

public:
    ECControllerEnv();
    void Serialize(CArchive &ar) override;

    // Stores the low 7 bits only for 0 to 119; the default value follows the
    // argument either way: 64 for 8 and 10, 127 for 7 and 11, else 0.
    void SetControllerType(int type);
    int GetControllerType() const { return GetSpareByte() & 0x7F; }
    // Bit 0 of `on` becomes the flag; limits 0 to 16383 when set, 0 to 127
    // when clear.
    void Set14Bit(int on);
    int Is14Bit() const { return (GetSpareByte() >> 7) & 1; }
    CObject *Copy(CObject *src) override;
    // 19.
    int GetEventId() const override;
    // ECStaff, ECTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    ECControllerEnv &operator=(const ECControllerEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        SetSpareByte(other.GetSpareByte());
        }
        return *this;
    }
    int operator==(const ECControllerEnv &other) const { return ECEnvelope::operator==(other) && GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECControllerEnv &other) const { return !(*this == other); }

protected:
    ~ECControllerEnv() override;
};

class SCOREMODEL_API ECPatchEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECPatchEnv)

public:
    // Packs bank MSB, bank LSB and program, 7 bits each, into a float
    // (21 bits fit its mantissa exactly).
    static float MakePatchValue(int msb, int lsb, int program);
    static int GetBankMSB(float value);
    static int GetBankLSB(float value);
    static int GetProgram(float value);
    static void ReadPatchValue(float value, int &msb, int &lsb, int &program);
    // Changes the parts whose pointer is not null. The masks are byte
    // shaped on purpose: an MSB edit keeps bits 14 and 15 of the old value,
    // an LSB edit keeps bit 7.
    static void EditPatchValue(float &value, int *msb, int *lsb, int *program);
    // GetValue(time, v, 0, -1), unpacked; its changed flag.
    int GetPatch(MCTime &time, int &msb, int &lsb, int &program);
    // Does nothing, kept in the interface.
    void SetPatch(MCTime &time, int msb, int lsb, int program);
    CObject *Copy(CObject *src) override;
    // 42.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPatchEnv &operator=(const ECPatchEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        }
        return *this;
    }
    int operator==(const ECPatchEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECPatchEnv &other) const { return !(*this == other); }

protected:
    ~ECPatchEnv() override;
};

class SCOREMODEL_API ECPitchBendEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECPitchBendEnv)

public:
    ECPitchBendEnv();
    CObject *Copy(CObject *src) override;
    // 46.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPitchBendEnv &operator=(const ECPitchBendEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        }
        return *this;
    }
    int operator==(const ECPitchBendEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECPitchBendEnv &other) const { return !(*this == other); }

protected:
    ~ECPitchBendEnv() override;
};

class SCOREMODEL_API ECChanPressureEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECChanPressureEnv)

public:
    ECChanPressureEnv();
    CObject *Copy(CObject *src) override;
    // 11.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECChanPressureEnv &operator=(const ECChanPressureEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        }
        return *this;
    }
    int operator==(const ECChanPressureEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECChanPressureEnv &other) const { return !(*this == other); }

protected:
    ~ECChanPressureEnv() override;
};

class SCOREMODEL_API ECPolyPressureEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECPolyPressureEnv)

public:
    ECPolyPressureEnv();
    void Serialize(CArchive &ar) override;
    // Stores only 0 to 127.
    void SetKey(int key);
    int GetKey() const { return m_key; }
    CObject *Copy(CObject *src) override;
    // 48.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPolyPressureEnv &operator=(const ECPolyPressureEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        m_key = other.m_key;
        }
        return *this;
    }
    int operator==(const ECPolyPressureEnv &other) const { return ECEnvelope::operator==(other) && m_key == other.m_key; }
    int operator!=(const ECPolyPressureEnv &other) const { return !(*this == other); }

protected:
    ~ECPolyPressureEnv() override;
    BYTE m_key = 0;
};

class SCOREMODEL_API ECRPNEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECRPNEnv)

public:
    ECRPNEnv();
    void Serialize(CArchive &ar) override;
    // Both stored only when both lie in 0 to 127.
    void SetRPNType(int msb, int lsb);
    void GetRPNType(int &msb, int &lsb) const
    {
        msb = m_typeMSB;
        lsb = m_typeLSB;
    }
    // The low byte becomes the flag; limits as ECControllerEnv::Set14Bit.
    void Set14Bit(int on);
    int Is14Bit() const { return m_14Bit; }
    CObject *Copy(CObject *src) override;
    // 52.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECRPNEnv &operator=(const ECRPNEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        m_14Bit = other.m_14Bit;
        m_typeMSB = other.m_typeMSB;
        m_typeLSB = other.m_typeLSB;
        }
        return *this;
    }
    int operator==(const ECRPNEnv &other) const { return ECEnvelope::operator==(other) && m_14Bit == other.m_14Bit && m_typeMSB == other.m_typeMSB && m_typeLSB == other.m_typeLSB; }
    int operator!=(const ECRPNEnv &other) const { return !(*this == other); }

protected:
    ~ECRPNEnv() override;
    BYTE m_14Bit = 1;
    BYTE m_typeMSB = 0;
    BYTE m_typeLSB = 0;
};

class SCOREMODEL_API ECNRPNEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECNRPNEnv)

public:
    ECNRPNEnv();
    void Serialize(CArchive &ar) override;
    // Both stored only when both lie in 0 to 127.
    void SetNRPNType(int msb, int lsb);
    void GetNRPNType(int &msb, int &lsb) const
    {
        msb = m_typeMSB;
        lsb = m_typeLSB;
    }
    // The low byte becomes the flag; limits as ECControllerEnv::Set14Bit.
    void Set14Bit(int on);
    int Is14Bit() const { return m_14Bit; }
    CObject *Copy(CObject *src) override;
    // 38.
    int GetEventId() const override;
    // ECStaff, ECTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    ECNRPNEnv &operator=(const ECNRPNEnv &other)
    {
        if (this != &other)
        {
            ECEnvelope::operator=(other);
        m_14Bit = other.m_14Bit;
        m_typeMSB = other.m_typeMSB;
        m_typeLSB = other.m_typeLSB;
        }
        return *this;
    }
    int operator==(const ECNRPNEnv &other) const { return ECEnvelope::operator==(other) && m_14Bit == other.m_14Bit && m_typeMSB == other.m_typeMSB && m_typeLSB == other.m_typeLSB; }
    int operator!=(const ECNRPNEnv &other) const { return !(*this == other); }

protected:
    ~ECNRPNEnv() override;
    BYTE m_14Bit = 1;
    BYTE m_typeMSB = 0;
    BYTE m_typeLSB = 0;
};
