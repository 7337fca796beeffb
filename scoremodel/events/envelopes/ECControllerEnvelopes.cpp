#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>

#include <scoremodel/platform/CArchive.h>

#include <cmath>

namespace
{
int RoundValue(float value)
{
    if (!(value == value) || value >= 2147483520.0f || value <= -2147483648.0f)
        return 0;
    return static_cast<int>(std::lround(value));
}
} // namespace

// ---- ECControllerEnv ----

IMPLEMENT_SERIAL(ECControllerEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECControllerEnv::~ECControllerEnv() = default;

CObject *ECControllerEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECControllerEnv)))
        *this = *static_cast<ECControllerEnv *>(src);
    return this;
}

int ECControllerEnv::GetEventId() const
{
    return EVENT_ID_CONTROLLER_ENV;
}

int ECControllerEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    types.Add(EVENT_ID_TRACK);
    return 1;
}

// ---- ECPatchEnv ----

IMPLEMENT_SERIAL(ECPatchEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECPatchEnv::~ECPatchEnv() = default;

CObject *ECPatchEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPatchEnv)))
        *this = *static_cast<ECPatchEnv *>(src);
    return this;
}

int ECPatchEnv::GetEventId() const
{
    return EVENT_ID_PATCH_ENV;
}

int ECPatchEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECPitchBendEnv ----

IMPLEMENT_SERIAL(ECPitchBendEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECPitchBendEnv::~ECPitchBendEnv() = default;

CObject *ECPitchBendEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPitchBendEnv)))
        *this = *static_cast<ECPitchBendEnv *>(src);
    return this;
}

int ECPitchBendEnv::GetEventId() const
{
    return EVENT_ID_PITCH_BEND_ENV;
}

int ECPitchBendEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECChanPressureEnv ----

IMPLEMENT_SERIAL(ECChanPressureEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECChanPressureEnv::~ECChanPressureEnv() = default;

CObject *ECChanPressureEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECChanPressureEnv)))
        *this = *static_cast<ECChanPressureEnv *>(src);
    return this;
}

int ECChanPressureEnv::GetEventId() const
{
    return EVENT_ID_CHAN_PRESSURE_ENV;
}

int ECChanPressureEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECPolyPressureEnv ----

IMPLEMENT_SERIAL(ECPolyPressureEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECPolyPressureEnv::~ECPolyPressureEnv() = default;

CObject *ECPolyPressureEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECPolyPressureEnv)))
        *this = *static_cast<ECPolyPressureEnv *>(src);
    return this;
}

int ECPolyPressureEnv::GetEventId() const
{
    return EVENT_ID_POLY_PRESSURE_ENV;
}

int ECPolyPressureEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECRPNEnv ----

IMPLEMENT_SERIAL(ECRPNEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECRPNEnv::~ECRPNEnv() = default;

CObject *ECRPNEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECRPNEnv)))
        *this = *static_cast<ECRPNEnv *>(src);
    return this;
}

int ECRPNEnv::GetEventId() const
{
    return EVENT_ID_RPN_ENV;
}

int ECRPNEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    return 1;
}

// ---- ECNRPNEnv ----

IMPLEMENT_SERIAL(ECNRPNEnv, ECEnvelope, VERSIONABLE_SCHEMA | 2)

ECNRPNEnv::~ECNRPNEnv() = default;

CObject *ECNRPNEnv::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECNRPNEnv)))
        *this = *static_cast<ECNRPNEnv *>(src);
    return this;
}

int ECNRPNEnv::GetEventId() const
{
    return EVENT_ID_NRPN_ENV;
}

int ECNRPNEnv::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_STAFF);
    types.Add(EVENT_ID_TRACK);
    return 1;
}

// ---- Family specifics ----

ECControllerEnv::ECControllerEnv()
{
    SetLimits(0.0f, 127.0f);
}

void ECControllerEnv::SetControllerType(int type)
{
    if (type >= 0 && type <= 119)
        SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x80) | (type & 0x7F)));
    if (type == 8 || type == 10)
        SetDefaultValue(64.0f);
    else if (type == 7 || type == 11)
        SetDefaultValue(127.0f);
    else
        SetDefaultValue(0.0f);
}

void ECControllerEnv::Set14Bit(int on)
{
    SetSpareByte(static_cast<BYTE>((GetSpareByte() & 0x7F) | ((on & 1) << 7)));
    SetLimits(0.0f, (on & 1) ? 16383.0f : 127.0f);
}

void ECControllerEnv::Serialize(CArchive &ar)
{
    ECEnvelope::Serialize(ar);
    if (ar.IsStoring())
        ar << GetSpareByte();
    else
    {
        BYTE value = 0;
        ar >> value;
        SetSpareByte(value);
    }
}

float ECPatchEnv::MakePatchValue(int msb, int lsb, int program)
{
    return static_cast<float>(((msb & 0x7F) << 14) | ((lsb & 0x7F) << 7) | (program & 0x7F));
}

int ECPatchEnv::GetBankMSB(float value)
{
    return (RoundValue(value) >> 14) & 0x7F;
}

int ECPatchEnv::GetBankLSB(float value)
{
    return (RoundValue(value) >> 7) & 0x7F;
}

int ECPatchEnv::GetProgram(float value)
{
    return RoundValue(value) & 0x7F;
}

void ECPatchEnv::ReadPatchValue(float value, int &msb, int &lsb, int &program)
{
    msb = GetBankMSB(value);
    lsb = GetBankLSB(value);
    program = GetProgram(value);
}

void ECPatchEnv::EditPatchValue(float &value, int *msb, int *lsb, int *program)
{
    int packed = RoundValue(value);
    if (msb)
        packed = (packed & 0xFFFF) | ((*msb & 0x7F) << 14);
    if (lsb)
        packed = (packed & 0xFF00FF) | ((*lsb & 0x7F) << 7);
    if (program)
        packed = (packed & 0xFFFF00) | (*program & 0x7F);
    value = static_cast<float>(packed);
}

int ECPatchEnv::GetPatch(MCTime &time, int &msb, int &lsb, int &program)
{
    float value = 0.0f;
    int changed = GetValue(time, value, 0, -1);
    ReadPatchValue(value, msb, lsb, program);
    return changed;
}

void ECPatchEnv::SetPatch(MCTime &, int, int, int)
{
}

ECPitchBendEnv::ECPitchBendEnv()
{
    SetLimits(0.0f, 16383.0f);
    SetDefaultValue(8192.0f);
}

ECChanPressureEnv::ECChanPressureEnv()
{
    SetLimits(0.0f, 127.0f);
}

ECPolyPressureEnv::ECPolyPressureEnv()
{
    SetLimits(0.0f, 127.0f);
}

void ECPolyPressureEnv::SetKey(int key)
{
    if (key >= 0 && key <= 127)
        m_key = static_cast<BYTE>(key);
}

void ECPolyPressureEnv::Serialize(CArchive &ar)
{
    ECEnvelope::Serialize(ar);
    if (ar.IsStoring())
        ar << m_key;
    else
        ar >> m_key;
}

ECRPNEnv::ECRPNEnv()
{
    SetLimits(0.0f, 16383.0f);
}

void ECRPNEnv::SetRPNType(int msb, int lsb)
{
    if (msb < 0 || msb > 127 || lsb < 0 || lsb > 127)
        return;
    m_typeMSB = static_cast<BYTE>(msb);
    m_typeLSB = static_cast<BYTE>(lsb);
}

void ECRPNEnv::Set14Bit(int on)
{
    m_14Bit = static_cast<BYTE>(on & 0xFF);
    SetLimits(0.0f, (on & 1) ? 16383.0f : 127.0f);
}

void ECRPNEnv::Serialize(CArchive &ar)
{
    ECEnvelope::Serialize(ar);
    if (ar.IsStoring())
        ar << m_14Bit;
    else
        ar >> m_14Bit;
}

ECNRPNEnv::ECNRPNEnv()
{
    SetLimits(0.0f, 16383.0f);
}

void ECNRPNEnv::SetNRPNType(int msb, int lsb)
{
    if (msb < 0 || msb > 127 || lsb < 0 || lsb > 127)
        return;
    m_typeMSB = static_cast<BYTE>(msb);
    m_typeLSB = static_cast<BYTE>(lsb);
}

void ECNRPNEnv::Set14Bit(int on)
{
    m_14Bit = static_cast<BYTE>(on & 0xFF);
    SetLimits(0.0f, (on & 1) ? 16383.0f : 127.0f);
}

void ECNRPNEnv::Serialize(CArchive &ar)
{
    ECEnvelope::Serialize(ar);
    if (ar.IsStoring())
        ar << m_14Bit;
    else
        ar >> m_14Bit;
}
