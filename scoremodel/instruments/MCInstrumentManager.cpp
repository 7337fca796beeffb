#include <scoremodel/instruments/MCInstrumentManager.h>

#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/platform/Exceptions.h>

#include <cmath>
#include <string>

IMPLEMENT_DYNAMIC(MCInstrumentManager, DCBase)

MCInstrumentManager *MCInstrumentManager::GetInstance()
{
    static MCInstrumentManager instance;
    return &instance;
}

MCInstrumentManager::MCInstrumentManager()
{
    GenerateHzPitches();
}

MCInstrumentManager::~MCInstrumentManager() = default;

void MCInstrumentManager::GenerateHzPitches()
{
    m_hzPitches.SetSize(kPitchCount);
    for (int key = 0; key < kPitchCount; ++key)
        m_hzPitches[key] = 440.0 * 0.03125 * std::pow(2.0, (key - 9) / 12.0);
}

MCInstrument MCInstrumentManager::GetInstrument(int index)
{
    return XMLInstrumentParser::GetInstance()->GetInstrument(index, 0);
}

int MCInstrumentManager::GetIndex(MCInstrument instrument)
{
    CArray<MCInstrument *, MCInstrument *> &cached = XMLInstrumentParser::GetInstance()->GetInstruments(0);
    for (INT_PTR i = 0; i < cached.GetSize(); ++i)
        if (cached[i]->Equals(instrument))
            return static_cast<int>(i);
    return -1;
}

CArray<CString, CString> &MCInstrumentManager::GetInstrumentNameList(bool refresh)
{
    m_nameList.Copy(XMLInstrumentParser::GetInstance()->GetInstrumentNameList(refresh ? 1 : 0));
    return m_nameList;
}

int MCInstrumentManager::HasInstrumentName(MCInstrument *instrument)
{
    return instrument ? HasInstrumentName(instrument->GetName()) : 0;
}

int MCInstrumentManager::HasInstrumentName(CString name)
{
    for (const CString &cached : XMLInstrumentParser::GetInstance()->GetInstrumentNameList(0))
        if (cached == name)
            return 1;
    return 0;
}

int MCInstrumentManager::AddInstrument(MCInstrument instrument)
{
    return XMLInstrumentParser::GetInstance()->AddInstrument(instrument);
}

int MCInstrumentManager::DelInstrument(int index)
{
    return index < 0 ? 0 : XMLInstrumentParser::GetInstance()->DelInstrument(index);
}

int MCInstrumentManager::EditInstrument(int index, MCInstrument instrument)
{
    return index < 0 ? 0 : XMLInstrumentParser::GetInstance()->EditInstrument(index, instrument);
}

int MCInstrumentManager::Persist()
{
    return XMLInstrumentParser::GetInstance()->Persist();
}

void MCInstrumentManager::SetInstrument(const MCInstrument &instrument)
{
    m_instrument = instrument;
}

double MCInstrumentManager::GetHzPitch(int index)
{
    const CArray<int, int> &tunes = m_instrument.GetTunes();
    if (index < 0 || index >= tunes.GetSize())
        throw CInvalidArgException("MCInstrumentManager::GetHzPitch: no string " + std::to_string(index));
    return GetHzOfKey(tunes[index]);
}

double MCInstrumentManager::GetHzOfKey(int key) const
{
    if (key < 0 || key >= m_hzPitches.GetSize())
        throw CInvalidArgException("MCInstrumentManager: no frequency for key " + std::to_string(key));
    return m_hzPitches[key];
}
