// CPluginFilter: the registry of filters (LCBase classes), by key.
//
// A plug-in derives a filter from LCBase, describes it with an entry under a
// key of at most 51 characters, and registers the entry in its InitPlugins;
// the host then makes filters by key (or by class or code):
//
//     static CPluginFilter s_entry(RUNTIME_CLASS(LCHumanize), "Humanize");
//     CPluginFilter::AddPlugin(&s_entry);
//     ...
//     LCBase *pFilter = CPluginFilter::CreateFilter("Humanize"); // the host deletes it
//
// Kept oddities: the first entry of a key stays, a later one of the same key
// is ignored. RemovePlugin does nothing, so an entry once registered is
// looked at for the rest of the process and must live that long (a static
// object of a plug-in does: plug-in libraries stay mapped). The code of an
// entry is 0 and nothing here sets another; FindPlugin(code) is for hosts
// whose plug-ins derive entries that set it.
//
// The registry is a CMap keyed by the entry's own key text (the map holds a
// pointer to it, not a copy), in registration order.
//
// Threads: registration at start, on one thread; no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CMap.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/plugins/CPlugin.h>

class LCBase;

class SCOREMODEL_API CPluginFilter : public CPlugin
{
public:
    // Longest key, without its terminator.
    static constexpr int kMaxKeyLength = 51;

    // No class, empty key, code 0.
    CPluginFilter();
    // Code 0; the key is copied, cut to kMaxKeyLength characters (null
    // counts as empty).
    CPluginFilter(CRuntimeClass *filterClass, const char *key);
    ~CPluginFilter() override;

    CRuntimeClass *GetFilterClass() const { return m_filterClass; }
    const char *GetFilterClassKey() const { return m_key; }
    unsigned int GetFilterCode() const { return m_code; }

    // Enters the filter under its key, unless the key is taken already (the
    // first stays). Ignores null.
    static void AddPlugin(CPluginFilter *filter);
    // Does nothing: see above.
    static void RemovePlugin(CPluginFilter *filter);

    // The entry of a key; null when absent or for a null key.
    static CPluginFilter *FindPlugin(const char *key);
    // The first entry, in registration order, of that class (a null class
    // matches nothing) or of that code.
    static CPluginFilter *FindPlugin(CRuntimeClass *filterClass);
    static CPluginFilter *FindPlugin(unsigned int code);

    // A new filter of the entry found as above; null when not found or when
    // its class cannot make an LCBase. The caller owns the result.
    static LCBase *CreateFilter(const char *key);
    static LCBase *CreateFilter(unsigned int code);

protected:
    unsigned int m_code = 0;

private:
    CRuntimeClass *m_filterClass = nullptr;
    char m_key[kMaxKeyLength + 1] = {};
};
