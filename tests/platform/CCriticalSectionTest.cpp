#include <scoremodel/platform/CCriticalSection.h>

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

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

namespace
{
// Whether thread `tid` of this process is blocked in the futex call, that is,
// waits for a lock. Linux shows the call a thread sleeps in under /proc, so a
// test can see a thread wait without guessing how long to give it. Empty
// when /proc does not tell.
std::optional<bool> IsWaitingOnALock(long tid)
{
    std::ifstream file("/proc/self/task/" + std::to_string(tid) + "/syscall");
    if (!file)
        return std::nullopt;
    long call = -1;
    file >> call; // "running" for a thread on a core: not a number
    return call == SYS_futex;
}
} // namespace

// The owner enters twice and leaves once; then another thread tries to enter.
// The test waits until that thread is either in or blocked on the section,
// which needs no timing: a section that let go at the first Unlock lets it
// in, and that is seen whatever the scheduler does.
TEST(CCriticalSection, ASecondThreadGetsInOnlyAfterTheOwnersLastUnlock)
{
    if (!IsWaitingOnALock(syscall(SYS_gettid)))
        GTEST_SKIP() << "/proc does not show the call a thread waits in";
    CCriticalSection section;
    std::atomic<long> otherTid{0};
    std::atomic<bool> entered{false};

    section.Lock();
    section.Lock();
    section.Unlock();
    std::thread other([&] {
        otherTid = syscall(SYS_gettid);
        section.Lock();
        entered = true;
        section.Unlock();
    });
    while (!entered && !(otherTid && IsWaitingOnALock(otherTid).value_or(false)))
        std::this_thread::yield();
    EXPECT_FALSE(entered) << "the other thread got in while the owner still held the section once";
    section.Unlock();
    other.join();
    EXPECT_TRUE(entered);
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
