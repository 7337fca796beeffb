// Display text: the words the views show for events and values, looked up
// in the language file of the chosen language (MCLanguageManager), section
// "DataModel".
//
//     CString word = GetTextFromID(L"IDS_DM_TEMPO_LARGO");   // "Largo"
//     CString name = GetEventString(pNote);                  // "Note"
//
// Event names live under IDS_DM_EVENT_ and the name of the event's id (the
// EVENT_ID_ name of EventIds.h): IDS_DM_EVENT_NOTE, IDS_DM_EVENT_NRPN_ENV.
// The tempo words are GetTempoString's (ECTempo.h).
//
// Nothing here fails: a key without text gives an empty string, as the
// language manager does, and an id without a class gives an empty string.
// Thread-safety: that of MCLanguageManager (any thread).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>

class ECBase;

// The section the display texts live in: L"DataModel".
SCOREMODEL_API extern const wchar_t *const kDisplayTextSection;

// The text of a key of the "DataModel" section; empty for a null or
// unknown key.
SCOREMODEL_API CString GetTextFromID(const wchar_t *key);

// The key of an event id's name ("IDS_DM_EVENT_CHAN_PRESSURE_ENV" for 11);
// empty for an id that belongs to no class.
SCOREMODEL_API CString GetEventStringKey(int eventId);

// The user's name of an event id, or of an event's class; empty for null or
// an id without a class.
SCOREMODEL_API CString GetEventString(int eventId);
SCOREMODEL_API CString GetEventString(ECBase *event);

// The words of a flow-control kind (ECFlowControl::FlowKind), under
// IDS_DM_FLOW_ and its name: "D.S. al Coda" for FlowDalSegnoAlCoda. Empty for
// FlowNone and any other number.
SCOREMODEL_API CString GetFlowControlString(int kind);
