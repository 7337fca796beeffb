// LCBase: the base of a plug-in filter.
//
// A plug-in derives from LCBase and registers the class under a key with
// CPluginFilter; the host makes filters by key or code. The base holds two
// bytes, whether the filter is enabled (1 at construction) and its priority
// (0 at construction), which operator= copies and operator== compares.
//
// Archive record: the two bytes, enabled first.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CObject.h>

class SCOREMODEL_API LCBase : public CObject
{
    DECLARE_SERIAL(LCBase)

public:
    LCBase() = default;
    LCBase(const LCBase &other) : CObject() { *this = other; }
    ~LCBase() override = default;

    void Serialize(CArchive &ar) override;
    // Calls operator= with `src` when it is an LCBase; returns this.
    virtual CObject *Copy(CObject *src);

    int IsEnabled() const { return m_bEnabled; }
    // Any non-zero value enables.
    void SetEnabled(int enabled) { m_bEnabled = enabled ? 1 : 0; }
    int GetPriority() const { return m_nPriority; }
    // Kept in a byte: the low 8 bits of `priority`.
    void SetPriority(int priority) { m_nPriority = static_cast<BYTE>(priority); }

    LCBase &operator=(const LCBase &other);
    int operator==(const LCBase &other) const;
    int operator!=(const LCBase &other) const { return !(*this == other); }

private:
    BYTE m_bEnabled = 1;
    BYTE m_nPriority = 0;
};
