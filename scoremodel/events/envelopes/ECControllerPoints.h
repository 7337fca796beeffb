// @FAMILYDOC@
//
//   ECControlChange    a controller value; its controller number byte.
//   ECBankLSB          a bank select, low byte.
//   ECBankMSB          a bank select, high byte.
//   ECChannelMode      a channel mode message; its type 0 to 8 (initial 5).
//   ECPan              a pan position.
//   ECProgramChange    a program (patch) change; two bank bytes.
//   ECPitchBend        a pitch bend value.
//   ECChannelPressure  a channel pressure value.
//   ECPolyPressure     a key pressure value; its key byte.
//   ECRPNPoint         a registered parameter value; two value bytes.
//   ECNRPNPoint        a non-registered parameter value; two value bytes.
//
// The bank and channel mode points have a staff as their parent though they
// derive from a controller point, and ECPan, ECBankLSB and ECBankMSB leave
// the controller number at 0 for their creator to set: both wanted.
//
// operator== of a class that adds data compares only what it adds (not the
// base's flags and value); the others compare as their base.
//
// Records behind ECEnvPoint's: the controller points a BYTE number, not read
// from documents older than version 3; ECChannelMode the controller record
// then a BYTE type, but a document of version 3 or older holds only the
// ECWithTime record for it; ECPolyPressure a BYTE key; the RPN and NRPN
// points two BYTE values; ECProgramChange nothing, so its bank bytes are not
// archived (the bank lives in the packed value of its envelope); the pitch
// bend and pressure points nothing.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvPoint.h>

class SCOREMODEL_API ECControlChange : public ECEnvPoint
{
    DECLARE_SERIAL(ECControlChange)

public:
    void Serialize(CArchive &ar) override;
    int GetControllerNum() const { return m_controllerNum; }
    void SetControllerNum(unsigned char number) { m_controllerNum = number; }
    CObject *Copy(CObject *src) override;
    // 18.
    int GetEventId() const override;
    // ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECControlChange &operator=(const ECControlChange &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
            m_controllerNum = other.m_controllerNum;
        }
        return *this;
    }
    int operator==(const ECControlChange &other) const { return m_controllerNum == other.m_controllerNum; }
    int operator!=(const ECControlChange &other) const { return !(*this == other); }

protected:
    ~ECControlChange() override;
    BYTE m_controllerNum = 0;
};

class SCOREMODEL_API ECBankLSB : public ECControlChange
{
    DECLARE_SERIAL(ECBankLSB)

public:
    CObject *Copy(CObject *src) override;
    // 3.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECBankLSB &operator=(const ECBankLSB &other)
    {
        if (this != &other)
        {
            ECControlChange::operator=(other);
        }
        return *this;
    }
    int operator==(const ECBankLSB &other) const { return ECControlChange::operator==(other); }
    int operator!=(const ECBankLSB &other) const { return !(*this == other); }

protected:
    ~ECBankLSB() override;
};

class SCOREMODEL_API ECBankMSB : public ECControlChange
{
    DECLARE_SERIAL(ECBankMSB)

public:
    CObject *Copy(CObject *src) override;
    // 4.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECBankMSB &operator=(const ECBankMSB &other)
    {
        if (this != &other)
        {
            ECControlChange::operator=(other);
        }
        return *this;
    }
    int operator==(const ECBankMSB &other) const { return ECControlChange::operator==(other); }
    int operator!=(const ECBankMSB &other) const { return !(*this == other); }

protected:
    ~ECBankMSB() override;
};

class SCOREMODEL_API ECChannelMode : public ECControlChange
{
    DECLARE_SERIAL(ECChannelMode)

public:
    void Serialize(CArchive &ar) override;
    int GetChannelModeType() const { return m_channelModeType; }
    // Ignores 9 and above.
    void SetChannelModeType(unsigned char type)
    {
        if (type < 9)
            m_channelModeType = type;
    }
    CObject *Copy(CObject *src) override;
    // 9.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECChannelMode &operator=(const ECChannelMode &other)
    {
        if (this != &other)
        {
            ECControlChange::operator=(other);
            m_channelModeType = other.m_channelModeType;
        }
        return *this;
    }
    int operator==(const ECChannelMode &other) const { return m_controllerNum == other.m_controllerNum && m_channelModeType == other.m_channelModeType; }
    int operator!=(const ECChannelMode &other) const { return !(*this == other); }

protected:
    ~ECChannelMode() override;
    BYTE m_channelModeType = 5;
};

class SCOREMODEL_API ECPan : public ECControlChange
{
    DECLARE_SERIAL(ECPan)

public:
    CObject *Copy(CObject *src) override;
    // 41.
    int GetEventId() const override;
    // ECEnvelope, ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPan &operator=(const ECPan &other)
    {
        if (this != &other)
        {
            ECControlChange::operator=(other);
        }
        return *this;
    }
    int operator==(const ECPan &other) const { return ECControlChange::operator==(other); }
    int operator!=(const ECPan &other) const { return !(*this == other); }

protected:
    ~ECPan() override;
};

class SCOREMODEL_API ECProgramChange : public ECEnvPoint
{
    DECLARE_SERIAL(ECProgramChange)

public:
    int GetBankMSB() const { return m_bankMSB; }
    void SetBankMSB(unsigned char value) { m_bankMSB = value; }
    int GetBankLSB() const { return m_bankLSB; }
    void SetBankLSB(unsigned char value) { m_bankLSB = value; }
    CObject *Copy(CObject *src) override;
    // 49.
    int GetEventId() const override;
    // ECPatchEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECProgramChange &operator=(const ECProgramChange &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
            m_bankMSB = other.m_bankMSB;
            m_bankLSB = other.m_bankLSB;
        }
        return *this;
    }
    int operator==(const ECProgramChange &other) const { return m_bankMSB == other.m_bankMSB && m_bankLSB == other.m_bankLSB; }
    int operator!=(const ECProgramChange &other) const { return !(*this == other); }

protected:
    ~ECProgramChange() override;
    BYTE m_bankMSB = 0;
    BYTE m_bankLSB = 0;
};

class SCOREMODEL_API ECPitchBend : public ECEnvPoint
{
    DECLARE_SERIAL(ECPitchBend)

public:
    CObject *Copy(CObject *src) override;
    // 45.
    int GetEventId() const override;
    // ECPitchBendEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPitchBend &operator=(const ECPitchBend &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
        }
        return *this;
    }
    int operator==(const ECPitchBend &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECPitchBend &other) const { return !(*this == other); }

protected:
    ~ECPitchBend() override;
};

class SCOREMODEL_API ECChannelPressure : public ECEnvPoint
{
    DECLARE_SERIAL(ECChannelPressure)

public:
    CObject *Copy(CObject *src) override;
    // 10.
    int GetEventId() const override;
    // ECChanPressureEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECChannelPressure &operator=(const ECChannelPressure &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
        }
        return *this;
    }
    int operator==(const ECChannelPressure &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECChannelPressure &other) const { return !(*this == other); }

protected:
    ~ECChannelPressure() override;
};

class SCOREMODEL_API ECPolyPressure : public ECEnvPoint
{
    DECLARE_SERIAL(ECPolyPressure)

public:
    void Serialize(CArchive &ar) override;
    int GetKey() const { return GetSpareByte(); }
    // Stores anything.
    void SetKey(unsigned char key) { SetSpareByte(key); }
    CObject *Copy(CObject *src) override;
    // 47.
    int GetEventId() const override;
    // ECPolyPressureEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPolyPressure &operator=(const ECPolyPressure &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
            SetSpareByte(other.GetSpareByte());
        }
        return *this;
    }
    int operator==(const ECPolyPressure &other) const { return GetSpareByte() == other.GetSpareByte(); }
    int operator!=(const ECPolyPressure &other) const { return !(*this == other); }

protected:
    ~ECPolyPressure() override;
};

class SCOREMODEL_API ECRPNPoint : public ECEnvPoint
{
    DECLARE_SERIAL(ECRPNPoint)

public:
    void Serialize(CArchive &ar) override;
    void GetRPNValue(int &first, int &second) const
    {
        first = m_value1;
        second = m_value2;
    }
    void SetRPNValue(unsigned char first, unsigned char second)
    {
        m_value1 = first;
        m_value2 = second;
    }
    CObject *Copy(CObject *src) override;
    // 53.
    int GetEventId() const override;
    // ECRPNEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECRPNPoint &operator=(const ECRPNPoint &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
            m_value1 = other.m_value1;
            m_value2 = other.m_value2;
        }
        return *this;
    }
    int operator==(const ECRPNPoint &other) const { return m_value1 == other.m_value1 && m_value2 == other.m_value2; }
    int operator!=(const ECRPNPoint &other) const { return !(*this == other); }

protected:
    ~ECRPNPoint() override;
    BYTE m_value1 = 0;
    BYTE m_value2 = 0;
};

class SCOREMODEL_API ECNRPNPoint : public ECEnvPoint
{
    DECLARE_SERIAL(ECNRPNPoint)

public:
    void Serialize(CArchive &ar) override;
    void GetNRPNValue(int &first, int &second) const
    {
        first = m_value1;
        second = m_value2;
    }
    void SetNRPNValue(unsigned char first, unsigned char second)
    {
        m_value1 = first;
        m_value2 = second;
    }
    CObject *Copy(CObject *src) override;
    // 39.
    int GetEventId() const override;
    // ECNRPNEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECNRPNPoint &operator=(const ECNRPNPoint &other)
    {
        if (this != &other)
        {
            ECEnvPoint::operator=(other);
            m_value1 = other.m_value1;
            m_value2 = other.m_value2;
        }
        return *this;
    }
    int operator==(const ECNRPNPoint &other) const { return m_value1 == other.m_value1 && m_value2 == other.m_value2; }
    int operator!=(const ECNRPNPoint &other) const { return !(*this == other); }

protected:
    ~ECNRPNPoint() override;
    BYTE m_value1 = 0;
    BYTE m_value2 = 0;
};
