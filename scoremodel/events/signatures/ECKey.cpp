#include <scoremodel/events/signatures/ECKey.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/notes/MirrorLinks.h>
#include <scoremodel/events/signatures/StaffSignature.h>
#include <scoremodel/pitch/MCPitchUtils.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECKey, ECWithTime, VERSIONABLE_SCHEMA | 2)

namespace
{
// Documents from this version on hold the packed byte; before it a signed
// count and two bytes nobody reads any more.
constexpr int kPackedKeyVersion = 3;
} // namespace

ECKey::ECKey() = default;

ECKey::ECKey(unsigned char sharps, unsigned char flats, unsigned char mode)
{
    SetNumSharps(sharps);
    SetNumFlats(flats);
    SetMode(mode);
}

ECKey::ECKey(const ECKey &other) : ECWithTime(other)
{
    *this = other;
}

ECKey::~ECKey()
{
    RemoveMirrors();
}

ECKey &ECKey::operator=(const ECKey &other)
{
    if (this != &other)
    {
        ECWithTime::operator=(other);
        SetPackedValue(other.GetPackedValue());
    }
    return *this;
}

int ECKey::operator==(const ECKey &other) const
{
    return GetPackedValue() == other.GetPackedValue();
}

BYTE ECKey::GetPackedValue() const
{
    return static_cast<BYTE>(m_sharps | (m_flats << 3) | (m_mode << 6) | (m_hand << 7));
}

void ECKey::SetPackedValue(BYTE value)
{
    m_sharps = value & 7;
    m_flats = (value >> 3) & 7;
    m_mode = (value >> 6) & 1;
    m_hand = (value >> 7) & 1;
}

CObject *ECKey::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECKey)))
        *this = *static_cast<ECKey *>(src);
    return this;
}

int ECKey::GetEventId() const
{
    return EVENT_ID_KEY;
}

int ECKey::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    return 1;
}

void ECKey::SetTime(MCTime *time)
{
    SetStaffCachedTime(this, time, GetHand(),
                       [](ECBase *e, MCTime *t) { static_cast<ECKey *>(e)->ECWithTime::SetTime(t); });
}

void ECKey::Transpose(unsigned char semitones)
{
    if (semitones == 0)
        return;
    int sharps = m_sharps, flats = m_flats;
    MCPitchUtils::TransposeKey(sharps, flats, static_cast<int>(static_cast<unsigned>(semitones)));
    SetNumSharps(static_cast<unsigned char>(sharps));
    SetNumFlats(static_cast<unsigned char>(flats));
}

void ECKey::AddMirror(ECMirror *mirror)
{
    mirror_links::Add(m_mirrors, mirror, this);
}

void ECKey::RemoveMirror(ECMirror *mirror)
{
    mirror_links::Remove(m_mirrors, mirror);
}

void ECKey::RemoveMirrors()
{
    mirror_links::RemoveAll(m_mirrors);
}

void ECKey::Serialize(CArchive &ar)
{
    ECWithTime::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << GetPackedValue();
        return;
    }
    if (ActiveArchiveVersion() >= kPackedKeyVersion)
    {
        BYTE value = 0;
        ar >> value;
        SetPackedValue(value);
        return;
    }
    short count = 0;
    BYTE dropped = 0;
    ar >> count >> dropped >> dropped;
    // Widened before negating, so the lowest WORD cannot overflow.
    const int wide = count;
    SetNumSharps(static_cast<unsigned char>(wide > 0 ? wide : 0));
    SetNumFlats(static_cast<unsigned char>(wide < 0 ? -wide : 0));
}
