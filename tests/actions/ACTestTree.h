// Test-only events and a tree holder for the action tests.
//
// The concrete event classes live elsewhere and may not be built yet, so the
// tests build trees from small events that answer whatever id a test needs:
// TestTimed (children, a time and a voice/track word) and TestTimeless
// (children, no time, no voice/track word).
#pragma once

#include <scoremodel/actions/ACBase.h>
#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithChild.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/EventIds.h>

#include <string>
#include <vector>

class TestTimed : public ECWithTimeChild
{
public:
    explicit TestTimed(int id, float time = 0.0f) : m_id(id)
    {
        MCTime t(time);
        SetTime(&t);
    }
    int GetEventId() const override { return m_id; }
    // The flag byte is the base's; tests reach it to set the lyric bits.
    void SetFlagBits(BYTE bits) { m_flags = static_cast<BYTE>(m_flags | bits); }

    // Events have protected destructors: only Unref deletes them.
protected:
    ~TestTimed() override = default;

private:
    int m_id;
};

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
        for (ECBase *extra : m_extraRoots)
        {
            extra->RemoveChildren(1);
            extra->Unref(1);
        }
        m_root->RemoveChildren(1);
        m_root->Unref(1);
    }
    TestTree(const TestTree &) = delete;
    TestTree &operator=(const TestTree &) = delete;

    ECBase *Root() const { return m_root; }

    // Appends `child` to `parent` (unsorted) and returns the child.
    template <class T>
    T *Add(ECBase *parent, T *child)
    {
        parent->AddChild(child, 0);
        return child;
    }
    TestTimed *Timed(ECBase *parent, int id, float time = 0.0f) { return Add(parent, new TestTimed(id, time)); }
    TestTimeless *Timeless(ECBase *parent, int id) { return Add(parent, new TestTimeless(id)); }

    // Keeps another root alive for the life of the tree (for events reached
    // from the root only as parents).
    void Hold(ECBase *extra)
    {
        extra->Ref();
        m_extraRoots.push_back(extra);
    }

private:
    ECBase *m_root;
    std::vector<ECBase *> m_extraRoots;
};

// Records what a walk does: the events DoAction saw, the number of
// BeginAction and EndAction calls; DoAction answers from a table by event,
// 0 by default.
template <class BASE>
class RecordingAction : public BASE
{
public:
    using BASE::BASE;

    int BeginAction() override
    {
        ++begins;
        return beginResult ? BASE::BeginAction() : 0;
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
    bool beginResult = true;
};

// The events of an action's found list, in order.
template <class LIST>
std::vector<ECBase *> ListOf(LIST &list)
{
    std::vector<ECBase *> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos));
    return out;
}
