#include <scoremodel/platform/CArray.h>

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace
{
template <class ARRAY>
auto Contents(const ARRAY &array)
{
    std::vector<std::remove_cvref_t<decltype(array.GetAt(0))>> out;
    for (INT_PTR i = 0; i < array.GetSize(); i++)
        out.push_back(array.GetAt(i));
    return out;
}

void Fill(CArray<int, int> &array, std::initializer_list<int> values)
{
    array.RemoveAll();
    for (int v : values)
        array.Add(v);
}

// A class whose CObject part does not sit at its start, so a façade that
// reinterprets pointers instead of converting them hands out wrong ones.
struct Payload
{
    int m_nWeight = 0;
};
class TestItem : public Payload, public CObject
{
public:
    explicit TestItem(int n) { m_nWeight = n; }
};
} // namespace

TEST(CArray, InsertAtPutsElementsBeforeTheIndexAndGrowsPastTheEnd)
{
    struct Case
    {
        INT_PTR index;
        INT_PTR count;
        std::vector<int> expected;
    };
    const Case cases[] = {
        {0, 1, {9, 1, 2, 3}},       {1, 2, {1, 9, 9, 2, 3}},       {2, 3, {1, 2, 9, 9, 9, 3}},
        {3, 1, {1, 2, 3, 9}},       {5, 2, {1, 2, 3, 0, 0, 9, 9}}, {4, 1, {1, 2, 3, 0, 9}},
    };
    for (const Case &c : cases)
    {
        CArray<int, int> array;
        Fill(array, {1, 2, 3});
        array.InsertAt(c.index, 9, c.count);
        EXPECT_EQ(Contents(array), c.expected) << "index " << c.index << " count " << c.count;
    }
}

TEST(CArray, RemoveAtTakesOutExactlyTheRange)
{
    struct Case
    {
        INT_PTR index;
        INT_PTR count;
        std::vector<int> expected;
    };
    const Case cases[] = {
        {0, 1, {2, 3, 4, 5}}, {4, 1, {1, 2, 3, 4}}, {1, 3, {1, 5}},
        {0, 5, {}},           {5, 0, {1, 2, 3, 4, 5}}, {2, 0, {1, 2, 3, 4, 5}},
    };
    for (const Case &c : cases)
    {
        CArray<int, int> array;
        Fill(array, {1, 2, 3, 4, 5});
        array.RemoveAt(c.index, c.count);
        EXPECT_EQ(Contents(array), c.expected) << "index " << c.index << " count " << c.count;
        EXPECT_EQ(array.GetUpperBound(), (INT_PTR)c.expected.size() - 1);
    }
}

TEST(CArray, BadIndexOrRangeThrowsInvalidArgumentAndChangesNothing)
{
    using Op = std::function<void(CArray<int, int> &)>;
    const std::pair<const char *, Op> cases[] = {
        {"GetAt(-1)", [](auto &a) { a.GetAt(-1); }},
        {"GetAt(size)", [](auto &a) { a.GetAt(5); }},
        {"const GetAt(size)", [](auto &a) { std::as_const(a).GetAt(5); }},
        {"SetAt(size)", [](auto &a) { a.SetAt(5, 0); }},
        {"ElementAt(-1)", [](auto &a) { a.ElementAt(-1); }},
        {"operator[](size)", [](auto &a) { a[5] = 1; }},
        {"const operator[](size)", [](auto &a) { (void)std::as_const(a)[5]; }},
        {"RemoveAt(-1)", [](auto &a) { a.RemoveAt(-1); }},
        {"RemoveAt(size)", [](auto &a) { a.RemoveAt(5); }},
        {"RemoveAt over the end", [](auto &a) { a.RemoveAt(3, 3); }},
        {"RemoveAt huge count", [](auto &a) { a.RemoveAt(1, std::numeric_limits<INT_PTR>::max()); }},
        {"RemoveAt past the end, count 0", [](auto &a) { a.RemoveAt(6, 0); }},
        {"RemoveAt negative count", [](auto &a) { a.RemoveAt(0, -1); }},
        {"InsertAt(-1)", [](auto &a) { a.InsertAt(-1, 7); }},
        {"InsertAt count 0", [](auto &a) { a.InsertAt(0, 7, 0); }},
        {"InsertAt null array", [](auto &a) { a.InsertAt(0, (const CArray<int, int> *)nullptr); }},
        {"SetAtGrow(-1)", [](auto &a) { a.SetAtGrow(-1, 7); }},
        {"SetSize(-1)", [](auto &a) { a.SetSize(-1); }},
    };
    for (const auto &[name, op] : cases)
    {
        CArray<int, int> array;
        Fill(array, {1, 2, 3, 4, 5});
        EXPECT_THROW(op(array), CInvalidArgException) << name;
        EXPECT_EQ(Contents(array), (std::vector<int>{1, 2, 3, 4, 5})) << name;
    }
    CArray<int, int> empty;
    EXPECT_THROW(empty.GetAt(0), CInvalidArgException);
}

TEST(CArray, GrowthKeepsEveryElementAndAddReturnsItsIndex)
{
    CArray<std::string> strings;
    strings.SetSize(0, 3); // a tiny grow-by must not make growth lose data
    CArray<int, int> numbers;
    for (int i = 0; i < 20000; i++)
    {
        ASSERT_EQ(numbers.Add(i * 7), i);
        ASSERT_EQ(strings.Add(std::to_string(i)), i);
    }
    ASSERT_EQ(numbers.GetSize(), 20000);
    for (int i = 0; i < 20000; i++)
    {
        ASSERT_EQ(numbers[i], i * 7);
        ASSERT_EQ(strings[i], std::to_string(i));
    }
}

TEST(CArray, NewSlotsAreZeroEvenWhereOldElementsOnceWere)
{
    CArray<int, int> array;
    for (int i = 1; i <= 10; i++)
        array.Add(i);
    array.SetSize(3);
    array.SetSize(10);
    EXPECT_EQ(Contents(array), (std::vector<int>{1, 2, 3, 0, 0, 0, 0, 0, 0, 0}));
    array.SetAtGrow(12, 5);
    EXPECT_EQ(array.GetSize(), 13);
    EXPECT_EQ(array[10], 0);
    EXPECT_EQ(array[11], 0);
    EXPECT_EQ(array[12], 5);

    CPtrArray pointers;
    pointers.SetSize(16, 4);
    for (void *p : pointers)
        EXPECT_EQ(p, nullptr);
}

TEST(CArray, AnElementPassedFromTheArrayItselfSurvivesTheBlockMoving)
{
    CArray<std::string> array;
    for (const char *s : {"alpha", "beta", "gamma"})
        array.Add(s);
    array.FreeExtra(); // full, so each call below must move the block
    array.Add(array[0]);
    array.FreeExtra();
    array.InsertAt(0, array[3], 2);
    array.FreeExtra();
    array.SetAtGrow(array.GetSize() + 1, array[2]);
    EXPECT_EQ(Contents(array),
              (std::vector<std::string>{"alpha", "alpha", "alpha", "beta", "gamma", "alpha", "", "alpha"}));
}

TEST(CArray, AppendCopyAndArrayInsertKeepOrderIncludingWithThemselves)
{
    CArray<int, int> a, b;
    Fill(a, {1, 2});
    Fill(b, {3, 4, 5});
    EXPECT_EQ(a.Append(b), 2);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 2, 3, 4, 5}));
    EXPECT_EQ(b.Append(b), 3);
    EXPECT_EQ(Contents(b), (std::vector<int>{3, 4, 5, 3, 4, 5}));

    a.Copy(a);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 2, 3, 4, 5}));
    b.Copy(a);
    EXPECT_EQ(Contents(b), (std::vector<int>{1, 2, 3, 4, 5}));

    CArray<int, int> ins;
    Fill(ins, {8, 9});
    Fill(a, {1, 2, 3});
    a.InsertAt(1, &ins);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 8, 9, 2, 3}));
    a.InsertAt(7, &ins);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 8, 9, 2, 3, 0, 0, 8, 9}));
    Fill(a, {1, 2, 3});
    a.InsertAt(1, &a);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 1, 2, 3, 2, 3}));
    CArray<int, int> none;
    a.InsertAt(0, &none);
    EXPECT_EQ(a.GetSize(), 6);
}

TEST(CArray, FreeExtraRemoveAllAndMoveKeepOrDropElementsAsTheySay)
{
    CArray<std::string> array;
    array.SetSize(100);
    array.SetSize(2);
    array[0] = "x";
    array[1] = "y";
    array.FreeExtra();
    EXPECT_EQ(Contents(array), (std::vector<std::string>{"x", "y"}));

    CArray<std::string> moved(std::move(array));
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(Contents(moved), (std::vector<std::string>{"x", "y"}));
    array.Add("again"); // the moved-from array is still usable
    EXPECT_EQ(array.GetSize(), 1);

    moved.RemoveAll();
    EXPECT_TRUE(moved.IsEmpty());
    EXPECT_EQ(moved.GetData(), nullptr);
    EXPECT_EQ(moved.GetUpperBound(), -1);
}

TEST(CTypedPtrArray, ElementsComeBackAsTheirOwnTypeWhateverTheirLayout)
{
    TestItem first(1), second(2);
    CTypedPtrArray<CObArray, TestItem *> items;
    items.SetSize(4, 4);
    items[1] = &first;
    items.SetAt(2, &second);
    items.Add(&second);
    items.InsertAt(0, &first);

    CObArray &untyped = items;
    ASSERT_EQ(untyped.GetSize(), 6);
    EXPECT_EQ(untyped[2], static_cast<CObject *>(&first)); // stored as the CObject part
    EXPECT_EQ(items.GetAt(0), &first);
    EXPECT_EQ(items[2], &first);
    EXPECT_EQ(items[3]->m_nWeight, 2);
    EXPECT_EQ(items[1], nullptr);

    items[1] = items[3]; // copies the element, not the slot
    items[3] = nullptr;
    EXPECT_EQ(items.GetAt(1), &second);
    EXPECT_EQ(items.GetAt(3), nullptr);
    EXPECT_THROW(items.GetAt(6), CInvalidArgException);

    CTypedPtrArray<CObArray, TestItem *> more;
    more.Add(&second);
    EXPECT_EQ(items.Append(more), 6);
    more.Copy(items);
    EXPECT_EQ(more.GetSize(), 7);
    EXPECT_EQ(more.GetAt(6), &second);

    CTypedPtrArray<CPtrArray, const char *> names;
    static const char kName[] = "flute";
    names.SetAtGrow(2, kName);
    EXPECT_EQ(names[2], kName);
    EXPECT_EQ(names[0], nullptr);
}

TEST(CArray, ConcreteArraysAreCreatableByClassName)
{
    for (const char *name : {"CByteArray", "CWordArray", "CDWordArray", "CUIntArray", "CObArray", "CStringArray"})
    {
        std::unique_ptr<CObject> object(CRuntimeClass::CreateObject(name));
        ASSERT_TRUE(object) << name;
        EXPECT_STREQ(object->GetRuntimeClass()->m_lpszClassName, name);
        EXPECT_TRUE(object->IsSerializable()) << name;
    }
    CPtrArray pointers;
    EXPECT_FALSE(pointers.IsSerializable());
}
