#include "ACTestTree.h"

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/MCDataArray.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

#include <gtest/gtest.h>

namespace
{
// An event whose post-section record is one byte: its tag.
class TaggedEvent : public TestTimed
{
public:
    TaggedEvent(int id, BYTE tag) : TestTimed(id), m_tag(tag) {}
    void PostSerialize(CArchive &ar) override { ar << m_tag; }

protected:
    ~TaggedEvent() override = default;

private:
    BYTE m_tag;
};

// An attachment whose post-section record is one byte as well.
class TaggedData : public DCBase
{
public:
    explicit TaggedData(BYTE tag) : m_tag(tag) {}
    void PostSerialize(CArchive &ar) override { ar << m_tag; }

private:
    BYTE m_tag;
};

std::vector<BYTE> Written(CMemFile &mem)
{
    std::vector<BYTE> bytes(static_cast<size_t>(mem.GetLength()));
    mem.SeekToBegin();
    if (!bytes.empty())
        mem.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}

TEST(ACPostSerializeTest, WritesEachEventThenItsAttachmentsInWalkOrder)
{
    TestTree tree(new TaggedEvent(EVENT_ID_STAFF, 1));
    ECBase *measure = tree.Add(tree.Root(), new TaggedEvent(EVENT_ID_MEASURE, 2));
    ECBase *note = tree.Add(measure, new TaggedEvent(EVENT_ID_NOTE, 3));
    tree.Add(measure, new TaggedEvent(EVENT_ID_NOTE, 4));
    // Attachments in slots 2 and 0: written slot by slot, from 0.
    note->GetData()->SetAtGrow(2, new TaggedData(0x32));
    note->GetData()->SetAtGrow(0, new TaggedData(0x30));

    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        ACPostSerialize post(ar);
        EXPECT_EQ(post.GetArchive(), &ar);
        EXPECT_EQ(post.Apply(tree.Root()), ACBase::ResultContinue);
        ar.Close();
    }
    EXPECT_EQ(Written(mem), (std::vector<BYTE>{1, 2, 3, 0x30, 0x32, 4}));
}

TEST(ACPostSerializeTest, BeamsSlursAndTiesAreWrittenButNotEntered)
{
    for (int id : {EVENT_ID_BEAM, EVENT_ID_SLUR, EVENT_ID_TIE})
    {
        TestTree tree(new TaggedEvent(EVENT_ID_STAFF, 1));
        ECBase *group = tree.Add(tree.Root(), new TaggedEvent(id, 2));
        tree.Add(group, new TaggedEvent(EVENT_ID_NOTE, 3));
        CMemFile mem;
        {
            CArchive ar(&mem, CArchive::store);
            ACPostSerialize post(ar);
            // Even with clipping switched off the group says "skip".
            post.ClipNone();
            post.Apply(tree.Root());
            ar.Close();
        }
        EXPECT_EQ(Written(mem), (std::vector<BYTE>{1, 2})) << id;
    }
}

TEST(ACPostSerializeTest, GlissandoIsClippedByTheWalkNotByTheRecord)
{
    TestTree tree(new TaggedEvent(EVENT_ID_STAFF, 1));
    ECBase *glissando = tree.Add(tree.Root(), new TaggedEvent(EVENT_ID_GLISSANDO, 2));
    tree.Add(glissando, new TaggedEvent(EVENT_ID_NOTE, 3));
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        ACPostSerialize post(ar);
        post.ClipNone();
        post.Apply(tree.Root());
        ar.Close();
    }
    EXPECT_EQ(Written(mem), (std::vector<BYTE>{1, 2, 3}));
}
} // namespace
