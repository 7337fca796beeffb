// Attacks on a loading archive: truncation at every byte, flipped bytes,
// hostile counts and lengths. Each must end in a CArchiveException (or a
// clean load), never a crash, a hang, a huge allocation or a leak; the
// sanitizer build checks the last three.
//
// Also writes and checks the seed corpus of the archive fuzz target, whose
// classes this file shares.
#include <fuzz/archive_objects_classes.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>

namespace
{
using Bytes = std::vector<BYTE>;

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
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        ar.MapObject(&root);
        root.Serialize(ar);
        ar.Close();
    }
    Bytes out(static_cast<size_t>(mem.GetLength()));
    mem.SeekToBegin();
    mem.Read(out.data(), static_cast<UINT>(out.size()));
    return out;
}

// What the fuzz target does: load, then free every created object. Returns
// the cause of the failure, or -1 for a clean load. Any other exception
// escapes and fails the test.
int LoadAndFree(const Bytes &bytes, size_t *pLoaded = nullptr)
{
    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    FuzzNode root;
    CArchive ar(&mem, CArchive::load);
    int cause = -1;
    try
    {
        ar.MapObject(&root);
        root.Serialize(ar);
        while (ar.GetBytesRemaining() > 0)
            ar.ReadObject(RUNTIME_CLASS(FuzzItem));
    }
    catch (const CArchiveException &e)
    {
        cause = e.m_cause;
    }
    if (pLoaded)
        *pLoaded = ar.GetLoadedObjects().size();
    for (CObject *p : ar.GetLoadedObjects())
        delete p;
    return cause;
}
} // namespace

TEST(CArchiveCorruption, TheSampleGraphLoadsWhole)
{
    Graph g;
    const Bytes bytes = StoreRoot(g.root);
    size_t loaded = 0;
    EXPECT_EQ(LoadAndFree(bytes, &loaded), -1);
    EXPECT_EQ(loaded, 4u); // inner, leafA, blob, leafB: the root is mapped, not created
}

TEST(CArchiveCorruption, TruncationAtEveryByteIsAnArchiveError)
{
    Graph g;
    const Bytes bytes = StoreRoot(g.root);
    for (size_t n = 0; n < bytes.size(); ++n)
    {
        const Bytes cut(bytes.begin(), bytes.begin() + n);
        const int cause = LoadAndFree(cut);
        // The only clean prefixes would end exactly between top-level
        // records; this graph has a single record, so every cut fails.
        EXPECT_NE(cause, -1) << "cut at " << n;
        if (n > 0)
        {
            EXPECT_EQ(cause, CArchiveException::endOfFile) << "cut at " << n;
        }
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
    // Through a pipe the archive can't check the length up front; it must
    // read what arrives and fail at the end instead of reserving 2 GB.
    const Bytes bytes = {0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 0, 'b', 0};
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    ASSERT_EQ(::write(fds[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    ::close(fds[1]);
    CFile in(fds[0]);
    int cause = -1;
    {
        CArchive ar(&in, CArchive::load);
        try
        {
            CString s;
            ar >> s;
        }
        catch (const CArchiveException &e)
        {
            cause = e.m_cause;
        }
    }
    in.Close();
    EXPECT_EQ(cause, CArchiveException::endOfFile);
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
