#include <scoremodel/events/base/MCNodePool.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <pthread.h>
#include <vector>

bool MCNodePool::UsesHeap()
{
#if defined(__SANITIZE_ADDRESS__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return true;
#endif
#endif
    // Read once, before the first node: a node must go back the way it came.
    static const bool s_heap = [] {
        const char *value = std::getenv("SCOREMODEL_NODE_POOL");
        return value && (std::strcmp(value, "heap") == 0 || std::strcmp(value, "off") == 0 ||
                         std::strcmp(value, "0") == 0);
    }();
    return s_heap;
}

#if defined(__SANITIZE_ADDRESS__)
#define SCOREMODEL_NODE_POOL_OFF 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SCOREMODEL_NODE_POOL_OFF 1
#endif
#endif

#ifdef SCOREMODEL_NODE_POOL_OFF

void *MCNodePool::Allocate()
{
    return ::operator new(kBlockSize);
}

void MCNodePool::Free(void *block) noexcept
{
    ::operator delete(block);
}

size_t MCNodePool::GetReservedCount()
{
    return 0;
}

#else

namespace
{
struct FreeBlock
{
    FreeBlock *next;
};
static_assert(sizeof(FreeBlock) <= MCNodePool::kBlockSize);

// Nodes per batch, and per chunk: 96 KiB, below the size at which the heap
// maps memory of its own for each request.
constexpr size_t kBatch = 4096;

struct Batch
{
    FreeBlock *head;
    size_t count;
};

struct Stock
{
    std::mutex lock;
    std::vector<Batch> batches;
    // Every chunk, so that the memory stays reachable (and is not reported
    // as leaked) while its nodes are spread over lists and threads.
    std::vector<void *> chunks;
};

Stock *g_stock = nullptr;

// A child made by fork while another thread held the stock's lock would
// find it locked for ever: the lock is taken around the fork instead.
void LockBeforeFork()
{
    g_stock->lock.lock();
}

void UnlockAfterFork()
{
    g_stock->lock.unlock();
}

// Never destroyed: nodes are still freed while the process exits, by
// lists that static objects and other threads hold.
Stock &TheStock()
{
    static Stock *stock = [] {
        g_stock = new Stock;
        (void)pthread_atfork(LockBeforeFork, UnlockAfterFork, UnlockAfterFork);
        return g_stock;
    }();
    return *stock;
}

// A thread's own free nodes: `current` is being used, `spare` is a full
// batch or null. Trivial, so that reaching it costs no initialization check,
// and in the initial block of thread storage, so that reaching it costs no
// call either (a few dozen bytes of the room the system keeps there for
// libraries that are opened late).
struct Local
{
    FreeBlock *current;
    size_t count;
    FreeBlock *spare;
    bool registered;
};
thread_local Local t_local __attribute__((tls_model("initial-exec")));

pthread_key_t g_exitKey;
pthread_once_t g_exitKeyOnce = PTHREAD_ONCE_INIT;

// Runs when a thread that used the pool ends.
void GiveBackAtExit(void *value)
{
    auto &local = *static_cast<Local *>(value);
    Stock &stock = TheStock();
    {
        std::lock_guard<std::mutex> guard(stock.lock);
        if (local.current)
            stock.batches.push_back(Batch{local.current, local.count});
        if (local.spare)
            stock.batches.push_back(Batch{local.spare, kBatch});
    }
    // A destructor that runs after this one and frees or makes a node
    // registers the thread again, and the system calls this once more.
    local = Local{};
}

void MakeExitKey()
{
    (void)pthread_key_create(&g_exitKey, GiveBackAtExit);
}

void Register(Local &local)
{
    pthread_once(&g_exitKeyOnce, MakeExitKey);
    local.registered = pthread_setspecific(g_exitKey, &local) == 0;
}

// Fills an empty `current`: the spare batch, a batch of the stock, or a new chunk.
void Refill(Local &local)
{
    if (!local.registered)
        Register(local);
    if (local.spare)
    {
        local.current = local.spare;
        local.count = kBatch;
        local.spare = nullptr;
        return;
    }
    Stock &stock = TheStock();
    std::lock_guard<std::mutex> guard(stock.lock);
    if (!stock.batches.empty())
    {
        local.current = stock.batches.back().head;
        local.count = stock.batches.back().count;
        stock.batches.pop_back();
        return;
    }
    stock.chunks.reserve(stock.chunks.size() + 1);
    auto *chunk = static_cast<unsigned char *>(::operator new(kBatch * MCNodePool::kBlockSize));
    stock.chunks.push_back(chunk);
    FreeBlock *head = nullptr;
    for (size_t i = kBatch; i-- > 0;)
    {
        auto *block = reinterpret_cast<FreeBlock *>(chunk + i * MCNodePool::kBlockSize);
        block->next = head;
        head = block;
    }
    local.current = head;
    local.count = kBatch;
}

// Makes room in a full `current` by moving it to `spare`, and an older
// spare to the stock.
void Spill(Local &local)
{
    if (!local.registered)
        Register(local);
    if (local.spare)
    {
        Stock &stock = TheStock();
        try
        {
            std::lock_guard<std::mutex> guard(stock.lock);
            stock.batches.push_back(Batch{local.spare, kBatch});
        }
        catch (...)
        {
            // No room to record the batch: keep the nodes here instead,
            // over the usual limit.
            return;
        }
    }
    local.spare = local.current;
    local.current = nullptr;
    local.count = 0;
}
} // namespace

void *MCNodePool::Allocate()
{
    if (UsesHeap()) [[unlikely]]
        return ::operator new(kBlockSize);
    Local &local = t_local;
    if (!local.current) [[unlikely]]
        Refill(local);
    FreeBlock *block = local.current;
    local.current = block->next;
    --local.count;
    // The next node handed out is read for its link: start fetching it now
    // (a freed node has usually left the cache).
    __builtin_prefetch(local.current, 1);
    return block;
}

void MCNodePool::Free(void *block) noexcept
{
    if (!block)
        return;
    if (UsesHeap()) [[unlikely]]
    {
        ::operator delete(block);
        return;
    }
    Local &local = t_local;
    if (local.count >= kBatch || !local.registered) [[unlikely]]
    {
        if (local.count >= kBatch)
            Spill(local);
        else
            Register(local);
    }
    auto *free = static_cast<FreeBlock *>(block);
    free->next = local.current;
    local.current = free;
    ++local.count;
}

size_t MCNodePool::GetReservedCount()
{
    Stock &stock = TheStock();
    std::lock_guard<std::mutex> guard(stock.lock);
    return stock.chunks.size() * kBatch;
}

#endif
