#include <scoremodel/events/envelopes/ECControllerPoints.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/platform/CArchive.h>

// ---- ECControlChange ----

IMPLEMENT_SERIAL(ECControlChange, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECControlChange::~ECControlChange() = default;

CObject *ECControlChange::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECControlChange)))
        *this = *static_cast<ECControlChange *>(src);
    return this;
}

int ECControlChange::GetEventId() const
{
    return EVENT_ID_CONTROL_CHANGE;
}

int ECControlChange::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CONTROLLER_ENV);
    return 1;
}

// ---- ECBankLSB ----

IMPLEMENT_SERIAL(ECBankLSB, ECControlChange, VERSIONABLE_SCHEMA | 2)

ECBankLSB::~ECBankLSB() = default;

CObject *ECBankLSB::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECBankLSB)))
        *this = *static_cast<ECBankLSB *>(src);
    return this;
}

int ECBankLSB::GetEventId() const
{
    return EVENT_ID_BANK_LSB;
}

int ECBankLSB::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECBankMSB ----

IMPLEMENT_SERIAL(ECBankMSB, ECControlChange, VERSIONABLE_SCHEMA | 2)

ECBankMSB::~ECBankMSB() = default;

CObject *ECBankMSB::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECBankMSB)))
        *this = *static_cast<ECBankMSB *>(src);
    return this;
}

int ECBankMSB::GetEventId() const
{
    return EVENT_ID_BANK_MSB;
}

int ECBankMSB::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECChannelMode ----

IMPLEMENT_SERIAL(ECChannelMode, ECControlChange, VERSIONABLE_SCHEMA | 2)

ECChannelMode::~ECChannelMode() = default;

CObject *ECChannelMode::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChannelMode)))
        *this = *static_cast<ECChannelMode *>(src);
    return this;
}

int ECChannelMode::GetEventId() const
{
    return EVENT_ID_CHANNEL_MODE;
}

int ECChannelMode::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECPan ----

IMPLEMENT_SERIAL(ECPan, ECControlChange, VERSIONABLE_SCHEMA | 2)

ECPan::~ECPan() = default;

CObject *ECPan::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPan)))
        *this = *static_cast<ECPan *>(src);
    return this;
}

int ECPan::GetEventId() const
{
    return EVENT_ID_PAN;
}

int ECPan::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_ENVELOPE);
    types.Add(EVENT_ID_CONTROLLER_ENV);
    return 1;
}

// ---- ECProgramChange ----

IMPLEMENT_SERIAL(ECProgramChange, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECProgramChange::~ECProgramChange() = default;

CObject *ECProgramChange::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECProgramChange)))
        *this = *static_cast<ECProgramChange *>(src);
    return this;
}

int ECProgramChange::GetEventId() const
{
    return EVENT_ID_PROGRAM_CHANGE;
}

int ECProgramChange::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_PATCH_ENV);
    return 1;
}

// ---- ECPitchBend ----

IMPLEMENT_SERIAL(ECPitchBend, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECPitchBend::~ECPitchBend() = default;

CObject *ECPitchBend::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPitchBend)))
        *this = *static_cast<ECPitchBend *>(src);
    return this;
}

int ECPitchBend::GetEventId() const
{
    return EVENT_ID_PITCH_BEND;
}

int ECPitchBend::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_PITCH_BEND_ENV);
    return 1;
}

// ---- ECChannelPressure ----

IMPLEMENT_SERIAL(ECChannelPressure, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECChannelPressure::~ECChannelPressure() = default;

CObject *ECChannelPressure::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChannelPressure)))
        *this = *static_cast<ECChannelPressure *>(src);
    return this;
}

int ECChannelPressure::GetEventId() const
{
    return EVENT_ID_CHANNEL_PRESSURE;
}

int ECChannelPressure::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_CHAN_PRESSURE_ENV);
    return 1;
}

// ---- ECPolyPressure ----

IMPLEMENT_SERIAL(ECPolyPressure, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECPolyPressure::~ECPolyPressure() = default;

CObject *ECPolyPressure::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPolyPressure)))
        *this = *static_cast<ECPolyPressure *>(src);
    return this;
}

int ECPolyPressure::GetEventId() const
{
    return EVENT_ID_POLY_PRESSURE;
}

int ECPolyPressure::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_POLY_PRESSURE_ENV);
    return 1;
}

// ---- ECRPNPoint ----

IMPLEMENT_SERIAL(ECRPNPoint, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECRPNPoint::~ECRPNPoint() = default;

CObject *ECRPNPoint::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECRPNPoint)))
        *this = *static_cast<ECRPNPoint *>(src);
    return this;
}

int ECRPNPoint::GetEventId() const
{
    return EVENT_ID_RPN_POINT;
}

int ECRPNPoint::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_RPN_ENV);
    return 1;
}

// ---- ECNRPNPoint ----

IMPLEMENT_SERIAL(ECNRPNPoint, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

ECNRPNPoint::~ECNRPNPoint() = default;

CObject *ECNRPNPoint::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECNRPNPoint)))
        *this = *static_cast<ECNRPNPoint *>(src);
    return this;
}

int ECNRPNPoint::GetEventId() const
{
    return EVENT_ID_NRPN_POINT;
}

int ECNRPNPoint::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_NRPN_ENV);
    return 1;
}

// ---- Records ----

void ECControlChange::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    if (ar.IsStoring())
        ar << m_controllerNum;
    else if (ActiveArchiveVersion() >= 3)
        ar >> m_controllerNum;
}

void ECChannelMode::Serialize(CArchive &ar)
{
    if (ar.IsStoring())
    {
        ECControlChange::Serialize(ar);
        ar << m_channelModeType;
        return;
    }
    if (ActiveArchiveVersion() > 3)
    {
        ECControlChange::Serialize(ar);
        ar >> m_channelModeType;
        return;
    }
    // Old documents held only the timed part of a channel mode.
    ECWithTime::Serialize(ar);
}

void ECPolyPressure::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    if (ar.IsStoring())
        ar << GetSpareByte();
    else
    {
        BYTE key = 0;
        ar >> key;
        SetSpareByte(key);
    }
}

void ECRPNPoint::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    if (ar.IsStoring())
        ar << m_value1 << m_value2;
    else
        ar >> m_value1 >> m_value2;
}

void ECNRPNPoint::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    if (ar.IsStoring())
        ar << m_value1 << m_value2;
    else
        ar >> m_value1 >> m_value2;
}
