// Random adds and removes on a real score (notes, chords, rests, slurs,
// tuplets and accents), with undo and redo at random points. After every
// step the tree must be exactly the one the history says: after an edit, the
// new shape is recorded; after an undo, the shape before it; after a redo,
// the shape after it (the same objects, parents, children and order). At the
// end, once the history and the document are gone, nothing but the test
// holds any event.
#include "commands/AddRemoveSupport.h"
#include "commands/CommandTestSupport.h"

#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCAddNoteModifier.h>
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECRest.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECStaff.h>

#include <map>
#include <random>
#include <vector>

namespace
{
// Whether the tree now is the recorded one: every recorded event has its
// recorded lists, and an event made since then stands outside the tree.
::testing::AssertionResult Same(const Shape &now, const Shape &recorded)
{
    for (const auto &[event, lists] : now)
    {
        auto it = recorded.find(event);
        const auto &want = it != recorded.end() ? it->second : std::make_pair(std::vector<ECBase *>{}, std::vector<ECBase *>{});
        if (lists != want)
            return ::testing::AssertionFailure()
                   << event->GetRuntimeClass()->m_lpszClassName << " " << event << " has other children or parents";
    }
    return ::testing::AssertionSuccess();
}

class AddRemoveRandom : public CommandTest
{
protected:
    template <class T>
    T *Make(float time)
    {
        T *event = new T;
        MCTime at(time);
        event->SetTime(&at);
        event->Ref(); // the test keeps every event it made, to compare
        m_events.push_back(event);
        return event;
    }

    Shape ShapeNow() const
    {
        Shape shape;
        for (ECBase *e : m_events)
            shape[e] = {Elements(e->GetChildren()), Elements(e->GetParents())};
        for (ECMeasure *m : m_measures)
            shape[m] = {Elements(m->GetChildren()), Elements(m->GetParents())};
        shape[m_staff] = {Elements(m_staff->GetChildren()), {}};
        return shape;
    }

    // Live events of an id, in the tree or not.
    std::vector<ECBase *> OfId(int id) const
    {
        std::vector<ECBase *> out;
        for (ECBase *e : m_events)
            if (e->GetEventId() == id && !e->GetParents()->IsEmpty())
                out.push_back(e);
        return out;
    }

    bool Apply(CCBase *command)
    {
        command->SetSynchronous(1);
        CString name(L"edit");
        MCCommandMgr::BeginUndo(m_doc, name);
        const int applied = command->Apply(m_doc);
        MCCommandMgr::EndUndo(m_doc);
        return applied != 0;
    }

    void Run(unsigned seed);

    std::vector<ECBase *> m_events;
    std::vector<ECMeasure *> m_measures;
    ECStaff *m_staff = nullptr;
};
} // namespace

void AddRemoveRandom::Run(unsigned seed)
{
    m_staff = static_cast<ECStaff *>(CCAddTrack::AddNow(m_doc, new ECStaff, -1));
    ASSERT_NE(m_staff, nullptr);
    ECConductor *conductor = m_doc->GetConductor();
    MCTime end(15.0f);
    ASSERT_NE(conductor->GetConductorStaff()->GetConductorMeasureAtTime(end, 1, 1), nullptr);
    for (float bar = 0.0f; bar < 16.0f; bar += 4.0f)
        m_measures.push_back(conductor->GetMeasure(1, MCTime(bar), 0, 1));

    std::mt19937 rng(seed);
    FCMidi none = FCMidi::MidiNull();
    std::vector<Shape> history{ShapeNow()};
    size_t position = 0; // the shape the tree has now
    auto beat = [&] { return static_cast<float>(rng() % 16) + static_cast<float>(rng() % 2) * 0.5f; };
    auto measureOf = [&](float time) { return m_measures[static_cast<size_t>(time / 4.0f)]; };
    auto pick = [&](const std::vector<ECBase *> &from) { return from.empty() ? nullptr : from[rng() % from.size()]; };

    for (int step = 0; step < 1000; ++step)
    {
        SCOPED_TRACE(step);
        const unsigned action = rng() % 10;
        if (action == 8 && position > 0)
        {
            ASSERT_EQ(m_doc->Undo(1), 1);
            --position;
            ASSERT_TRUE(Same(ShapeNow(), history[position])) << "undo";
            continue;
        }
        if (action == 9 && position + 1 < history.size())
        {
            ASSERT_EQ(m_doc->Redo(1), 1);
            ++position;
            ASSERT_TRUE(Same(ShapeNow(), history[position])) << "redo";
            continue;
        }
        CCBase *command = nullptr;
        const float t = beat();
        switch (action)
        {
        case 0:
        case 1:
        {
            auto *note = Make<ECNote>(t);
            command = new CCAdd(note, measureOf(t), none);
            break;
        }
        case 2:
        {
            auto *chord = Make<ECChord>(t);
            auto *add = new CCAdd(chord, measureOf(t), none);
            for (int i = 0; i < 2; ++i)
            {
                auto *note = Make<ECNote>(t);
                add->Add(note, measureOf(t), none);
                add->Add(note, chord, none);
            }
            command = add;
            break;
        }
        case 3:
        {
            auto *rest = Make<ECRest>(t);
            command = new CCAdd(rest, measureOf(t), none);
            break;
        }
        case 4:
        {
            std::vector<ECBase *> notes = OfId(EVENT_ID_NOTE);
            if (notes.size() < 2)
                continue;
            // An add takes its children out of the tree altogether when it
            // is undone, so a slur over notes that are there already is
            // built with them and added alone.
            auto *slur = Make<ECSlur>(t);
            slur->AddChild(pick(notes), 1);
            slur->AddChild(pick(notes), 1);
            command = new CCAdd(slur, m_staff, none);
            break;
        }
        case 5:
        {
            const float at = static_cast<float>(rng() % 16);
            auto *tuplet = Make<ECTuplet>(at);
            auto *add = new CCAdd(tuplet, measureOf(at), none);
            for (int i = 0; i < 3; ++i)
            {
                auto *note = Make<ECNote>(at + i / 3.0f);
                add->Add(note, measureOf(at), none);
                add->Add(note, tuplet, none);
            }
            command = add;
            break;
        }
        case 6:
        {
            std::vector<ECBase *> targets = OfId(EVENT_ID_NOTE);
            for (ECBase *chord : OfId(EVENT_ID_CHORD))
                targets.push_back(chord);
            ECBase *target = pick(targets);
            if (!target)
                continue;
            auto *accent = new ECAccent; // copied onto a chord's notes and released
            accent->SetAccentType(static_cast<BYTE>(rng() % 0x50));
            if (target->GetEventId() == EVENT_ID_NOTE)
            {
                accent->Ref();
                m_events.push_back(accent);
            }
            command = new CCAddNoteModifier(accent, target);
            break;
        }
        default:
        {
            std::vector<ECBase *> live;
            for (int id : {EVENT_ID_NOTE, EVENT_ID_CHORD, EVENT_ID_REST, EVENT_ID_SLUR, EVENT_ID_TUPLET, EVENT_ID_ACCENT})
                for (ECBase *e : OfId(id))
                    live.push_back(e);
            if (live.empty())
                continue;
            auto *remove = new CCRemove;
            for (int n = 1 + static_cast<int>(rng() % 3); n > 0; --n)
                remove->Remove(pick(live));
            command = remove;
            break;
        }
        }
        command->Ref();
        ASSERT_TRUE(Apply(command));
        // A chord's accents are made by the command: keep them too.
        if (auto *modifier = dynamic_cast<CCAddNoteModifier *>(command))
            for (POSITION pos = modifier->GetAddList().GetHeadPosition(); pos;)
            {
                ECBase *child = modifier->GetAddList().GetNext(pos)->GetChild();
                if (std::find(m_events.begin(), m_events.end(), child) == m_events.end())
                {
                    child->Ref();
                    m_events.push_back(child);
                }
            }
        command->Unref(1);
        history.resize(position + 1);
        history.push_back(ShapeNow());
        ++position;
    }

    // Nothing but the test holds an event once the history and the
    // document are gone.
    m_doc->ClearUndo();
    MCCommandMgr::OnIdle();
    m_doc->RemoveChildren(1);
    for (ECBase *e : m_events)
    {
        e->RemoveChildren(0);
        e->RemoveFromParents();
    }
    for (ECBase *e : m_events)
        EXPECT_EQ(e->GetRefCount(), 1) << e->GetRuntimeClass()->m_lpszClassName;
    for (ECBase *e : m_events)
        e->Unref(1);
}

TEST_F(AddRemoveRandom, EveryUndoAndRedoGivesBackTheRecordedTreeSeed1)
{
    Run(1);
}

TEST_F(AddRemoveRandom, EveryUndoAndRedoGivesBackTheRecordedTreeSeed2)
{
    Run(2);
}

TEST_F(AddRemoveRandom, EveryUndoAndRedoGivesBackTheRecordedTreeSeed3)
{
    Run(3);
}
