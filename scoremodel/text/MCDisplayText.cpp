#include <scoremodel/text/MCDisplayText.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/platform/MCLanguageManager.h>

#include <cctype>
#include <cstring>
#include <string>

const wchar_t *const kDisplayTextSection = L"DataModel";

namespace
{
// "ECChanPressureEnv" to "CHAN_PRESSURE_ENV", "ECNRPNEnv" to "NRPN_ENV":
// a word starts at a capital after a small letter, and at the last capital
// of a run of capitals that a small letter follows.
std::string IdName(const char *className)
{
    std::string name(className);
    if (name.compare(0, 2, "EC") == 0)
        name.erase(0, 2);
    std::string out;
    for (size_t i = 0; i < name.size(); ++i)
    {
        const unsigned char c = static_cast<unsigned char>(name[i]);
        if (i > 0 && std::isupper(c))
        {
            const unsigned char before = static_cast<unsigned char>(name[i - 1]);
            const bool nextSmall = i + 1 < name.size() && std::islower(static_cast<unsigned char>(name[i + 1]));
            if (std::islower(before) || std::isdigit(before) || (std::isupper(before) && nextSmall))
                out.push_back('_');
        }
        out.push_back(static_cast<char>(std::toupper(c)));
    }
    return out;
}
} // namespace

CString GetTextFromID(const wchar_t *key)
{
    if (!key || !*key)
        return CString();
    return MCLanguageManager::GetText(kDisplayTextSection, key);
}

CString GetEventStringKey(int eventId)
{
    const char *className = GetEventClassName(eventId);
    if (!className)
        return CString();
    const std::string key = "IDS_DM_EVENT_" + IdName(className);
    return CString::FromUtf8(key.c_str());
}

CString GetEventString(int eventId)
{
    const CString key = GetEventStringKey(eventId);
    return key.IsEmpty() ? CString() : GetTextFromID(key.GetString());
}

CString GetEventString(ECBase *event)
{
    return event ? GetEventString(event->GetEventId()) : CString();
}

CString GetFlowControlString(int kind)
{
    // By ECFlowControl::FlowKind, from FlowSegno.
    static const wchar_t *const kKeys[] = {
        L"IDS_DM_FLOW_SEGNO",     L"IDS_DM_FLOW_CODA",           L"IDS_DM_FLOW_FINE",
        L"IDS_DM_FLOW_DC",        L"IDS_DM_FLOW_DC_AL_FINE",     L"IDS_DM_FLOW_DC_AL_CODA",
        L"IDS_DM_FLOW_DS",        L"IDS_DM_FLOW_DS_AL_FINE",     L"IDS_DM_FLOW_DS_AL_CODA",
        L"IDS_DM_FLOW_TO_CODA"};
    const int index = kind - 1;
    if (index < 0 || index >= static_cast<int>(sizeof kKeys / sizeof kKeys[0]))
        return CString();
    return GetTextFromID(kKeys[index]);
}
