// The document file: its exact bytes, round trips of random trees, old
// layouts steered by the header's version, broken and hostile files, and the
// atomic save.
#include "ArchiveBytes.h"
#include "events/base/EventTestSupport.h"

#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/media/ECFrame.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/CArchive.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <utility>

#include <unistd.h>

namespace fs = std::filesystem;

// An attachment with two values, as a plug-in would add.
class DocTestData : public DCBase
{
    DECLARE_SERIAL(DocTestData)

public:
    void Set(int a, int b)
    {
        m_value = a;
        m_value2 = b;
    }
    int A() const { return m_value.GetValue(); }
    int B() const { return m_value2.GetValue(); }
};
IMPLEMENT_SERIAL(DocTestData, DCBase, VERSIONABLE_SCHEMA | 2)

// A frame that is never valid, and one whose record fails half-way through a
// save, as a full disk would.
class DocBadFrame : public ECFrame
{
    DECLARE_SERIAL(DocBadFrame)

public:
    static int s_alive;
    DocBadFrame() { ++s_alive; }
    int IsValid() override { return 0; }

protected:
    ~DocBadFrame() override { --s_alive; }
};
IMPLEMENT_SERIAL(DocBadFrame, ECFrame, VERSIONABLE_SCHEMA | 2)
int DocBadFrame::s_alive = 0;

class DocDiskFull : public TestLeaf
{
    DECLARE_SERIAL(DocDiskFull)

public:
    DocDiskFull() = default;
    void Serialize(CArchive &ar) override
    {
        TestLeaf::Serialize(ar);
        if (ar.IsStoring())
            throw CFileException(CFileException::diskFull, 28, "test");
    }
};
IMPLEMENT_SERIAL(DocDiskFull, TestLeaf, VERSIONABLE_SCHEMA | 2)

// A leaf whose record fails on load with the exception `s_kind` names, as a
// plug-in's record or the allocator may.
class DocLoadFails : public TestLeaf
{
    DECLARE_SERIAL(DocLoadFails)

public:
    enum Kind
    {
        HostError,
        OutOfMemory,
        FileError,
        BadArgument,
        NotSupported
    };
    static int s_kind;
    DocLoadFails() = default;
    void Serialize(CArchive &ar) override
    {
        TestLeaf::Serialize(ar);
        if (ar.IsStoring())
            return;
        switch (s_kind)
        {
        case HostError: throw std::runtime_error("the host's own failure");
        case OutOfMemory: throw std::bad_alloc();
        case FileError: throw CFileException(CFileException::hardIO, 5, "test");
        case BadArgument: throw CInvalidArgException("index 9 out of range");
        default: throw CNotSupportedException("no such record");
        }
    }
};
IMPLEMENT_SERIAL(DocLoadFails, TestLeaf, VERSIONABLE_SCHEMA | 2)
int DocLoadFails::s_kind = DocLoadFails::HostError;

namespace
{
using archive_bytes::Bytes;

struct Held
{
    ECPerformance *p;
    explicit Held(ECPerformance *perf) : p(perf) {}
    ~Held()
    {
        if (!p)
            return;
        p->RemoveChildren(1);
        p->Unref(1);
    }
};

ECPerformance *NewDocument()
{
    auto *doc = new ECPerformance;
    doc->Ref();
    return doc;
}

Bytes ToBytes(CMemFile &mem)
{
    Bytes out(static_cast<size_t>(mem.GetLength()));
    mem.SeekToBegin();
    mem.Read(out.data(), static_cast<UINT>(out.size()));
    return out;
}

Bytes Save(ECPerformance *doc)
{
    CMemFile mem;
    MCDocumentFile::Write(mem, doc);
    return ToBytes(mem);
}

ECPerformance *Load(const Bytes &bytes, int *version = nullptr)
{
    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    return MCDocumentFile::Read(mem, version);
}

// A document file around an archive written by hand, for old layouts and
// hostile streams. Index 1 is the performance.
Bytes Document(int version, const std::function<void(CArchive &)> &body)
{
    const Bytes archive = archive_bytes::Store(body);
    Bytes out(MCDocumentFile::kTag, MCDocumentFile::kTag + 8);
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<BYTE>(version >> (8 * i)));
    for (int i = 0; i < 8; ++i)
        out.push_back(static_cast<BYTE>(static_cast<ULONGLONG>(archive.size()) >> (8 * i)));
    out.insert(out.end(), archive.begin(), archive.end());
    return out;
}

void NewClass(CArchive &ar, const char *name)
{
    ar << WORD(0xFFFF) << WORD(2) << WORD(std::strlen(name));
    ar.Write(name, static_cast<UINT>(std::strlen(name)));
}

// The events and attachments of two trees agree in class, fields, order,
// sharing and parents. `pairs` maps the first tree's events to the second's.
void ExpectSameTree(ECBase *a, ECBase *b, std::map<ECBase *, ECBase *> &pairs)
{
    ASSERT_NE(b, nullptr);
    if (auto it = pairs.find(a); it != pairs.end())
    {
        EXPECT_EQ(it->second, b) << "sharing differs";
        return;
    }
    pairs[a] = b;
    EXPECT_STREQ(a->GetRuntimeClass()->m_lpszClassName, b->GetRuntimeClass()->m_lpszClassName);
    EXPECT_EQ(a->GetFlags() & ~ECBase::FlagSelection, b->GetFlags());
    if (a->GetTime())
    {
        EXPECT_TRUE(*a->GetTime() == *b->GetTime());
        EXPECT_EQ(a->GetTime()->GetMode(), b->GetTime()->GetMode());
        EXPECT_EQ(a->GetVoiceTrack()->GetValue(), b->GetVoiceTrack()->GetValue());
    }
    for (int slot = 0; slot < 8; ++slot)
    {
        auto *da = static_cast<DocTestData *>(a->GetData()->GetAt(slot));
        auto *db = static_cast<DocTestData *>(b->GetData()->GetAt(slot));
        ASSERT_EQ(da == nullptr, db == nullptr) << "slot " << slot;
        if (da)
        {
            EXPECT_EQ(std::make_pair(da->A(), da->B()), std::make_pair(db->A(), db->B()));
        }
    }
    ASSERT_EQ(a->GetChildren() == nullptr, b->GetChildren() == nullptr);
    if (!a->GetChildren())
        return;
    ASSERT_EQ(a->GetChildren()->GetCount(), b->GetChildren()->GetCount());
    POSITION pb = b->GetChildren()->GetHeadPosition();
    for (POSITION pa = a->GetChildren()->GetHeadPosition(); pa;)
        ExpectSameTree(a->GetChildren()->GetNext(pa), b->GetChildren()->GetNext(pb), pairs);
}

// Parents come back in the order the stream meets them, which need not be
// the order they were added in; the set is what must agree.
void ExpectSameParents(const std::map<ECBase *, ECBase *> &pairs)
{
    for (auto [a, b] : pairs)
    {
        std::multiset<ECBase *> expected, actual;
        for (POSITION pos = a->GetParents()->GetHeadPosition(); pos;)
            expected.insert(pairs.at(a->GetParents()->GetNext(pos)));
        for (POSITION pos = b->GetParents()->GetHeadPosition(); pos;)
            actual.insert(b->GetParents()->GetNext(pos));
        EXPECT_EQ(expected, actual);
    }
}

// A random tree below a performance: containers and leaves with random
// times, voices, spare and selection flags and attachments; one event in
// five has a second parent.
ECPerformance *RandomDocument(unsigned seed)
{
    std::mt19937 rng(seed);
    auto pick = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
    ECPerformance *doc = NewDocument();
    std::vector<ECBase *> containers{doc};
    const int count = 1 + pick(60);
    for (int i = 0; i < count; ++i)
    {
        ECBase *event;
        if (pick(3) == 0)
        {
            TestNode *node = TestNode::Make();
            node->SetRawFlags(static_cast<BYTE>(rng() & 0xFC));
            containers.push_back(node);
            event = node;
        }
        else
        {
            TestLeaf *leaf = TestLeaf::Make();
            leaf->SetRawFlags(static_cast<BYTE>(rng() & 0xFC));
            event = leaf;
        }
        MCTime time = pick(2) ? MCTime(static_cast<float>(pick(10000)) / 64) : MCTime(pick(50), pick(4), pick(480), 480);
        event->SetTime(&time);
        event->SetVoiceTrack(pick(16), pick(0x800));
        if (pick(4) == 0)
        {
            auto *data = new DocTestData;
            data->Set(static_cast<int>(rng()), static_cast<int>(rng()));
            data->SetOwner(event);
            event->GetData()->SetAtGrow(MCDataArray::TypeToIndex(pick(8)), data);
        }
        // Only containers made before this event: it has no descendants yet,
        // so no cycle can form.
        containers[static_cast<size_t>(pick(static_cast<int>(containers.size()) - (event == containers.back())))]
            ->AddChild(event, 0);
        if (pick(5) == 0)
            containers[static_cast<size_t>(pick(static_cast<int>(containers.size())))]->AddChild(event, 0);
    }
    return doc;
}

class MCDocumentFileTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(TestNode::s_alive, 0) << "a loaded container outlived its document";
        EXPECT_EQ(TestLeaf::s_alive, 0) << "a loaded leaf outlived its document";
        EXPECT_EQ(DocBadFrame::s_alive, 0);
        EXPECT_EQ(ECPerformance::GetActivePerformance(), nullptr);
    }

    // Loading these bytes fails with a document error naming `problem`, at
    // `offset` when one is given.
    static void ExpectRejected(const Bytes &bytes, const std::string &problem, std::optional<ULONGLONG> offset = {})
    {
        try
        {
            Held loaded(Load(bytes));
            ADD_FAILURE() << "loaded a document that should fail with " << problem;
        }
        catch (const MCDocumentException &e)
        {
            EXPECT_NE(std::string(e.what()).find(problem), std::string::npos) << e.what();
            EXPECT_EQ(e.GetOffset(), offset.value_or(e.GetOffset())) << e.what();
        }
    }
};
} // namespace

// A change of format shows here first: every byte of a small document.
TEST_F(MCDocumentFileTest, SmallDocumentHasExactlyTheseBytes)
{
    Held doc(NewDocument());
    TestNode *node = TestNode::Make(1.0f);
    node->SetVoiceTrack(2, 3);
    TestLeaf *leaf = TestLeaf::Make(0.5f);
    doc.p->AddChild(node, 0);
    node->AddChild(leaf, 0);
    doc.p->AddChild(leaf, 0);

    const Bytes expected = {
        0x89, 'S', 'M', 'D', 0x0D, 0x0A, 0x1A, 0x0A, // tag
        20, 0, 0, 0,                                 // version
        58, 0, 0, 0, 0, 0, 0, 0,                     // archive length
        // The performance (mapped as index 1): flags, two children.
        0x02, 2, 0,
        // Index 2: class TestNode, schema 2; index 3: the node.
        0xFF, 0xFF, 2, 0, 8, 0, 'T', 'e', 's', 't', 'N', 'o', 'd', 'e',
        0x02, 1, 0,
        // Index 4: class TestLeaf; index 5: the leaf, time 0.5, voice 15 track 0x7FF.
        0xFF, 0xFF, 2, 0, 8, 0, 'T', 'e', 's', 't', 'L', 'e', 'a', 'f',
        0x00, 0, 0, 0, 0, 0x3F, 0xFF, 0x7F,
        // The node's time 1.0 and voice 2 track 3.
        0, 0, 0, 0x80, 0x3F, 0x32, 0x00,
        // The performance's second child: the leaf again, by reference.
        5, 0,
        // The performance's own time (none) and voice/track.
        0, 0xFF, 0xFF, 0x7F, 0xFF, 0xFF, 0x7F,
        // The post section has nothing to say for these classes.
    };
    EXPECT_EQ(Save(doc.p), expected);

    Held loaded(Load(expected));
    ECBase *loadedLeaf = loaded.p->GetChildren()->GetTail();
    EXPECT_EQ(loadedLeaf->GetParents()->GetCount(), 2) << "a shared event keeps both parents";
    EXPECT_EQ(loaded.p->GetChildren()->GetHead()->GetChildren()->GetHead(), loadedLeaf);
}

TEST_F(MCDocumentFileTest, RandomDocumentsComeBackEqual)
{
    for (unsigned seed = 1; seed <= 300; ++seed)
    {
        SCOPED_TRACE(seed);
        Held doc(RandomDocument(seed));
        const Bytes bytes = Save(doc.p);
        int version = -1;
        Held loaded(Load(bytes, &version));
        EXPECT_EQ(version, MCDocumentFile::kVersion);
        std::map<ECBase *, ECBase *> pairs;
        ExpectSameTree(doc.p, loaded.p, pairs);
        ExpectSameParents(pairs);
        // Only the selection is lost on the way.
        for (auto [original, copy] : pairs)
        {
            EXPECT_EQ(copy->GetSelectedFlag(), 0u);
            original->SetSelected(0, 3);
        }
        EXPECT_EQ(Save(loaded.p), Save(doc.p)) << "a loaded document saves to the same bytes";
    }
}

// A document as a host makes it: a conductor with its staff, sometimes a chord
// staff (held by the conductor and in no child list), staves added by
// commands, notes in measures shared with beams, and times of every mode.
TEST_F(MCDocumentFileTest, StructuredDocumentsComeBackEqual)
{
    for (unsigned seed = 1; seed <= 24; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        auto pick = [&rng](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
        Held doc(NewDocument());
        auto *conductor = new ECConductor;
        doc.p->AddChild(conductor, 0);
        conductor->GetConductorStaff();
        const bool chordStaff = seed % 2 == 0;
        if (chordStaff)
            conductor->GetChordStaff();
        for (int s = 1 + pick(3); s > 0; --s)
        {
            ECTrack *staff = CCAddTrack::AddNow(doc.p, new ECStaff, -1);
            ECBase *measure = CreateEventW(EVENT_ID_MEASURE);
            staff->AddChild(measure, 0);
            ECBase *beam = CreateEventW(EVENT_ID_BEAM);
            for (int n = pick(6); n > 0; --n)
            {
                ECBase *note = CreateEventW(EVENT_ID_NOTE);
                MCTime time = pick(3) ? MCTime(static_cast<float>(pick(64)) / 8) : MCTime(pick(8), pick(4), pick(480), 480);
                if (pick(4) == 0)
                    time.SetMode(MCTime::TimeModeClock);
                note->SetTime(&time);
                measure->AddChild(note, 0);
                if (pick(2))
                    beam->AddChild(note, 0);
            }
            measure->AddChild(beam, 0);
        }
        const Bytes bytes = Save(doc.p);
        Held loaded(Load(bytes));
        std::map<ECBase *, ECBase *> pairs;
        ExpectSameTree(doc.p, loaded.p, pairs);
        ExpectSameParents(pairs);
        ECConductor *loadedConductor = loaded.p->GetConductor();
        ASSERT_NE(loadedConductor, nullptr);
        EXPECT_EQ(loadedConductor->GetMaxTrackNumber(ECConductor::TrackStaff),
                  conductor->GetMaxTrackNumber(ECConductor::TrackStaff));
        EXPECT_EQ(loadedConductor->GetMemberEvent(1) != nullptr, chordStaff) << "the chord staff comes back";
        EXPECT_EQ(Save(loaded.p), bytes) << "a loaded document saves to the same bytes";
    }
    MCCommandMgr::OnIdle();
}

// The header's version reaches the loaders: a version 0 time is a bare float,
// and below version 3 attachments stand by position behind a count.
TEST_F(MCDocumentFileTest, OldestLayoutsLoadIntoTheRightValues)
{
    auto body = [](int version) {
        return [version](CArchive &ar) {
            ar << BYTE(0x02) << WORD(1);
            NewClass(ar, "TestLeaf"); // index 2, the leaf 3
            ar << BYTE(0x01);
            ar.WriteCount(2);
            ar << WORD(0);
            NewClass(ar, "DocTestData"); // index 4, the attachment 5
            ar << LONG(1) << LONG(7) << LONG(9) << WORD(3);
            if (version >= 1)
                ar << BYTE(0);
            ar << 2.5f << WORD(0x0012);
            if (version >= 1)
                ar << BYTE(0);
            ar << 0.0f << WORD(0x7FFF);
        };
    };
    for (int version : {0, 2})
    {
        SCOPED_TRACE(version);
        Held loaded(Load(Document(version, body(version))));
        ECBase *leaf = loaded.p->GetChildren()->GetHead();
        EXPECT_TRUE(*leaf->GetTime() == MCTime(2.5f));
        EXPECT_EQ(leaf->GetVoice(), 2);
        EXPECT_EQ(leaf->GetTrack(), 1);
        auto *data = static_cast<DocTestData *>(leaf->GetData()->GetAt(MCDataArray::TypeToIndex(1)));
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(data->A(), 9);
        EXPECT_EQ(data->GetOwner(), leaf);
        EXPECT_EQ(loaded.p->GetVersion(), version);
    }
}

// Hostile trees that a stream can describe and a document can't hold.
TEST_F(MCDocumentFileTest, TreesThatAreNoTreesAreRejectedAndReleased)
{
    // An attachment whose owner is an event nobody else has.
    ExpectRejected(Document(20,
                            [](CArchive &ar) {
                                ar << BYTE(0x02) << WORD(1);
                                NewClass(ar, "TestLeaf");
                                ar << BYTE(0x01) << BYTE(1) << BYTE(0) << BYTE(0);
                                NewClass(ar, "DocTestData");
                                ar << LONG(0) << LONG(0) << WORD(0x8002) << BYTE(0x00) << BYTE(0) << 1.0f
                                   << WORD(0) << BYTE(0) << 1.0f << WORD(0) << BYTE(0) << 0.0f << WORD(0);
                            }),
                   "TestLeaf outside the tree");
    // Cycles: a container whose child is the performance (object 1), itself
    // (object 3), or its parent (a second container, object 4, holding 3).
    const auto cycle = [](std::function<void(CArchive &)> container) {
        return [container](CArchive &ar) {
            ar << BYTE(0x02) << WORD(1);
            NewClass(ar, "TestNode");
            container(ar);
            ar << BYTE(0) << 1.0f << WORD(0) << BYTE(0) << 0.0f << WORD(0);
        };
    };
    const std::function<void(CArchive &)> containers[] = {
        [](CArchive &ar) { ar << BYTE(0x02) << WORD(1) << WORD(1); },
        [](CArchive &ar) { ar << BYTE(0x02) << WORD(1) << WORD(3); },
        [](CArchive &ar) {
            ar << BYTE(0x02) << WORD(1) << WORD(0x8002) << BYTE(0x02) << WORD(1) << WORD(3) << BYTE(0) << 1.0f
               << WORD(0);
        },
    };
    for (const auto &container : containers)
        ExpectRejected(Document(20, cycle(container)), "among its own descendants");

    // Thirty levels of two containers that both hold both containers of the
    // level below: no cycle, sixty containers, and 2^30 paths to the bottom
    // for a walk that meets an event once per path.
    ExpectRejected(Document(20,
                            [](CArchive &ar) {
                                constexpr int kLevels = 30;
                                DWORD next = 3; // the index of the next new object
                                bool classWritten = false;
                                auto tag = [&] {
                                    if (!std::exchange(classWritten, true))
                                        NewClass(ar, "TestNode");
                                    else
                                        ar << WORD(0x8002);
                                    return next++;
                                };
                                auto time = [&] { ar << BYTE(0) << 1.0f << WORD(0); };
                                std::function<std::pair<DWORD, DWORD>(int)> pair = [&](int level) {
                                    const bool last = level + 1 == kLevels;
                                    const DWORD a = tag();
                                    std::pair<DWORD, DWORD> below;
                                    if (last)
                                        ar << BYTE(0x00);
                                    else
                                    {
                                        ar << BYTE(0x02) << WORD(2);
                                        below = pair(level + 1);
                                    }
                                    time();
                                    const DWORD b = tag();
                                    if (last)
                                        ar << BYTE(0x00);
                                    else
                                        ar << BYTE(0x02) << WORD(2) << WORD(below.first) << WORD(below.second);
                                    time();
                                    return std::make_pair(a, b);
                                };
                                ar << BYTE(0x02) << WORD(2);
                                pair(0);
                                ar << BYTE(0) << 0.0f << WORD(0);
                            }),
                   "shared along too many paths");
}

// The invalid frame dies at once; a later reference to it reads as nothing.
TEST_F(MCDocumentFileTest, InvalidFrameIsDroppedAndLaterReferencesToItAreNull)
{
    Held loaded(Load(Document(20, [](CArchive &ar) {
        ar << BYTE(0x02) << WORD(3);
        NewClass(ar, "DocBadFrame"); // index 2, the frame 3
        ar << BYTE(0) << BYTE(0) << 1.0f << WORD(0);
        NewClass(ar, "TestLeaf"); // index 4, the leaf 5
        ar << BYTE(0) << BYTE(0) << 1.0f << WORD(0);
        ar << WORD(3) << BYTE(0) << 0.0f << WORD(0);
    })));
    EXPECT_EQ(DocBadFrame::s_alive, 0);
    ASSERT_EQ(loaded.p->GetChildren()->GetCount(), 1);
    EXPECT_STREQ(loaded.p->GetChildren()->GetHead()->GetRuntimeClass()->m_lpszClassName, "TestLeaf");
}

// Every cut and every flipped byte of a document either loads or fails with a
// document error, and nothing outlives it.
TEST_F(MCDocumentFileTest, CutOrFlippedDocumentsFailCleanly)
{
    Held doc(RandomDocument(7));
    const Bytes bytes = Save(doc.p);
    for (size_t n = 0; n < bytes.size(); ++n)
    {
        SCOPED_TRACE(n);
        EXPECT_THROW(Held(Load(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n)))),
                     MCDocumentException);
        for (BYTE mask : {0x01, 0x80, 0xFF})
        {
            Bytes flipped = bytes;
            flipped[n] ^= mask;
            try
            {
                Held loaded(Load(flipped));
            }
            catch (const MCDocumentException &)
            {
            }
        }
    }
}

TEST_F(MCDocumentFileTest, ErrorsSayWhatAndWhere)
{
    const struct
    {
        Bytes bytes;
        const char *problem;
        ULONGLONG offset;
    } cases[] = {
        {{'<', '?', 'x', 'm', 'l'}, "not a scoremodel document", 0},
        {{}, "not a scoremodel document", 0},
        {Bytes(MCDocumentFile::kTag, MCDocumentFile::kTag + 8), "the header has 8 of its 20 bytes", 8},
        {Document(21, [](CArchive &ar) { ar << BYTE(0); }), "document version 21", 8},
        {Document(20, [](CArchive &ar) { ar << BYTE(0x02) << WORD(1) << WORD(0x8009); }), "class index 9", 25},
    };
    for (const auto &c : cases)
        ExpectRejected(c.bytes, c.problem, c.offset);

    // Bytes after the document, past the length its header gives or inside
    // it but unread by the archive: counted exactly, and placed where the
    // document ended.
    Held doc(RandomDocument(8));
    const Bytes saved = Save(doc.p);
    Bytes after = saved;
    after.insert(after.end(), {1, 2, 3});
    ExpectRejected(after, "document: 3 bytes past the end of the document", saved.size());
    Bytes unused = saved;
    unused.insert(unused.end(), {0, 0, 0, 0, 0});
    ULONGLONG length = 0;
    for (int i = 7; i >= 0; --i)
        length = (length << 8) | unused[12 + static_cast<size_t>(i)];
    length += 5;
    for (int i = 0; i < 8; ++i)
        unused[12 + static_cast<size_t>(i)] = static_cast<BYTE>(length >> (8 * i));
    ExpectRejected(unused, "): 5 bytes the document does not use", saved.size());
}

// A record that fails on load with something other than an archive error:
// nothing the load made outlives it, and the host sees its own exception, or
// a document error for a value out of range.
TEST_F(MCDocumentFileTest, LoadThatFailsWithAnotherExceptionReleasesEverythingAndPassesItOn)
{
    Held doc(RandomDocument(12));
    doc.p->AddChild(new DocLoadFails, 0);
    doc.p->AddChild(TestLeaf::Make(2.0f), 0);
    const Bytes bytes = Save(doc.p);
    const int aliveBefore = TestLeaf::s_alive;
    const struct
    {
        int kind;
        const char *caught;
    } rows[] = {
        {DocLoadFails::HostError, "the host's own failure"},
        {DocLoadFails::OutOfMemory, "bad_alloc"},
        {DocLoadFails::FileError, "file error"},
        {DocLoadFails::BadArgument, "document: corrupt document: index 9 out of range"},
        {DocLoadFails::NotSupported, "document: corrupt document: no such record"},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.caught);
        DocLoadFails::s_kind = row.kind;
        std::string caught = "nothing";
        try
        {
            Held loaded(Load(bytes));
        }
        catch (const MCDocumentException &e)
        {
            caught = e.what();
        }
        catch (const CFileException &)
        {
            caught = "file error";
        }
        catch (const std::bad_alloc &)
        {
            caught = "bad_alloc";
        }
        catch (const std::runtime_error &e)
        {
            caught = e.what();
        }
        EXPECT_NE(caught.find(row.caught), std::string::npos) << caught;
        EXPECT_EQ(TestLeaf::s_alive, aliveBefore) << "the failed load left events behind";
        EXPECT_EQ(ECPerformance::GetActivePerformance(), nullptr);
    }
    DocLoadFails::s_kind = DocLoadFails::HostError;
}

TEST_F(MCDocumentFileTest, SaveReplacesAtomicallyAndAFailedSaveLeavesTheOldFile)
{
    const fs::path dir = fs::path(SCOREMODEL_TEST_BINARY_DIR) / "document-test";
    fs::remove_all(dir);
    fs::create_directories(dir);
    const std::string path = (dir / "song.smd").string();

    Held first(RandomDocument(3));
    MCDocumentFile::Save(first.p, path.c_str());
    const auto size = fs::file_size(path);

    Held broken(RandomDocument(4));
    broken.p->AddChild(new DocDiskFull, 0);
    EXPECT_THROW(MCDocumentFile::Save(broken.p, path.c_str()), CFileException);
    EXPECT_EQ(fs::file_size(path), size);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1) << "a temporary file was left";

    Held second(RandomDocument(5));
    MCDocumentFile::Save(second.p, path.c_str());
    Held loaded(MCDocumentFile::Load(path.c_str()));
    std::map<ECBase *, ECBase *> pairs;
    ExpectSameTree(second.p, loaded.p, pairs);

    EXPECT_THROW(MCDocumentFile::Save(first.p, (dir / "no" / "such.smd").string().c_str()), CFileException);
    try
    {
        std::ofstream(dir / "text.smd") << "just text";
        Held notADocument(MCDocumentFile::Load((dir / "text.smd").string().c_str()));
        ADD_FAILURE();
    }
    catch (const MCDocumentException &e)
    {
        EXPECT_EQ(e.GetPath(), (dir / "text.smd").string());
    }
    fs::remove_all(dir);
}

// A link planted at the names a save may pick for its temporary file must not
// lead the save into overwriting the link's target.
TEST_F(MCDocumentFileTest, SaveNeverWritesThroughALinkPlantedAtItsTemporaryName)
{
    const fs::path dir = fs::path(SCOREMODEL_TEST_BINARY_DIR) / "document-link-test";
    fs::remove_all(dir);
    fs::create_directories(dir);
    const fs::path victim = dir / "victim.txt";
    std::ofstream(victim) << "precious";
    const std::string path = (dir / "song.smd").string();
    for (int n = 1; n <= 60; ++n)
        fs::create_symlink(victim, path + ".tmp-" + std::to_string(::getpid()) + "-" + std::to_string(n));

    Held doc(RandomDocument(6));
    MCDocumentFile::Save(doc.p, path.c_str());

    std::ifstream in(victim);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(text, "precious");
    EXPECT_FALSE(fs::is_symlink(path)) << "the saved document is a file of its own";
    Held loaded(MCDocumentFile::Load(path.c_str()));
    std::map<ECBase *, ECBase *> pairs;
    ExpectSameTree(doc.p, loaded.p, pairs);
    fs::remove_all(dir);
}

// A save replaces the file a path names with one of the same permissions;
// through a symbolic link it replaces the link's target and the link stays.
TEST_F(MCDocumentFileTest, SaveKeepsThePermissionsAndTheLinkOfWhatItReplaces)
{
    const fs::path dir = fs::path(SCOREMODEL_TEST_BINARY_DIR) / "document-mode-test";
    const struct
    {
        const char *what;
        bool viaLink;
        fs::perms mode;
    } rows[] = {
        {"the file itself", false, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read},
        {"a link to it", true, fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read},
    };
    for (const auto &row : rows)
    {
        SCOPED_TRACE(row.what);
        fs::remove_all(dir);
        fs::create_directories(dir / "real");
        const fs::path target = dir / "real" / "song.smd";
        const fs::path link = dir / "song.smd";
        Held first(RandomDocument(13));
        MCDocumentFile::Save(first.p, target.string().c_str());
        fs::permissions(target, row.mode);
        if (row.viaLink)
            fs::create_symlink(fs::path("real") / "song.smd", link);

        Held second(RandomDocument(14));
        MCDocumentFile::Save(second.p, (row.viaLink ? link : target).string().c_str());
        EXPECT_EQ(fs::status(target).permissions(), row.mode);
        if (row.viaLink)
        {
            EXPECT_TRUE(fs::is_symlink(link)) << "the link was replaced by a file";
            EXPECT_EQ(fs::read_symlink(link), fs::path("real") / "song.smd");
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(dir / "real"), fs::directory_iterator()), 1)
            << "a temporary file was left";
        Held loaded(MCDocumentFile::Load(target.string().c_str()));
        std::map<ECBase *, ECBase *> pairs;
        ExpectSameTree(second.p, loaded.p, pairs);
    }
    fs::remove_all(dir);
}

TEST_F(MCDocumentFileTest, SaveAndLoadPutTheActivePerformanceBack)
{
    Held other(NewDocument());
    ECPerformance::SetActivePerformance(other.p);
    Held doc(RandomDocument(9));
    Held loaded(Load(Save(doc.p)));
    EXPECT_EQ(ECPerformance::GetActivePerformance(), other.p);
    ECPerformance::SetActivePerformance(nullptr);
}
