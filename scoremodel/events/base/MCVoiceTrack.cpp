#include <scoremodel/events/base/MCVoiceTrack.h>

MCVoiceTrack::MCVoiceTrack(unsigned voice, unsigned track)
{
    SetVoice(voice);
    SetTrack(track);
}

void MCVoiceTrack::SetVoice(unsigned voice)
{
    m_value = static_cast<WORD>((m_value & 0x7FF0) | (voice & 0x000F));
}

void MCVoiceTrack::SetTrack(unsigned track)
{
    m_value = static_cast<WORD>((m_value & 0x000F) | ((track << 4) & 0xFFFF));
}

void MCVoiceTrack::SetDevice(unsigned device)
{
    m_value = static_cast<WORD>((m_value & 0xFF00) | (device & 0x00FF) | 0x8000);
}

void MCVoiceTrack::SetChannel(unsigned channel)
{
    m_value = static_cast<WORD>((m_value & 0x00FF) | ((channel & 0x7F) << 8) | 0x8000);
}
