// Events for the tests of the event bases: a container and a leaf that count
// how many of them are alive, so a test can tell exactly when one dies.
#pragma once

#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>

#include <initializer_list>
#include <set>
#include <vector>

// A container with a time, like a measure, a beam or a note.
class TestNode : public ECWithTimeChild
{
    DECLARE_SERIAL(TestNode)

public:
    static int s_alive;
    // Every TestNode alive now, in order of address.
    static std::set<TestNode *> &Live()
    {
        static std::set<TestNode *> live;
        return live;
    }

    static TestNode *Make(float time = 0.0f)
    {
        auto *node = new TestNode;
        MCTime t(time);
        node->SetTime(&t);
        return node;
    }

    // A free id, so that searches by id can tell test events apart.
    int GetEventId() const override { return m_id; }
    void SetId(int id) { m_id = id; }
    // The whole flag byte, for tests of the bits the model only carries.
    void SetRawFlags(BYTE flags) { m_flags = flags; }

protected:
    TestNode()
    {
        ++s_alive;
        Live().insert(this);
    }
    ~TestNode() override
    {
        --s_alive;
        Live().erase(this);
    }

private:
    int m_id = EVENT_ID_WITH_TIME_CHILD;
};

// A leaf with a time, like an accent or a text.
class TestLeaf : public ECWithTime
{
    DECLARE_SERIAL(TestLeaf)

public:
    static int s_alive;

    static TestLeaf *Make(float time = 0.0f)
    {
        auto *leaf = new TestLeaf;
        MCTime t(time);
        leaf->SetTime(&t);
        return leaf;
    }

    int GetEventId() const override { return m_id; }
    void SetId(int id) { m_id = id; }
    void SetRawFlags(BYTE flags) { m_flags = flags; }

protected:
    TestLeaf() { ++s_alive; }
    ~TestLeaf() override { --s_alive; }

private:
    int m_id = EVENT_ID_WITH_TIME;
};

// An attachment whose two values a test can set and read.
class DCArchived : public DCBase
{
    DECLARE_SERIAL(DCArchived)

public:
    void SetValues(int a, int b)
    {
        m_value = a;
        m_value2 = b;
    }
    int Value() const { return m_value.GetValue(); }
    int Value2() const { return m_value2.GetValue(); }
};

// The elements of a list, head first.
inline std::vector<ECBase *> Elements(ECBase::EventList &list)
{
    std::vector<ECBase *> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos));
    return out;
}

inline std::vector<ECBase *> Elements(ECBase::EventList *list)
{
    return list ? Elements(*list) : std::vector<ECBase *>{};
}

inline bool Holds(ECBase::EventList *list, ECBase *event)
{
    return list && list->Find(event) != nullptr;
}
