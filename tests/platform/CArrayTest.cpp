#include <scoremodel/platform/CArray.h>

#include "ArchiveBytes.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

// Outside the anonymous namespace, so that the stream operator IMPLEMENT_SERIAL
// defines is not an unused internal function.
class ArrayTestNote : public CObject
{
    DECLARE_SERIAL(ArrayTestNote)

public:
    explicit ArrayTestNote(int nPitch = 0) : m_nPitch(nPitch) {}
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
            ar << m_nPitch;
        else
            ar >> m_nPitch;
    }
    int m_nPitch;
};
IMPLEMENT_SERIAL(ArrayTestNote, CObject, 1)

using namespace archive_bytes;

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

template <class ARRAY>
Bytes StoreArray(ARRAY &array)
{
    return Store([&](CArchive &ar) { array.Serialize(ar); });
}

template <class ARRAY>
void LoadArray(const Bytes &bytes, ARRAY &array, bool bLengthKnown = true)
{
    Load(bytes, [&](CArchive &ar) { array.Serialize(ar); }, 4096, bLengthKnown);
}
} // namespace

TEST(CArray, InsertAtAndRemoveAtChangeExactlyTheRange)
{
    struct Case
    {
        bool insert; // of 9s; otherwise a removal
        INT_PTR index;
        INT_PTR count;
        std::vector<int> expected;
    };
    const Case cases[] = {
        // Inserts go before the index; past the end the gap is zeros.
        {true, 0, 1, {9, 1, 2, 3, 4, 5}},
        {true, 1, 2, {1, 9, 9, 2, 3, 4, 5}},
        {true, 2, 3, {1, 2, 9, 9, 9, 3, 4, 5}},
        {true, 5, 1, {1, 2, 3, 4, 5, 9}},
        {true, 6, 1, {1, 2, 3, 4, 5, 0, 9}},
        {true, 7, 2, {1, 2, 3, 4, 5, 0, 0, 9, 9}},
        {false, 0, 1, {2, 3, 4, 5}},
        {false, 4, 1, {1, 2, 3, 4}},
        {false, 1, 3, {1, 5}},
        {false, 0, 5, {}},
        {false, 5, 0, {1, 2, 3, 4, 5}},
        {false, 2, 0, {1, 2, 3, 4, 5}},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(::testing::Message() << (c.insert ? "InsertAt " : "RemoveAt ") << c.index << ", " << c.count);
        CArray<int, int> array;
        Fill(array, {1, 2, 3, 4, 5});
        if (c.insert)
            array.InsertAt(c.index, 9, c.count);
        else
            array.RemoveAt(c.index, c.count);
        EXPECT_EQ(Contents(array), c.expected);
        EXPECT_EQ(array.GetUpperBound(), (INT_PTR)c.expected.size() - 1);
    }
}

TEST(CArray, BadIndexOrRangeThrowsInvalidArgumentAndChangesNothing)
{
    using Op = std::function<void(CArray<int, int> &)>;
    const std::pair<const char *, Op> cases[] = {
        {"GetAt(-1)", [](auto &a) { a.GetAt(-1); }},
        {"GetAt(size)", [](auto &a) { a.GetAt(5); }},
        {"SetAt(size)", [](auto &a) { a.SetAt(5, 0); }},
        {"const operator[](size)", [](auto &a) { (void)std::as_const(a)[5]; }},
        {"RemoveAt(size)", [](auto &a) { a.RemoveAt(5); }},
        {"RemoveAt over the end", [](auto &a) { a.RemoveAt(3, 3); }},
        {"RemoveAt huge count", [](auto &a) { a.RemoveAt(1, std::numeric_limits<INT_PTR>::max()); }},
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
    array.SetAtGrow(11, 5);
    EXPECT_EQ(array[10], 0);
    EXPECT_EQ(array[11], 5);
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
    EXPECT_EQ(b.Append(b), 3);
    EXPECT_EQ(Contents(b), (std::vector<int>{3, 4, 5, 3, 4, 5}));
    a.Copy(a);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 2, 3, 4, 5}));
    Fill(a, {1, 2, 3});
    a.InsertAt(1, &a);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 1, 2, 3, 2, 3}));
    a.InsertAt(8, &b);
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 1, 2, 3, 2, 3, 0, 0, 3, 4, 5, 3, 4, 5}));
}

TEST(CTypedPtrArray, ElementsComeBackAsTheirOwnTypeWhateverTheirLayout)
{
    TestItem first(1), second(2);
    CTypedPtrArray<CObArray, TestItem *> items;
    items.SetSize(2);
    items[1] = &first;
    items.Add(&second);
    items.InsertAt(0, &second);
    CObArray &untyped = items;
    EXPECT_EQ(untyped[2], static_cast<CObject *>(&first)); // stored as the CObject part
    EXPECT_EQ(items.GetAt(2), &first);
    EXPECT_EQ(items[3]->m_nWeight, 2);
    EXPECT_EQ(items[1], nullptr);
    items[1] = items[3]; // copies the element, not the slot
    items[3] = nullptr;
    EXPECT_EQ(items.GetAt(1), &second);
    EXPECT_EQ(items.GetAt(3), nullptr);
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

TEST(CArraySerialize, CountWidthChangesAtTheArchiveBoundariesAndRoundTrips)
{
    const std::pair<INT_PTR, Bytes> cases[] = {
        {0, {0x00, 0x00}},
        {0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
        {0x10001, {0xFF, 0xFF, 0x01, 0x00, 0x01, 0x00}},
    };
    for (const auto &[count, prefix] : cases)
    {
        SCOPED_TRACE(count);
        CByteArray array;
        array.SetSize(count);
        for (INT_PTR i = 0; i < count; i++)
            array[i] = (BYTE)(i * 31 + 7);
        const Bytes bytes = StoreArray(array);
        ASSERT_EQ(bytes.size(), prefix.size() + (size_t)count);
        EXPECT_TRUE(std::equal(prefix.begin(), prefix.end(), bytes.begin()));
        if (count)
        {
            EXPECT_EQ(bytes.back(), (BYTE)((count - 1) * 31 + 7));
        }

        CByteArray loaded;
        loaded.Add(99); // a load replaces what was there
        LoadArray(bytes, loaded);
        ASSERT_EQ(loaded.GetSize(), count);
        EXPECT_TRUE(std::equal(loaded.begin(), loaded.end(), array.begin()));
    }
}

TEST(CArraySerialize, ScalarElementsAreLittleEndianAtThePlatformWidths)
{
    CWordArray words;
    words.Add(0x1234);
    words.Add(0xABCD);
    EXPECT_EQ(StoreArray(words), (Bytes{0x02, 0x00, 0x34, 0x12, 0xCD, 0xAB}));

    CUIntArray uints;
    uints.Add(0x01020304);
    EXPECT_EQ(StoreArray(uints), (Bytes{0x01, 0x00, 0x04, 0x03, 0x02, 0x01}));

    CArray<int, int> ints;
    ints.Add(-2);
    EXPECT_EQ(StoreArray(ints), (Bytes{0x01, 0x00, 0xFE, 0xFF, 0xFF, 0xFF}));

    CArray<long, long> longs; // the platform's long is 4 bytes
    longs.Add(-2);
    EXPECT_EQ(StoreArray(longs), StoreArray(ints));

    struct Record // stored as its memory
    {
        BYTE first, last;
        WORD bits;
    };
    CArray<Record, Record> records, loaded;
    records.Add(Record{1, 4, 0x0102});
    EXPECT_EQ(StoreArray(records), (Bytes{0x01, 0x00, 0x01, 0x04, 0x02, 0x01}));
    LoadArray(StoreArray(records), loaded);
    ASSERT_EQ(loaded.GetSize(), 1);
    EXPECT_EQ(loaded[0].bits, 0x0102);

    CStringArray names, loadedNames;
    names.Add(L"Fl\u00f6te");
    names.Add(L"");
    LoadArray(StoreArray(names), loadedNames);
    EXPECT_EQ(Contents(loadedNames), Contents(names));
}

TEST(CArraySerialize, ObjectArrayStoresASharedObjectOnceAndKeepsNulls)
{
    ArrayTestNote a(60), b(62);
    CObArray objects;
    for (CObject *p : {&a, &b, &a, (ArrayTestNote *)nullptr})
        objects.Add(p);
    Load(StoreArray(objects), [](CArchive &ar) {
        CObArray loaded;
        loaded.Serialize(ar);
        ASSERT_EQ(loaded.GetSize(), 4);
        EXPECT_EQ(ar.GetLoadedObjects(), (std::vector<CObject *>{loaded[0], loaded[1]}));
        auto *pA = dynamic_cast<ArrayTestNote *>(loaded[0]);
        auto *pB = dynamic_cast<ArrayTestNote *>(loaded[1]);
        ASSERT_TRUE(pA && pB);
        EXPECT_EQ(pA->m_nPitch, 60);
        EXPECT_EQ(pB->m_nPitch, 62);
        EXPECT_EQ(loaded[2], loaded[0]);
        EXPECT_EQ(loaded[3], nullptr);
    });
}

TEST(CArraySerialize, TruncatedOrOverCountedArchivesFailWithEndOfFile)
{
    CWordArray words;
    CStringArray strings;
    CArray<int, int> ints;
    ArrayTestNote note(1);
    CObArray objects;
    for (int i = 0; i < 5; i++)
    {
        words.Add((WORD)i);
        strings.Add(L"abc");
        ints.Add(i);
        objects.Add(&note);
    }
    // Whatever a failed load of objects created, Load frees.
    using Loader = std::function<void(const Bytes &, bool)>;
    const std::tuple<const char *, Bytes, Loader> cases[] = {
        {"words", StoreArray(words), [](auto &b, bool k) { CWordArray a; LoadArray(b, a, k); }},
        {"strings", StoreArray(strings), [](auto &b, bool k) { CStringArray a; LoadArray(b, a, k); }},
        {"ints", StoreArray(ints), [](auto &b, bool k) { CArray<int, int> a; LoadArray(b, a, k); }},
        {"objects", StoreArray(objects), [](auto &b, bool k) { CObArray a; LoadArray(b, a, k); }},
    };
    for (const auto &[name, bytes, load] : cases)
        for (bool bLengthKnown : {true, false})
            for (size_t n = 0; n < bytes.size(); n++)
            {
                const Bytes cut(bytes.begin(), bytes.begin() + (long)n);
                EXPECT_EQ(CauseOf([&] { load(cut, bLengthKnown); }), CArchiveException::endOfFile)
                    << name << " cut at " << n << (bLengthKnown ? "" : " of a stream");
            }

    // A count of four billion elements over a few bytes: refused up front
    // when the length is known, and from a stream it fails after reading
    // only what is there.
    const Bytes huge = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 1, 2, 3};
    for (bool bLengthKnown : {true, false})
    {
        CDWordArray array;
        EXPECT_EQ(CauseOf([&] { LoadArray(huge, array, bLengthKnown); }), CArchiveException::endOfFile);
        EXPECT_LE(array.GetSize(), kArrayLoadChunk);
    }
}

TEST(CArraySerialize, ArraysOfPointersOrUnknownRecordsRefuseToStore)
{
    int n = 0;
    CPtrArray pointers;
    EXPECT_THROW(StoreArray(pointers), CNotSupportedException);
    CArray<int *, int *> raw;
    raw.Add(&n);
    EXPECT_THROW(StoreArray(raw), CNotSupportedException);
    CArray<std::string> strings;
    strings.Add("x");
    EXPECT_THROW(StoreArray(strings), CNotSupportedException);
    strings.RemoveAll();
    EXPECT_EQ(StoreArray(strings), (Bytes{0x00, 0x00})); // nothing to lose when empty
}

namespace
{
// Stores `array` as an object and reads it back through its class's typed
// stream operator, which must take its own class and refuse another.
template <class ARRAY, class OTHER>
void ExpectTypedRoundTrip(ARRAY &array)
{
    using namespace archive_bytes;
    const Bytes bytes = Store([&](CArchive &ar) { ar << &array; });
    // Load frees what it made when it returns: look inside.
    Load(bytes, [&](CArchive &ar) {
        ARRAY *loaded = nullptr;
        ar >> loaded;
        ASSERT_NE(loaded, nullptr);
        ASSERT_EQ(loaded->GetSize(), array.GetSize());
        for (INT_PTR i = 0; i < array.GetSize(); ++i)
            EXPECT_TRUE(loaded->GetAt(i) == array.GetAt(i)) << i;
    });
    EXPECT_EQ(CauseOf([&] {
                  Load(bytes, [](CArchive &ar) {
                      OTHER *other = nullptr;
                      ar >> other;
                  });
              }),
              CArchiveException::badClass);
}
} // namespace

TEST(CArraySerialize, EachConcreteArrayReadsThroughItsTypedOperator)
{
    CByteArray bytes;
    bytes.Add(0xAB);
    CWordArray words;
    words.Add(0xBEEF);
    CDWordArray dwords;
    dwords.Add(0xDEADBEEF);
    CUIntArray uints;
    uints.Add(7);
    uints.Add(8);
    CStringArray strings;
    strings.Add(CString(L"Fl\u00F6te"));
    CObArray objects;
    objects.Add(nullptr);
    ExpectTypedRoundTrip<CByteArray, CWordArray>(bytes);
    ExpectTypedRoundTrip<CWordArray, CDWordArray>(words);
    ExpectTypedRoundTrip<CDWordArray, CUIntArray>(dwords);
    ExpectTypedRoundTrip<CUIntArray, CStringArray>(uints);
    ExpectTypedRoundTrip<CStringArray, CObArray>(strings);
    ExpectTypedRoundTrip<CObArray, CByteArray>(objects);
}
