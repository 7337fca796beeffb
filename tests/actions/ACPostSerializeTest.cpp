#include "ArchiveBytes.h"
#include "ACTestTree.h"

#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/MCDataArray.h>
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CFile.h>

#include <gtest/gtest.h>

namespace
{
// An event, and an attachment, whose post-section record is one byte.
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

class TaggedData : public DCBase
{
public:
    explicit TaggedData(BYTE tag) : m_tag(tag) {}
    void PostSerialize(CArchive &ar) override { ar << m_tag; }

private:
    BYTE m_tag;
};

TEST(ACPostSerializeTest, WritesEventsThenAttachmentsInWalkOrderAndSkipsGroupContents)
{
    TestTree tree(new TaggedEvent(EVENT_ID_STAFF, 1));
    ECBase *measure = tree.Add(tree.Root(), new TaggedEvent(EVENT_ID_MEASURE, 2));
    ECBase *note = tree.Add(measure, new TaggedEvent(EVENT_ID_NOTE, 3));
    note->GetData()->SetAtGrow(2, new TaggedData(0x32));
    note->GetData()->SetAtGrow(0, new TaggedData(0x30));
    BYTE tag = 4;
    for (int id : {EVENT_ID_BEAM, EVENT_ID_SLUR, EVENT_ID_TIE})
        tree.Add(tree.Add(tree.Root(), new TaggedEvent(id, tag++)), new TaggedEvent(EVENT_ID_NOTE, 0xEE));

    const archive_bytes::Bytes bytes = archive_bytes::Store([&](CArchive &ar) {
        ACPostSerialize post(ar);
        post.ClipNone(); // the groups answer "skip" themselves
        EXPECT_EQ(post.Apply(tree.Root()), ACBase::ResultContinue);
    });
    EXPECT_EQ(bytes, (std::vector<BYTE>{1, 2, 3, 0x30, 0x32, 4, 5, 6}));
}
} // namespace
