// ConfigureRemove: each kind of event goes to its command, is passed over or
// is kept with a message; a selection collapses to its topmost events; and
// the commands it makes undo to the exact tree.
#include "commands/AddRemoveSupport.h"
#include "events/structure/ScoreTestSupport.h"

#include <scoremodel/commands/CCEdit.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/commands/ConfigureRemove.h>
#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MessageBox.h>

#include <string>
#include <vector>

namespace
{
std::vector<std::pair<CString, unsigned>> g_shown;

int Record(const CString &text, unsigned type)
{
    g_shown.emplace_back(text, type);
    return IDOK;
}

using Commands = CTypedPtrList<MCCommandList, CCBase *>;

std::vector<ECBase *> Removed(CCBase *command)
{
    ECBase::EventList events;
    if (auto *remove = dynamic_cast<CCRemove *>(command))
        remove->GetRemoveEvents(events);
    return Elements(&events);
}

class ConfigureRemoveTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_shown.clear();
        MCSetMessageBoxHandler(&Record);
    }
    void TearDown() override { MCSetMessageBoxHandler(nullptr); }

    // An event held by the test's list.
    ECBase *Make(int id, float time = 4.0f, int voice = 0)
    {
        ECBase *event = CreateEventW(id);
        MCTime t(time);
        event->SetTime(&t);
        event->SetVoice(voice);
        m_held.AddTail(event);
        return event;
    }

    ECBase::EventList m_held;
};

constexpr int kKept = -1;

TEST_F(ConfigureRemoveTest, EachKindGoesWhereTheTableSays)
{
    const CString tempoText = MCLanguageManager::GetText(CString(L"DataModel"), CString(L"IDS_MSG_REMOVE_FIRST_TEMPO"));
    const CString programText =
        MCLanguageManager::GetText(CString(L"DataModel"), CString(L"IDS_MSG_REMOVE_FIRST_PROGRAMCHANGE"));
    EXPECT_TRUE(tempoText == CString(L"The tempo at the beginning of the piece cannot be removed."));
    EXPECT_TRUE(programText == CString(L"The program change at the beginning of a track cannot be removed."));
    const struct
    {
        int id;
        float time;
        int voice;
        int command; // the id of the command that takes the event, or kKept
        const CString *message;
    } rows[] = {
        {EVENT_ID_BARLINE, 4, 0, kKept, nullptr},
        {EVENT_ID_BEAM, 4, 0, kKept, nullptr},
        {EVENT_ID_CONDUCTOR_MEASURE, 4, 0, kKept, nullptr},
        {EVENT_ID_CONDUCTOR_STAFF, 4, 0, kKept, nullptr},
        {EVENT_ID_DOT, 4, 0, kKept, nullptr},
        {EVENT_ID_MEASURE, 4, 0, kKept, nullptr},
        {EVENT_ID_PERFORMANCE, 4, 0, kKept, nullptr},
        {EVENT_ID_STAFF, 4, 0, kKept, nullptr},
        {EVENT_ID_CLEF, 0, 0, kKept, nullptr},
        {EVENT_ID_CLEF, 4, 0, COMMAND_ID_REMOVE_CLEF, nullptr},
        {EVENT_ID_KEY, 0, 0, kKept, nullptr},
        {EVENT_ID_KEY, 4, 0, COMMAND_ID_REMOVE_KEY, nullptr},
        {EVENT_ID_METER, 0, 0, kKept, nullptr},
        {EVENT_ID_METER, 4, 0, COMMAND_ID_REMOVE_METER, nullptr},
        {EVENT_ID_DYNAMIC, 0, 0, COMMAND_ID_REMOVE_ENV_POINT, nullptr},
        {EVENT_ID_PEDAL, 4, 0, COMMAND_ID_REMOVE_ENV_POINT, nullptr},
        {EVENT_ID_TRANSPOSE, 4, 0, COMMAND_ID_REMOVE_ENV_POINT, nullptr},
        {EVENT_ID_COMPRESS, 4, 0, COMMAND_ID_REMOVE_ENV_POINT, nullptr},
        {EVENT_ID_TEMPO, 0, 0, kKept, &tempoText},
        {EVENT_ID_TEMPO, 4, 0, COMMAND_ID_REMOVE_ENV_POINT, nullptr},
        {EVENT_ID_PROGRAM_CHANGE, 0, 0, kKept, &programText},
        {EVENT_ID_PROGRAM_CHANGE, 0, 1, COMMAND_ID_REMOVE, nullptr},
        {EVENT_ID_PROGRAM_CHANGE, 4, 0, COMMAND_ID_REMOVE, nullptr},
        {EVENT_ID_TEXT, 4, 0, COMMAND_ID_REMOVE, nullptr},
        {EVENT_ID_NOTE, 0, 0, COMMAND_ID_REMOVE, nullptr},
        {EVENT_ID_CHORD, 4, 0, COMMAND_ID_REMOVE, nullptr},
    };
    for (const auto &r : rows)
    {
        SCOPED_TRACE(::testing::Message() << "event " << r.id << " at " << r.time << " voice " << r.voice);
        g_shown.clear();
        ECBase::EventList selection;
        ECBase *event = Make(r.id, r.time, r.voice);
        selection.AddTail(event);
        Commands commands;
        EXPECT_EQ(ConfigureRemove(&selection, commands), r.command == kKept ? 0 : 1);
        if (r.command == kKept)
            EXPECT_TRUE(commands.IsEmpty());
        else
        {
            ASSERT_EQ(commands.GetCount(), 1);
            EXPECT_EQ(commands.GetHead()->GetCommandId(), r.command);
            EXPECT_EQ(Removed(commands.GetHead()), std::vector<ECBase *>{event});
        }
        ASSERT_EQ(g_shown.size(), r.message ? 1u : 0u);
        if (r.message)
        {
            EXPECT_TRUE(g_shown[0].first == *r.message);
            EXPECT_EQ(g_shown[0].second, MB_OK | MB_ICONINFORMATION);
        }
    }
}

TEST_F(ConfigureRemoveTest, ATextOfType3IsEmptiedNotRemoved)
{
    auto *text = static_cast<ECText *>(Make(EVENT_ID_TEXT));
    text->SetTextType(3);
    text->SetText(CString(L"words"));
    auto *other = static_cast<ECText *>(Make(EVENT_ID_TEXT));
    other->SetTextType(3);
    ECBase::EventList selection;
    selection.AddTail(text);
    selection.AddTail(other);
    Commands commands;
    ASSERT_EQ(ConfigureRemove(&selection, commands), 1);
    ASSERT_EQ(commands.GetCount(), 1) << "one edit for all";
    auto *edit = dynamic_cast<CCEdit *>(commands.GetHead());
    ASSERT_NE(edit, nullptr);
    EXPECT_EQ(edit->GetEditCount(), 2);
    auto *copy = static_cast<ECText *>(edit->GetEditCopy(text));
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(copy->GetText().IsEmpty());
    EXPECT_EQ(copy->GetTextType(), 3);
    EXPECT_TRUE(text->GetText() == CString(L"words")) << "only the command changes the event";
}

TEST_F(ConfigureRemoveTest, SharedAndOwnCommandsAndTheCollapse)
{
    Commands commands;
    EXPECT_EQ(ConfigureRemove(nullptr, commands), 0);
    ECBase::EventList selection;
    EXPECT_EQ(ConfigureRemove(&selection, commands), 0);

    // A note selected with its own chord goes with the chord.
    ECBase *chord = Make(EVENT_ID_CHORD);
    ECBase *member = Make(EVENT_ID_NOTE);
    chord->AddChild(member, 1);
    ECBase *loose = Make(EVENT_ID_NOTE);
    ECBase *dynamics[] = {Make(EVENT_ID_DYNAMIC), Make(EVENT_ID_DYNAMIC, 8.0f)};
    for (ECBase *e : {member, dynamics[0], chord, loose, dynamics[1]})
        selection.AddTail(e);
    // A shared remove already in the list is the one that is used.
    auto *shared = new CCRemove;
    ECBase *earlier = Make(EVENT_ID_NOTE, 1.0f);
    shared->Remove(earlier);
    commands.AddTail(shared);
    ASSERT_EQ(ConfigureRemove(&selection, commands), 1);
    ASSERT_EQ(commands.GetCount(), 3);
    EXPECT_EQ(commands.GetHead(), shared);
    EXPECT_EQ(Removed(shared), (std::vector<ECBase *>{earlier, chord, loose}));
    for (int i = 1; i < 3; ++i)
    {
        CCBase *own = commands.GetAt(commands.FindIndex(i));
        EXPECT_EQ(own->GetCommandId(), COMMAND_ID_REMOVE_ENV_POINT);
        EXPECT_EQ(Removed(own), std::vector<ECBase *>{dynamics[i - 1]});
    }
    chord->RemoveChildren(0);
}

// On a real score: the configured commands remove what they should and
// undo to the exact tree.
class ConfigureRemoveScore : public ScoreTest
{
};

TEST_F(ConfigureRemoveScore, TheCommandsUndoToTheExactTree)
{
    MCSetMessageBoxHandler(&Record);
    g_shown.clear();
    Build(1, 2);
    ECStaff *staff = m_score->GetStaff(1, 0);
    ECMeasure *measures[] = {m_score->GetMeasure(1, MCTime(0.0f), 0, 0), m_score->GetMeasure(1, MCTime(4.0f), 0, 0)};
    ECBase::EventList selection;
    std::vector<ECBase *> tree = {staff, measures[0], measures[1]};
    for (auto [id, time] : {std::pair{EVENT_ID_CLEF, 0.0f}, {EVENT_ID_CLEF, 4.0f}, {EVENT_ID_KEY, 4.0f},
                            {EVENT_ID_NOTE, 1.0f}, {EVENT_ID_NOTE, 5.0f}})
    {
        ECBase *event = CreateEventW(id);
        MCTime t(time);
        event->SetTime(&t);
        event->SetTrack(1);
        measures[time < 4.0f ? 0 : 1]->AddChild(event, 1);
        selection.AddTail(event);
        tree.push_back(event);
    }
    Commands commands;
    ASSERT_EQ(ConfigureRemove(&selection, commands), 1);
    ASSERT_EQ(commands.GetCount(), 3) << "the notes together, the clef and the key on their own";
    commands.SetSynchronous(1);
    for (ECBase *e : tree)
        e->Ref();
    const Shape before = ShapeOf(tree);
    CString name(L"remove");
    MCCommandMgr::BeginUndo(m_doc, name);
    ASSERT_EQ(commands.Apply(m_doc), 1);
    MCCommandMgr::EndUndo(m_doc);
    const Shape after = ShapeOf(tree);
    EXPECT_EQ(Elements(measures[0]->GetChildren()), std::vector<ECBase *>{tree[3]}) << "the clef at zero stays";
    EXPECT_TRUE(Elements(measures[1]->GetChildren()).empty());
    MCTime five(5.0f);
    EXPECT_EQ(static_cast<ECBase *>(staff->GetClefAtTime(five, 0)), tree[3]);
    EXPECT_EQ(staff->GetKeyAtTime(five, 0), nullptr);
    ASSERT_EQ(m_doc->Undo(1), 1);
    EXPECT_EQ(ShapeOf(tree), before);
    EXPECT_EQ(static_cast<ECBase *>(staff->GetClefAtTime(five, 0)), tree[4]);
    EXPECT_EQ(static_cast<ECBase *>(staff->GetKeyAtTime(five, 0)), tree[5]);
    ASSERT_EQ(m_doc->Redo(1), 1);
    EXPECT_EQ(ShapeOf(tree), after);
    for (ECBase *e : tree)
        e->Unref(1);
    EXPECT_TRUE(g_shown.empty());
    MCSetMessageBoxHandler(nullptr);
}
TEST_F(ConfigureRemoveScore, TheFirstTempoStaysWithAMessageAndTheOthersGoOnTheirOwn)
{
    MCSetMessageBoxHandler(&Record);
    g_shown.clear();
    ECTempoEnv *map = m_score->GetTempoEnv();
    ASSERT_NE(map, nullptr);
    ECBase::EventList selection;
    std::vector<ECBase *> tree = {map};
    for (auto [beat, bpm] : {std::pair{0.0f, 60.0f}, {4.0f, 120.0f}, {8.0f, 60.0f}})
    {
        auto *tempo = new ECTempo(1, MCTime::TimeZero());
        MCTime at(beat);
        tempo->SetTime(&at);
        tempo->SetTempo(bpm, 1.0f);
        tempo->SetStyle(0);
        ASSERT_EQ(map->AddChild(tempo, 1), 1);
        selection.AddTail(tempo);
        tree.push_back(tempo);
    }
    auto *last = static_cast<ECTempo *>(tree[3]);
    Commands commands;
    ASSERT_EQ(ConfigureRemove(&selection, commands), 1);
    EXPECT_EQ(g_shown.size(), 1u);
    ASSERT_EQ(commands.GetCount(), 2);
    commands.SetSynchronous(1);
    RoundTrip(m_doc, commands.GetHead(), tree, [&](bool applied) {
        EXPECT_FLOAT_EQ(last->GetClockTime().GetSeconds(), applied ? 8.0f : 6.0f);
    });
    EXPECT_EQ(Elements(map->GetChildren()), (std::vector<ECBase *>{tree[1], tree[2], tree[3]}));
    MCSetMessageBoxHandler(nullptr);
}
} // namespace
