// A host, simulated: several documents, command rates, sent and posted edits
// in undo brackets, undo and redo, handlers that throw, remove the handlers,
// pump the loop or post follow-up edits, and documents closed at random
// points. Each choice comes from a caller's function, so the randomized test
// and the fuzz driver steer the same host.
//
// Step runs one action of the host and checks the history of every open
// document; Finish takes everything down and checks that every document,
// command and undo step is gone. Both return an empty string, or what went
// wrong. The only exception a step lets through is one the library did not
// pass on from a handler.
#pragma once

#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/commands/MCUndoItem.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/state/SCBase.h>

#include <deque>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace hostsim
{
// What a host handler throws.
struct HostError : std::runtime_error
{
    HostError() : std::runtime_error("host handler failed") {}
};

inline int g_liveCommands = 0;

class SimDocument : public ECPerformance
{
public:
    static std::set<SimDocument *> &Live()
    {
        static std::set<SimDocument *> live;
        return live;
    }
    SimDocument() { Live().insert(this); }

protected:
    ~SimDocument() override { Live().erase(this); }
};

// Adds an event of its own in Process and takes it out in Undo; refuses the
// phase named by `refuse` (-1: none).
class SimCommand : public CCBase
{
public:
    explicit SimCommand(int refuse) : m_refuse(refuse)
    {
        ++g_liveCommands;
        m_event = CreateEventW(EVENT_ID_WITH_TIME);
        m_event->Ref();
    }
    int Prepare() override { return CCBase::Prepare(); }
    int Process() override
    {
        if (m_refuse == 1)
            return 0;
        GetTarget()->AddChild(m_event, 0);
        return CCBase::Process();
    }
    int Finish() override { return m_refuse == 2 ? 0 : 1; }
    void Undo() override { GetTarget()->RemoveChild(m_event, 0); }

protected:
    ~SimCommand() override
    {
        --g_liveCommands;
        m_event->Unref(1);
    }

private:
    int m_refuse;
    ECBase *m_event;
};

class Host
{
public:
    typedef std::function<unsigned(unsigned)> Chooser; // a number below its argument

    explicit Host(Chooser choose) : m_choose(std::move(choose)) { Open(); }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    std::string Step()
    {
        switch (Choose(12))
        {
        case 0:
        case 1:
        case 2:
        case 3:
            Edit(Pick());
            break;
        case 4:
            Guarded([this] { Pick()->Undo(1); });
            break;
        case 5:
            Guarded([this] { Pick()->Redo(1); });
            break;
        case 6:
            Guarded([this] { Choose(3) ? MCMessageLoop::ProcessPending() : MCMessageLoop::RunFor(11); });
            break;
        case 7:
        {
            static const unsigned rates[] = {0, 10, 20};
            const unsigned rate = rates[Choose(3)];
            Guarded([this, rate] { Pick()->SetCommandRate(rate); });
            break;
        }
        case 8:
            Close();
            break;
        case 9:
            if (m_open.size() < 4)
                Open();
            break;
        case 10:
            Listen(Pick());
            break;
        default:
            MCCommandMgr::OnIdle();
            break;
        }
        if (m_open.empty())
            Open();
        return Check();
    }

    std::string Finish()
    {
        // Everything queued runs, with nobody listening any more.
        for (SimDocument *doc : std::vector<SimDocument *>(SimDocument::Live().begin(), SimDocument::Live().end()))
        {
            if (!SimDocument::Live().count(doc))
                continue;
            doc->RemoveCommandHandlers();
            doc->RemoveStateHandlers();
            doc->Ref(); // the rate change may deliver its last edits
            Guarded([doc] { doc->SetCommandRate(0); });
            doc->Unref(1);
        }
        while (MCMessageLoop::ProcessPending() > 0)
        {
        }
        for (SimDocument *doc : m_open)
            doc->Unref(0); // the host's reference, given back below with the rest
        m_open.clear();
        // What is left holds nothing but the references that batches merged
        // by the timer keep (they give back one for all their edits), which a
        // host gives back when it closes the document.
        for (SimDocument *doc : std::vector<SimDocument *>(SimDocument::Live().begin(), SimDocument::Live().end()))
        {
            doc->Ref();
            doc->ClearUndo();
            doc->RemoveChildren(1);
            while (doc->GetRefCount() > 1)
                doc->Unref(0);
            doc->Unref(1);
        }
        MCCommandMgr::OnIdle();
        if (!SimDocument::Live().empty())
            return "a document outlived its host";
        if (g_liveCommands != 0)
            return std::to_string(g_liveCommands) + " commands outlived their documents";
        if (MCCommandMgr::GetTrashCount() != 0)
            return "undo steps left in the trash";
        if (MCMessageLoop::GetNextTimerDelay() != -1)
            return "a batch timer is left running";
        return "";
    }

private:
    // What a handler does when called, chosen afresh each time.
    struct Listener
    {
        Host *host;
        SimDocument *doc;
    };

    unsigned Choose(unsigned n) { return n ? m_choose(n) % n : 0; }
    SimDocument *Pick() { return m_open[Choose(static_cast<unsigned>(m_open.size()))]; }

    template <class F> void Guarded(F &&run)
    {
        try
        {
            run();
        }
        catch (const HostError &)
        {
            // A handler's exception reached the host, as it must.
        }
    }

    void Open()
    {
        auto *doc = new SimDocument;
        doc->Ref();
        doc->AddChild(new ECConductor, 0);
        m_open.push_back(doc);
        Listen(doc);
    }

    void Listen(SimDocument *doc)
    {
        m_listeners.push_back({this, doc});
        Listener *listener = &m_listeners.back();
        doc->RemoveCommandHandlers();
        doc->RemoveStateHandlers();
        doc->AddCommandHandler(&Host::OnCommand, listener);
        doc->AddStateHandler(&Host::OnState, listener);
    }

    void Close()
    {
        if (m_open.empty())
            return;
        const size_t i = Choose(static_cast<unsigned>(m_open.size()));
        SimDocument *doc = m_open[i];
        m_open.erase(m_open.begin() + static_cast<long>(i));
        if (Choose(2))
        {
            doc->RemoveCommandHandlers();
            doc->RemoveStateHandlers();
        }
        doc->RemoveChildren(1);
        doc->Unref(1);
    }

    void Edit(SimDocument *doc)
    {
        static const int refusals[] = {-1, -1, -1, -1, -1, -1, 1, 2};
        const bool bracket = Choose(4) != 0;
        CString name(L"edit");
        if (bracket)
            MCCommandMgr::BeginUndo(doc, name);
        const unsigned count = 1 + Choose(3);
        for (unsigned n = 0; n < count; ++n)
        {
            if (Choose(5) == 0)
            {
                MCCommandList list;
                const int synchronous = static_cast<int>(Choose(2));
                for (int k = 0; k < 2; ++k)
                {
                    auto *cmd = new SimCommand(refusals[Choose(8)]);
                    cmd->SetSynchronous(synchronous);
                    list.AddTail(cmd);
                }
                Guarded([&] { list.Apply(doc); });
                continue;
            }
            auto *cmd = new SimCommand(refusals[Choose(8)]);
            cmd->SetSynchronous(static_cast<int>(Choose(2)));
            Guarded([&] { cmd->Apply(doc); });
        }
        if (bracket)
            Guarded([doc] { MCCommandMgr::EndUndo(doc); });
    }

    // Shared by both kinds of handler: throw, close the other views, pump
    // the loop (a modal dialog) or post a follow-up edit.
    int Act(Listener *l, bool command, int phase)
    {
        switch (Choose(24))
        {
        case 0:
            throw HostError();
        case 1:
            if (command)
                l->doc->RemoveCommandHandlers();
            else
                l->doc->RemoveStateHandlers();
            return 1;
        case 2:
            if (m_depth < 2)
            {
                ++m_depth;
                struct Leave
                {
                    int &depth;
                    ~Leave() { --depth; }
                } leave{m_depth};
                MCMessageLoop::ProcessPending();
            }
            return 1;
        case 3:
            if (m_depth < 2)
            {
                auto *cmd = new SimCommand(-1);
                cmd->SetSynchronous(0);
                cmd->Apply(l->doc);
            }
            return 1;
        case 4:
            return command && phase == 1 ? 0 : 1; // a refusal after processing
        case 5:
            return command ? -1 : 1;
        default:
            return 1;
        }
    }

    static int OnCommand(ECBase *, int phase, void *, void *user)
    {
        auto *l = static_cast<Listener *>(user);
        return l->host->Act(l, true, phase);
    }

    static int OnState(ECBase *, int, void *, void *user)
    {
        auto *l = static_cast<Listener *>(user);
        return l->host->Act(l, false, 0);
    }

    std::string Check()
    {
        for (SimDocument *doc : m_open)
        {
            MCCommandMgr &mgr = *doc->GetCommandMgr();
            const int index = mgr.GetUndoIndex(), count = mgr.GetUndoCount();
            if (mgr.GetUndoMode() || mgr.GetNotifyMode())
                return "a bracket was left open";
            if (mgr.GetUndoPending() < 0 || mgr.GetNotifyPending() < 0)
                return "a pending count fell below 0";
            if (index < -1 || index > count || (index == -1 && count != 0))
                return "undo index " + std::to_string(index) + " with " + std::to_string(count) + " steps";
            if (count > MCCommandMgr::GetUndoLevels())
                return "more steps than the undo levels";
            const MCCommandMgr::UndoList &steps = mgr.GetUndoList();
            for (POSITION pos = steps.GetHeadPosition(); pos;)
            {
                MCUndoItem *step = steps.GetNext(pos);
                if (!step || step->IsEmpty() || step->GetTarget() != doc)
                    return "a filed step is empty or names another document";
            }
        }
        return "";
    }

    Chooser m_choose;
    std::vector<SimDocument *> m_open; // each with the host's reference
    std::deque<Listener> m_listeners;  // outlive every handler record
    int m_depth = 0;
};
} // namespace hostsim
