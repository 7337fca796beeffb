#include <scoremodel/platform/CCriticalSection.h>

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace
{
// Takes and gives back the lock on a thread of its own. A lock left held by
// the caller shows as this never returning: the fault is a hang, not a race.
void TakeOnAnotherThread(CCriticalSection &section)
{
    std::thread([&] {
        section.Lock();
        section.Unlock();
    }).join();
}
} // namespace

// Two threads each bump a shared count many times, entering the section twice
// and leaving it once before the bump. A section that let go at the first
// Unlock, or never kept the other thread out, loses bumps: the read and the
// write are split by a yield so the other thread gets every chance to cut in.
TEST(CCriticalSection, ReentryByTheOwnerStillKeepsTheOtherThreadOutUntilTheLastUnlock)
{
    CCriticalSection section;
    const int rounds = 20000;
    int count = 0;
    auto bump = [&] {
        for (int i = 0; i < rounds; ++i)
        {
            section.Lock();
            section.Lock();
            section.Unlock();
            int seen = count;
            std::this_thread::yield();
            count = seen + 1;
            section.Unlock();
        }
    };
    std::thread other(bump);
    bump();
    other.join();
    EXPECT_EQ(count, 2 * rounds);
}

// The owner enters twice and writes down each step; the other thread writes
// once it is in. Whenever it gets in, it must be after the owner's last step.
TEST(CCriticalSection, ASecondThreadGetsInOnlyAfterTheOwnersLastUnlock)
{
    CCriticalSection section;
    std::vector<std::string> steps; // guarded by section
    std::atomic<bool> waiting{false};

    section.Lock();
    section.Lock();
    std::thread other([&] {
        waiting = true;
        section.Lock();
        steps.push_back("other");
        section.Unlock();
    });
    while (!waiting)
        std::this_thread::yield();
    steps.push_back("owner, entered twice");
    section.Unlock();
    std::this_thread::yield();
    steps.push_back("owner, entered once");
    section.Unlock();
    other.join();
    EXPECT_EQ(steps, std::vector<std::string>({"owner, entered twice", "owner, entered once", "other"}));
}

// Every way out of a CSingleLock's scope must give the section back, and
// repeated Lock calls on one CSingleLock must not pile up entries that its
// single release would leave behind.
TEST(CSingleLock, GivesTheSectionBackOnEveryWayOut)
{
    struct Case
    {
        const char *name;
        void (*use)(CCriticalSection &);
    };
    const Case cases[] = {
        {"taken at construction, scope ends",
         [](CCriticalSection &s) {
             CSingleLock lock(&s, TRUE);
             EXPECT_TRUE(lock.IsLocked());
         }},
        {"taken by Lock, scope ends",
         [](CCriticalSection &s) {
             CSingleLock lock(&s);
             EXPECT_FALSE(lock.IsLocked()) << "not taken until asked";
             EXPECT_TRUE(lock.Lock());
         }},
        {"an exception leaves the scope",
         [](CCriticalSection &s) {
             try
             {
                 CSingleLock lock(&s, TRUE);
                 throw std::runtime_error("failed while holding the lock");
             }
             catch (const std::runtime_error &)
             {
             }
         }},
        {"Lock twice, then one Unlock",
         [](CCriticalSection &s) {
             CSingleLock lock(&s);
             lock.Lock();
             lock.Lock();
             lock.Unlock();
             EXPECT_FALSE(lock.IsLocked());
             TakeOnAnotherThread(s); // released now, not only at scope end
         }},
        {"Lock twice, scope ends",
         [](CCriticalSection &s) {
             CSingleLock lock(&s, TRUE);
             lock.Lock();
         }},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.name);
        CCriticalSection section;
        c.use(section);
        TakeOnAnotherThread(section);
    }
}
