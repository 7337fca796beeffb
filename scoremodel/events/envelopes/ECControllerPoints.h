// @FAMILYDOC@
//
//   ECControlChange    a controller value.
//   ECBankLSB          a bank select, low byte.
//   ECBankMSB          a bank select, high byte.
//   ECChannelMode      a channel mode message.
//   ECPan              a pan position.
//   ECProgramChange    a program (patch) change.
//   ECPitchBend        a pitch bend value.
//   ECChannelPressure  a channel pressure value.
//   ECPolyPressure     a key pressure value.
//   ECRPNPoint         a registered parameter value.
//   ECNRPNPoint        a non-registered parameter value.
//
// Each record is that of its base.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvPoint.h>

class SCOREMODEL_API ECControlChange : public ECEnvPoint
{
    DECLARE_SERIAL(ECControlChange)

public:
    CObject *Copy(CObject *src) override;
    // 18.
    int GetEventId() const override;
    // ECControllerEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECControlChange &operator=(const ECControlChange &other)
    {
        ECEnvPoint::operator=(other);
        return *this;
    }
    int operator==(const ECControlChange &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECControlChange &other) const { return !(*this == other); }

protected:
    ~ECControlChange() override;
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
        ECControlChange::operator=(other);
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
        ECControlChange::operator=(other);
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
    CObject *Copy(CObject *src) override;
    // 9.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECChannelMode &operator=(const ECChannelMode &other)
    {
        ECControlChange::operator=(other);
        return *this;
    }
    int operator==(const ECChannelMode &other) const { return ECControlChange::operator==(other); }
    int operator!=(const ECChannelMode &other) const { return !(*this == other); }

protected:
    ~ECChannelMode() override;
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
        ECControlChange::operator=(other);
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
    CObject *Copy(CObject *src) override;
    // 49.
    int GetEventId() const override;
    // ECPatchEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECProgramChange &operator=(const ECProgramChange &other)
    {
        ECEnvPoint::operator=(other);
        return *this;
    }
    int operator==(const ECProgramChange &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECProgramChange &other) const { return !(*this == other); }

protected:
    ~ECProgramChange() override;
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
        ECEnvPoint::operator=(other);
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
        ECEnvPoint::operator=(other);
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
    CObject *Copy(CObject *src) override;
    // 47.
    int GetEventId() const override;
    // ECPolyPressureEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPolyPressure &operator=(const ECPolyPressure &other)
    {
        ECEnvPoint::operator=(other);
        return *this;
    }
    int operator==(const ECPolyPressure &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECPolyPressure &other) const { return !(*this == other); }

protected:
    ~ECPolyPressure() override;
};

class SCOREMODEL_API ECRPNPoint : public ECEnvPoint
{
    DECLARE_SERIAL(ECRPNPoint)

public:
    CObject *Copy(CObject *src) override;
    // 53.
    int GetEventId() const override;
    // ECRPNEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECRPNPoint &operator=(const ECRPNPoint &other)
    {
        ECEnvPoint::operator=(other);
        return *this;
    }
    int operator==(const ECRPNPoint &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECRPNPoint &other) const { return !(*this == other); }

protected:
    ~ECRPNPoint() override;
};

class SCOREMODEL_API ECNRPNPoint : public ECEnvPoint
{
    DECLARE_SERIAL(ECNRPNPoint)

public:
    CObject *Copy(CObject *src) override;
    // 39.
    int GetEventId() const override;
    // ECNRPNEnv.
    int GetParentTypes(CArray<int, int> &types) override;

    ECNRPNPoint &operator=(const ECNRPNPoint &other)
    {
        ECEnvPoint::operator=(other);
        return *this;
    }
    int operator==(const ECNRPNPoint &other) const { return ECEnvPoint::operator==(other); }
    int operator!=(const ECNRPNPoint &other) const { return !(*this == other); }

protected:
    ~ECNRPNPoint() override;
};
