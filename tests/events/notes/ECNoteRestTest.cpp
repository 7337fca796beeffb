// Notes and rests: the rest tables against their rules, the note's copy and
// compare rules, its record in every layout a document may hold, and its
// questions about its relatives.
#include "events/ArchiveTestSupport.h"

#include <scoremodel/events/notes/ECDot.h>
#include <scoremodel/events/notes/ECGraceNote.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECRest.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/pitch/MCHarmonicaConverter.h>

#include <gtest/gtest.h>

namespace
{
template <class T>
T *Held()
{
    T *event = new T;
    event->Ref();
    return event;
}

// The lengths of the rest types as musicians count them: whole note 4.0,
// and each plain length followed by its dotted and double-dotted forms.
float ExpectedRestLength(int type)
{
    if (type == 1)
        return 8.0f;
    if (type >= 2 && type <= 19)
    {
        const float plain = 4.0f / static_cast<float>(1 << ((type - 2) / 3));
        const int dots = (type - 2) % 3;
        return plain * (dots == 0 ? 1.0f : dots == 1 ? 1.5f : 1.75f);
    }
    switch (type)
    {
    case 20:
        return 0.0625f;
    case 21:
        return 0.09375f;
    case 22:
        return 0.03125f;
    }
    return -1.0f;
}

ECNote *NoteWith(float time, float duration, int string, int fret, BYTE notation)
{
    ECNote *note = Held<ECNote>();
    MCTime t(time), d(duration);
    note->SetTime(&t);
    note->SetDuration(&d);
    note->SetString(string);
    note->SetFret(fret);
    note->SetNotationByte(notation);
    return note;
}

// The bytes of a note stored now, cut back to the layout of `version`: the
// fields a record gained later come last, so an older record is a prefix.
Bytes NoteBytesAt(ECNote *note, int version)
{
    Bytes bytes = Store([&](CArchive &ar) { ar << note; });
    if (version < ArchiveVersionNotationByte)
        bytes.resize(bytes.size() - 1);
    if (version < ArchiveVersionNoteTablature)
        bytes.resize(bytes.size() - 8);
    return bytes;
}
} // namespace

TEST(ECRestTest, TypesFollowTheirRulesForEveryBaseAndDotCount)
{
    for (int base = 0; base < 256; ++base)
        for (int dots = 0; dots < 4; ++dots)
        {
            SCOPED_TRACE(::testing::Message() << "base " << base << ", dots " << dots);
            const bool plain = base >= 2 && base <= 17 && (base - 2) % 3 == 0;
            int expected = base;
            if (dots && plain)
                expected = base + (dots == 1 ? 1 : 2);
            else if (dots && base == 20)
                expected = 21;
            EXPECT_EQ(ECRest::GetRestType(static_cast<BYTE>(base), static_cast<BYTE>(dots)), expected);

            const MCTime length = ECRest::GetRestDuration(static_cast<BYTE>(base), static_cast<BYTE>(dots));
            if (expected < 1 || expected > 22)
                EXPECT_EQ(length, MCTime::TimeNull());
            else
                EXPECT_EQ(length.GetSeconds(), ExpectedRestLength(expected));
        }
    EXPECT_EQ(ECRest::GetRestDuration(8, 1).GetSeconds(), 1.5f);
    EXPECT_EQ(ECRest::GetRestDuration(1, 1).GetSeconds(), 8.0f) << "a breve rest has no dotted form";
}

TEST(ECRestTest, TickLengthsFindTheirTypeAtTheFixedRate)
{
    for (int type = 1; type <= 22; ++type)
        EXPECT_EQ(ECRest::GetRestTypeByTickDuration(ExpectedRestLength(type) * 256.0f), type) << type;
    for (float ticks : {0.0f, 100.0f, 255.0f, 257.0f, -256.0f, 1e30f})
        EXPECT_EQ(ECRest::GetRestTypeByTickDuration(ticks), 0) << ticks;
}

TEST(ECRestTest, TypeAndSplitMarkCopyButStayOutOfTheRecord)
{
    ECRest *rest = Held<ECRest>();
    rest->SetRestType(14);
    rest->SetAfterSplit(1);
    ECRest *copy = Held<ECRest>();
    copy->Copy(rest);
    EXPECT_EQ(copy->GetRestType(), 14);
    EXPECT_EQ(copy->IsAfterSplit(), 1);
    EXPECT_TRUE(*copy == *rest);
    copy->SetRestType(11);
    EXPECT_FALSE(*copy == *rest);

    ECRest *loaded = LoadObject<ECRest>(Store([&](CArchive &ar) { ar << rest; }));
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->GetRestType(), 0);
    EXPECT_EQ(loaded->IsAfterSplit(), 0);
    for (ECRest *r : {rest, copy, loaded})
        r->Unref(1);
}

TEST(ECNoteTest, CopyTakesThePlaceButNotTheLengthOrPitch)
{
    ECNote *src = NoteWith(2.0f, 0.5f, 3, 7, 0x43);
    src->SetMidiPitch(64);
    src->SetRepeatTie(1);
    ECNote *dst = Held<ECNote>();
    EXPECT_EQ(*dst->GetTime(), MCTime(0.0f)) << "a new note stands at zero, not at no time";
    EXPECT_EQ(dst->GetDuration()->GetSeconds(), 1.0f);
    EXPECT_EQ(dst->GetString(), -1);
    EXPECT_EQ(dst->GetFret(), -1);
    EXPECT_EQ(dst->GetPrevTrack(), -1);
    EXPECT_EQ(dst->GetPrevTime(), -1.0f);

    dst->Copy(src);
    EXPECT_EQ(dst->GetString(), 3);
    EXPECT_EQ(dst->GetFret(), 7);
    EXPECT_EQ(dst->GetNotationByte(), 0x43);
    EXPECT_EQ(dst->GetDuration()->GetSeconds(), 1.0f);
    EXPECT_EQ(dst->GetMidiPitch(), 0);
    EXPECT_EQ(dst->GetRepeatTie(), 0);

    // Equality: time, duration, string and fret; the notation byte does not count.
    ECNote *same = NoteWith(2.0f, 0.5f, 3, 7, 0x00);
    EXPECT_TRUE(*same == *src);
    const std::function<void(ECNote *)> changes[] = {
        [](ECNote *n) { MCTime t(2.5f); n->SetTime(&t); }, [](ECNote *n) { MCTime d(1.0f); n->SetDuration(&d); },
        [](ECNote *n) { n->SetString(4); }, [](ECNote *n) { n->SetFret(8); }};
    for (const auto &change : changes)
    {
        ECNote *other = NoteWith(2.0f, 0.5f, 3, 7, 0x43);
        change(other);
        EXPECT_FALSE(*other == *src);
        other->Unref(1);
    }
    for (ECNote *n : {src, dst, same})
        n->Unref(1);
}

TEST(ECNoteTest, RecordReadsEachLayoutAndSavingMarksThePreviousState)
{
    ECNote *note = NoteWith(3.0f, 0.75f, 2, 5, 0x21);
    note->SetTrack(4);
    const Bytes now = Store([&](CArchive &ar) { ar << note; });
    EXPECT_EQ(note->GetPrevTrack(), 4);
    EXPECT_EQ(note->GetPrevTime(), 3.0f);
    EXPECT_EQ(note->GetPrevDuration(), 0.75f);
    // Fret before string, then the notation byte, at the end of the record.
    ASSERT_GE(now.size(), 9u);
    const Bytes tail(now.end() - 9, now.end());
    EXPECT_EQ(tail, (Bytes{5, 0, 0, 0, 2, 0, 0, 0, 0x21}));

    struct Layout
    {
        int version;
        int string, fret;
        BYTE notation;
    };
    const Layout layouts[] = {{ArchiveVersionCurrent, 2, 5, 0x21},
                              {ArchiveVersionNotationByte, 2, 5, 0x21},
                              {ArchiveVersionNotationByte - 1, 2, 5, 0},
                              {ArchiveVersionNoteTablature, 2, 5, 0},
                              {ArchiveVersionNoteTablature - 1, -1, -1, 0},
                              {ArchiveVersionTimeMode, -1, -1, 0}};
    for (const Layout &l : layouts)
    {
        SCOPED_TRACE(l.version);
        const Bytes bytes = NoteBytesAt(note, l.version);
        DocumentVersion version(l.version);
        ECNote *loaded = nullptr;
        EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { ar >> loaded; }), bytes.size()) << "every byte read";
        ASSERT_NE(loaded, nullptr);
        loaded->Ref();
        EXPECT_EQ(loaded->GetTime()->GetSeconds(), 3.0f);
        EXPECT_EQ(loaded->GetDuration()->GetSeconds(), 0.75f);
        EXPECT_EQ(loaded->GetString(), l.string);
        EXPECT_EQ(loaded->GetFret(), l.fret);
        EXPECT_EQ(loaded->GetNotationByte(), l.notation);
        EXPECT_EQ(loaded->GetPrevTrack(), -1) << "loading marks nothing";
        loaded->Unref(1);
    }
    note->Unref(1);
}

TEST(ECNoteTest, OldGraceNotesCarryASecondDurationThatALoadReadsPast)
{
    ECGraceNote *grace = Held<ECGraceNote>();
    MCTime d(0.125f);
    grace->SetDuration(&d);
    for (int version : {ArchiveVersionPackedMarks - 1, int(ArchiveVersionPackedMarks)})
    {
        SCOPED_TRACE(version);
        Bytes bytes = NoteBytesAt(grace, version);
        if (version < ArchiveVersionPackedMarks)
        {
            const Bytes extra = Store([](CArchive &ar) { MCTime(9.0f).Serialize(ar, -1); });
            bytes.insert(bytes.end(), extra.begin(), extra.end());
        }
        DocumentVersion scope(version);
        ECGraceNote *loaded = nullptr;
        EXPECT_EQ(LoadBytes(bytes, [&](CArchive &ar) { ar >> loaded; }), bytes.size());
        ASSERT_NE(loaded, nullptr);
        EXPECT_EQ(loaded->GetDuration()->GetSeconds(), 0.125f) << "the first duration is the note's";
        loaded->Ref();
        loaded->Unref(1);
    }
    grace->Unref(1);
}

TEST(ECNoteTest, DotTieAndChordAreFoundAmongTheRelatives)
{
    ECNote *note = Held<ECNote>();
    EXPECT_FALSE(note->HasDot() || note->HasTie() || note->HasDotOrTie() || note->IsInChord());

    ECDot *dot = new ECDot;
    note->AddChild(dot, 0);
    EXPECT_TRUE(note->HasDot());
    EXPECT_TRUE(note->HasDotOrTie());
    EXPECT_FALSE(note->HasTie());
    note->RemoveChildren(1);

    ECTie *tie = Held<ECTie>();
    tie->AddChild(note, 0);
    EXPECT_TRUE(note->HasTie());
    EXPECT_TRUE(note->HasDotOrTie());
    EXPECT_FALSE(note->IsInChord());
    tie->RemoveChildren(0);
    tie->Unref(1);
    EXPECT_FALSE(note->HasTie());

    ECRest *rest = Held<ECRest>();
    EXPECT_FALSE(rest->HasDot());
    rest->AddChild(new ECDot, 0);
    EXPECT_TRUE(rest->HasDot());
    rest->RemoveChildren(1);
    rest->Unref(1);
    note->Unref(1);
}

TEST(ECNoteTest, HarmonicaBytesKeepTheirButtonWhenTheBellowsTurn)
{
    ECNote *note = Held<ECNote>();
    note->SetNotationByte(0x43); // compression, style 0, degree 3
    EXPECT_EQ(note->GetHarmonicaMidiPitch(), MCHarmonicaConverter::GetInstance().GetDescantMidiPitch(0x43));
    note->SetHarmonicaCompression(0);
    EXPECT_EQ(note->GetNotationByte(), 0x03) << "the same button on release";
    note->SetHarmonicaCompression(1);
    EXPECT_EQ(note->GetNotationByte(), 0x43);
    note->SetNotationByte(0xC3);
    EXPECT_EQ(note->GetHarmonicaMidiPitch(), 0) << "a byte with its top bit set names no descant button";
    note->Unref(1);
}
