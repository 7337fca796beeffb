// Keys and clefs: their bit fields, the transposition of a key, equality,
// mirrors, moving in time, and their records at every version, built byte
// by byte.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/notes/ECMirror.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/platform/Exceptions.h>

#include <gtest/gtest.h>

namespace
{
void Release(ECBase *e)
{
    e->Ref();
    e->RemoveChildren(1);
    e->Unref(1);
}

using archive_bytes::Concat;

// Loads `bytes` into `event` as a record of the given document version and
// answers whether the loader read them all.
bool LoadRecord(ECBase *event, const Bytes &bytes, int version)
{
    DocumentVersion scope(version);
    return LoadBytes(bytes, [&](CArchive &ar) { event->Serialize(ar); }) == bytes.size();
}

Bytes StoreRecord(ECBase *event)
{
    return Store([&](CArchive &ar) { event->Serialize(ar); });
}

void ExpectKey(ECKey *key, int sharps, int flats, int mode, int hand)
{
    EXPECT_EQ(key->GetNumSharps(), sharps);
    EXPECT_EQ(key->GetNumFlats(), flats);
    EXPECT_EQ(key->GetMode(), mode);
    EXPECT_EQ(key->GetHand(), hand);
}
} // namespace

TEST(ECKeyTest, FieldsKeepTheirLowBitsOnly)
{
    auto *key = new ECKey(9, 15, 3); // 3, 3 and 1 bits
    ExpectKey(key, 1, 7, 1, 0);
    key->SetNumSharps(0xFE);
    key->SetNumFlats(8);
    key->SetMode(2);
    key->SetHand(3);
    ExpectKey(key, 6, 0, 0, 1);
    Release(key);
}

TEST(ECKeyTest, TransposeFollowsTheTonicAndKeepsModeAndHand)
{
    struct Case
    {
        int sharps, flats, semitones, newSharps, newFlats;
    } cases[] = {
        {0, 1, 1, 0, 6},  // F up to G flat: pitch class 6 keeps the flat side
        {0, 2, 1, 5, 0},  // B flat up to B
        {1, 0, 1, 0, 4},  // G up to A flat
        {0, 0, 0, 0, 0},  // 0 does nothing
        {3, 2, 0, 3, 2},  // not even tidy a key with both counts
        {0, 3, 2, 0, 1},  // E flat up to F
        {0, 0, 255, 0, 3}, // unsigned: 255 is up 3 (E flat), never down 1
        {2, 0, 6, 0, 4}, // D up to G sharp: the flat spelling, A flat
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(testing::Message() << c.sharps << "#" << c.flats << "b +" << c.semitones);
        auto *key = new ECKey(static_cast<unsigned char>(c.sharps), static_cast<unsigned char>(c.flats), 1);
        key->SetHand(1);
        key->Transpose(static_cast<unsigned char>(c.semitones));
        ExpectKey(key, c.newSharps, c.newFlats, 1, 1);
        Release(key);
    }
}

TEST(ECKeyTest, EveryByteTransposesAsItsRiseModuloTwelve)
{
    // The argument is a rise of 1 to 255 semitones: only its pitch class
    // may matter, whatever the starting key.
    for (int count = -7; count <= 7; ++count)
        for (int semitones = 1; semitones <= 255; ++semitones)
        {
            const unsigned char sharps = count > 0 ? count : 0, flats = count < 0 ? -count : 0;
            auto *far = new ECKey(sharps, flats, 0);
            auto *near = new ECKey(sharps, flats, 0);
            far->Transpose(static_cast<unsigned char>(semitones));
            near->Transpose(static_cast<unsigned char>(semitones % 12 == 0 ? 12 : semitones % 12));
            ASSERT_TRUE(*far == *near) << count << " by " << semitones;
            ASSERT_FALSE(far->GetNumSharps() && far->GetNumFlats()) << "a transposed key has one kind";
            Release(far);
            Release(near);
        }
}

TEST(ECKeyTest, EqualityIsTheFourFieldsAndNotTheTime)
{
    auto *a = new ECKey(2, 0, 1);
    auto *b = new ECKey(2, 0, 1);
    MCTime one(1.0f), five(5.0f);
    a->SetTime(&one);
    b->SetTime(&five);
    EXPECT_TRUE(*a == *b) << "keys at different times with equal fields are equal";
    b->SetHand(1);
    EXPECT_TRUE(*a != *b);
    b->SetHand(0);
    b->SetMode(0);
    EXPECT_TRUE(*a != *b);
    b->SetMode(1);
    b->SetNumFlats(1);
    EXPECT_TRUE(*a != *b) << "sharps and flats both set differs from sharps alone";
    Release(a);
    Release(b);
}

TEST(ECKeyTest, CopiesCarryTheFieldsAndOnlyTheConstructorTheTime)
{
    auto *a = new ECKey(0, 5, 1);
    a->SetHand(1);
    MCTime at(7.0f);
    a->SetTime(&at);
    auto *copied = new ECKey(*a);
    ExpectKey(copied, 0, 5, 1, 1);
    EXPECT_TRUE(*copied->GetTime() == at);

    auto *assigned = new ECKey();
    assigned->Copy(a);
    ExpectKey(assigned, 0, 5, 1, 1);
    EXPECT_TRUE(*assigned->GetTime() == MCTime::TimeNull()) << "as every event's operator=, not the time";
    for (ECBase *e : {static_cast<ECBase *>(a), static_cast<ECBase *>(copied), static_cast<ECBase *>(assigned)})
        Release(e);
}

TEST(ECClefTest, TypeIsSevenBitsAndHandOne)
{
    auto *clef = new ECClef(200);
    EXPECT_EQ(clef->GetClefType(), 72);
    EXPECT_EQ(clef->GetHand(), 0);
    clef->SetHand(3);
    clef->SetClefType(0x85);
    EXPECT_EQ(clef->GetClefType(), 5);
    EXPECT_EQ(clef->GetHand(), 1);

    auto *other = new ECClef(5);
    EXPECT_TRUE(*clef != *other) << "the hand counts";
    other->SetHand(1);
    MCTime later(3.0f);
    other->SetTime(&later);
    EXPECT_TRUE(*clef == *other) << "the time does not";
    auto *copy = new ECClef(*other);
    EXPECT_TRUE(*copy == *other);
    EXPECT_TRUE(*copy->GetTime() == later);
    for (ECBase *e : {static_cast<ECBase *>(clef), static_cast<ECBase *>(other), static_cast<ECBase *>(copy)})
        Release(e);
}

// Both kinds keep the list of their mirrors the same way.
template <class T>
void CheckMirrors(T *owner)
{
    auto *first = new ECMirror;
    auto *second = new ECMirror;
    first->Ref(); // outlive the owner, to see the link cut
    second->Ref();
    owner->AddMirror(first);
    owner->AddMirror(second);
    owner->AddMirror(nullptr);
    EXPECT_EQ(owner->GetMirrors()->GetCount(), 2);
    EXPECT_EQ(first->GetMirrorEvent(), owner);

    owner->RemoveMirror(first);
    EXPECT_EQ(first->GetMirrorEvent(), nullptr);
    EXPECT_EQ(owner->GetMirrors()->GetCount(), 1);
    owner->RemoveMirror(first); // not listed any more: nothing
    EXPECT_EQ(owner->GetMirrors()->GetCount(), 1);

    Release(owner);
    EXPECT_EQ(second->GetMirrorEvent(), nullptr) << "a dead owner leaves no dangling link";
    first->Unref(1);
    second->Unref(1);
}

TEST(SignatureMirrorTest, ListsLinkAndUnlinkTheirMirrors)
{
    CheckMirrors(new ECKey(1, 0, 0));
    CheckMirrors(new ECClef(3));
}

TEST(SignatureMirrorTest, MirrorsAreNeitherCopiedNorCompared)
{
    auto *key = new ECKey(1, 0, 0);
    auto *mirror = new ECMirror;
    key->AddMirror(mirror);
    auto *copy = new ECKey(*key);
    EXPECT_EQ(copy->GetMirrors()->GetCount(), 0);
    EXPECT_TRUE(*copy == *key);
    Release(copy);
    Release(key);
}

TEST(SignatureTimeTest, MovingWithOrWithoutAStaffSetsTheTime)
{
    auto *loose = new ECClef(1);
    MCTime at(4.0f);
    loose->SetTime(&at);
    EXPECT_TRUE(*loose->GetTime() == at);
    loose->SetTime(nullptr);
    EXPECT_TRUE(*loose->GetTime() == at) << "null changes nothing";

    ECBase *staff = CreateEventW(EVENT_ID_STAFF);
    ECBase *measure = CreateEventW(EVENT_ID_MEASURE);
    staff->AddChild(measure, 0);
    auto *key = new ECKey(0, 2, 0);
    measure->AddChild(key, 0);
    MCTime moved(1.5f);
    key->SetTime(&moved);
    EXPECT_TRUE(*key->GetTime() == moved);
    EXPECT_EQ(key->GetAncestor(EVENT_ID_STAFF), staff);
    Release(staff);
    Release(loose);
}

TEST(SignatureArchiveTest, KeyRecordAtEveryVersion)
{
    auto *key = new ECKey(5, 2, 1);
    key->SetHand(1);
    MCTime at(2.5f);
    key->SetTime(&at);
    key->SetVoiceTrack(3, 17);
    const Bytes stored = StoreRecord(key);
    // Sharps in bits 0-2, flats 3-5, mode 6, hand 7.
    EXPECT_EQ(stored, Concat({TimedRecordPrefix(), {0xD5}}));

    struct Case
    {
        const char *what;
        int version;
        Bytes tail;
        int sharps, flats, mode, hand;
    } cases[] = {
        {"packed byte", ArchiveVersionCurrent, {0xD5}, 5, 2, 1, 1},
        {"packed byte from version 3", 3, {0x3F}, 7, 7, 0, 0},
        {"old: -3 is three flats", 2, {0xFD, 0xFF, 0x41, 0x80}, 0, 3, 0, 0},
        {"old: 0 is no key", 2, {0x00, 0x00, 0xFF, 0xFF}, 0, 0, 0, 0},
        {"old: 4 sharps", 1, {0x04, 0x00, 0x01, 0x01}, 4, 0, 0, 0},
        {"old: the lowest word does not overflow", 2, {0x00, 0x80, 0x00, 0x00}, 0, 0, 0, 0},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        auto *loaded = new ECKey();
        EXPECT_TRUE(LoadRecord(loaded, Concat({TimedRecordPrefix(), c.tail}), c.version)) << "read to the last byte";
        ExpectKey(loaded, c.sharps, c.flats, c.mode, c.hand);
        EXPECT_TRUE(*loaded->GetTime() == at);
        EXPECT_EQ(loaded->GetVoiceTrack()->GetValue(), key->GetVoiceTrack()->GetValue());
        Release(loaded);
    }
    Release(key);
}

TEST(SignatureArchiveTest, ClefRecordAtEveryVersion)
{
    auto *clef = new ECClef(100);
    clef->SetHand(1);
    MCTime at(2.5f);
    clef->SetTime(&at);
    clef->SetVoiceTrack(3, 17);
    EXPECT_EQ(StoreRecord(clef), Concat({TimedRecordPrefix(), {0xE4}}));

    struct Case
    {
        const char *what;
        int version;
        Bytes tail;
        int type, hand;
    } cases[] = {
        {"packed byte", ArchiveVersionCurrent, {0xE4}, 100, 1},
        {"packed byte, first hand", 3, {0x7F}, 127, 0},
        {"old: type then hand", 2, {0x05, 0x01}, 5, 1},
        {"old: both cut to their bits", 2, {0xC8, 0xFE}, 72, 0},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        auto *loaded = new ECClef();
        EXPECT_TRUE(LoadRecord(loaded, Concat({TimedRecordPrefix(), c.tail}), c.version)) << "read to the last byte";
        EXPECT_EQ(loaded->GetClefType(), c.type);
        EXPECT_EQ(loaded->GetHand(), c.hand);
        Release(loaded);
    }
    Release(clef);
}

TEST(SignatureArchiveTest, CutRecordsFailAsArchiveErrors)
{
    // Every record cut short, at each version, must be an archive error the
    // host can catch: no crash, no garbage accepted.
    const Bytes full = Concat({TimedRecordPrefix(), {0xFD, 0xFF, 0x00, 0x00}});
    for (int version : {2, static_cast<int>(ArchiveVersionCurrent)})
        for (int id : {EVENT_ID_KEY, EVENT_ID_CLEF})
        {
            // The packed byte, or the old key's word and two bytes, or the
            // old clef's two bytes.
            const size_t tail = version >= 3 ? 1 : id == EVENT_ID_KEY ? 4 : 2;
            for (size_t keep = 0; keep < TimedRecordPrefix().size() + tail; ++keep)
            {
                ECBase *e = CreateEventW(id);
                const Bytes cut(full.begin(), full.begin() + static_cast<long>(keep));
                EXPECT_THROW(LoadRecord(e, cut, version), CArchiveException) << id << ": " << keep << " bytes, v"
                                                                               << version;
                Release(e);
            }
        }
}
