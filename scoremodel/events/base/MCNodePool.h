// MCNodePool: where the nodes of the model's linked lists come from.
//
// A score of a million notes has four or five million list nodes (each note
// sits in its measure's child list and has its measure in its own parent
// list, and again for its beam), made and freed one by one as documents are
// loaded, edited and closed. Taking each from the general heap costs more
// than everything else a load does to a note; the pool hands out nodes of
// one size from large chunks, and what is freed is reused first, so that a
// document loaded after another one was closed finds its nodes warm and
// close together.
//
// Each thread keeps two batches of free nodes of its own and needs no lock
// for them; full batches beyond those two go to a shared stock, from which
// a thread with none left takes a batch before it asks for a new chunk. So
// nodes freed on one thread and made on another (a document built by one
// thread and closed by another) come back into use instead of piling up,
// and a thread that ends gives its free nodes to the stock.
//
// Chunks are never given back to the heap: the pool keeps the most nodes
// that were ever alive at once, for the life of the process.
//
// The standard pool resources were tried in its place and lost: a document
// load took about 2.7 times as long through std::pmr's synchronized pool and
// 2.5 times through the unsynchronized one (which could not take nodes freed
// on other threads anyway), and 1.25 times through the plain heap. Their
// pools look for a freed block's chunk and for a chunk with room on every
// call, and with millions of nodes that search costs more than the heap.
// bench_events keeps the comparison in one run.
//
// Under the address sanitizer the pool steps aside and every node comes from
// the heap, so that a node used after it was freed is still reported. A host
// can ask the same of a normal build with SCOREMODEL_NODE_POOL=heap in the
// environment (read once, at the first node): then valgrind and LeakSanitizer
// see every node, and a host's own leaked subtree shows up as leaked memory
// instead of hiding in the pool's chunks.
#pragma once

#include <cstddef>

class MCNodePool
{
public:
    // A node is three pointers: the element, the previous and the next node.
    static constexpr size_t kBlockSize = 3 * sizeof(void *);

    // Uninitialized storage for one node; throws std::bad_alloc when a new
    // chunk can't be had.
    static void *Allocate();
    // Takes back a block from Allocate, on any thread. Null is ignored.
    static void Free(void *block) noexcept;

    // Nodes in every chunk the pool has made, free or not (0 when the pool
    // steps aside).
    static size_t GetReservedCount();

    // True when every node comes from the heap (under the address sanitizer,
    // or with SCOREMODEL_NODE_POOL set to "heap", "off" or "0").
    static bool UsesHeap();
};
