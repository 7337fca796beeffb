// The records of texts, frames, audio, video and system messages: the new
// fields round-trip after the base part in the order the headers give, a
// record of the older schema (the same bytes without them) loads with the
// defaults, and a corrupt message length is refused, not allocated.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/marks/ECFlowControl.h>
#include <scoremodel/events/marks/ECSystemMessage.h>
#include <scoremodel/events/media/ECDrawing.h>
#include <scoremodel/events/media/ECFrame.h>
#include <scoremodel/events/media/ECLyric.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/media/ECVideo.h>
#include <scoremodel/events/media/ECWave.h>
#include <scoremodel/events/media/MCMediaFile.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace
{
template <class T>
T *Make()
{
    return static_cast<T *>(T::CreateObject());
}

void Release(ECBase *e)
{
    if (!e)
        return;
    e->Ref();
    e->RemoveChildren(1);
    e->Unref(1);
}

const BYTE kSysEx[] = {0xF0, 0x7E, 0x10, 0x09, 0x01, 0xF7};

struct RecordCase
{
    const char *name;
    std::function<ECBase *()> make;                   // with the new fields set
    std::function<void(CArchive &)> tail;             // the new fields, written by hand
    std::function<bool(ECBase *, ECBase *)> same;     // new fields equal
    std::function<bool(ECBase *)> isDefault;          // new fields at their defaults
};

std::vector<RecordCase> Cases()
{
    const MCMediaFile clip(L"/audio/take 3 \u00e9.wav", 44100, 88200);
    return {
        {"ECText",
         [] {
             auto *e = Make<ECText>();
             e->SetText(L"Allegro \u00e0 la");
             e->SetTextType(ECText::kMirrorTextSecond);
             return e;
         },
         [](CArchive &ar) { ar << CString(L"Allegro \u00e0 la") << static_cast<LONG>(22); },
         [](ECBase *a, ECBase *b) { return *static_cast<ECText *>(a) == *static_cast<ECText *>(b); },
         [](ECBase *e) {
             auto *t = static_cast<ECText *>(e);
             return t->GetText().IsEmpty() && t->GetTextType() == 0;
         }},
        {"ECLyric",
         [] {
             auto *e = Make<ECLyric>();
             e->SetText(L"la-");
             e->SetTextType(3);
             return e;
         },
         [](CArchive &ar) {
             ar << CString(L"la-") << static_cast<LONG>(3);
             MCTime duration = MCTime::TimeZero();
             duration.Serialize(ar, -1);
         },
         [](ECBase *a, ECBase *b) { return *static_cast<ECLyric *>(a) == *static_cast<ECLyric *>(b); },
         [](ECBase *e) { return static_cast<ECText *>(e)->GetText().IsEmpty(); }},
        {"ECFrame",
         [] {
             auto *e = Make<ECFrame>();
             e->SetFrame(CRect(10, 20, 310, 420));
             return e;
         },
         [](CArchive &ar) { ar << LONG(10) << LONG(20) << LONG(310) << LONG(420); },
         [](ECBase *a, ECBase *b) { return *static_cast<ECFrame *>(a) == *static_cast<ECFrame *>(b); },
         [](ECBase *e) { return static_cast<ECFrame *>(e)->GetFrame().IsRectNull(); }},
        {"ECDrawing",
         [] {
             auto *e = Make<ECDrawing>();
             e->SetShape(ECDrawing::ShapeEllipse);
             e->SetBounds(CRect(300, 40, -20, 90)); // a line may point any way; the bounds stay as given
             return e;
         },
         [](CArchive &ar) { ar << BYTE(2) << LONG(300) << LONG(40) << LONG(-20) << LONG(90); },
         // ECBase's operator== is identity, so a drawing compares its fields.
         [](ECBase *a, ECBase *b) {
             auto *x = static_cast<ECDrawing *>(a);
             auto *y = static_cast<ECDrawing *>(b);
             return x->GetShape() == y->GetShape() && x->GetBounds() == y->GetBounds();
         },
         [](ECBase *e) {
             auto *d = static_cast<ECDrawing *>(e);
             return d->GetShape() == ECDrawing::ShapeLine && d->GetBounds().IsRectNull();
         }},
        {"ECWave",
         [clip] {
             auto *e = Make<ECWave>();
             e->SetMediaFile(clip);
             return e;
         },
         [](CArchive &ar) { ar << CString(L"/audio/take 3 \u00e9.wav") << LONGLONG(44100) << LONGLONG(88200); },
         [](ECBase *a, ECBase *b) { return *static_cast<ECWave *>(a) == *static_cast<ECWave *>(b); },
         [](ECBase *e) { return !static_cast<ECWave *>(e)->GetMediaFile().HasFile(); }},
        {"ECVideo",
         [clip] {
             auto *e = Make<ECVideo>();
             e->SetMediaFile(clip);
             return e;
         },
         [](CArchive &ar) { ar << CString(L"/audio/take 3 \u00e9.wav") << LONGLONG(44100) << LONGLONG(88200); },
         // ECBase's operator== is identity, so a video compares its file.
         [](ECBase *a, ECBase *b) {
             return static_cast<ECVideo *>(a)->GetMediaFile() == static_cast<ECVideo *>(b)->GetMediaFile();
         },
         [](ECBase *e) { return static_cast<ECVideo *>(e)->GetMediaFile() == MCMediaFile(); }},
        {"ECFlowControl",
         [] {
             auto *e = Make<ECFlowControl>();
             e->SetFlowKind(ECFlowControl::FlowDalSegnoAlCoda);
             return e;
         },
         [](CArchive &ar) { ar << BYTE(9); },
         [](ECBase *a, ECBase *b) { return *static_cast<ECFlowControl *>(a) == *static_cast<ECFlowControl *>(b); },
         [](ECBase *e) { return static_cast<ECFlowControl *>(e)->GetFlowKind() == ECFlowControl::FlowNone; }},
        {"ECSystemMessage",
         [] {
             auto *e = Make<ECSystemMessage>();
             e->GetMessage().SetSysExBuf(const_cast<BYTE *>(kSysEx), sizeof kSysEx, 1);
             return e;
         },
         [](CArchive &ar) {
             ar << static_cast<DWORD>(sizeof kSysEx);
             ar.Write(kSysEx, sizeof kSysEx);
         },
         [](ECBase *a, ECBase *b) {
             return *static_cast<ECSystemMessage *>(a) == *static_cast<ECSystemMessage *>(b) &&
                    static_cast<ECSystemMessage *>(b)->GetMessage().IsGMSystemOnMsg();
         },
         [](ECBase *e) { return static_cast<ECSystemMessage *>(e)->GetMessage().GetSysExBuf() == nullptr; }},
    };
}

// The bytes of one object stored alone: a new class record (tag, schema,
// name length, name), then the record.
Bytes StoreObject(ECBase *e)
{
    return Store([&](CArchive &ar) { ar.WriteObject(e); });
}
} // namespace

TEST(MediaRecords, NewFieldsFollowTheBasePartAndRoundTrip)
{
    for (const RecordCase &c : Cases())
    {
        SCOPED_TRACE(c.name);
        ECBase *original = c.make();
        const Bytes bytes = StoreObject(original);
        const Bytes tail = Store(c.tail);
        ASSERT_GT(bytes.size(), tail.size());
        EXPECT_TRUE(std::equal(tail.begin(), tail.end(), bytes.end() - tail.size()))
            << "the new fields are not the last bytes of the record, in this order";
        EXPECT_EQ(bytes[2], 3) << "schema";

        ECBase *loaded = LoadObject<ECBase>(bytes);
        ASSERT_NE(loaded, nullptr);
        EXPECT_TRUE(c.same(original, loaded));

        // A copy carries the fields too.
        ECBase *copy = static_cast<ECBase *>(original->GetRuntimeClass()->CreateObject());
        copy->Copy(loaded);
        EXPECT_TRUE(c.same(original, copy));
        Release(copy);
        Release(loaded);
        Release(original);
    }
}

TEST(MediaRecords, ARecordOfSchemaTwoLoadsWithTheDefaults)
{
    for (const RecordCase &c : Cases())
    {
        SCOPED_TRACE(c.name);
        ECBase *original = c.make();
        Bytes bytes = StoreObject(original);
        const size_t tailSize = Store(c.tail).size();
        // The older record: schema 2, and it ends before the new fields.
        // (An ECLyric's duration comes after ECText's fields, so it is kept.)
        Bytes old(bytes.begin(), bytes.end() - tailSize);
        if (std::string(c.name) == "ECLyric")
        {
            const Bytes duration = Store([](CArchive &ar) {
                MCTime zero = MCTime::TimeZero();
                zero.Serialize(ar, -1);
            });
            old.insert(old.end(), bytes.end() - duration.size(), bytes.end());
        }
        old[2] = 2;
        bool failed = true;
        ECBase *loaded = LoadObject<ECBase>(old, &failed);
        ASSERT_FALSE(failed);
        ASSERT_NE(loaded, nullptr);
        EXPECT_TRUE(c.isDefault(loaded));
        Release(loaded);
        Release(original);
    }
}

TEST(MediaRecords, EveryCutOfARecordIsRefusedWithoutACrash)
{
    for (const RecordCase &c : Cases())
    {
        SCOPED_TRACE(c.name);
        ECBase *original = c.make();
        const Bytes bytes = StoreObject(original);
        for (size_t n = 0; n < bytes.size(); ++n)
        {
            bool failed = false;
            ECBase *loaded = LoadObject<ECBase>(Bytes(bytes.begin(), bytes.begin() + n), &failed);
            EXPECT_TRUE(failed || loaded == nullptr) << "cut at " << n;
            Release(loaded);
        }
        Release(original);
    }
}

TEST(MediaRecords, AHugeMessageLengthIsAnEndOfFileNotAnAllocation)
{
    ECSystemMessage *message = Make<ECSystemMessage>();
    message->GetMessage().SetSysExBuf(const_cast<BYTE *>(kSysEx), sizeof kSysEx, 1);
    Bytes bytes = StoreObject(message);
    // The length word sits before the six bytes at the end.
    const size_t at = bytes.size() - sizeof kSysEx - 4;
    bytes[at] = 0xF0;
    bytes[at + 1] = 0xFF;
    bytes[at + 2] = 0xFF;
    bytes[at + 3] = 0x7F;
    bool failed = false;
    ECBase *loaded = LoadObject<ECBase>(bytes, &failed);
    EXPECT_TRUE(failed);
    EXPECT_EQ(loaded, nullptr);
    Release(message);
}
