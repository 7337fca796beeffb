#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>

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
