// Chords dissolve when their notes go and never lose a note on the way; the
// small marks keep their byte through copy, compare and every record layout.
#include "events/ArchiveTestSupport.h"
#include "events/base/EventTestSupport.h"

#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/events/notes/ECAccidental.h>
#include <scoremodel/events/notes/ECArpeggio.h>
#include <scoremodel/events/notes/ECBarline.h>
#include <scoremodel/events/notes/ECBrac.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECDot.h>
#include <scoremodel/events/notes/ECMordent.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECOrnament.h>
#include <scoremodel/events/notes/ECRepeat.h>
#include <scoremodel/events/notes/ECTremolo.h>
#include <scoremodel/events/notes/ECTrill.h>
#include <scoremodel/events/notes/ECTurn.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <gtest/gtest.h>

#include <functional>

namespace
{
struct ChordInMeasure
{
    ECMeasure *measure = new ECMeasure;
    ECChord *chord = new ECChord;
    ECNote *notes[3] = {new ECNote, new ECNote, new ECNote};
    ECAccent *accent = new ECAccent;

    ChordInMeasure()
    {
        measure->Ref();
        measure->AddChild(chord, 1);
        for (ECNote *n : notes)
        {
            n->Ref();
            chord->AddChild(n, 1);
        }
        accent->Ref();
        chord->AddChild(accent, 0);
    }
    ~ChordInMeasure()
    {
        for (ECNote *n : notes)
            n->Unref(1);
        accent->Unref(1);
        measure->RemoveChildren(1);
        measure->Unref(1);
    }
};
} // namespace

TEST(ECChordTest, TheLastNoteTakesTheModifiersAndTheChordWithIt)
{
    ChordInMeasure s;
    s.chord->Ref();
    EXPECT_EQ(s.chord->RemoveChild(s.notes[0], 0), 1);
    EXPECT_EQ(s.chord->RemoveChild(s.notes[1], 0), 1);
    EXPECT_TRUE(Holds(s.chord->GetChildren(), s.accent)) << "a note is left: the accent stays";
    EXPECT_TRUE(Holds(s.measure->GetChildren(), s.chord));

    EXPECT_EQ(s.chord->RemoveChild(s.notes[2], 0), 1);
    EXPECT_EQ(s.chord->GetChildren()->GetCount(), 0);
    EXPECT_EQ(s.accent->GetParents()->GetCount(), 0);
    EXPECT_FALSE(Holds(s.measure->GetChildren(), s.chord));
    EXPECT_EQ(s.chord->GetRefCount(), 1) << "only this test holds the chord now";
    EXPECT_EQ(s.chord->RemoveChild(s.notes[0], 0), 0) << "not a child any more";
    s.chord->Unref(1);
    for (ECNote *n : s.notes)
        EXPECT_EQ(n->GetParents()->GetCount(), 0) << "removed notes are not handed on";
}

TEST(ECChordTest, LeavingTheMeasureHandsEveryNoteToIt)
{
    ChordInMeasure s;
    s.measure->AddChild(s.notes[1], 1); // the measure already holds one
    s.chord->RemoveFromParents();
    EXPECT_FALSE(Holds(s.measure->GetChildren(), s.chord));
    EXPECT_EQ(s.measure->GetChildren()->GetCount(), 3) << "three notes, each once";
    for (ECNote *n : s.notes)
    {
        EXPECT_TRUE(Holds(s.measure->GetChildren(), n));
        EXPECT_EQ(n->GetParents()->GetCount(), 1);
    }
    EXPECT_EQ(s.accent->GetParents()->GetCount(), 0) << "the modifiers go with the chord";
}

TEST(ECChordTest, ClearingAChordWithoutAMeasureLeavesNothingHeld)
{
    ECChord *chord = new ECChord;
    chord->Ref();
    ECNote *note = new ECNote;
    note->Ref();
    chord->AddChild(note, 1);
    EXPECT_EQ(chord->RemoveChildren(1), 1);
    EXPECT_EQ(note->GetParents()->GetCount(), 0);
    EXPECT_EQ(note->GetRefCount(), 1);
    note->Unref(1);
    chord->Unref(1);
}

namespace
{
// One class of marks: how to make one, set a value that fills the byte, and
// read the byte back as the class's accessors see it.
struct MarkClass
{
    const char *name;
    std::function<ECBase *()> make;
    std::function<void(ECBase *, BYTE)> set;
    std::function<int(ECBase *)> get;
};

template <class T>
MarkClass Simple(const char *name, void (T::*set)(BYTE), BYTE (T::*get)() const)
{
    return {name, [] { return static_cast<ECBase *>(new T); },
            [set](ECBase *e, BYTE v) { (static_cast<T *>(e)->*set)(v); },
            [get](ECBase *e) { return static_cast<int>((static_cast<T *>(e)->*get)()); }};
}

std::vector<MarkClass> MarkClasses()
{
    return {
        Simple<ECAccidental>("ECAccidental", &ECAccidental::SetAccidentalType, &ECAccidental::GetAccidentalType),
        Simple<ECArpeggio>("ECArpeggio", &ECArpeggio::SetArpeggioType, &ECArpeggio::GetArpeggioType),
        Simple<ECDot>("ECDot", &ECDot::SetDotType, &ECDot::GetDotType),
        Simple<ECMordent>("ECMordent", &ECMordent::SetMordentType, &ECMordent::GetMordentType),
        Simple<ECOrnament>("ECOrnament", &ECOrnament::SetOrnamentType, &ECOrnament::GetOrnamentType),
        Simple<ECRepeat>("ECRepeat", &ECRepeat::SetRepeatType, &ECRepeat::GetRepeatType),
        Simple<ECTremolo>("ECTremolo", &ECTremolo::SetTremoloType, &ECTremolo::GetTremoloType),
        Simple<ECTrill>("ECTrill", &ECTrill::SetTrillType, &ECTrill::GetTrillType),
        {"ECBarline", [] { return static_cast<ECBase *>(new ECBarline); },
         [](ECBase *e, BYTE v) {
             static_cast<ECBarline *>(e)->SetBarlineType(v);
             static_cast<ECBarline *>(e)->SetBarlinePos(v >> 6);
         },
         [](ECBase *e) {
             auto *b = static_cast<ECBarline *>(e);
             return b->GetBarlineType() | b->GetBarlinePos() << 6;
         }},
        {"ECBrac", [] { return static_cast<ECBase *>(new ECBrac); },
         [](ECBase *e, BYTE v) {
             static_cast<ECBrac *>(e)->SetBracType(v);
             static_cast<ECBrac *>(e)->SetGroupID(0, v & 0x80);
         },
         [](ECBase *e) {
             auto *b = static_cast<ECBrac *>(e);
             return b->GetBracType() | b->GetPrimary() << 7;
         }},
        {"ECTurn", [] { return static_cast<ECBase *>(new ECTurn); },
         [](ECBase *e, BYTE v) { static_cast<ECTurn *>(e)->SetAccidentals(v & 0x0F, v >> 4); },
         [](ECBase *e) {
             BYTE above = 0, below = 0;
             static_cast<ECTurn *>(e)->GetAccidentals(above, below);
             return above | below << 4;
         }},
    };
}
} // namespace

TEST(MarkRecordTest, EveryByteValueSurvivesCopyAndTheArchive)
{
    for (const MarkClass &c : MarkClasses())
    {
        SCOPED_TRACE(c.name);
        ECBase *fresh = c.make();
        fresh->Ref();
        EXPECT_EQ(c.get(fresh), 0) << "0 for a new mark";
        for (int value = 0; value < 256; value += 17)
        {
            ECBase *mark = c.make();
            mark->Ref();
            c.set(mark, static_cast<BYTE>(value));
            ASSERT_EQ(c.get(mark), value);

            ECBase *copy = c.make();
            copy->Ref();
            copy->Copy(mark);
            EXPECT_EQ(c.get(copy), value);

            const Bytes bytes = Store([&](CArchive &ar) { ar << mark; });
            EXPECT_EQ(bytes.back(), value) << "the byte closes the record";
            ECBase *loaded = nullptr;
            EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { ar >> loaded; }), bytes.size());
            ASSERT_NE(loaded, nullptr);
            loaded->Ref();
            EXPECT_EQ(c.get(loaded), value);
            for (ECBase *e : {mark, copy, loaded})
                e->Unref(1);
        }
        fresh->Unref(1);
    }
}

TEST(MarkRecordTest, OldBarlinesHoldTypeAndPositionApart)
{
    ECBarline *barline = new ECBarline;
    barline->Ref();
    barline->SetBarlineType(0x2A);
    barline->SetBarlinePos(2);
    EXPECT_EQ(barline->GetBarlineType(), 0x2A);
    EXPECT_EQ(barline->GetBarlinePos(), 2);
    barline->SetBarlineType(0xFF);
    EXPECT_EQ(barline->GetBarlinePos(), 2) << "a type keeps to its 6 bits";
    barline->SetBarlineType(0x2A);

    Bytes bytes = Store([&](CArchive &ar) { ar << barline; });
    bytes.back() = 0x2A; // the type alone, then the position
    bytes.push_back(2);
    DocumentVersion old(ArchiveVersionPackedMarks - 1);
    ECBarline *loaded = nullptr;
    EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { ar >> loaded; }), bytes.size());
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_EQ(loaded->GetBarlineType(), 0x2A);
    EXPECT_EQ(loaded->GetBarlinePos(), 2);
    loaded->Unref(1);
    barline->Unref(1);
}

TEST(MarkRecordTest, TheBracketGroupIdStaysOutOfTheRecord)
{
    ECBrac *brac = new ECBrac;
    brac->Ref();
    brac->SetBracType(5);
    brac->SetGroupID(9, 1);
    EXPECT_EQ(brac->GetGroupID(), 9);
    EXPECT_EQ(brac->GetPrimary(), 1);
    EXPECT_EQ(brac->GetBracType(), 5);
    ECBrac *loaded = LoadObject<ECBrac>(Store([&](CArchive &ar) { ar << brac; }));
    ASSERT_NE(loaded, nullptr);
    loaded->Ref();
    EXPECT_EQ(loaded->GetGroupID(), 0);
    EXPECT_EQ(loaded->GetPrimary(), 1);
    EXPECT_EQ(loaded->GetBracType(), 5);
    EXPECT_FALSE(*loaded == *brac) << "the group id counts in a comparison";
    loaded->SetGroupID(9, 1);
    EXPECT_TRUE(*loaded == *brac);
    loaded->Unref(1);
    brac->Unref(1);
}

TEST(MarkRecordTest, OldTurnTypesBecomeTheirAccidentalsOnce)
{
    struct Case
    {
        BYTE stored;
        int version;
        BYTE above, below;
    };
    const Case cases[] = {{0, 13, 0, 0},    {1, 13, 2, 0}, {2, 13, 0, 2},  {3, 13, 1, 0},
                          {4, 13, 0, 1},    {7, 13, 0, 0}, {1, 14, 1, 0},  {0x21, 14, 1, 2}};
    for (const Case &c : cases)
    {
        SCOPED_TRACE(::testing::Message() << int(c.stored) << " at version " << c.version);
        ECTurn *turn = new ECTurn;
        turn->Ref();
        turn->SetAccidentals(c.stored & 0x0F, c.stored >> 4);
        const Bytes bytes = Store([&](CArchive &ar) { ar << turn; });
        DocumentVersion version(c.version);
        ECTurn *loaded = nullptr;
        LoadBytes(bytes, [&](CArchive &ar) {
            ar >> loaded;
            loaded->PostSerialize(ar);
            loaded->PostSerialize(ar); // a second path to the same turn
        });
        ASSERT_NE(loaded, nullptr);
        loaded->Ref();
        EXPECT_TRUE(loaded->HasAccidentals(c.above, c.below));
        loaded->Unref(1);
        turn->Unref(1);
    }
}
