// Attacks on a loading archive: truncation at every byte, flipped bytes,
// hostile counts and lengths. Each must end in a CArchiveException (or a
// clean load), never a crash, a hang, a huge allocation or a leak; the
// sanitizer build checks the last three.
//
// Also writes and checks the seed corpus of the archive fuzz target, whose
// classes this file shares.
#include <fuzz/archive_objects_classes.h>

#include "ArchiveBytes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>

using namespace archive_bytes;

namespace
{
// A document-like graph: a root saved by its own Serialize, nested nodes,
// shared and cyclic links, strings of both widths, a raw block.
struct Graph
{
    FuzzNode root;
    FuzzNode inner;
    FuzzLeaf leafA;
    FuzzLeaf leafB;
    FuzzBlob blob;

    Graph()
    {
        leafA.m_b = 1;
        leafA.m_w = 0x1234;
        leafA.m_dw = 0xDEADBEEF;
        leafA.m_d = 2.5;
        leafA.m_name = CString(L"Fl\u00F6te \U0001D11E");
        leafB.m_name = CString(L'x', 300);
        blob.m_words = {1, 2, 3, 0xFFFFFFFF};
        inner.m_children = {&leafA, &blob, &leafA};
        inner.m_pLink = &root; // back to the root, which is only mapped
        inner.m_tag = CStringA("inner");
        root.m_children = {&inner, &leafB};
        root.m_pLink = &inner;
        root.m_tag = CStringA("root");
    }
};

Bytes StoreRoot(FuzzNode &root)
{
    return Store([&](CArchive &ar) {
        ar.MapObject(&root);
        root.Serialize(ar);
    });
}

// What the fuzz target does: load, then free every created object. Returns
// the cause of the failure, or -1 for a clean load.
int LoadAndFree(const Bytes &bytes, size_t *pLoaded = nullptr)
{
    const int cause = CauseOf([&] {
        Load(bytes, [&](CArchive &ar) {
            FuzzNode root;
            ar.MapObject(&root);
            root.Serialize(ar);
            while (ar.GetBytesRemaining() > 0)
                ar.ReadObject(RUNTIME_CLASS(FuzzItem));
            if (pLoaded)
                *pLoaded = ar.GetLoadedObjects().size();
        });
    });
    EXPECT_NE(cause, kNotSupported) << "a loading archive refuses only with an archive error";
    return cause;
}
} // namespace

TEST(CArchiveCorruption, TheSampleGraphLoadsWholeAndTruncationAtEveryByteIsEndOfFile)
{
    Graph g;
    const Bytes bytes = StoreRoot(g.root);
    size_t loaded = 0;
    EXPECT_EQ(LoadAndFree(bytes, &loaded), -1);
    EXPECT_EQ(loaded, 4u); // inner, leafA, blob, leafB: the root is mapped, not created
    // The only clean prefixes would end exactly between top-level records;
    // this graph has a single record, so every cut fails, and an empty stream
    // fails as it may.
    for (size_t n = 0; n < bytes.size(); ++n)
    {
        const int cause = LoadAndFree(Bytes(bytes.begin(), bytes.begin() + n));
        EXPECT_TRUE(n == 0 ? cause != -1 : cause == CArchiveException::endOfFile) << "cut at " << n << ": " << cause;
    }
}

TEST(CArchiveCorruption, FlippedBytesNeverEscapeAsAnythingButAnArchiveError)
{
    Graph g;
    const Bytes bytes = StoreRoot(g.root);
    std::mt19937 rng(20240611);
    std::uniform_int_distribution<size_t> pos(0, bytes.size() - 1);
    std::uniform_int_distribution<int> val(0, 255), flips(1, 4);
    int clean = 0;
    for (int round = 0; round < 3000; ++round)
    {
        Bytes bad = bytes;
        for (int k = flips(rng); k > 0; --k)
            bad[pos(rng)] = static_cast<BYTE>(val(rng));
        if (LoadAndFree(bad) == -1)
            ++clean;
    }
    // Most single-byte changes land in field values and still load.
    EXPECT_GT(clean, 0);
}

TEST(CArchiveCorruption, EveryValueOfEachTagByteIsHandled)
{
    Graph g;
    const Bytes bytes = StoreRoot(g.root);
    // The first 16 bytes hold the root's count and the first class record.
    for (size_t i = 0; i < 16 && i < bytes.size(); ++i)
        for (int v = 0; v < 256; ++v)
        {
            Bytes bad = bytes;
            bad[i] = static_cast<BYTE>(v);
            LoadAndFree(bad);
        }
}

TEST(CArchiveCorruption, HostileCountsAndLengthsFailWithoutAllocatingThem)
{
    struct Case
    {
        const char *attack;
        Bytes bytes;
        int cause;
    };
    const std::vector<Case> cases = {
        {"root with four billion children", {0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0}, CArchiveException::endOfFile},
        {"root with a 64-bit child count",
         {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F},
         CArchiveException::endOfFile},
        {"tag of two billion bytes", {0x00, 0x00, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0x7F, 'a'},
         CArchiveException::endOfFile},
        {"wide tag of a 64-bit length",
         {0x00, 0x00, 0x00, 0x00, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
          0xFF, 0xFF, 0xFF, 0x7F},
         CArchiveException::genericException},
        {"a blob claiming a billion words",
         {0x01, 0x00, 0xFF, 0xFF, 0x01, 0x00, 0x08, 0x00, 'F', 'u', 'z', 'z', 'B', 'l', 'o', 'b', 0xFF, 0xFF, 0x00,
          0x00, 0x00, 0x40, 1, 2, 3, 4},
         CArchiveException::endOfFile},
    };
    for (const Case &c : cases)
        EXPECT_EQ(LoadAndFree(c.bytes), c.cause) << c.attack;
}

TEST(CArchiveCorruption, AHostileLengthOnAStreamWithoutLengthStopsWhenTheBytesDo)
{
    // Without a length the archive can't check up front; it must read what
    // arrives and fail at the end instead of reserving 2 GB.
    const Bytes bytes = {0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 0, 'b', 0};
    EXPECT_EQ(CauseOf([&] {
                  Load(bytes, [](CArchive &ar) { CString s; ar >> s; }, 4096, false);
              }),
              CArchiveException::endOfFile);
}

// ---- Seed corpus of the fuzz target ------------------------------------------------------

namespace
{
struct Seed
{
    const char *name;
    Bytes bytes;
};

std::vector<Seed> MakeSeeds()
{
    std::vector<Seed> seeds;
    {
        Graph g;
        seeds.push_back({"graph.bin", StoreRoot(g.root)});
    }
    {
        FuzzNode root;
        FuzzLeaf leaf;
        leaf.m_name = CString(L"a");
        root.m_children = {&leaf, &leaf, nullptr};
        root.m_pLink = &root;
        seeds.push_back({"shared_leaf.bin", StoreRoot(root)});
    }
    {
        // Nodes nested three deep, the innermost pointing at itself.
        FuzzNode root, a, b, c;
        root.m_children = {&a};
        a.m_children = {&b};
        b.m_children = {&c};
        c.m_pLink = &c;
        b.m_pLink = &a;
        seeds.push_back({"nested_cycle.bin", StoreRoot(root)});
    }
    {
        // A leaf stored with schema 1 (no name), then a big-form reference to
        // the root (index 1 as 0x7FFF and a DWORD), then an empty tag.
        Bytes old = {0x01, 0x00, 0xFF, 0xFF, 0x01, 0x00, 0x08, 0x00, 'F', 'u', 'z', 'z', 'L', 'e', 'a', 'f',
                     0x07, 0x02, 0x01, 0x04, 0x03, 0x02, 0x01, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F,
                     0xFF, 0x7F, 0x01, 0x00, 0x00, 0x00, 0x00};
        seeds.push_back({"old_schema_big_tag.bin", old});
    }
    {
        FuzzNode root;
        FuzzBlob blob;
        blob.m_words.assign(70, 0x01020304);
        root.m_children = {&blob};
        root.m_tag = CStringA(std::string(300, 'n').c_str());
        seeds.push_back({"blob_long_tag.bin", StoreRoot(root)});
    }
    return seeds;
}

std::string CorpusDir()
{
    return std::string(SCOREMODEL_TEST_SOURCE_DIR) + "/fuzz/corpus/archive_objects";
}
} // namespace

// The committed seed files are exactly what the archive writes today, so a
// change of the format shows up here first. Run with
// SCOREMODEL_WRITE_ARCHIVE_CORPUS=1 to (re)write them into the source tree.
TEST(CArchiveCorruption, TheFuzzSeedCorpusMatchesWhatTheArchiveWrites)
{
    const bool write = std::getenv("SCOREMODEL_WRITE_ARCHIVE_CORPUS") != nullptr;
    for (const Seed &seed : MakeSeeds())
    {
        EXPECT_EQ(LoadAndFree(seed.bytes), -1) << seed.name;
        const std::string path = CorpusDir() + "/" + seed.name;
        if (write)
        {
            std::ofstream out(path, std::ios::binary);
            out.write(reinterpret_cast<const char *>(seed.bytes.data()), static_cast<std::streamsize>(seed.bytes.size()));
            ASSERT_TRUE(out.good()) << path;
            continue;
        }
        std::ifstream in(path, std::ios::binary);
        ASSERT_TRUE(in.good()) << path << " is missing; run with SCOREMODEL_WRITE_ARCHIVE_CORPUS=1";
        const Bytes committed((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        EXPECT_EQ(committed, seed.bytes) << seed.name;
    }
}
