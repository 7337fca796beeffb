// @FAMILYDOC@
//
//   ECControllerEnv    the values of one controller.
//   ECPatchEnv         the program changes of a staff.
//   ECPitchBendEnv     the pitch bend of a staff.
//   ECChanPressureEnv  the channel pressure of a staff.
//   ECPolyPressureEnv  the pressure of one key of a staff.
//   ECRPNEnv           the values of one registered parameter.
//   ECNRPNEnv          the values of one non-registered parameter.
//
// Each record is that of its base.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/envelopes/ECEnvelope.h>

class SCOREMODEL_API ECControllerEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECControllerEnv)

public:
    CObject *Copy(CObject *src) override;
    // 19.
    int GetEventId() const override;
    // ECStaff, ECTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    ECControllerEnv &operator=(const ECControllerEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECControllerEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECControllerEnv &other) const { return !(*this == other); }

protected:
    ~ECControllerEnv() override;
};

class SCOREMODEL_API ECPatchEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECPatchEnv)

public:
    CObject *Copy(CObject *src) override;
    // 42.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPatchEnv &operator=(const ECPatchEnv &other)
    {
        ECEnvelope::operator=(other);
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
    CObject *Copy(CObject *src) override;
    // 46.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPitchBendEnv &operator=(const ECPitchBendEnv &other)
    {
        ECEnvelope::operator=(other);
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
    CObject *Copy(CObject *src) override;
    // 11.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECChanPressureEnv &operator=(const ECChanPressureEnv &other)
    {
        ECEnvelope::operator=(other);
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
    CObject *Copy(CObject *src) override;
    // 48.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECPolyPressureEnv &operator=(const ECPolyPressureEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECPolyPressureEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECPolyPressureEnv &other) const { return !(*this == other); }

protected:
    ~ECPolyPressureEnv() override;
};

class SCOREMODEL_API ECRPNEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECRPNEnv)

public:
    CObject *Copy(CObject *src) override;
    // 52.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    ECRPNEnv &operator=(const ECRPNEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECRPNEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECRPNEnv &other) const { return !(*this == other); }

protected:
    ~ECRPNEnv() override;
};

class SCOREMODEL_API ECNRPNEnv : public ECEnvelope
{
    DECLARE_SERIAL(ECNRPNEnv)

public:
    CObject *Copy(CObject *src) override;
    // 38.
    int GetEventId() const override;
    // ECStaff, ECTrack.
    int GetParentTypes(CArray<int, int> &types) override;

    ECNRPNEnv &operator=(const ECNRPNEnv &other)
    {
        ECEnvelope::operator=(other);
        return *this;
    }
    int operator==(const ECNRPNEnv &other) const { return ECEnvelope::operator==(other); }
    int operator!=(const ECNRPNEnv &other) const { return !(*this == other); }

protected:
    ~ECNRPNEnv() override;
};
