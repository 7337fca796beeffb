#include <scoremodel/plugins/CPluginFilter.h>

#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/plugins/PluginRegistry.h>

#include <cstring>

namespace
{
// At namespace scope, so it is made before any plug-in is loaded. Keys are
// the entries' own texts.
CMap<const char *, const char *, CPluginFilter *, CPluginFilter *> s_filters;

template <class MATCH>
CPluginFilter *FindFirst(MATCH match)
{
    for (POSITION pos = s_filters.GetStartPosition(); pos;)
    {
        const char *key = nullptr;
        CPluginFilter *filter = nullptr;
        s_filters.GetNextAssoc(pos, key, filter);
        if (filter && match(*filter))
            return filter;
    }
    return nullptr;
}
} // namespace

CPluginFilter::CPluginFilter() = default;

CPluginFilter::CPluginFilter(CRuntimeClass *filterClass, const char *key) : m_filterClass(filterClass)
{
    if (key)
        std::strncpy(m_key, key, kMaxKeyLength);
    m_key[kMaxKeyLength] = '\0';
}

CPluginFilter::~CPluginFilter() = default;

void CPluginFilter::AddPlugin(CPluginFilter *filter)
{
    if (!filter || s_filters.PLookup(filter->m_key))
        return;
    s_filters.SetAt(filter->m_key, filter);
}

void CPluginFilter::RemovePlugin(CPluginFilter *)
{
}

CPluginFilter *CPluginFilter::FindPlugin(const char *key)
{
    CPluginFilter *filter = nullptr;
    if (!key || !s_filters.Lookup(key, filter))
        return nullptr;
    return filter;
}

CPluginFilter *CPluginFilter::FindPlugin(CRuntimeClass *filterClass)
{
    if (!filterClass)
        return nullptr;
    return FindFirst([filterClass](const CPluginFilter &f) { return f.m_filterClass == filterClass; });
}

CPluginFilter *CPluginFilter::FindPlugin(unsigned int code)
{
    return FindFirst([code](const CPluginFilter &f) { return f.m_code == code; });
}

LCBase *CPluginFilter::CreateFilter(const char *key)
{
    CPluginFilter *filter = FindPlugin(key);
    return filter ? static_cast<LCBase *>(CreatePluginObject(filter->m_filterClass, RUNTIME_CLASS(LCBase))) : nullptr;
}

LCBase *CPluginFilter::CreateFilter(unsigned int code)
{
    CPluginFilter *filter = FindPlugin(code);
    return filter ? static_cast<LCBase *>(CreatePluginObject(filter->m_filterClass, RUNTIME_CLASS(LCBase))) : nullptr;
}
