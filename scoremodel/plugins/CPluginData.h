// CPluginData: the registry of data attachment classes, by view code and
// event type.
//
// A plug-in describes each of its DCBase classes with a CPluginData entry
// and registers it with AddPlugin; an event that wants an attachment of a
// view code asks CreateData, which makes an object of the class registered
// for that view code and the event's type. The table is a static array of
// class pointers with one row per view code and one column per event id
// (80 columns cover every id); it lives as long as the process.
//
//     static CPluginData s_fingering(RUNTIME_CLASS(DCFingering), 1, EVENT_ID_NOTE);
//     CPluginData::AddPlugin(&s_fingering);          // in the plug-in's start-up
//     DCBase *pData = pNote->GetData(1, 1);          // a DCFingering owned by pNote
//
// A later registration for the same slot replaces the earlier one;
// RemovePlugin empties the slot whoever filled it. Taking its entries out
// before its library is unloaded is the plug-in's own matter.
//
// View codes run from 0 to kViewCodes - 1; the host decides which it uses.
// Outside the table, the slot accessor gives a scratch slot that always reads
// null, and registering or creating does nothing.
//
// Threads: plug-ins register at start, before documents are used; the table
// has no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>
#include <scoremodel/plugins/CPlugin.h>

class DCBase;
class ECBase;

class SCOREMODEL_API CPluginData : public CPlugin
{
public:
    // Rows (view codes) and columns (event types) of the table.
    static constexpr int kViewCodes = 256;
    static constexpr int kEventTypes = 80;

    CPluginData(CRuntimeClass *dataClass, int viewCode, int eventType);
    ~CPluginData() override;

    CRuntimeClass *GetDataClass() const { return m_dataClass; }
    void SetDataClass(CRuntimeClass *dataClass) { m_dataClass = dataClass; }
    int GetViewCode() const { return m_viewCode; }
    void SetViewCode(int viewCode) { m_viewCode = viewCode; }
    int GetEventType() const { return m_eventType; }
    void SetEventType(int eventType) { m_eventType = eventType; }

    // The table slot of a view code and an event type, to read or write. A
    // pair outside the table gives a scratch slot that reads null again on
    // every call, so writing through it registers nothing.
    static CRuntimeClass *&GetDataClass(int viewCode, int eventType);

    // Writes the entry's class into its slot, replacing any class there.
    // Ignores null.
    static void AddPlugin(CPluginData *data);
    // Empties the entry's slot. Ignores null.
    static void RemovePlugin(CPluginData *data);

    // A new attachment of the class in the slot; null for an empty slot, a
    // pair outside the table, or a class that is not a creatable DCBase.
    static DCBase *CreateData(int viewCode, int eventType);
    // The same for the event's type (GetEventId); the new attachment gets
    // SetOwner(event). Null, with the event untouched, when the slot is empty
    // or the event is null.
    static DCBase *CreateData(int viewCode, ECBase *event);

private:
    static CRuntimeClass *s_plugins[kViewCodes][kEventTypes];

    CRuntimeClass *m_dataClass;
    int m_viewCode;
    int m_eventType;
};
