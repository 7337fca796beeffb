// The archive records of the event bases: what is stored, what comes back,
// shared children, rejected events, and clean-up after a broken stream.
#include "events/ArchiveTestSupport.h"
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/plugins/CPluginData.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>

// An event that always fails its validity test, as a frame without content.
class TestInvalid : public ECWithTime
{
    DECLARE_SERIAL(TestInvalid)

public:
    static int s_alive;
    int IsValid() override { return 0; }

protected:
    TestInvalid() { ++s_alive; }
    ~TestInvalid() override { --s_alive; }
};
IMPLEMENT_SERIAL(TestInvalid, ECWithTime, VERSIONABLE_SCHEMA | 2)
int TestInvalid::s_alive = 0;


namespace
{
Bytes Le32(int value)
{
    Bytes out(4);
    std::memcpy(out.data(), &value, 4);
    return out;
}

Bytes Cat(std::initializer_list<Bytes> parts)
{
    Bytes out;
    for (const Bytes &p : parts)
        out.insert(out.end(), p.begin(), p.end());
    return out;
}

// The object record of a new class: tag, schema, name, then its body.
Bytes NewObject(const char *name, WORD schema, const Bytes &body)
{
    Bytes out = {0xFF, 0xFF, static_cast<BYTE>(schema), static_cast<BYTE>(schema >> 8),
                 static_cast<BYTE>(std::strlen(name)), 0};
    for (const char *c = name; *c; ++c)
        out.push_back(static_cast<BYTE>(*c));
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

void TearDownTree(ECBase *root)
{
    root->Ref();
    root->RemoveChildren(1);
    root->Unref(1);
}

class ECBaseArchiveTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_nodes = TestNode::s_alive;
        m_leaves = TestLeaf::s_alive;
    }
    void TearDown() override
    {
        EXPECT_EQ(TestNode::s_alive, m_nodes) << "a loaded or stored container leaked";
        EXPECT_EQ(TestLeaf::s_alive, m_leaves) << "a loaded or stored leaf leaked";
    }
    int m_nodes = 0;
    int m_leaves = 0;
};

// measure(0) -> {note(1) -> dot, rest(2)}, beam(1) -> {note}; root holds both.
struct Score
{
    TestNode *root = TestNode::Make(0);
    TestNode *measure = TestNode::Make(0);
    TestNode *beam = TestNode::Make(1);
    TestNode *note = TestNode::Make(1);
    TestLeaf *rest = TestLeaf::Make(2);
    TestLeaf *dot = TestLeaf::Make(1);

    Score()
    {
        root->Ref();
        root->AddChild(measure, 1);
        root->AddChild(beam, 1);
        measure->AddChild(note, 1);
        measure->AddChild(rest, 1);
        beam->AddChild(note, 1);
        note->AddChild(dot, 1);
        note->SetId(EVENT_ID_NOTE);
        rest->SetVoiceTrack(2, 3);
    }
    ~Score()
    {
        TearDownTree(root);
        root->Unref(1);
    }
};
} // namespace

TEST_F(ECBaseArchiveTest, TreeRoundTripsWithSharedChildStoredOnce)
{
    Bytes bytes;
    {
        Score s;
        bytes = Store([&](CArchive &ar) { ar << s.root; });
    }
    TestNode *root = LoadObject<TestNode>(bytes);
    ASSERT_NE(root, nullptr);
    root->Ref();
    auto top = Elements(root->GetChildren());
    ASSERT_EQ(top.size(), 2u);
    auto measureChildren = Elements(top[0]->GetChildren());
    auto beamChildren = Elements(top[1]->GetChildren());
    ASSERT_EQ(measureChildren.size(), 2u);
    ASSERT_EQ(beamChildren.size(), 1u);
    ECBase *note = measureChildren[0];
    EXPECT_EQ(beamChildren[0], note) << "one note, shared by measure and beam";
    EXPECT_EQ(Elements(note->GetParents()), (std::vector<ECBase *>{top[0], top[1]}));
    EXPECT_EQ(note->GetRefCount(), 3) << "two lists and its dot's parent link";
    EXPECT_TRUE(*measureChildren[1]->GetTime() == MCTime(2.0f));
    EXPECT_EQ(measureChildren[1]->GetVoice(), 2);
    EXPECT_EQ(measureChildren[1]->GetTrack(), 3);
    EXPECT_TRUE(note->GetFlags() & ECBase::FlagHasChildren);
    EXPECT_EQ(root->GetParents()->GetCount(), 0);
    TearDownTree(root);
    root->Unref(1);
}

// The body of a timed event: the flag byte raw (selection and spare bits
// included), the time mode, the float and the voice/track word. A selected
// event loads unselected; the spare bits 4-7 are carried unchanged.
TEST_F(ECBaseArchiveTest, TimedEventRecordLayoutAndFlagsOnLoad)
{
    TestLeaf *leaf = TestLeaf::Make(1.5f);
    leaf->Ref();
    leaf->SetVoiceTrack(1, 2);
    leaf->SetRawFlags(0xA0);
    leaf->SetSelected(1, 3);
    Bytes bytes = Store([&](CArchive &ar) { ar << leaf; });
    leaf->Unref(1);
    float value = 1.5f;
    Bytes body = {0xAC, 0x00};
    body.insert(body.end(), reinterpret_cast<BYTE *>(&value), reinterpret_cast<BYTE *>(&value) + 4);
    body.insert(body.end(), {0x21, 0x00});
    ASSERT_GE(bytes.size(), body.size());
    EXPECT_EQ(Bytes(bytes.end() - static_cast<long>(body.size()), bytes.end()), body);

    TestLeaf *loaded = LoadObject<TestLeaf>(bytes);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetSelectedFlag(), 0u);
    EXPECT_EQ(loaded->GetFlags(), 0xA0);
    EXPECT_TRUE(*loaded->GetTime() == MCTime(1.5f));
    EXPECT_EQ(loaded->GetVoice(), 1);
    EXPECT_EQ(loaded->GetTrack(), 2);
    loaded->Unref(1);
}

TEST_F(ECBaseArchiveTest, ChildListedTwiceLoadsOnce)
{
    TestNode *parent = TestNode::Make(0);
    parent->Ref();
    TestLeaf *leaf = TestLeaf::Make(0);
    parent->GetChildren()->AddTail(leaf);
    parent->GetChildren()->AddTail(leaf); // edited directly: twice
    Bytes bytes = Store([&](CArchive &ar) { ar << parent; });
    parent->GetChildren()->RemoveAll();
    parent->Unref(1);

    TestNode *loaded = LoadObject<TestNode>(bytes);
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_EQ(loaded->GetChildren()->GetCount(), 1);
    ECBase *child = loaded->GetChildren()->GetHead();
    EXPECT_EQ(child->GetParents()->GetCount(), 1);
    EXPECT_EQ(child->GetRefCount(), 1);
    TearDownTree(loaded);
    loaded->Unref(1);
}

TEST_F(ECBaseArchiveTest, InvalidEventVanishesFromItsParentAndDies)
{
    int invalidBefore = TestInvalid::s_alive;
    TestNode *parent = TestNode::Make(0);
    parent->Ref();
    auto *bad = static_cast<ECBase *>(RUNTIME_CLASS(TestInvalid)->CreateObject());
    TestLeaf *good = TestLeaf::Make(1);
    parent->AddChild(bad, 1);
    parent->AddChild(good, 1);
    Bytes bytes = Store([&](CArchive &ar) { ar << parent; });
    TearDownTree(parent);
    parent->Unref(1);
    EXPECT_EQ(TestInvalid::s_alive, invalidBefore);

    TestNode *loaded = LoadObject<TestNode>(bytes);
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_EQ(TestInvalid::s_alive, invalidBefore) << "the rejected event must die";
    ASSERT_EQ(loaded->GetChildren()->GetCount(), 1);
    EXPECT_TRUE(*loaded->GetChildren()->GetHead()->GetTime() == MCTime(1.0f));
    TearDownTree(loaded);
    loaded->Unref(1);
}

// The rejected event is stored once and then referred to from two more
// parents. The load drops it at its first reading; the later references must
// read as nothing, not as the freed event.
TEST_F(ECBaseArchiveTest, InvalidEventReferredToAgainLaterReadsAsNothing)
{
    const int invalidBefore = TestInvalid::s_alive;
    TestNode *root = TestNode::Make(0);
    root->Ref();
    auto *bad = static_cast<ECBase *>(RUNTIME_CLASS(TestInvalid)->CreateObject());
    for (int i = 0; i < 3; ++i)
    {
        TestNode *parent = TestNode::Make(static_cast<float>(i));
        root->AddChild(parent, 1);
        parent->AddChild(bad, 1);
        parent->AddChild(TestLeaf::Make(10.0f + i), 1);
    }
    Bytes bytes = Store([&](CArchive &ar) { ar << root; });
    TearDownTree(root);
    root->Unref(1);
    ASSERT_EQ(TestInvalid::s_alive, invalidBefore);

    TestNode *loaded = LoadObject<TestNode>(bytes);
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_EQ(TestInvalid::s_alive, invalidBefore);
    ASSERT_EQ(loaded->GetChildren()->GetCount(), 3);
    int i = 0;
    for (POSITION pos = loaded->GetChildren()->GetHeadPosition(); pos; ++i)
    {
        ECBase *parent = loaded->GetChildren()->GetNext(pos);
        SCOPED_TRACE(i);
        ASSERT_EQ(parent->GetChildren()->GetCount(), 1);
        EXPECT_TRUE(*parent->GetChildren()->GetHead()->GetTime() == MCTime(10.0f + i));
    }
    TearDownTree(loaded);
    loaded->Unref(1);
}

// An attachment is stored with its type and comes back in the type's slot,
// read by the current layout and by the layout of version 3 documents alike.
TEST_F(ECBaseArchiveTest, AttachmentsRoundTripInTheirSlots)
{
    struct Case
    {
        int type;
        int slot;
        int version; // 0: the current document
    };
    for (Case c : {Case{1, 3, 0}, Case{4, 2, 0}, Case{4, 2, 3}})
    {
        SCOPED_TRACE(::testing::Message() << "type " << c.type << " version " << c.version);
        CPluginData entry(RUNTIME_CLASS(DCArchived), c.type, EVENT_ID_WITH_TIME);
        CPluginData::AddPlugin(&entry);
        TestLeaf *leaf = TestLeaf::Make(0);
        leaf->Ref();
        static_cast<DCArchived *>(leaf->GetData(c.type, 1))->SetValues(7, -9);
        Bytes bytes = Store([&](CArchive &ar) { ar << leaf; });
        leaf->Unref(1);
        CPluginData::RemovePlugin(&entry);

        std::optional<DocumentVersion> old;
        if (c.version)
            old.emplace(c.version);
        TestLeaf *loaded = LoadObject<TestLeaf>(bytes);
        ASSERT_NE(loaded, nullptr);
        EXPECT_TRUE(loaded->GetFlags() & ECBase::FlagHasData);
        EXPECT_EQ(loaded->GetData()->GetSize(), c.slot + 1) << "sized to the highest stored slot";
        auto *data = dynamic_cast<DCArchived *>(loaded->GetData()->GetAt(c.slot));
        ASSERT_NE(data, nullptr);
        EXPECT_EQ(data->Value(), 7);
        EXPECT_EQ(data->Value2(), -9);
        EXPECT_EQ(data->GetOwner(), loaded) << "the owner comes back as a reference";
        loaded->Unref(1);
    }
}

TEST_F(ECBaseArchiveTest, EveryTruncationFailsCleanlyAndLeaksNothing)
{
    Bytes bytes;
    {
        Score s;
        bytes = Store([&](CArchive &ar) { ar << s.root; });
    }
    for (size_t cut = 0; cut < bytes.size(); ++cut)
    {
        Bytes part(bytes.begin(), bytes.begin() + static_cast<long>(cut));
        bool failed = false;
        TestNode *root = LoadObject<TestNode>(part, &failed);
        EXPECT_TRUE(failed) << "cut at " << cut;
        EXPECT_EQ(root, nullptr);
        ASSERT_EQ(TestNode::s_alive, m_nodes) << "cut at " << cut;
        ASSERT_EQ(TestLeaf::s_alive, m_leaves) << "cut at " << cut;
    }
}

TEST_F(ECBaseArchiveTest, PlainListAndFilterAndAttachmentRecords)
{
    LCBase filter;
    filter.SetEnabled(0);
    filter.SetPriority(9);
    MCObList list;
    list.AddTail(&filter);
    list.AddTail(&filter);
    Bytes bytes = Store([&](CArchive &ar) { list.Serialize(ar); });

    MCObList loaded;
    LoadBytes(bytes, [&](CArchive &ar) { loaded.Serialize(ar); });
    ASSERT_EQ(loaded.GetCount(), 2);
    EXPECT_EQ(loaded.GetHead(), loaded.GetTail()) << "one object stored once, referenced twice";
    auto *f = static_cast<LCBase *>(loaded.GetHead());
    EXPECT_TRUE(*f == filter);
    EXPECT_EQ(f->IsEnabled(), 0);
    EXPECT_EQ(f->GetPriority(), 9);
    delete f;
}

TEST_F(ECBaseArchiveTest, OldAttachmentLayoutPlacesObjectsByPosition)
{
    // Before version 3: flags with hasData, a count of 2, the objects of
    // types 0 and 1 (slots 0 and 3) with the 12-byte DCBase record, then the
    // time as a bare float (version 0) and the voice/track word.
    Bytes dcBody = Cat({Le32(1), Le32(0x55), Le32(41), {0x00, 0x00}}); // flags, state, value, null owner
    float time = 2.5f;
    Bytes timeBytes(4);
    std::memcpy(timeBytes.data(), &time, 4);
    Bytes stream = Cat({NewObject("TestLeaf", 2, Cat({{0x01, 0x02, 0x00},
                                                      NewObject("DCArchived", 2, dcBody),
                                                      {0x00, 0x00}, // the second position is empty
                                                      timeBytes,
                                                      {0x12, 0x00}}))});
    DocumentVersion old(0);
    TestLeaf *leaf = LoadObject<TestLeaf>(stream);
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(leaf->GetData()->GetSize(), 4) << "positions 0 and 1 reach slot 3";
    auto *data = dynamic_cast<DCArchived *>(leaf->GetData()->GetAt(0));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->Value(), 41);
    EXPECT_EQ(data->Value2(), 0) << "the old record has no second value";
    EXPECT_EQ(data->GetOwner(), nullptr);
    EXPECT_TRUE(*leaf->GetTime() == MCTime(2.5f));
    EXPECT_EQ(leaf->GetVoice(), 2);
    EXPECT_EQ(leaf->GetTrack(), 1);
    leaf->Unref(1);
}
