// A command that writes down what the manager does with it, and a document
// that writes down what it is told.
#pragma once

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/state/SCCommand.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Process adds its own event to the document, Undo takes it out again; each
// call is logged as "<phase letter><name>" (P, R, F, A, U). It refuses the
// phase named by `refuse` (0, 1, 2; -1 never).
class TestCommand : public CCBase
{
public:
    static inline int s_live = 0;

    TestCommand(std::vector<std::string> *log, std::string name, int refuse = -1)
        : m_log(log), m_name(std::move(name)), m_refuse(refuse)
    {
        ++s_live;
        m_event = CreateEventW(EVENT_ID_WITH_TIME);
        m_event->Ref();
    }

    int Prepare() override
    {
        Log("P");
        if (!CCBase::Prepare())
            return 0;
        return m_refuse == 0 ? 0 : 1;
    }
    int Process() override
    {
        Log("R");
        m_thread = GetCurrentThreadId();
        if (m_refuse == 1)
            return 0;
        GetTarget()->AddChild(m_event, 0);
        return CCBase::Process();
    }
    int Finish() override
    {
        Log("F");
        return m_refuse == 2 ? 0 : 1;
    }
    void Abort() override { Log("A"); }
    void Undo() override
    {
        Log("U");
        GetTarget()->RemoveChild(m_event, 0);
    }

    ECBase *GetEvent() const { return m_event; }
    DWORD GetThread() const { return m_thread; }
    void SetRefuse(int phase) { m_refuse = phase; }

protected:
    ~TestCommand() override
    {
        --s_live;
        m_event->Unref(1);
    }

private:
    void Log(const char *phase)
    {
        if (m_log)
            m_log->push_back(phase + m_name);
    }

    std::vector<std::string> *m_log;
    std::string m_name;
    int m_refuse;
    ECBase *m_event;
    DWORD m_thread = 0;
};

// A state record as a handler saw it.
struct SeenState
{
    unsigned code;
    std::vector<CCBase *> commands;
};

// A document with a conductor, held by the fixture, whose state handler logs
// the codes and commands of every record. Every test ends with the history
// cleared, the trash emptied and no command left alive.
class CommandTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_levels = MCCommandMgr::GetUndoLevels();
        m_doc = new ECPerformance;
        m_doc->Ref();
        m_doc->AddChild(new ECConductor, 0);
        m_doc->AddStateHandler(&CommandTest::OnState, this);
    }

    void TearDown() override
    {
        m_doc->SetCommandRate(0);
        for (TestCommand *cmd : m_held)
            cmd->Unref(1);
        m_doc->RemoveChildren(1);
        m_doc->Unref(1);
        MCCommandMgr::OnIdle();
        MCCommandMgr::SetUndoLevels(m_levels);
        EXPECT_EQ(TestCommand::s_live, 0) << "a command outlived its document";
    }

    static int OnState(ECBase *, int, void *state, void *user)
    {
        auto *self = static_cast<CommandTest *>(user);
        auto *record = static_cast<SCBase *>(state);
        SeenState seen{record->GetCode(), {}};
        if (auto *commands = dynamic_cast<SCCommand *>(record))
            for (POSITION pos = commands->GetCommands().GetHeadPosition(); pos;)
                seen.commands.push_back(commands->GetCommands().GetNext(pos));
        self->m_states.push_back(seen);
        return 0;
    }

    // A command the fixture holds until the end of the test.
    TestCommand *Make(const std::string &name, int refuse = -1, int synchronous = 1)
    {
        auto *cmd = new TestCommand(&m_log, name, refuse);
        cmd->Ref();
        cmd->SetSynchronous(synchronous);
        m_held.push_back(cmd);
        return cmd;
    }

    // A synchronous command applied at once.
    TestCommand *Run(const std::string &name, int refuse = -1)
    {
        TestCommand *cmd = Make(name, refuse);
        cmd->Apply(m_doc);
        return cmd;
    }

    // One bracket named `name` around one synchronous command.
    void Step(const std::string &name)
    {
        CString undoName(name.c_str());
        MCCommandMgr::BeginUndo(m_doc, undoName);
        Run(name);
        MCCommandMgr::EndUndo(m_doc);
    }

    std::vector<unsigned> Codes() const
    {
        std::vector<unsigned> codes;
        for (const SeenState &s : m_states)
            codes.push_back(s.code);
        return codes;
    }

    int ChildCount() const { return m_doc->GetChildren()->GetCount(); }
    MCCommandMgr &Mgr() { return *m_doc->GetCommandMgr(); }

    ECPerformance *m_doc = nullptr;
    std::vector<std::string> m_log;
    std::vector<TestCommand *> m_held;
    std::vector<SeenState> m_states;
    int m_levels = 0;
};
