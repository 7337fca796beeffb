// The pool must hand nodes back into use wherever they were freed: a reserve
// that grew with every round of a producer and a consumer on two threads, or
// with every thread that ends, would be a leak in all but name.
#include <scoremodel/events/base/MCNodePool.h>

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <malloc.h>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace
{
constexpr size_t kRound = 50000;

std::vector<void *> AllocateRound()
{
    std::vector<void *> blocks(kRound);
    for (void *&block : blocks)
        block = MCNodePool::Allocate();
    return blocks;
}

void FreeAll(const std::vector<void *> &blocks)
{
    for (void *block : blocks)
        MCNodePool::Free(block);
}

// The pool steps aside under the address sanitizer and reserves nothing.
bool PoolActive()
{
    MCNodePool::Free(MCNodePool::Allocate());
    return MCNodePool::GetReservedCount() > 0;
}
} // namespace

TEST(MCNodePool, BlocksAreDistinctAndWritable)
{
    std::vector<void *> blocks = AllocateRound();
    std::set<void *> distinct(blocks.begin(), blocks.end());
    EXPECT_EQ(distinct.size(), blocks.size());
    for (void *block : blocks)
        static_cast<void **>(block)[2] = block; // the last word of each node
    for (void *block : blocks)
        ASSERT_EQ(static_cast<void **>(block)[2], block);
    FreeAll(blocks);
    MCNodePool::Free(nullptr);
}

TEST(MCNodePool, NodesFreedOnAnotherThreadAreUsedAgain)
{
    if (!PoolActive())
        GTEST_SKIP() << "the pool steps aside in this build";
    std::mutex lock;
    std::condition_variable changed;
    std::vector<void *> handed;
    bool done = false;
    std::thread consumer([&] {
        std::unique_lock<std::mutex> guard(lock);
        for (;;)
        {
            changed.wait(guard, [&] { return done || !handed.empty(); });
            FreeAll(handed);
            handed.clear();
            changed.notify_all();
            if (done)
                return;
        }
    });
    // Each round is made here and freed there.
    const size_t before = MCNodePool::GetReservedCount();
    for (int round = 0; round < 20; ++round)
    {
        std::vector<void *> blocks = AllocateRound();
        std::unique_lock<std::mutex> guard(lock);
        handed = std::move(blocks);
        changed.notify_all();
        changed.wait(guard, [&] { return handed.empty(); });
    }
    {
        std::lock_guard<std::mutex> guard(lock);
        done = true;
    }
    changed.notify_all();
    consumer.join();
    EXPECT_LT(MCNodePool::GetReservedCount() - before, 3 * kRound) << "20 rounds of " << kRound;
}

TEST(MCNodePool, AThreadThatEndsGivesItsFreeNodesBack)
{
    if (!PoolActive())
        GTEST_SKIP() << "the pool steps aside in this build";
    for (int thread = 0; thread < 10; ++thread)
        std::thread([] { FreeAll(AllocateRound()); }).join();
    const size_t before = MCNodePool::GetReservedCount();
    std::vector<void *> blocks = AllocateRound();
    EXPECT_EQ(MCNodePool::GetReservedCount(), before) << "this thread finds the nodes of those that ended";
    FreeAll(blocks);
}

// Whether this build would use the pool (it steps aside under the address
// sanitizer).
bool PoolActiveWithoutTheEnvironment()
{
#if defined(__SANITIZE_ADDRESS__)
    return false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return false;
#endif
#endif
    return true;
}

// Run by the test "node_pool_heap" with SCOREMODEL_NODE_POOL=heap: every node
// is a heap block of its own, so a host's leaked node shows in the heap's
// figures (and in valgrind's) and a freed one leaves them at once.
TEST(MCNodePoolHeap, EveryNodeComesFromTheHeapWhenTheEnvironmentAsks)
{
    if (std::getenv("SCOREMODEL_NODE_POOL") == nullptr)
        GTEST_SKIP() << "runs as node_pool_heap, with SCOREMODEL_NODE_POOL=heap";
    ASSERT_TRUE(MCNodePool::UsesHeap());
    // The address sanitizer's heap is not the C library's: mallinfo2 does
    // not see it, and there the pool is off anyway.
    const bool mallocCounts = PoolActiveWithoutTheEnvironment();
    const size_t before = mallinfo2().uordblks;
    std::vector<void *> blocks = AllocateRound();
    if (mallocCounts)
        EXPECT_GE(mallinfo2().uordblks - before, kRound * MCNodePool::kBlockSize);
    EXPECT_EQ(MCNodePool::GetReservedCount(), 0u);
    FreeAll(blocks);
    if (mallocCounts)
        EXPECT_LT(mallinfo2().uordblks, before + kRound * MCNodePool::kBlockSize / 10);
    EXPECT_EQ(MCNodePool::GetReservedCount(), 0u);
}

TEST(MCNodePoolHeap, ThePoolIsUsedUnlessAskedOtherwise)
{
    if (std::getenv("SCOREMODEL_NODE_POOL") != nullptr)
        GTEST_SKIP() << "the environment asks for the heap";
    EXPECT_EQ(MCNodePool::UsesHeap(), !PoolActive());
}
