// Test-only events, a tree holder and a recording action for the action
// tests. The concrete event classes may not be built yet, so the trees are
// made of small events that answer whatever id a test needs.
#pragma once

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithChild.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/EventIds.h>

#include <utility>
#include <vector>

// Children, a time and a voice/track word.
class TestTimed : public ECWithTimeChild
{
public:
    explicit TestTimed(int id, float time = 0.0f) : m_id(id)
    {
        MCTime t(time);
        SetTime(&t);
    }
    int GetEventId() const override { return m_id; }
    void SetFlagBits(BYTE bits) { m_flags = static_cast<BYTE>(m_flags | bits); }

protected:
    ~TestTimed() override = default;

private:
    int m_id;
};

// Children, but no time and no voice/track word.
class TestTimeless : public ECWithChild
{
public:
    explicit TestTimeless(int id) : m_id(id) {}
    int GetEventId() const override { return m_id; }

protected:
    ~TestTimeless() override = default;

private:
    int m_id;
};

// Holds a root and releases the whole tree at the end of a test.
class TestTree
{
public:
    explicit TestTree(ECBase *root) : m_root(root) { m_root->Ref(); }
    ~TestTree()
    {
        m_root->RemoveChildren(1);
        m_root->Unref(1);
    }
    TestTree(const TestTree &) = delete;
    TestTree &operator=(const TestTree &) = delete;

    ECBase *Root() const { return m_root; }
    template <class T>
    T *Add(ECBase *parent, T *child)
    {
        parent->AddChild(child, 0);
        return child;
    }
    TestTimed *Timed(ECBase *parent, int id, float time = 0.0f) { return Add(parent, new TestTimed(id, time)); }
    TestTimeless *Timeless(ECBase *parent, int id) { return Add(parent, new TestTimeless(id)); }

private:
    ECBase *m_root;
};

// Records the events DoAction saw and the BeginAction/EndAction calls;
// DoAction answers from `answers` by event, else as BASE does.
template <class BASE>
class RecordingAction : public BASE
{
public:
    using BASE::BASE;

    int BeginAction() override
    {
        ++begins;
        return BASE::BeginAction();
    }
    int DoAction(ECBase *e) override
    {
        visited.push_back(e);
        for (auto &[event, result] : answers)
            if (event == e)
                return result;
        return BASE::DoAction(e);
    }
    void EndAction() override
    {
        ++ends;
        BASE::EndAction();
    }

    std::vector<ECBase *> visited;
    std::vector<std::pair<ECBase *, int>> answers;
    int begins = 0;
    int ends = 0;
};

template <class LIST>
std::vector<ECBase *> ListOf(LIST &list)
{
    std::vector<ECBase *> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos));
    return out;
}
