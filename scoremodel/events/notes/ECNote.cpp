#include <scoremodel/events/notes/ECNote.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/pitch/MCHarmonicaConverter.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECNote, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)

ECNote::ECNote()
{
    m_time = MCTime(0.0f);
}

ECNote::~ECNote() = default;

ECNote &ECNote::operator=(const ECNote &other)
{
    if (this != &other)
    {
        ECWithTimeChild::operator=(other);
        m_string = other.m_string;
        m_fret = other.m_fret;
        m_notationByte = other.m_notationByte;
    }
    return *this;
}

int ECNote::operator==(const ECNote &other) const
{
    return m_time == other.m_time && m_duration == other.m_duration && m_string == other.m_string &&
           m_fret == other.m_fret;
}

CObject *ECNote::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECNote)))
        *this = *static_cast<ECNote *>(src);
    return this;
}

int ECNote::GetEventId() const
{
    return EVENT_ID_NOTE;
}

int ECNote::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_MEASURE);
    types.Add(EVENT_ID_CHORD);
    types.Add(EVENT_ID_BEAM);
    types.Add(EVENT_ID_TUPLET);
    return 1;
}

void ECNote::SetDuration(MCTime *duration)
{
    if (duration)
        m_duration = *duration;
}

void ECNote::SetHarmonicaCompression(int compression)
{
    m_notationByte = MCHarmonicaConverter::CombineToNotationByte(
        compression, MCHarmonicaConverter::ExtractNoteStyle(m_notationByte),
        MCHarmonicaConverter::ExtractStaffDegree(m_notationByte));
}

BYTE ECNote::GetHarmonicaMidiPitch()
{
    if (m_notationByte & 0x80)
        return 0;
    return MCHarmonicaConverter::GetInstance().GetDescantMidiPitch(m_notationByte);
}

int ECNote::HasDot()
{
    EventList *children = GetChildren();
    return children && children->FindEvent(EVENT_ID_DOT) != nullptr;
}

int ECNote::HasTie()
{
    return GetParents()->FindEvent(EVENT_ID_TIE) != nullptr;
}

int ECNote::HasDotOrTie()
{
    return HasDot() || HasTie();
}

int ECNote::IsInChord()
{
    return GetParents()->FindEvent(EVENT_ID_CHORD) != nullptr;
}

void ECNote::Serialize(CArchive &ar)
{
    ECWithTimeChild::Serialize(ar);
    if (ar.IsStoring())
    {
        m_prevTrack = GetTrack();
        m_prevTime = GetTime()->GetSeconds();
        m_prevDuration = GetDuration()->GetSeconds();
        m_duration.Serialize(ar, -1);
        ar << static_cast<DWORD>(m_fret) << static_cast<DWORD>(m_string) << m_notationByte;
        return;
    }
    const int version = ActiveArchiveVersion();
    m_duration.Serialize(ar, version);
    if (version >= ArchiveVersionNoteTablature)
    {
        DWORD fret = 0, string = 0;
        ar >> fret >> string;
        m_fret = static_cast<int>(fret);
        m_string = static_cast<int>(string);
    }
    if (version >= ArchiveVersionNotationByte)
        ar >> m_notationByte;
}
