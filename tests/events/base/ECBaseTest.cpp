// What every event shares: selection and hit marks, time and voice through
// the bases, the copy and comparison conventions, and data attachments.
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/plugins/CPluginData.h>

#include <gtest/gtest.h>

// A serialisable attachment and one that cannot be stored.
class DCTestStored : public DCBase
{
    DECLARE_SERIAL(DCTestStored)

public:
    static int s_alive;
    DCTestStored() { ++s_alive; }
    ~DCTestStored() override { --s_alive; }
};
IMPLEMENT_SERIAL(DCTestStored, DCBase, VERSIONABLE_SCHEMA | 2)
int DCTestStored::s_alive = 0;

class DCTestTransient : public DCBase
{
    DECLARE_DYNCREATE(DCTestTransient)
};
IMPLEMENT_DYNCREATE(DCTestTransient, DCBase)

namespace
{
// Registers attachment classes for the test's duration.
class Registration
{
public:
    Registration(CRuntimeClass *cls, int viewCode, int eventType) : m_entry(cls, viewCode, eventType)
    {
        CPluginData::AddPlugin(&m_entry);
    }
    ~Registration() { CPluginData::RemovePlugin(&m_entry); }

private:
    CPluginData m_entry;
};

struct Held
{
    explicit Held(ECBase *e) : event(e) { event->Ref(); }
    ~Held()
    {
        event->RemoveChildren(1);
        event->Unref(1);
    }
    ECBase *event;
};
} // namespace

// Selection marks keep to their two bits; clearing a hit mark also clears
// every mark above bit one.
TEST(ECBaseTest, SelectionAndHitMarksFollowTheirMaskRules)
{
    struct Case
    {
        bool hit;
        unsigned start;
        int on;
        unsigned mask;
        unsigned expected;
    };
    const Case cases[] = {
        {false, 0, 1, 1, 1},         {false, 0, 1, 2, 2},          {false, 1, 1, 2, 3},
        {false, 0, 1, 0xFF, 3},      {false, 3, 0, 1, 2},          {false, 3, 0, 2, 1},
        {false, 3, 0, 3, 0},         {false, 3, 0, 0, 3},          {false, 3, 0, 4, 3},
        {true, 0x0F, 0, 1, 0x02},    {true, 0x0F, 0, 2, 0x01},     {true, 0xF0, 0, 1, 0x00},
        {true, 0xF0, 0, 0x10, 0x10}, {true, 0x00, 1, 0x100, 0x100}, {true, 0x03, 0, 0, 0x03},
        {true, 0xFFFFFFFF, 0, 3, 0x00},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(::testing::Message() << (c.hit ? "hit " : "selection ") << std::hex << c.start << " on " << c.on
                                          << " mask " << c.mask);
        Held h(new ECBase);
        if (c.hit)
        {
            h.event->SetHit(1, c.start);
            h.event->SetHit(c.on, c.mask);
            EXPECT_EQ(h.event->GetHitFlag(), c.expected);
            continue;
        }
        h.event->SetSelected(1, c.start);
        h.event->SetSelected(c.on, c.mask);
        EXPECT_EQ(h.event->GetSelectedFlag(), c.expected);
        EXPECT_EQ(h.event->IsSelected(2), static_cast<int>(c.expected & 2));
        EXPECT_EQ(h.event->GetFlags() & ~ECBase::FlagSelection, 0) << "no other flag moves";
    }
}

TEST(ECBaseTest, PlainEventHasNoTimeVoiceOrChildren)
{
    Held h(new ECBase);
    ECBase *e = h.event;
    EXPECT_EQ(e->GetTime(), nullptr);
    EXPECT_EQ(e->GetVoiceTrack(), nullptr);
    e->SetVoice(3); // nothing to set: no crash, no effect
    EXPECT_EQ(e->GetVoice(), 15);
    EXPECT_EQ(e->GetTrack(), 0x7FF);
    EXPECT_EQ(e->GetChildren(), nullptr);
    TestLeaf *leaf = TestLeaf::Make();
    EXPECT_EQ(e->AddChild(leaf, 0), 0);
    EXPECT_EQ(leaf->GetRefCount(), 0);
    leaf->Unref(1);
    EXPECT_EQ(e->RemoveChildren(1), 0);
    EXPECT_EQ(e->IsValid(), 1);
}

TEST(ECBaseTest, NewTimedEventsStartWithoutTimeVoiceOrTrack)
{
    for (CRuntimeClass *cls : {RUNTIME_CLASS(ECWithTime), RUNTIME_CLASS(ECWithTimeChild)})
    {
        Held h(static_cast<ECBase *>(cls->CreateObject()));
        ASSERT_NE(h.event->GetTime(), nullptr);
        EXPECT_TRUE(*h.event->GetTime() == MCTime::TimeNull());
        EXPECT_EQ(h.event->GetVoiceTrack()->GetValue(), 0x7FFF);
    }
}

TEST(ECBaseTest, CopyTakesNoLinksFlagsOrAttachments)
{
    Held parent(TestNode::Make()), src(TestNode::Make()), dst(TestNode::Make());
    parent.event->AddChild(src.event, 0);
    src.event->AddChild(TestLeaf::Make(), 0);
    src.event->SetSelected(1, 3);
    src.event->SetHit(1, 0x40);
    dst.event->Copy(src.event);
    EXPECT_TRUE(dst.event->GetParents()->IsEmpty());
    EXPECT_TRUE(dst.event->GetChildren()->IsEmpty());
    EXPECT_EQ(dst.event->GetSelectedFlag(), 0u);
    EXPECT_EQ(dst.event->GetHitFlag(), 0u);
    EXPECT_EQ(dst.event->GetRefCount(), 1);
    EXPECT_EQ(dst.event->Copy(nullptr), dst.event) << "a null source copies nothing";
}

TEST(ECBaseTest, EqualityConventions)
{
    Held a(new ECBase), b(new ECBase);
    EXPECT_TRUE(*a.event == *a.event);
    EXPECT_TRUE(*a.event != *b.event) << "plain events compare by identity";

    Held n1(TestNode::Make(1.0f)), n2(TestNode::Make(1.0f));
    auto &x = static_cast<ECWithTimeChild &>(*n1.event);
    auto &y = static_cast<ECWithTimeChild &>(*n2.event);
    EXPECT_TRUE(x == y);
    y.SetVoiceTrack(0, 1);
    EXPECT_TRUE(x != y) << "the voice/track word takes part";
    y.SetVoiceTrack(x.GetVoiceTrack());
    MCTime later(2.0f);
    y.SetTime(&later);
    EXPECT_TRUE(x != y) << "the time takes part";
}

TEST(ECBaseTest, DataIsMadeOnDemandThroughThePluginRegistryAndDiesWithItsEvent)
{
    int before = DCTestStored::s_alive;
    Registration reg(RUNTIME_CLASS(DCTestStored), 1, EVENT_ID_WITH_TIME);
    TestLeaf *leaf = TestLeaf::Make();
    leaf->Ref();
    EXPECT_EQ(leaf->GetData(1, 0), nullptr) << "no attachment without asking for one";
    DCBase *data = leaf->GetData(1, 1);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->GetOwner(), leaf);
    EXPECT_TRUE(data->IsDirty());
    EXPECT_EQ(leaf->GetData()->GetAt(3), data) << "type 1 lives in slot 3";
    EXPECT_EQ(leaf->GetData(1, 1), data) << "asking again gives the same one";
    EXPECT_TRUE(leaf->GetFlags() & ECBase::FlagHasData);
    EXPECT_EQ(leaf->GetData(2, 1), nullptr) << "nothing registered for type 2";
    leaf->RemoveData(1);
    EXPECT_EQ(DCTestStored::s_alive, before);
    EXPECT_FALSE(leaf->GetFlags() & ECBase::FlagHasData);
    ASSERT_NE(leaf->GetData(1, 1), nullptr);
    leaf->Unref(1);
    EXPECT_EQ(DCTestStored::s_alive, before) << "attachments die with their event";
}

TEST(ECBaseTest, HasDataFollowsOnlySerialisableAttachments)
{
    Registration stored(RUNTIME_CLASS(DCTestStored), 0, EVENT_ID_WITH_TIME);
    Registration transient(RUNTIME_CLASS(DCTestTransient), 6, EVENT_ID_WITH_TIME);
    Held h(TestLeaf::Make());
    ASSERT_NE(h.event->GetData(6, 1), nullptr);
    EXPECT_FALSE(h.event->GetFlags() & ECBase::FlagHasData);
    ASSERT_NE(h.event->GetData(0, 1), nullptr);
    EXPECT_TRUE(h.event->GetFlags() & ECBase::FlagHasData);
    h.event->RemoveData(0);
    EXPECT_FALSE(h.event->GetFlags() & ECBase::FlagHasData) << "the transient one does not count";
    EXPECT_NE(h.event->GetData(6, 0), nullptr);
    h.event->RemoveData(-1);
    EXPECT_EQ(h.event->GetData(6, 0), nullptr);
    EXPECT_EQ(h.event->GetData()->GetSize(), 0);
}

TEST(ECBaseTest, TypesSixAndSevenAreClaimedByTheAskingEvent)
{
    Registration reg(RUNTIME_CLASS(DCTestStored), 7, EVENT_ID_WITH_TIME);
    Held a(TestLeaf::Make());
    DCBase *data = a.event->GetData(7, 1);
    ASSERT_NE(data, nullptr);
    data->SetOwner(nullptr);
    EXPECT_EQ(a.event->GetData(7, 0), data);
    EXPECT_EQ(data->GetOwner(), a.event);
}

TEST(ECBaseTest, AncestorAndDescendantSearches)
{
    Held staff(TestNode::Make());
    TestNode *measure = TestNode::Make(), *beam = TestNode::Make(), *note = TestNode::Make();
    TestLeaf *accent = TestLeaf::Make();
    static_cast<TestNode *>(staff.event)->SetId(EVENT_ID_STAFF);
    measure->SetId(EVENT_ID_MEASURE);
    beam->SetId(EVENT_ID_BEAM);
    note->SetId(EVENT_ID_NOTE);
    accent->SetId(EVENT_ID_ACCENT);
    staff.event->AddChild(measure, 0);
    measure->AddChild(beam, 0);
    measure->AddChild(note, 0);
    beam->AddChild(note, 0);
    note->AddChild(accent, 0);

    EXPECT_EQ(accent->GetAncestor(EVENT_ID_STAFF, -1), staff.event);
    EXPECT_EQ(accent->GetAncestor(EVENT_ID_STAFF, 2), nullptr) << "the staff is three levels up";
    EXPECT_EQ(accent->GetAncestor(EVENT_ID_STAFF, 3), staff.event);
    EXPECT_EQ(accent->GetAncestor(EVENT_ID_BEAM, -1), beam) << "walking up, a beam is entered";
    EXPECT_EQ(accent->GetAncestor(EVENT_ID_ACCENT, 0), accent) << "the search starts at the event itself";
    EXPECT_EQ(staff.event->GetDescendant(EVENT_ID_ACCENT, -1), accent);
    EXPECT_EQ(staff.event->GetDescendant(EVENT_ID_NOTE, 1), nullptr);
    EXPECT_EQ(staff.event->GetDescendant(EVENT_ID_NOTE, 2), note);
    EXPECT_EQ(beam->GetDescendant(EVENT_ID_NOTE, -1), nullptr) << "a beam is not entered walking down";
    EXPECT_EQ(staff.event->GetDescendant(EVENT_ID_CLEF, -1), nullptr);
}
