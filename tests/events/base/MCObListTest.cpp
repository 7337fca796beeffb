// The plain lists: positions, insertion at both ends and around a node, the
// class-filtered walk, and the handler list built on the pointer list.
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/MCFuncList.h>
#include <scoremodel/events/base/MCObList.h>
#include <scoremodel/events/base/MCPtrList.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace
{
class Thing : public CObject
{
};

std::vector<CObject *> Items(const MCObList &list)
{
    std::vector<CObject *> out;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        out.push_back(list.GetNext(pos));
    return out;
}

std::vector<CObject *> ItemsBackward(const MCObList &list)
{
    std::vector<CObject *> out;
    for (POSITION pos = list.GetTailPosition(); pos;)
        out.push_back(list.GetPrev(pos));
    return out;
}
} // namespace

TEST(MCObListTest, InsertionKeepsBothDirectionsConsistent)
{
    Thing a, b, c, d, e;
    MCObList list;
    list.AddTail(&b);
    list.AddHead(&a);
    POSITION pc = list.InsertAfter(list.Find(&b), &d);
    list.InsertBefore(pc, &c);
    list.InsertAfter(nullptr, &e); // null: the tail
    std::vector<CObject *> forward = {&a, &b, &c, &d, &e};
    EXPECT_EQ(Items(list), forward);
    EXPECT_EQ(ItemsBackward(list), std::vector<CObject *>(forward.rbegin(), forward.rend()));
    EXPECT_EQ(list.GetCount(), 5);
    EXPECT_EQ(list.GetHead(), &a);
    EXPECT_EQ(list.GetTail(), &e);
}

TEST(MCObListTest, ListInsertionKeepsTheSourceOrder)
{
    Thing a, b, x, y;
    MCObList src;
    src.AddTail(&x);
    src.AddTail(&y);
    struct Case
    {
        const char *what;
        int where; // 0: before head, 1: after head, 2: null before, 3: null after, 4: AddHead, 5: AddTail
        std::vector<CObject *> expected;
    };
    const Case cases[] = {
        {"before a node", 0, {&x, &y, &a, &b}},     {"after a node", 1, {&a, &x, &y, &b}},
        {"before null: head", 2, {&x, &y, &a, &b}}, {"after null: tail", 3, {&a, &b, &x, &y}},
        {"AddHead", 4, {&x, &y, &a, &b}},           {"AddTail", 5, {&a, &b, &x, &y}},
    };
    for (const Case &c : cases)
    {
        MCObList list;
        list.AddTail(&a);
        list.AddTail(&b);
        switch (c.where)
        {
        case 0: list.InsertBefore(list.GetHeadPosition(), &src); break;
        case 1: list.InsertAfter(list.GetHeadPosition(), &src); break;
        case 2: list.InsertBefore(nullptr, &src); break;
        case 3: list.InsertAfter(nullptr, &src); break;
        case 4: list.AddHead(&src); break;
        case 5: list.AddTail(&src); break;
        }
        EXPECT_EQ(Items(list), c.expected) << c.what;
    }
    MCObList self;
    self.AddTail(&a);
    self.AddTail(&b);
    self.AddHead(&self);
    EXPECT_EQ(Items(self), (std::vector<CObject *>{&a, &b, &a, &b})) << "a list added to itself doubles once";
}

TEST(MCObListTest, FindAndRemovalAtEveryPlace)
{
    Thing a, b, c;
    MCObList list;
    for (CObject *o : {&a, &b, &a, &c})
        list.AddTail(o);
    POSITION first = list.Find(&a);
    EXPECT_EQ(first, list.GetHeadPosition());
    EXPECT_EQ(list.Find(&a, first), list.FindIndex(2)) << "searches after the position";
    EXPECT_EQ(list.Find(&b, list.Find(&b)), nullptr);
    EXPECT_EQ(list.GetAt(list.FindIndex(1)), &b);
    EXPECT_EQ(list.FindIndex(4), nullptr);
    EXPECT_EQ(list.FindIndex(-1), nullptr);

    list.RemoveAt(list.Find(&b));
    list.RemoveAt(list.Find(&a, list.Find(&a)));
    EXPECT_EQ(Items(list), (std::vector<CObject *>{&a, &c}));
    EXPECT_EQ(ItemsBackward(list), (std::vector<CObject *>{&c, &a}));
    EXPECT_EQ(list.RemoveHead(), &a);
    EXPECT_EQ(list.RemoveTail(), &c);
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.RemoveHead(), nullptr) << "an empty list gives null, not a crash";
    EXPECT_EQ(list.RemoveTail(), nullptr);
    EXPECT_EQ(list.GetHead(), nullptr);
    list.RemoveAt(nullptr);
    list.SetAt(nullptr, &a);
    EXPECT_EQ(list.GetCount(), 0);
}

// Short lists are walked, long ones answer from their membership index: at
// every length, a search after a position finds only what lies after it,
// and FindIndex reaches every place from either end.
TEST(MCObListTest, FindAfterAPositionAndFindIndexAgreeWithAWalkAtEveryLength)
{
    for (int length : {7, MCObList::kIndexThreshold, 2 * MCObList::kIndexThreshold + 1})
    {
        SCOPED_TRACE(length);
        std::vector<Thing> things(static_cast<size_t>(length));
        Thing once, twice, absent;
        const int onceAt = length / 3, twiceAt[2] = {1, length - 2};
        MCObList list;
        std::vector<POSITION> positions;
        for (int i = 0; i < length; ++i)
        {
            CObject *o = i == onceAt ? &once : i == twiceAt[0] || i == twiceAt[1] ? &twice : &things[static_cast<size_t>(i)];
            positions.push_back(list.AddTail(o));
        }
        EXPECT_EQ(list.Find(&once), positions[static_cast<size_t>(onceAt)]);
        EXPECT_EQ(list.Find(&absent), nullptr);
        for (int after = 0; after < length; ++after)
        {
            const POSITION from = positions[static_cast<size_t>(after)];
            EXPECT_EQ(list.Find(&once, from), after < onceAt ? positions[static_cast<size_t>(onceAt)] : nullptr)
                << "after " << after;
            const POSITION second = after < twiceAt[0]   ? positions[static_cast<size_t>(twiceAt[0])]
                                    : after < twiceAt[1] ? positions[static_cast<size_t>(twiceAt[1])]
                                                         : nullptr;
            EXPECT_EQ(list.Find(&twice, from), second) << "after " << after;
            EXPECT_EQ(list.Find(&absent, from), nullptr);
        }
        for (int i = 0; i < length; ++i)
            EXPECT_EQ(list.FindIndex(i), positions[static_cast<size_t>(i)]) << "index " << i;
        EXPECT_EQ(list.FindIndex(length), nullptr);
        EXPECT_EQ(list.FindIndex(-1), nullptr);
    }
}

// Searching is a read: threads that search one long list at once, with
// nobody changing it, must all get right answers, and the membership index
// they make on the way must be made once (a second one would be lost, which
// the leak check of the sanitizer build sees).
TEST(MCObListTest, ConcurrentSearchesOfOneLongListAgree)
{
    constexpr int kLists = 200, kItems = 4 * MCObList::kIndexThreshold, kThreads = 4;
    std::vector<Thing> things(kItems + 1);
    for (int round = 0; round < kLists; ++round)
    {
        MCObList list;
        for (int i = 0; i < kItems; ++i)
            list.AddTail(&things[i]);
        std::atomic<int> wrong{0};
        std::atomic<int> ready{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] {
                ++ready;
                while (ready < kThreads)
                {
                }
                for (int i = t; i < kItems; i += 7)
                {
                    if (list.Find(&things[i]) == nullptr || !list.Contains(&things[i]))
                        ++wrong;
                }
                if (list.Contains(&things[kItems]) || list.Find(&things[kItems]))
                    ++wrong;
            });
        for (std::thread &t : threads)
            t.join();
        ASSERT_EQ(wrong, 0) << "round " << round;
    }
}

TEST(MCObListTest, ClassFilteredWalkSkipsOtherClasses)
{
    ECBase *event = new ECBase;
    event->Ref();
    Thing thing;
    MCObList list;
    list.AddTail(&thing);
    list.AddTail(event);
    list.AddTail(&thing);
    POSITION pos = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(pos, RUNTIME_CLASS(ECBase)), event);
    EXPECT_EQ(list.GetNext(pos, RUNTIME_CLASS(ECBase)), nullptr);
    EXPECT_EQ(pos, nullptr);
    pos = list.GetTailPosition();
    EXPECT_EQ(list.GetPrev(pos, RUNTIME_CLASS(ECBase)), event);
    pos = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(pos, nullptr), &thing) << "no class: every element";
    list.RemoveAll();
    event->Unref(1);
}

TEST(MCPtrListTest, BehavesAsTheObjectList)
{
    int a = 1, b = 2, c = 3;
    MCPtrList list;
    list.AddTail(&b);
    list.AddHead(&a);
    list.InsertAfter(list.Find(&b), &c);
    std::vector<void *> seen;
    for (POSITION pos = list.GetHeadPosition(); pos;)
        seen.push_back(list.GetNext(pos));
    EXPECT_EQ(seen, (std::vector<void *>{&a, &b, &c}));
    EXPECT_EQ(list.RemoveHead(), &a);
    EXPECT_EQ(list.GetAt(list.FindIndex(1)), &c);
    list.RemoveAll();
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.RemoveTail(), nullptr);
}

namespace
{
std::vector<std::pair<int, void *>> g_calls;

int Record(ECBase *, int code, void *, void *user)
{
    g_calls.emplace_back(code, user);
    return -1; // ignored
}

MCFuncList *g_list = nullptr;
int RemoveAllWhileCalled(ECBase *, int, void *, void *)
{
    g_list->RemoveCallbacks();
    return 0;
}
} // namespace

TEST(MCFuncListTest, CallsEveryHandlerInOrderWithItsUserWord)
{
    g_calls.clear();
    MCFuncList list;
    int u1, u2, u3;
    list.AddCallback(Record, &u2);
    list.InsertCallback(Record, &u1, nullptr); // null: at the head
    list.AddCallback(Record, &u3);
    EXPECT_EQ(list.CallCallbacks(nullptr, 7, nullptr), 0);
    ASSERT_EQ(g_calls.size(), 3u);
    EXPECT_EQ(g_calls[0].second, &u1);
    EXPECT_EQ(g_calls[1].second, &u2);
    EXPECT_EQ(g_calls[2].second, &u3);
    EXPECT_EQ(g_calls[0].first, 7);
    auto *rec = static_cast<MCFuncList::CALLBACK_REC *>(list.GetHead());
    EXPECT_EQ(rec->reserved1, nullptr);
    EXPECT_EQ(rec->reserved2, nullptr);
}

TEST(MCFuncListTest, RemoveCallbackRemovesNothingButRemoveCallbacksDoes)
{
    MCFuncList list;
    list.AddCallback(Record, nullptr);
    EXPECT_EQ(list.RemoveCallback(Record), 0);
    EXPECT_EQ(list.GetCount(), 1) << "hosts rely on RemoveCallbacks; the single removal never worked";
    list.RemoveCallbacks();
    EXPECT_EQ(list.GetCount(), 0);
}

// A view that closes another view removes that view's handler: the closed
// view must not be called in the same pass with its freed user data.
TEST(MCFuncListTest, HandlerRemovedWhileCalledIsNotCalledInThatPass)
{
    g_calls.clear();
    MCFuncList list;
    g_list = &list;
    int before, after;
    list.AddCallback(Record, &before);
    list.AddCallback(RemoveAllWhileCalled, nullptr);
    list.AddCallback(Record, &after);
    list.CallCallbacks(nullptr, 0, nullptr);
    EXPECT_EQ(list.GetCount(), 0);
    ASSERT_EQ(g_calls.size(), 1u) << "only the handler called before the removal ran";
    EXPECT_EQ(g_calls[0].second, &before);

    g_calls.clear();
    list.AddCallback(RemoveAllWhileCalled, nullptr);
    list.CallCallbacks(nullptr, 0, nullptr); // removes itself and re-adds nothing
    list.AddCallback(Record, &after);
    list.CallCallbacks(nullptr, 0, nullptr);
    ASSERT_EQ(g_calls.size(), 1u);
    EXPECT_EQ(g_calls[0].second, &after);
    g_list = nullptr;
}
