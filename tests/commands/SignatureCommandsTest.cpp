// The clef, key and envelope point commands, and CCEdit: undo gives back the
// exact tree and redo the tree after, and what the staff and the envelope
// derive from their children (the clef and key cache, the clock times of the
// tempo map) is right after every step.
#include "commands/AddRemoveSupport.h"
#include "events/structure/ScoreTestSupport.h"

#include <scoremodel/commands/CCAddClef.h>
#include <scoremodel/commands/CCAddEnvPoint.h>
#include <scoremodel/commands/CCAddKey.h>
#include <scoremodel/commands/CCAddTempo.h>
#include <scoremodel/commands/CCEdit.h>
#include <scoremodel/commands/CCRemoveClef.h>
#include <scoremodel/commands/CCRemoveEnvPoint.h>
#include <scoremodel/commands/CCRemoveKey.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>

#include <functional>
#include <random>

namespace
{
// One kind of staff signature with its two commands.
struct Signature
{
    const char *name;
    int id;
    std::function<CCBase *(ECBase *)> remove;
    std::function<CCBase *(ECBase *, ECBase *)> add;
};

const Signature kSignatures[] = {
    {"clef", EVENT_ID_CLEF, [](ECBase *e) { return new CCRemoveClef(e); },
     [](ECBase *e, ECBase *parent) { return new CCAddClef(e, parent); }},
    {"key", EVENT_ID_KEY, [](ECBase *e) { return new CCRemoveKey(e); },
     [](ECBase *e, ECBase *parent) { return new CCAddKey(e, parent); }},
};

class SignatureCommands : public ScoreTest
{
protected:
    void SetUp() override
    {
        ScoreTest::SetUp();
        Build(1, 4); // bars at 0, 4, 8, 12
        m_staff = m_score->GetStaff(1, 0);
    }

    ECBase *Put(int id, float time)
    {
        ECBase *event = At(id, time);
        MCTime t(time);
        EXPECT_TRUE(m_score->GetMeasure(1, t, 0, 0)->AddChild(event, 1));
        return event;
    }
    static ECBase *At(int id, float time)
    {
        ECBase *event = CreateEventW(id);
        MCTime t(time);
        event->SetTime(&t);
        event->SetTrack(1);
        return event;
    }

    // The staff, its measures and everything in them.
    std::vector<ECBase *> Tree()
    {
        std::vector<ECBase *> all = {m_staff};
        for (ECBase *measure : Elements(m_staff->GetChildren()))
        {
            all.push_back(measure);
            for (ECBase *e : Elements(measure->GetChildren()))
                all.push_back(e);
        }
        all.insert(all.end(), m_outside.begin(), m_outside.end());
        return all;
    }

    // The signature of hand 0 in force at `time`, read from the tree: the
    // latest at or before it, the first in tree order among several at one
    // moment.
    ECBase *InForce(int id, float time)
    {
        ECBase *best = nullptr;
        MCTime t(time);
        for (ECBase *measure : Elements(m_staff->GetChildren()))
            for (ECBase *e : Elements(measure->GetChildren()))
                if (e->GetEventId() == id && ECStaff::GetCacheHand(e) == 0 && *e->GetTime() <= t &&
                    (!best || *e->GetTime() > *best->GetTime()))
                    best = e;
        return best;
    }
    ECBase *Cached(int id, float time)
    {
        MCTime t(time);
        if (id == EVENT_ID_CLEF)
            return m_staff->GetClefAtTime(t, 0);
        return m_staff->GetKeyAtTime(t, 0);
    }
    std::function<void(bool)> CacheIsRight(int id)
    {
        return [this, id](bool) {
            for (float t = 0.0f; t < 16.0f; t += 0.5f)
                EXPECT_EQ(Cached(id, t), InForce(id, t)) << "at " << t;
        };
    }

    ECStaff *m_staff = nullptr;
    std::vector<ECBase *> m_outside; // events the test adds
};

TEST_F(SignatureCommands, RemovingAndAddingKeepTheStaffCacheRight)
{
    for (const Signature &s : kSignatures)
    {
        SCOPED_TRACE(s.name);
        ECBase *first = Put(s.id, 0.0f);
        ECBase *second = Put(s.id, 4.0f);
        // Two at one moment: the first answers; once it is gone the other
        // does, and once it is back the first again. An undo that puts the
        // list back in order after the add must see to that.
        ECBase *twin = Put(s.id, 8.0f);
        Put(s.id, 8.0f);
        ASSERT_EQ(Cached(s.id, 9.0f), twin);

        RoundTrip(m_doc, s.remove(twin), Tree(), CacheIsRight(s.id));
        RoundTrip(m_doc, s.remove(second), Tree(), CacheIsRight(s.id));
        CCBase *both = s.remove(twin);
        static_cast<CCRemove *>(both)->Remove(second);
        RoundTrip(m_doc, both, Tree(), CacheIsRight(s.id));

        // Given no parent, an added one finds the measure at its time.
        ECBase *added = At(s.id, 6.0f);
        added->Ref();
        m_outside = {added};
        RoundTrip(m_doc, s.add(added, nullptr), Tree(), [&](bool applied) {
            CacheIsRight(s.id)(applied);
            EXPECT_EQ(Cached(s.id, 7.0f), applied ? added : second);
        });
        // Added at the moment of the first.
        ECBase *early = At(s.id, 0.0f);
        early->Ref();
        m_outside = {added, early};
        RoundTrip(m_doc, s.add(early, m_score->GetMeasure(1, MCTime(0.0f), 0, 0)), Tree(), CacheIsRight(s.id));
        m_outside.clear();
        early->Unref(1);
        added->Unref(1);
        EXPECT_EQ(Cached(s.id, 1.0f), first);

        for (ECBase *measure : Elements(m_staff->GetChildren()))
            measure->RemoveChildren(1);
        m_doc->ClearUndo();
    }
}

// Random adds and removes of clefs and keys with undo and redo at random
// points: after every step the tree is the one the history says (undo gives
// back exactly the tree before, redo the tree after) and both caches answer
// as the tree does.
TEST_F(SignatureCommands, RandomEditsUndosAndRedosKeepTreeAndCacheRight)
{
    std::mt19937 random(17);
    std::vector<ECBase *> pool; // every event made, kept alive to compare
    auto everything = [&] {
        std::vector<ECBase *> all = {m_staff};
        for (ECBase *measure : Elements(m_staff->GetChildren()))
            all.push_back(measure);
        all.insert(all.end(), pool.begin(), pool.end());
        return all;
    };
    // An event made after a state was recorded was loose in that state.
    auto matches = [&](const Shape &want) {
        for (const auto &[event, links] : ShapeOf(everything()))
        {
            auto it = want.find(event);
            if (it == want.end() ? !links.first.empty() || !links.second.empty() : it->second != links)
                return false;
        }
        return true;
    };
    std::vector<Shape> history = {ShapeOf(everything())};
    size_t now = 0;
    // Undo as often as add and remove together, so that steps are undone
    // right after they are made as well as long after.
    for (int step = 0; step < 600; ++step)
    {
        SCOPED_TRACE(::testing::Message() << "step " << step);
        // Out of 8: 2 add, 2 remove, 3 undo, 1 redo.
        static const int kActions[8] = {0, 0, 1, 1, 2, 2, 2, 3};
        const int action = kActions[random() % 8];
        const Signature &kind = kSignatures[random() % 2];
        if (action == 2 && now > 0)
        {
            ASSERT_EQ(m_doc->Undo(1), 1);
            --now;
        }
        else if (action == 3 && now + 1 < history.size())
        {
            ASSERT_EQ(m_doc->Redo(1), 1);
            ++now;
        }
        else
        {
            CCBase *command = nullptr;
            std::vector<ECBase *> placed;
            for (ECBase *e : pool)
                if (e->GetEventId() == kind.id && e->GetParents()->GetCount())
                    placed.push_back(e);
            if (action == 1 && !placed.empty())
                command = kind.remove(placed[random() % placed.size()]);
            else
            {
                // Whole beats over four bars: many land on a time taken.
                ECBase *event = At(kind.id, static_cast<float>(random() % 16));
                event->Ref();
                pool.push_back(event);
                command = kind.add(event, nullptr);
            }
            command->SetSynchronous(1);
            CString name(L"step");
            MCCommandMgr::BeginUndo(m_doc, name);
            command->Apply(m_doc);
            MCCommandMgr::EndUndo(m_doc);
            history.resize(now + 1);
            history.push_back(ShapeOf(everything()));
            ++now;
        }
        ASSERT_TRUE(matches(history[now]));
        CacheIsRight(EVENT_ID_CLEF)(true);
        CacheIsRight(EVENT_ID_KEY)(true);
    }
    m_doc->ClearUndo();
    for (ECBase *measure : Elements(m_staff->GetChildren()))
        measure->RemoveChildren(1);
    for (ECBase *e : pool)
        e->Unref(1);
}

TEST_F(SignatureCommands, AnEditToTheOtherHandMovesTheClefInTheCache)
{
    ECBase *first = Put(EVENT_ID_CLEF, 0.0f);
    auto *second = static_cast<ECClef *>(Put(EVENT_ID_CLEF, 4.0f));
    auto *edit = new CCEdit;
    static_cast<ECClef *>(edit->EditEvent(second))->SetHand(1);
    auto check = [&](bool applied) {
        MCTime five(5.0f);
        EXPECT_EQ(static_cast<ECBase *>(m_staff->GetClefAtTime(five, 0)), applied ? first : second);
        EXPECT_EQ(m_staff->GetClefAtTime(five, 1), applied ? second : nullptr);
        EXPECT_EQ(second->GetHand(), applied ? 1 : 0);
    };
    edit->SetSynchronous(1);
    CString name(L"hand");
    MCCommandMgr::BeginUndo(m_doc, name);
    edit->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    check(true);
    for (int round = 0; round < 2; ++round)
    {
        ASSERT_EQ(m_doc->Undo(1), 1);
        check(false);
        ASSERT_EQ(m_doc->Redo(1), 1);
        check(true);
    }
}

TEST_F(SignatureCommands, EachTakesItsOwnKindOnly)
{
    auto *note = new ECNote;
    note->Ref();
    ECBase *clef = Put(EVENT_ID_CLEF, 4.0f);
    auto *tempo = new ECTempo;
    tempo->Ref();
    FCMidi none = FCMidi::MidiNull();
    const struct
    {
        CCBase *command;
        ECBase *taken;
        int id;
    } rows[] = {
        {new CCRemoveClef, clef, COMMAND_ID_REMOVE_CLEF}, {new CCRemoveKey, nullptr, COMMAND_ID_REMOVE_KEY},
        {new CCRemoveEnvPoint, tempo, COMMAND_ID_REMOVE_ENV_POINT}, {new CCAddClef, clef, COMMAND_ID_ADD_CLEF},
        {new CCAddKey, nullptr, COMMAND_ID_ADD_KEY}, {new CCAddEnvPoint, tempo, COMMAND_ID_ADD_ENV_POINT},
        {new CCAddTempo, tempo, COMMAND_ID_ADD_TEMPO}, {new CCEdit, nullptr, COMMAND_ID_EDIT},
    };
    for (const auto &r : rows)
    {
        r.command->Ref();
        EXPECT_EQ(r.command->GetCommandId(), r.id);
        for (ECBase *e : {static_cast<ECBase *>(note), static_cast<ECBase *>(clef), static_cast<ECBase *>(tempo)})
        {
            void *item = nullptr;
            if (auto *remove = dynamic_cast<CCRemove *>(r.command))
                item = remove->Remove(e);
            else if (auto *add = dynamic_cast<CCAdd *>(r.command))
                item = add->Add(e, nullptr, none);
            else
                continue;
            EXPECT_EQ(item != nullptr, e == r.taken) << r.id << " given event " << e->GetEventId();
        }
        r.command->Unref(1);
    }
    tempo->Unref(1);
    note->Unref(1);
}

// A tempo map of 60 bpm at 0, 120 at 4 and 60 at 8: 1 s a beat, then 0.5.
class TempoCommands : public ScoreTest
{
protected:
    void SetUp() override
    {
        ScoreTest::SetUp();
        m_map = m_score->GetTempoEnv();
        ASSERT_NE(m_map, nullptr);
        for (auto [beat, bpm] : {std::pair{0.0f, 60.0f}, {4.0f, 120.0f}, {8.0f, 60.0f}})
            m_points.push_back(Tempo(beat, bpm));
        for (ECTempo *p : m_points)
            ASSERT_EQ(m_map->AddChild(p, 1), 1);
    }
    static ECTempo *Tempo(float beat, float bpm)
    {
        auto *t = new ECTempo(1, MCTime::TimeZero());
        MCTime at(beat);
        t->SetTime(&at);
        t->SetTempo(bpm, 1.0f);
        t->SetStyle(0);
        return t;
    }
    float Clock(float beat)
    {
        MCTime t(beat);
        m_map->GetClockTime(t);
        return t.GetSeconds();
    }
    std::vector<ECBase *> Tree()
    {
        std::vector<ECBase *> all = {m_map};
        for (ECBase *e : Elements(m_map->GetChildren()))
            all.push_back(e);
        all.insert(all.end(), m_outside.begin(), m_outside.end());
        return all;
    }
    // The clock times of the points at 4 and 8 and of beat 10, before and
    // after.
    std::function<void(bool)> Clocks(std::vector<float> before, std::vector<float> after)
    {
        return [=, this](bool applied) {
            const std::vector<float> &want = applied ? after : before;
            if (m_points[1]->GetParents()->GetCount())
                EXPECT_FLOAT_EQ(m_points[1]->GetClockTime().GetSeconds(), want[0]) << applied;
            EXPECT_FLOAT_EQ(m_points[2]->GetClockTime().GetSeconds(), want[1]) << applied;
            EXPECT_FLOAT_EQ(Clock(10.0f), want[2]) << applied;
        };
    }

    ECTempoEnv *m_map = nullptr;
    std::vector<ECTempo *> m_points;
    std::vector<ECBase *> m_outside;
};

TEST_F(TempoCommands, RemovingAndAddingATempoMoveTheClockTimes)
{
    RoundTrip(m_doc, new CCRemoveEnvPoint(m_points[1]), Tree(), Clocks({4, 6, 8}, {0, 8, 10}));
    ECTempo *slow = Tempo(2.0f, 30.0f);
    slow->Ref();
    m_outside = {slow};
    // 2 s to beat 2, then 2 s a beat to 4, then 0.5 s a beat.
    RoundTrip(m_doc, new CCAddTempo(slow, nullptr), Tree(), Clocks({4, 6, 8}, {6, 8, 10}));
    RoundTrip(m_doc, new CCAddEnvPoint(slow, m_map), Tree(), Clocks({4, 6, 8}, {6, 8, 10}));
    m_outside.clear();
    slow->Unref(1);
}

TEST_F(TempoCommands, AnEditGivesNewValuesAndItsUndoTheOldOnes)
{
    auto *text = new ECText;
    text->Ref();
    text->SetText(CString(L"old"));
    auto *edit = new CCEdit;
    edit->Ref();
    EXPECT_EQ(edit->EditEvent(nullptr), nullptr);
    auto *copy = static_cast<ECText *>(edit->EditEvent(text));
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy, text);
    EXPECT_TRUE(copy->GetText() == CString(L"old")) << "the copy starts with the event's values";
    EXPECT_EQ(edit->EditEvent(text), copy) << "one copy per event";
    copy->SetText(CString(L"new"));
    auto *faster = static_cast<ECTempo *>(edit->EditEvent(m_points[0]));
    faster->SetTempo(120.0f, 1.0f);
    EXPECT_EQ(edit->GetEditCount(), 2);
    EXPECT_TRUE(text->GetText() == CString(L"old")) << "nothing changes before the command runs";

    edit->SetSynchronous(1);
    CString name(L"edit");
    MCCommandMgr::BeginUndo(m_doc, name);
    edit->Apply(m_doc);
    MCCommandMgr::EndUndo(m_doc);
    const std::vector<ECBase *> points = Elements(m_map->GetChildren());
    for (int round = 0; round < 2; ++round)
    {
        EXPECT_TRUE(text->GetText() == CString(L"new"));
        EXPECT_FLOAT_EQ(m_points[1]->GetClockTime().GetSeconds(), 2.0f) << "the map follows the new tempo";
        ASSERT_EQ(m_doc->Undo(1), 1);
        EXPECT_TRUE(text->GetText() == CString(L"old"));
        EXPECT_FLOAT_EQ(m_points[1]->GetClockTime().GetSeconds(), 4.0f);
        EXPECT_EQ(Elements(m_map->GetChildren()), points) << "the same points in the same places";
        ASSERT_EQ(m_doc->Redo(1), 1);
    }
    edit->Unref(1);
    text->Unref(1);
}
} // namespace
