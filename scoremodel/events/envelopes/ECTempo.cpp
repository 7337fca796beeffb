#include <scoremodel/events/envelopes/ECTempo.h>

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/notes/MirrorLinks.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/Preferences.h>

IMPLEMENT_SERIAL(ECTempo, ECEnvPoint, VERSIONABLE_SCHEMA | 2)

namespace
{
struct TempoWord
{
    const wchar_t *key;
    int bpm;
};

// By type, 0 to 29. A bpm of 0 means no default of its own.
const TempoWord kTempoWords[30] = {
    {nullptr, 0},
    {nullptr, 0},
    {L"IDS_DM_TEMPO_LARGHISSIMO", 40},
    {L"IDS_DM_TEMPO_ADAGISSIMO", 43},
    {L"IDS_DM_TEMPO_LENTISSIMO", 47},
    {L"IDS_DM_TEMPO_LARGO", 50},
    {L"IDS_DM_TEMPO_ADAGIO", 70},
    {L"IDS_DM_TEMPO_LENTO", 54},
    {L"IDS_DM_TEMPO_LARGHETTO", 60},
    {L"IDS_DM_TEMPO_ADAGIETTO", 58},
    {L"IDS_DM_TEMPO_ANDANTE", 60},
    {L"IDS_DM_TEMPO_ANDANTINO", 70},
    {L"IDS_DM_TEMPO_MODERATO", 100},
    {L"IDS_DM_TEMPO_ALLEGRETTO", 110},
    {L"IDS_DM_TEMPO_ALLEGRO", 120},
    {L"IDS_DM_TEMPO_VIVACE", 140},
    {L"IDS_DM_TEMPO_VIVO", 160},
    {L"IDS_DM_TEMPO_PRESTO", 180},
    {L"IDS_DM_TEMPO_ALLEGRISSIMO", 210},
    {L"IDS_DM_TEMPO_VIVACISSIMO", 220},
    {L"IDS_DM_TEMPO_PRESTISSIMO", 200},
    {L"IDS_DM_TEMPO_ACCELERANDO", 0},
    {L"IDS_DM_TEMPO_RALLENTANDO", 0},
    {L"IDS_DM_TEMPO_RITARDANDO", 0},
    {nullptr, 0},
    {L"IDS_DM_PAUSE_GP", 0},
    {L"IDS_DM_PAUSE_LP", 0},
    {L"IDS_DM_TEMPO_ATEMPO", 0},
    {L"IDS_DM_TEMPO_RUBATO", 0},
    {nullptr, 0},
};
} // namespace

CString GetTempoString(unsigned char type)
{
    if (type >= 30 || !kTempoWords[type].key)
        return CString();
    return MCLanguageManager::GetText(L"DataModel", kTempoWords[type].key);
}

int GetTempoValue(int type)
{
    CString section;
    section.Format(L"%s\\%s", L"Settings\\Tempo",
                   GetTempoString(static_cast<unsigned char>(type & 0xFF)).GetString());
    int bpm = LoadIntPreference(section, L"BPM", -1);
    if (bpm != -1)
        return bpm;
    bpm = type >= 2 && type <= 20 ? kTempoWords[type].bpm : 60;
    SaveIntPreference(section, L"BPM", bpm);
    return bpm;
}

int GetTempoType(int bpm)
{
    for (int type = 2; type <= 20; ++type)
        if (GetTempoValue(type) > bpm)
            return type == 2 ? 2 : type - 1;
    return 20;
}

ECTempo::ECTempo()
{
    SetSpareByte(1);
    m_clockTime.SetMode(3);
    m_value = m_tempo;
}

ECTempo::ECTempo(unsigned char type, MCTime duration) : ECTempo()
{
    SetTempoType(type, duration);
}

ECTempo::ECTempo(const ECTempo &other) : ECEnvPoint(other)
{
    m_clockTime.SetMode(3);
    *this = other;
    m_duration = other.m_duration;
}

ECTempo::~ECTempo()
{
    RemoveMirrors();
}

ECTempo &ECTempo::operator=(const ECTempo &other)
{
    if (this != &other)
    {
        ECEnvPoint::operator=(other);
        SetSpareByte(other.GetSpareByte());
        m_text = other.m_text;
        m_tempo = other.m_tempo;
        m_rate = other.m_rate;
        m_speed = other.m_speed;
        m_beat = other.m_beat;
        m_pausePercent = other.m_pausePercent;
        m_value = m_tempo;
    }
    return *this;
}

int ECTempo::operator==(const ECTempo &other) const
{
    return GetTempoType() == other.GetTempoType() && m_duration == other.m_duration && m_text == other.m_text &&
           m_tempo == other.m_tempo && m_speed == other.m_speed && m_beat == other.m_beat &&
           m_pausePercent == other.m_pausePercent;
}

CObject *ECTempo::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECTempo)))
        *this = *static_cast<ECTempo *>(src);
    return this;
}

int ECTempo::GetEventId() const
{
    return EVENT_ID_TEMPO;
}

int ECTempo::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_TEMPO_ENV);
    return 1;
}

int ECTempo::SetTempo(float tempo, float beat)
{
    if (m_tempo == 0.0f)
        return 0;
    m_tempo = beat * tempo;
    m_rate = m_tempo / 60.0f;
    m_speed = 60.0f / m_tempo;
    m_beat = beat;
    return 1;
}

float ECTempo::GetTempo(float beat)
{
    if (m_beat == 0.0f)
        return 0.0f;
    if (beat == 1.0f)
        return m_tempo;
    return m_tempo / m_beat;
}

int ECTempo::SetTempoType(int type, MCTime duration)
{
    SetSpareByte(static_cast<BYTE>(type));
    float tempo = 0.0f;
    if (type >= 2 && type <= 20)
        tempo = static_cast<float>(GetTempoValue(type));
    else if (type >= 21 && type <= 23)
        m_duration = duration;
    else if (!(type == 0 || type == 1 || (type >= 24 && type <= 29)))
        return 0;
    if (tempo > 0.0f)
        SetTempo(tempo, 1.0f);
    return 1;
}

float ECTempo::GetPausePercent() const
{
    return IsPauseTempo(GetTempoType()) ? m_pausePercent : 0.0f;
}

void ECTempo::SetPausePercent(float percent)
{
    m_pausePercent = percent < 0.0f ? 0.0f : (percent > 400.0f ? 400.0f : percent);
}

void ECTempo::SetDuration(MCTime *duration)
{
    if (!duration)
        return;
    m_duration = *duration;
    for (POSITION pos = GetParents()->GetHeadPosition(); pos;)
    {
        ECBase *parent = GetParents()->GetNext(pos);
        if (parent->GetEventId() == EVENT_ID_TEMPO_ENV && parent->IsKindOf(RUNTIME_CLASS(ECTempoEnv)))
        {
            static_cast<ECTempoEnv *>(parent)->RecalculateClockTimes();
            break;
        }
    }
}

CString ECTempo::GetText() const
{
    return m_text.IsEmpty() ? GetTempoString(static_cast<unsigned char>(GetTempoType())) : m_text;
}

void ECTempo::AddMirror(ECMirror *mirror)
{
    mirror_links::Add(m_mirrors, mirror, this);
}

void ECTempo::RemoveMirror(ECMirror *mirror)
{
    mirror_links::Remove(m_mirrors, mirror);
}

void ECTempo::RemoveMirrors()
{
    mirror_links::RemoveAll(m_mirrors);
}

void ECTempo::Serialize(CArchive &ar)
{
    ECEnvPoint::Serialize(ar);
    if (ar.IsStoring())
    {
        ar << m_tempo << m_rate << m_speed << m_beat << GetSpareByte();
        if (HasDuration(GetTempoType()))
            m_duration.Serialize(ar, -1);
        ar << m_text << m_pausePercent;
        return;
    }
    BYTE type = 0;
    ar >> m_tempo >> m_rate >> m_speed >> m_beat >> type;
    SetSpareByte(type);
    if (HasDuration(type))
        m_duration.Serialize(ar, ActiveArchiveVersion());
    ar >> m_text;
    if (ActiveArchiveVersion() >= 3)
        ar >> m_pausePercent;
}
