// Adds and removes under undo: each undo gives back exactly the tree before
// (the same objects, parents, children and order), each redo the tree after,
// also where the removal dissolved a chord or emptied a slur or tuplet.
#include "commands/AddRemoveSupport.h"
#include "commands/CommandTestSupport.h"

#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCAddNoteModifier.h>
#include <scoremodel/commands/CCAddTuplet.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/commands/SelectionTracks.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/structure/ECMeasure.h>

#include <vector>

namespace
{
template <class T>
T *At(float time)
{
    T *event = new T;
    MCTime t(time);
    event->SetTime(&t);
    return event;
}

// One measure with: a chord of two notes carrying an accent, a lone note, a
// slur over the lone note and the chord's first note, and a tuplet of two
// notes. Notes are children of the measure beside their chord or tuplet.
class AddRemove : public CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        m_measure = At<ECMeasure>(0.0f);
        m_measure->Ref();
        m_chord = At<ECChord>(0.0f);
        m_measure->AddChild(m_chord, 1);
        for (int i = 0; i < 2; ++i)
        {
            m_chordNotes[i] = At<ECNote>(0.0f);
            m_measure->AddChild(m_chordNotes[i], 1);
            m_chord->AddChild(m_chordNotes[i], 1);
        }
        m_accent = new ECAccent;
        m_chord->AddChild(m_accent, 0);
        m_lone = At<ECNote>(1.0f);
        m_measure->AddChild(m_lone, 1);
        m_slur = At<ECSlur>(0.0f);
        m_slur->Ref(); // a staff would hold it
        m_slur->AddChild(m_chordNotes[0], 1);
        m_slur->AddChild(m_lone, 1);
        m_tuplet = At<ECTuplet>(2.0f);
        m_measure->AddChild(m_tuplet, 1);
        for (int i = 0; i < 2; ++i)
        {
            m_tupletNotes[i] = At<ECNote>(2.0f + i / 3.0f);
            m_measure->AddChild(m_tupletNotes[i], 1);
            m_tuplet->AddChild(m_tupletNotes[i], 1);
        }
    }
    void TearDown() override
    {
        m_doc->ClearUndo();
        MCCommandMgr::OnIdle();
        m_slur->RemoveChildren(0);
        m_slur->Unref(1);
        m_measure->RemoveChildren(1);
        m_measure->Unref(1);
        CommandTest::TearDown();
    }

    std::vector<ECBase *> All() const
    {
        std::vector<ECBase *> all = {m_measure, m_chord,  m_chordNotes[0],  m_chordNotes[1], m_accent,
                                     m_lone,    m_slur,   m_tuplet,         m_tupletNotes[0], m_tupletNotes[1]};
        all.insert(all.end(), m_extra.begin(), m_extra.end());
        return all;
    }

    // Undo gives back the tree before, redo the tree after (see
    // AddRemoveSupport.h).
    void RoundTrip(CCBase *command) { ::RoundTrip(m_doc, command, All()); }

    ECMeasure *m_measure = nullptr;
    ECChord *m_chord = nullptr;
    ECNote *m_chordNotes[2] = {};
    ECAccent *m_accent = nullptr;
    ECNote *m_lone = nullptr;
    ECSlur *m_slur = nullptr;
    ECTuplet *m_tuplet = nullptr;
    ECNote *m_tupletNotes[2] = {};
    std::vector<ECBase *> m_extra;
};
} // namespace

TEST_F(AddRemove, ItemsFindTheirParentAndHoldWhatTheyName)
{
    CCRemoveItem item;
    item.SetChild(m_chordNotes[0]);
    EXPECT_EQ(item.GetParent(), m_measure) << "the measure comes first among a note's parent types";
    item.SetParent(m_chord);
    EXPECT_EQ(item.GetParent(), m_measure) << "a parent once found stays";
    const int count = m_lone->GetRefCount();
    {
        CCAddItem add;
        add.SetChild(m_lone);
        add.SetChild(m_lone);
        EXPECT_EQ(m_lone->GetRefCount(), count + 1) << "a replaced child is given back";
    }
    EXPECT_EQ(m_lone->GetRefCount(), count);

    auto *remove = new CCRemove(m_lone);
    remove->Ref();
    EXPECT_EQ(remove->Remove(m_lone), nullptr) << "listed already";
    ECBase::EventList listed;
    EXPECT_EQ(remove->GetRemoveEvents(listed), 1);
    EXPECT_EQ(Elements(&listed), (std::vector<ECBase *>{m_lone}));
    remove->Unref(1);
}

TEST_F(AddRemove, RemovingANoteOfASlurBringsItBackIntoTheSlurOnce)
{
    RoundTrip(new CCRemove(m_lone));
}

TEST_F(AddRemove, RemovingTheLastNotesOfAChordBringsTheChordBackWhole)
{
    auto *remove = new CCRemove;
    remove->Remove(m_chordNotes[0]);
    remove->Remove(m_chordNotes[1]);
    RoundTrip(remove);
}

TEST_F(AddRemove, RemovingOneNoteOfAChordKeepsTheChord)
{
    RoundTrip(new CCRemove(m_chordNotes[1]));
}

TEST_F(AddRemove, ATupletComesBackWithItsNotesBeforeTheLooseEvents)
{
    auto *remove = new CCRemove;
    remove->Remove(m_tupletNotes[0]);
    remove->Remove(m_lone);
    remove->Remove(m_tuplet);
    remove->Remove(m_tupletNotes[1]);
    RoundTrip(remove);
}

TEST_F(AddRemove, NotesThatOnlyTheirTupletHoldsComeBackWithIt)
{
    auto *tuplet = At<ECTuplet>(3.0f);
    m_measure->AddChild(tuplet, 1);
    m_extra = {tuplet, At<ECNote>(3.0f), At<ECNote>(3.5f)};
    tuplet->AddChild(m_extra[1], 1);
    tuplet->AddChild(m_extra[2], 1);
    auto *remove = new CCRemove;
    remove->Remove(m_extra[2]);
    remove->Remove(tuplet);
    RoundTrip(remove);
    RoundTrip(new CCRemove(tuplet)); // its notes go to the measure, and back
}

TEST_F(AddRemove, RemovingASlurAndAddingEventsRoundTrip)
{
    RoundTrip(new CCRemove(m_slur));
    FCMidi none = FCMidi::MidiNull();
    ECNote *note = At<ECNote>(3.0f);
    note->Ref();
    RoundTrip(new CCAdd(note, m_measure, none));
    ECSlur *slur = At<ECSlur>(0.0f);
    slur->Ref();
    slur->AddChild(note, 1);
    RoundTrip(new CCAdd(note, m_measure, none));
    slur->RemoveChildren(0);
    slur->Unref(1);
    note->Unref(1);
}

TEST_F(AddRemove, AnAccentOnAChordLandsOnEachNote)
{
    auto *accent = new ECAccent;
    accent->SetAccentType(3);
    auto *add = new CCAddNoteModifier(accent, m_chord); // frees `accent`
    add->Ref();
    ASSERT_EQ(add->GetAddList().GetCount(), 2);
    for (int i = 0; i < 2; ++i)
    {
        CCAddItem *item = add->GetAddList().GetAt(add->GetAddList().FindIndex(i));
        EXPECT_EQ(item->GetParent(), m_chordNotes[i]);
        EXPECT_EQ(static_cast<ECAccent *>(item->GetChild())->GetAccentType(), 3);
    }
    RoundTrip(add);
    add->Unref(1);

    auto *text = new ECNote;
    auto *refused = new CCAddNoteModifier(text, m_lone);
    refused->Ref();
    EXPECT_EQ(refused->GetAddList().GetCount(), 0) << "a note is no mark";
    refused->Unref(1);
    text->Unref(1);
}

TEST_F(AddRemove, AReplacedFingerGoesForGood)
{
    auto *old = new ECAccent;
    old->SetAccentType(0x5A);
    m_lone->AddChild(old, 0);
    old->Ref();
    auto *finger = new ECAccent;
    finger->SetAccentType(0x5C);
    finger->Ref();
    auto *add = new CCAddNoteModifier(finger, m_lone);
    add->SetSynchronous(1);
    CString name(L"finger");
    MCCommandMgr::BeginUndo(m_doc, name);
    add->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    EXPECT_EQ(Elements(m_lone->GetChildren()), (std::vector<ECBase *>{finger}));
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_TRUE(Elements(m_lone->GetChildren()).empty()) << "undo leaves neither finger";
    old->Unref(1);
    finger->Unref(1);
}

TEST(SelectionTracks, LowestTrackAndRelativeTracks)
{
    struct Case
    {
        std::vector<int> tracks;
        int tempoType24Track; // -1: none
        int lowest;
    };
    const Case cases[] = {{{0, 3}, -1, 3}, {{0}, -1, 0}, {{5, 2, 7}, -1, 2}, {{4}, 1, 4}, {{}, 1, 0}};
    for (const Case &c : cases)
    {
        CTypedPtrList<MCEventList, ECBase *> events;
        for (int track : c.tracks)
        {
            auto *note = new ECNote;
            note->SetTrack(track);
            events.AddTail(note);
        }
        ECTempo *tempo = nullptr;
        if (c.tempoType24Track >= 0)
        {
            tempo = new ECTempo;
            tempo->SetTempoType(24, MCTime::TimeZero());
            tempo->SetTrack(c.tempoType24Track);
            events.AddTail(tempo);
            EXPECT_EQ(IgnoreEvents(tempo), 1);
        }
        EXPECT_EQ(GetLowestTrack(&events), c.lowest);
        SetRelativeTracks(&events, 1);
        EXPECT_TRUE(!tempo || tempo->GetTrack() == c.tempoType24Track - 1) << "moved although it does not count";
    }
    EXPECT_EQ(IgnoreEvents(nullptr), 0);
    EXPECT_EQ(GetLowestTrack(nullptr), 0);
}
