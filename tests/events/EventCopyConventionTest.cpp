// Copying and comparing events: operator= (and Copy, which goes through it)
// copies the value fields of a class and never the links, flags, counts or
// attachments of the destination; operator== compares what each class says.
// A copy that took a parent, a child or a flag would tie a pasted event into
// the tree it was copied from.
#include "events/EventClassTable.h"
#include "events/base/EventTestSupport.h"

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/ECWithChild.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/events/base/MCDataArray.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/events/structure/ECTrack.h>

#include <gtest/gtest.h>

#include <functional>

namespace
{
ECBase *MakeOfClass(const char *name)
{
    CRuntimeClass *cls = CRuntimeClass::FromName(name);
    return cls ? static_cast<ECBase *>(cls->CreateObject()) : nullptr;
}

// Takes down an event nobody else holds, with its children.
void Release(ECBase *e)
{
    e->Ref();
    e->RemoveChildren(1);
    e->Unref(1);
}

// Everything operator= must leave alone on the destination.
struct Links
{
    int refCount;
    BYTE flags;
    unsigned hit;
    int parents;
    int children;
    int dataSize;
    DCBase *data0;

    explicit Links(ECBase *e)
        : refCount(e->GetRefCount()), flags(e->GetFlags()), hit(e->GetHitFlag()),
          parents(e->GetParents()->GetCount()), children(e->GetChildren() ? e->GetChildren()->GetCount() : -1),
          dataSize(e->GetData()->GetSize()), data0(e->GetData()->GetAt(0))
    {
    }
    bool operator==(const Links &) const = default;
};

// A held event of class T, made by its class record as a load makes it.
template <class T>
T *Make(int id)
{
    T *e = dynamic_cast<T *>(CreateEventW(id));
    e->Ref();
    return e;
}

// == as expected, and != its negation; then both events are released.
template <class T>
void ExpectEqualAndRelease(T *a, T *b, bool equal)
{
    EXPECT_EQ(*a == *b, equal ? 1 : 0);
    EXPECT_EQ(*a != *b, equal ? 0 : 1);
    a->Unref(1);
    b->Unref(1);
}

void SetTimeAndVoice(ECBase *e, float time, int voice, int track)
{
    MCTime t(time);
    e->SetTime(&t);
    e->SetVoiceTrack(voice, track);
}
} // namespace

TEST(EventCopyConventionTest, EveryClassCopiesNoParentChildFlagCountHitOrAttachment)
{
    for (const EventClassRow &row : EventClassRows())
    {
        SCOPED_TRACE(row.name);
        ECBase *src = MakeOfClass(row.name);
        ECBase *dst = MakeOfClass(row.name);
        ASSERT_NE(src, nullptr);
        ASSERT_NE(dst, nullptr);
        ECBase *parent = CreateEventW(EVENT_ID_WITH_CHILD);
        parent->Ref();
        parent->AddChild(src, 0);
        src->SetSelected(1, 3);
        src->SetHit(1, 0xF0);
        src->GetData()->SetAtGrow(0, new DCBase);
        if (src->GetChildren())
        {
            // Envelopes take only their own points: a refused child dies here.
            ECBase *child = CreateEventW(EVENT_ID_WITH_TIME);
            child->Ref();
            src->AddChild(child, 0);
            child->Unref(1);
        }
        dst->Ref();

        const Links before(dst);
        EXPECT_EQ(dst->Copy(src), dst);
        EXPECT_TRUE(Links(dst) == before) << "the copy took a link, a flag, a count or an attachment";
        EXPECT_EQ(dst->Copy(dst), dst) << "self-assignment";
        EXPECT_TRUE(Links(dst) == before);
        EXPECT_EQ(src->GetParents()->GetCount(), 1) << "the source keeps its links";

        // Nothing, or an object of no class of the destination's, copies nothing.
        const WORD word = dst->GetVoiceTrack() ? dst->GetVoiceTrack()->GetValue() : 0;
        EXPECT_EQ(dst->Copy(nullptr), dst);
        DCBase attachment;
        EXPECT_EQ(dst->Copy(&attachment), dst);
        ECBase *other = MakeOfClass(row.id == EVENT_ID_NOTE ? "ECRest" : "ECNote");
        other->Ref();
        other->SetVoiceTrack(3, 9);
        EXPECT_EQ(dst->Copy(other), dst);
        EXPECT_TRUE(Links(dst) == before);
        if (!other->IsKindOf(dst->GetRuntimeClass()) && dst->GetVoiceTrack())
        {
            EXPECT_EQ(dst->GetVoiceTrack()->GetValue(), word) << "copied from another class";
        }
        other->Unref(1);

        parent->RemoveChildren(1);
        parent->Unref(1);
        Release(dst);
        dst->Unref(1);
    }
}

TEST(EventCopyConventionTest, TheBasesCompareIdentityAnythingOrTimeAndVoice)
{
    ECBase *a = CreateEventW(EVENT_ID_BASE);
    ECBase *b = CreateEventW(EVENT_ID_BASE);
    EXPECT_TRUE(*a == *a);
    EXPECT_FALSE(*a == *b) << "ECBase compares identity";
    EXPECT_TRUE(*a != *b);
    a->Ref();
    b->Ref();
    a->Unref(1);
    b->Unref(1);

    auto *c1 = Make<ECWithChild>(EVENT_ID_WITH_CHILD);
    auto *c2 = Make<ECWithChild>(EVENT_ID_WITH_CHILD);
    c1->AddChild(CreateEventW(EVENT_ID_WITH_TIME), 0);
    EXPECT_TRUE(*c1 == *c2) << "ECWithChild has no value of its own";
    EXPECT_FALSE(*c1 != *c2);
    Release(c1);
    c1->Unref(1);
    c2->Unref(1);

    // ECWithTime: time and the raw voice/track word, nothing else.
    const std::function<void(ECWithTime *)> changes[] = {
        [](ECWithTime *) {},
        [](ECWithTime *e) { SetTimeAndVoice(e, 2.0f, 1, 5); },
        [](ECWithTime *e) { SetTimeAndVoice(e, 1.0f, 2, 5); },
        [](ECWithTime *e) { SetTimeAndVoice(e, 1.0f, 1, 6); },
        [](ECWithTime *e) { e->SetSelected(1, 3); },
    };
    const bool equal[] = {true, false, false, false, true};
    for (size_t i = 0; i < std::size(changes); ++i)
    {
        SCOPED_TRACE(i);
        auto *x = Make<ECWithTime>(EVENT_ID_WITH_TIME);
        auto *y = Make<ECWithTime>(EVENT_ID_WITH_TIME);
        SetTimeAndVoice(x, 1.0f, 1, 5);
        SetTimeAndVoice(y, 1.0f, 1, 5);
        changes[i](y);
        ExpectEqualAndRelease(x, y, equal[i]);
    }
}

TEST(EventCopyConventionTest, StaffCopiesItsLayoutButNotPercussionJianpuModeEmptyBitOrTime)
{
    auto *src = Make<ECStaff>(EVENT_ID_STAFF);
    auto *dst = Make<ECStaff>(EVENT_ID_STAFF);
    SetTimeAndVoice(src, 4.0f, 3, 12);
    SetTimeAndVoice(dst, 1.0f, 14, 0x7FF);
    src->SetStaffType(ECStaff::StaffTypeTwoHands);
    src->SetStaffEmpty(0);
    src->SetStaffSize(0x28);
    src->SetStaffLines(4);
    src->SetJianpuOffsetY(-30);
    src->SetPercussionStaffMap(0x155);
    src->SetPercussionStaffMidiPitch(0x40);
    src->SetJianpuMode(2);
    const int emptyBefore = dst->IsStaffEmpty();

    dst->Copy(src);
    EXPECT_EQ(dst->GetStaffType(), ECStaff::StaffTypeTwoHands);
    EXPECT_EQ(dst->GetStaffSize(), 0x28);
    EXPECT_EQ(dst->GetStaffLines(), 4);
    EXPECT_EQ(dst->GetJianpuOffsetY(), -30);
    EXPECT_EQ(dst->GetVoice(), 3);
    EXPECT_EQ(dst->GetTrack(), 12);
    EXPECT_EQ(dst->IsStaffEmpty(), emptyBefore);
    EXPECT_EQ(dst->GetPercussionStaffMap(), 0x0D0);
    EXPECT_EQ(dst->GetPercussionStaffMidiPitch(), 0x23);
    EXPECT_EQ(dst->GetJianpuMode(), 0);
    EXPECT_TRUE(*dst->GetTime() == MCTime(1.0f));
    src->Unref(1);
    dst->Unref(1);
}

TEST(EventCopyConventionTest, StaffComparesTypeSizeAndLinesOnly)
{
    struct Case
    {
        const char *what;
        std::function<void(ECStaff *)> change;
        bool equal;
    };
    const Case cases[] = {
        {"nothing", [](ECStaff *) {}, true},
        {"type", [](ECStaff *s) { s->SetStaffType(ECStaff::StaffTypeTablature); }, false},
        {"size", [](ECStaff *s) { s->SetStaffSize(0x21); }, false},
        {"lines", [](ECStaff *s) { s->SetStaffLines(6); }, false},
        {"empty bit", [](ECStaff *s) { s->SetStaffEmpty(!s->IsStaffEmpty()); }, true},
        {"time and voice", [](ECStaff *s) { SetTimeAndVoice(s, 9.0f, 2, 3); }, true},
        {"percussion", [](ECStaff *s) { s->SetPercussionStaffMidiPitch(0x50); }, true},
        {"jianpu", [](ECStaff *s) {
             s->SetJianpuOffsetY(5);
             s->SetJianpuMode(1);
         }, true},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        auto *a = Make<ECStaff>(EVENT_ID_STAFF);
        auto *b = Make<ECStaff>(EVENT_ID_STAFF);
        c.change(b);
        ExpectEqualAndRelease(a, b, c.equal);
    }
}

TEST(EventCopyConventionTest, MeasuresAndTracksCopyTheVoiceNotTheTimeAndCompareBoth)
{
    auto *m1 = Make<ECMeasure>(EVENT_ID_MEASURE);
    auto *m2 = Make<ECMeasure>(EVENT_ID_MEASURE);
    SetTimeAndVoice(m1, 3.0f, 2, 7);
    SetTimeAndVoice(m2, 1.0f, 15, 0x7FF);
    m2->Copy(m1);
    EXPECT_EQ(m2->GetTrack(), 7);
    EXPECT_TRUE(*m2->GetTime() == MCTime(1.0f));
    EXPECT_FALSE(*m1 == *m2) << "times differ";
    m2->SetTime(m1->GetTime());
    EXPECT_TRUE(*m1 == *m2);
    m1->Unref(1);
    m2->Unref(1);

    auto *t1 = Make<ECTrack>(EVENT_ID_TRACK);
    auto *t2 = Make<ECTrack>(EVENT_ID_TRACK);
    SetTimeAndVoice(t1, 0.0f, 4, 9);
    EXPECT_FALSE(*t1 == *t2);
    t2->Copy(t1);
    EXPECT_TRUE(*t1 == *t2) << "the same time at construction, the voice copied";
    EXPECT_FALSE(*t1 != *t2);
    t1->Unref(1);
    t2->Unref(1);
}

TEST(EventCopyConventionTest, ConductorMeasureCopiesCollapseAndComparesIdentity)
{
    auto *a = Make<ECConductorMeasure>(EVENT_ID_CONDUCTOR_MEASURE);
    auto *b = Make<ECConductorMeasure>(EVENT_ID_CONDUCTOR_MEASURE);
    SetTimeAndVoice(a, 2.0f, 1, 0);
    SetTimeAndVoice(b, 2.0f, 1, 0);
    a->SetCollapseMeasure(5);
    EXPECT_FALSE(*a == *b) << "equal values, two measures";
    EXPECT_TRUE(*a != *b);
    EXPECT_TRUE(*a == *a);
    b->Copy(a);
    EXPECT_EQ(b->GetCollapseMeasure(), 5);
    EXPECT_FALSE(*a == *b);
    a->Unref(1);
    b->Unref(1);
}

TEST(EventCopyConventionTest, DocumentLevelClassesCopyOnlyTheirBasesAndCompareIdentity)
{
    auto *p1 = Make<ECPerformance>(EVENT_ID_PERFORMANCE);
    auto *p2 = Make<ECPerformance>(EVENT_ID_PERFORMANCE);
    p1->SetVersion(17);
    p1->SetVoiceTrack(2, 3);
    p2->Copy(p1);
    EXPECT_EQ(p2->GetVersion(), 0) << "the version is the document's, not a value to copy";
    EXPECT_EQ(p2->GetTrack(), 3);
    EXPECT_FALSE(*p1 == *p2);
    EXPECT_TRUE(*p1 != *p2);
    EXPECT_TRUE(*p2 == *p2);
    p1->Unref(1);
    p2->Unref(1);

    auto *c1 = Make<ECConductor>(EVENT_ID_CONDUCTOR);
    auto *c2 = Make<ECConductor>(EVENT_ID_CONDUCTOR);
    EXPECT_EQ(c2->Copy(c1), c2);
    EXPECT_FALSE(*c1 == *c2);
    EXPECT_TRUE(*c1 != *c2);
    EXPECT_TRUE(*c1 == *c1);
    c1->Unref(1);
    c2->Unref(1);

    auto *s1 = Make<ECConductorStaff>(EVENT_ID_CONDUCTOR_STAFF);
    auto *s2 = Make<ECConductorStaff>(EVENT_ID_CONDUCTOR_STAFF);
    s1->SetStaffSize(0x30);
    s2->Copy(s1);
    EXPECT_EQ(s2->GetStaffSize(), 0x30) << "the staff part is copied";
    EXPECT_FALSE(*s1 == *s2) << "but two conductor staves are never equal";
    EXPECT_TRUE(*s1 != *s2);
    EXPECT_TRUE(*s1 == *s1);
    s1->Unref(1);
    s2->Unref(1);
}

TEST(EventCopyConventionTest, AttachmentsCopyNothingAndCompareTheirStateWord)
{
    DCArchived src, dst;
    ECBase *owner = CreateEventW(EVENT_ID_BASE);
    owner->Ref();
    src.SetValues(7, 8);
    src.SetOwner(owner);
    src.SetDirty(0);
    EXPECT_EQ(dst.Copy(&src), &dst);
    EXPECT_EQ(dst.Value(), 0);
    EXPECT_EQ(dst.IsDirty(), 1);
    EXPECT_EQ(dst.GetOwner(), nullptr);
    EXPECT_EQ(dst.Copy(nullptr), &dst);

    EXPECT_FALSE(src == dst) << "the dirty bit is part of the state word";
    dst.SetDirty(0);
    EXPECT_TRUE(src == dst) << "values and owner are not compared";
    EXPECT_FALSE(src != dst);
    owner->Unref(1);
}

TEST(EventCopyConventionTest, FiltersCopyAndCompareBothBytes)
{
    LCBase a, b;
    a.SetEnabled(0);
    a.SetPriority(0x1FF);
    EXPECT_FALSE(a == b);
    EXPECT_EQ(b.Copy(&a), &b);
    EXPECT_EQ(b.IsEnabled(), 0);
    EXPECT_EQ(b.GetPriority(), 0xFF);
    EXPECT_TRUE(a == b);
    b.SetEnabled(1);
    EXPECT_TRUE(a != b);
    b.SetEnabled(0);
    b.SetPriority(3);
    EXPECT_TRUE(a != b);

    DCBase other;
    EXPECT_EQ(b.Copy(&other), &b) << "another class copies nothing";
    EXPECT_EQ(b.GetPriority(), 3);
    LCBase copy(a);
    EXPECT_TRUE(copy == a);
}

// The copy constructors, reached as a derived class reaches them: unlike
// operator=, they copy the time too, and still no link, flag or count.
class CopiedTimed : public ECWithTime
{
public:
    explicit CopiedTimed(const ECWithTime &other) : ECWithTime(other) {}
};
class CopiedTimedChild : public ECWithTimeChild
{
public:
    explicit CopiedTimedChild(const ECWithTimeChild &other) : ECWithTimeChild(other) {}
};
class CopiedStaff : public ECStaff
{
public:
    explicit CopiedStaff(const ECStaff &other) : ECStaff(other) {}
};

TEST(EventCopyConventionTest, CopyConstructorsTakeTheTimeButNoLinks)
{
    auto *parent = Make<ECWithChild>(EVENT_ID_WITH_CHILD);
    auto *timed = Make<ECWithTime>(EVENT_ID_WITH_TIME);
    auto *container = Make<ECWithTimeChild>(EVENT_ID_WITH_TIME_CHILD);
    auto *staff = Make<ECStaff>(EVENT_ID_STAFF);
    for (ECBase *e : std::initializer_list<ECBase *>{timed, container, staff})
    {
        SetTimeAndVoice(e, 3.0f, 2, 5);
        e->SetSelected(1, 3);
        parent->AddChild(e, 0);
    }
    container->AddChild(CreateEventW(EVENT_ID_WITH_TIME), 0);
    staff->SetStaffType(ECStaff::StaffTypeTwoHands);
    staff->SetStaffEmpty(0);
    staff->SetStaffLines(3);

    ECBase *copies[] = {new CopiedTimed(*timed), new CopiedTimedChild(*container), new CopiedStaff(*staff)};
    for (ECBase *copy : copies)
    {
        SCOPED_TRACE(copy->GetEventId());
        EXPECT_TRUE(*copy->GetTime() == MCTime(3.0f));
        EXPECT_EQ(copy->GetVoice(), 2);
        EXPECT_EQ(copy->GetTrack(), 5);
        EXPECT_EQ(copy->GetRefCount(), 0);
        EXPECT_EQ(copy->GetSelectedFlag(), 0u);
        EXPECT_EQ(copy->GetFlags() & ECBase::FlagHasChildren, 0);
        EXPECT_TRUE(copy->GetParents()->IsEmpty());
        if (copy->GetChildren())
        {
            EXPECT_TRUE(copy->GetChildren()->IsEmpty());
        }
    }
    auto *copiedStaff = static_cast<ECStaff *>(copies[2]);
    EXPECT_EQ(copiedStaff->GetStaffType(), ECStaff::StaffTypeTwoHands);
    EXPECT_EQ(copiedStaff->GetStaffLines(), 3);
    EXPECT_EQ(copiedStaff->IsStaffEmpty(), 1) << "a new staff starts empty";
    for (ECBase *copy : copies)
    {
        copy->Ref();
        copy->Unref(1);
    }
    Release(parent);
    parent->Unref(1);
    for (ECBase *e : std::initializer_list<ECBase *>{timed, container, staff})
    {
        Release(e);
        e->Unref(1);
    }
}
