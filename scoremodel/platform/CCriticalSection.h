// Re-entrant locks with the platform's interface.
//
// CCriticalSection may be entered again by the thread that holds it; each
// Lock needs its Unlock. CSingleLock releases what it took when it goes out of
// scope, so a lock held across a throwing call is never left behind.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

#include <mutex>

class SCOREMODEL_API CCriticalSection
{
public:
    CCriticalSection() = default;
    CCriticalSection(const CCriticalSection &) = delete;
    CCriticalSection &operator=(const CCriticalSection &) = delete;

    BOOL Lock()
    {
        m_mutex.lock();
        return TRUE;
    }
    BOOL Unlock()
    {
        m_mutex.unlock();
        return TRUE;
    }

private:
    std::recursive_mutex m_mutex;
};

class SCOREMODEL_API CSingleLock
{
public:
    // Takes the lock at once when bInitialLock is TRUE.
    explicit CSingleLock(CCriticalSection *pObject, BOOL bInitialLock = FALSE) : m_pObject(pObject)
    {
        if (bInitialLock)
            Lock();
    }
    ~CSingleLock()
    {
        if (m_bAcquired)
            Unlock();
    }
    CSingleLock(const CSingleLock &) = delete;
    CSingleLock &operator=(const CSingleLock &) = delete;

    BOOL Lock()
    {
        if (!m_pObject || m_bAcquired)
            return m_bAcquired;
        m_bAcquired = m_pObject->Lock();
        return m_bAcquired;
    }
    BOOL Unlock()
    {
        if (m_pObject && m_bAcquired)
        {
            m_pObject->Unlock();
            m_bAcquired = FALSE;
        }
        return TRUE;
    }
    BOOL IsLocked() const { return m_bAcquired; }

private:
    CCriticalSection *m_pObject;
    BOOL m_bAcquired = FALSE;
};
