// Re-entrant locks with the platform's interface.
//
// CCriticalSection may be entered again by the thread that holds it; each
// Lock needs its Unlock. CSingleLock releases what it took when it goes out of
// scope, so a lock held across a throwing call is never left behind.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

#include <atomic>
#include <mutex>
#include <thread>

class SCOREMODEL_API CCriticalSection
{
public:
    CCriticalSection() = default;
    CCriticalSection(const CCriticalSection &) = delete;
    CCriticalSection &operator=(const CCriticalSection &) = delete;

    // Re-entry by the holder costs one relaxed load and a counter, with no
    // atomic read-modify-write: the playback engine takes an envelope's lock
    // several times inside one value read. Only the holder can see its own
    // id in m_owner, so the relaxed load is enough to recognise it.
    BOOL Lock()
    {
        const std::thread::id self = std::this_thread::get_id();
        if (m_owner.load(std::memory_order_relaxed) == self)
        {
            ++m_depth;
            return TRUE;
        }
        m_mutex.lock();
        m_owner.store(self, std::memory_order_relaxed);
        m_depth = 1;
        return TRUE;
    }
    // REQUIRES: the calling thread holds the lock.
    BOOL Unlock()
    {
        if (--m_depth == 0)
        {
            m_owner.store(std::thread::id(), std::memory_order_relaxed);
            m_mutex.unlock();
        }
        return TRUE;
    }
    // Takes the lock only if no other thread holds it; never waits.
    BOOL TryLock()
    {
        const std::thread::id self = std::this_thread::get_id();
        if (m_owner.load(std::memory_order_relaxed) == self)
        {
            ++m_depth;
            return TRUE;
        }
        if (!m_mutex.try_lock())
            return FALSE;
        m_owner.store(self, std::memory_order_relaxed);
        m_depth = 1;
        return TRUE;
    }

private:
    std::mutex m_mutex;
    std::atomic<std::thread::id> m_owner{};
    unsigned m_depth = 0;
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
