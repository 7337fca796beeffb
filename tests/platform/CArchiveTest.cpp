#include "ArchiveBytes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <typeinfo>
#include <unistd.h>

using namespace archive_bytes;

namespace
{
Bytes Text(const char *s)
{
    return Bytes(s, s + std::strlen(s));
}

Bytes ClassRecord(WORD schema, const char *name)
{
    const WORD n = static_cast<WORD>(std::strlen(name));
    return Concat({{0xFF, 0xFF, LOBYTE(schema), HIBYTE(schema), LOBYTE(n), HIBYTE(n)}, Text(name)});
}

template <class T>
T ReadOne(CArchive &ar)
{
    T value{};
    ar >> value;
    return value;
}

template <class T>
T LoadOne(const Bytes &bytes)
{
    T value{};
    Load(bytes, [&](CArchive &ar) { value = ReadOne<T>(ar); });
    return value;
}
} // namespace

// ---- Test classes ---------------------------------------------------------------
//
// Outside the anonymous namespace: class names are looked up by name, so they
// are global anyway.

class ArPoint : public CObject
{
    DECLARE_SERIAL(ArPoint)
public:
    LONG m_x = 0;
    LONG m_y = 0;
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
            ar << m_x << m_y;
        else
            ar >> m_x >> m_y;
    }
};
IMPLEMENT_SERIAL(ArPoint, CObject, 1)

class ArLabel : public ArPoint
{
    DECLARE_SERIAL(ArLabel)
};
IMPLEMENT_SERIAL(ArLabel, ArPoint, 1)

class ArOther : public CObject
{
    DECLARE_SERIAL(ArOther)
};
IMPLEMENT_SERIAL(ArOther, CObject, 1)

// Schema 3 added m_b; older streams hold m_a only.
class ArVersioned : public CObject
{
    DECLARE_SERIAL(ArVersioned)
public:
    WORD m_a = 0;
    WORD m_b = 0xBBBB;
    UINT m_loadedSchema = 0;
    UINT m_secondAsk = 0;
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
        {
            ar << m_a << m_b;
            return;
        }
        m_loadedSchema = ar.GetObjectSchema();
        m_secondAsk = ar.GetObjectSchema();
        ar >> m_a;
        if (m_loadedSchema >= 3)
            ar >> m_b;
    }
};
IMPLEMENT_SERIAL(ArVersioned, CObject, VERSIONABLE_SCHEMA | 3)

// A node of a graph: a counted list of children and one free link.
class ArNode : public CObject
{
    DECLARE_SERIAL(ArNode)
public:
    std::vector<ArNode *> m_children;
    CObject *m_pLink = nullptr;
    int m_value = 0;
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
        {
            ar.WriteCount(m_children.size());
            for (ArNode *child : m_children)
                ar << child;
            ar << m_pLink << m_value;
            return;
        }
        const DWORD_PTR n = ar.ReadCount();
        for (DWORD_PTR i = 0; i < n; ++i)
        {
            ArNode *child;
            ar >> child;
            m_children.push_back(child);
        }
        ar >> m_pLink >> m_value;
    }
};
IMPLEMENT_SERIAL(ArNode, CObject, 1)

// Reads one byte and then fails, as a record that finds corrupt data does.
class ArThrower : public ArNode
{
    DECLARE_SERIAL(ArThrower)
public:
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
        {
            ar << BYTE(1);
            return;
        }
        BYTE b;
        ar >> b;
        throw CArchiveException(CArchiveException::genericException, "bad record");
    }
};
IMPLEMENT_SERIAL(ArThrower, ArNode, 1)

class ArDynamic : public CObject
{
    DECLARE_DYNCREATE(ArDynamic)
};
IMPLEMENT_DYNCREATE(ArDynamic, CObject)

class ArAbstract : public CObject
{
    DECLARE_DYNAMIC(ArAbstract)
};
IMPLEMENT_DYNAMIC(ArAbstract, CObject)

class ArClassWithANameThatIsFarTooLongForTheArchiveFormatToCarryAtAllReally : public CObject
{
    DECLARE_SERIAL(ArClassWithANameThatIsFarTooLongForTheArchiveFormatToCarryAtAllReally)
};
IMPLEMENT_SERIAL(ArClassWithANameThatIsFarTooLongForTheArchiveFormatToCarryAtAllReally, CObject, 1)

// Pointers that are not objects must not be written as a bool.
template <typename T>
concept Storable = requires(CArchive &ar, T v) { ar << v; };
static_assert(!Storable<const char *>);
static_assert(!Storable<const wchar_t *>);
static_assert(!Storable<int *>);
static_assert(Storable<ArPoint *>);
static_assert(Storable<const CObject *>);
static_assert(!Storable<wchar_t>);

// ---- Scalars ----------------------------------------------------------------------

namespace
{
template <class T>
void ExpectScalar(T value, const Bytes &bytes)
{
    EXPECT_EQ(Store([&](CArchive &ar) { ar << value; }), bytes) << typeid(T).name();
    EXPECT_EQ(LoadOne<T>(bytes), value) << typeid(T).name();
}
} // namespace

TEST(CArchiveScalars, EachTypeIsWrittenLittleEndianAtItsFixedWidthAndReadBack)
{
    ExpectScalar(BYTE(0xAB), {0xAB});
    ExpectScalar(static_cast<signed char>(-2), {0xFE});
    ExpectScalar(true, {0x01});
    ExpectScalar(WORD(0x1234), {0x34, 0x12});
    ExpectScalar(short(-2), {0xFE, 0xFF});
    ExpectScalar(DWORD(0x12345678), {0x78, 0x56, 0x34, 0x12});
    ExpectScalar(LONG(-2), {0xFE, 0xFF, 0xFF, 0xFF});
    ExpectScalar(-2L, {0xFE, 0xFF, 0xFF, 0xFF}); // the platform's long is 32 bits
    ExpectScalar(0x89ABCDEFUL, {0xEF, 0xCD, 0xAB, 0x89});
    ExpectScalar(-2LL, {0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    ExpectScalar(0x0102030405060708ULL, {0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x01});
    ExpectScalar(1.0f, {0x00, 0x00, 0x80, 0x3F});
    ExpectScalar(-2.0, {0, 0, 0, 0, 0, 0, 0x00, 0xC0});
    EXPECT_TRUE(LoadOne<bool>({0x7F}) && LoadOne<bool>({0xFF})) << "any non-zero byte loads as true";
}

TEST(CArchiveScalars, FieldsStraddlingTheBufferEdgeAndBigBlocksSurviveASmallBuffer)
{
    Bytes block(1000);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = static_cast<BYTE>(i * 7);
    auto write = [&](CArchive &ar) {
        for (int i = 0; i < 300; ++i)
        {
            ar << BYTE(i) << DWORD(i * 100000) << WORD(i) << double(i) / 3;
            if (i % 50 == 0)
                ar.Write(block.data(), static_cast<UINT>(block.size()));
        }
    };
    const Bytes small = Store(write, 128);
    EXPECT_EQ(small, Store(write, 65536));
    Load(
        small,
        [&](CArchive &ar) {
            for (int i = 0; i < 300; ++i)
            {
                BYTE b;
                DWORD dw;
                WORD w;
                double d;
                ar >> b >> dw >> w >> d;
                ASSERT_EQ(b, BYTE(i));
                ASSERT_EQ(dw, DWORD(i * 100000));
                ASSERT_EQ(w, WORD(i));
                ASSERT_EQ(d, double(i) / 3);
                if (i % 50 == 0)
                {
                    Bytes got(block.size());
                    EXPECT_EQ(ar.Read(got.data(), static_cast<UINT>(got.size())), got.size());
                    ASSERT_EQ(got, block);
                }
            }
        },
        128);
}

// ---- Counts -----------------------------------------------------------------------

namespace
{
// Decodes through a pipe: the archive can't know its length, so counts too big
// for the bytes that follow are still decoded rather than refused.
DWORD_PTR ReadCountFromPipe(const Bytes &bytes)
{
    int fds[2];
    EXPECT_EQ(::pipe(fds), 0);
    EXPECT_EQ(::write(fds[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    ::close(fds[1]);
    CFile pipeFile(fds[0]);
    DWORD_PTR count = 0;
    {
        CArchive ar(&pipeFile, CArchive::load);
        EXPECT_EQ(ar.GetBytesRemaining(), CArchive::unknownLength);
        count = ar.ReadCount();
        ar.Abort();
    }
    pipeFile.Close();
    return count;
}
} // namespace

TEST(CArchiveCounts, EachWidthStartsExactlyAtItsBoundary)
{
    const std::pair<DWORD_PTR, Bytes> cases[] = {
        {0, {0x00, 0x00}},
        {0xFFFE, {0xFE, 0xFF}},
        {0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
        {0x10000, {0xFF, 0xFF, 0x00, 0x00, 0x01, 0x00}},
        {0xFFFFFFFE, {0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF}},
        {0xFFFFFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00}},
        {0x100000000ull, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00}},
    };
    for (const auto &[count, bytes] : cases)
    {
        SCOPED_TRACE(count);
        EXPECT_EQ(Store([&](CArchive &ar) { ar.WriteCount(count); }), bytes);
        EXPECT_EQ(ReadCountFromPipe(bytes), count);
    }
    // With a known length, a count that exactly fits the bytes left loads.
    Bytes fits = Store([](CArchive &ar) { ar.WriteCount(0xFFFF); });
    fits.resize(fits.size() + 0xFFFF);
    Load(fits, [](CArchive &ar) { EXPECT_EQ(ar.ReadCount(), 0xFFFFu); });
}

// ---- Strings ----------------------------------------------------------------------

TEST(CArchiveStrings, LengthPrefixesSwitchFormAtEachBoundary)
{
    const std::pair<int, Bytes> cases[] = {
        {0, {0x00}},
        {254, {0xFE}},
        {255, {0xFF, 0xFF, 0x00}},
        {0xFFFD, {0xFF, 0xFD, 0xFF}},
        {0xFFFE, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}},
        {0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
    };
    const Bytes wideMarker = {0xFF, 0xFE, 0xFF};
    for (const auto &[length, prefix] : cases)
    {
        SCOPED_TRACE(length);
        CString wide;
        CStringA narrow;
        for (int i = 0; i < length; ++i)
        {
            wide += static_cast<wchar_t>(0x3B1 + i % 20); // Greek, two bytes in UTF-16
            narrow += static_cast<char>('a' + i % 26);
        }

        const Bytes w = Store([&](CArchive &ar) { ar << wide; });
        ASSERT_EQ(w.size(), wideMarker.size() + prefix.size() + 2 * length);
        EXPECT_EQ(Bytes(w.begin(), w.begin() + 3 + prefix.size()), Concat({wideMarker, prefix}));
        if (length)
        {
            EXPECT_EQ(w[3 + prefix.size()], 0xB1);
        }

        const Bytes n = Store([&](CArchive &ar) { ar << narrow; });
        ASSERT_EQ(n.size(), prefix.size() + length);
        EXPECT_EQ(Bytes(n.begin(), n.begin() + prefix.size()), prefix);

        EXPECT_TRUE(LoadOne<CString>(w) == wide);
        EXPECT_TRUE(LoadOne<CStringA>(n) == narrow);
    }
}

TEST(CArchiveStrings, HugeLengthsUseTheThirtyTwoAndSixtyFourBitForms)
{
    EXPECT_EQ(Store([](CArchive &ar) { AfxWriteStringLength(ar, 0xFFFFFFFE, TRUE); }),
              (Bytes{0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Store([](CArchive &ar) { AfxWriteStringLength(ar, 0xFFFFFFFF, FALSE); }),
              (Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}));
    Load({0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF}, [](CArchive &ar) {
        int size;
        EXPECT_EQ(AfxReadStringLength(ar, size), 0xFFFFFFFEu);
        EXPECT_EQ(size, 1);
    });
}

TEST(CArchiveStrings, PairsLoneSurrogatesAndNonCharactersHaveFixedBytes)
{
    auto units = [](std::initializer_list<UINT> codes) {
        CString s;
        for (UINT c : codes)
            s += static_cast<wchar_t>(c);
        return s;
    };
    struct Case
    {
        const char *what;
        CString text;
        Bytes bytes;
        bool loadsBack;
    };
    const Case cases[] = {
        {"characters beyond the basic plane as pairs", CString(L"a\U0001D11E\U0001F3B5z"),
         {0xFF, 0xFE, 0xFF, 0x06, 0x61, 0x00, 0x34, 0xD8, 0x1E, 0xDD, 0x3C, 0xD8, 0xB5, 0xDF, 0x7A, 0x00}, true},
        {"lone surrogates kept", units({0xD800, 'A', 0xDC00}),
         {0xFF, 0xFE, 0xFF, 0x03, 0x00, 0xD8, 0x41, 0x00, 0x00, 0xDC}, true},
        {"beyond U+10FFFF becomes the replacement", units({0x110000}), {0xFF, 0xFE, 0xFF, 0x01, 0xFD, 0xFF}, false},
    };
    for (const Case &c : cases)
    {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(Store([&](CArchive &ar) { ar << c.text; }), c.bytes);
        if (c.loadsBack)
        {
            EXPECT_TRUE(LoadOne<CString>(c.bytes) == c.text);
        }
    }

    // 16383 basic units, then a pair whose halves fall into different read pieces.
    CString split(L'x', 16383);
    split += L"\U0001F3B5";
    EXPECT_TRUE(LoadOne<CString>(Store([&](CArchive &ar) { ar << split; })) == split);
}

TEST(CArchiveStrings, NarrowTextLoadsAsWindows1252AndWideTextIntoANarrowStringAsUtf8)
{
    EXPECT_TRUE(LoadOne<CString>({0x04, 'A', 0x80, 0xE9, 0x9F}) == CString(L"A\u20AC\u00E9\u0178"));
    EXPECT_EQ(LoadOne<CStringA>(Store([](CArchive &ar) { ar << CString(L"Fl\u00F6te \U0001D11E"); })).ToUtf8(),
              std::string("Fl\xC3\xB6te \xF0\x9D\x84\x9E"));
}

// ---- Object tags --------------------------------------------------------------------

TEST(CArchiveObjects, NewClassClassReferenceBackReferenceAndNullHaveThePlatformsBytes)
{
    ArPoint p, q;
    p.m_x = 1;
    p.m_y = -1;
    q.m_x = 2;
    q.m_y = 3;
    const Bytes bytes = Store([&](CArchive &ar) {
        ar << &p;                // class 1, object 2
        ar << &p;                // back reference
        ar << &q;                // class reference, object 3
        ar << (CObject *)nullptr;
        ar << &q;
    });
    const Bytes expected = Concat({ClassRecord(1, "ArPoint"),
                                   {0x01, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF},
                                   {0x02, 0x00},
                                   {0x01, 0x80, 0x02, 0, 0, 0, 0x03, 0, 0, 0},
                                   {0x00, 0x00},
                                   {0x03, 0x00}});
    EXPECT_EQ(bytes, expected);

    Load(bytes, [](CArchive &ar) {
        CObject *a, *b, *c, *n, *d;
        ar >> a >> b >> c >> n >> d;
        ASSERT_TRUE(a && c);
        EXPECT_EQ(a, b);
        EXPECT_EQ(c, d);
        EXPECT_NE(a, c);
        EXPECT_EQ(n, nullptr);
        EXPECT_EQ(static_cast<ArPoint *>(c)->m_y, 3);
        EXPECT_EQ(ar.GetLoadedObjects(), (std::vector<CObject *>{a, c}));
    });
}

TEST(CArchiveObjects, IndicesAboveTheSmallRangeUseTheBigTagForObjectsAndClasses)
{
    std::vector<ArPoint> pad(0x7FFD); // indices 1 to 0x7FFD
    ArPoint m, a, b;
    a.m_x = 10;
    b.m_x = 20;
    const Bytes bytes = Store([&](CArchive &ar) {
        for (const ArPoint &p : pad)
            ar.MapObject(&p);
        ar.MapObject(&m); // 0x7FFE, the last small index
        ar << &m;
        ar << &a; // class 0x7FFF, object 0x8000
        ar << &a;
        ar << &b; // class reference 0x7FFF in the big form, object 0x8001
        ar << &b;
    });
    const Bytes expected = Concat({{0xFE, 0x7F},
                                   ClassRecord(1, "ArPoint"),
                                   {10, 0, 0, 0, 0, 0, 0, 0},
                                   {0xFF, 0x7F, 0x00, 0x80, 0x00, 0x00},
                                   {0xFF, 0x7F, 0xFF, 0x7F, 0x00, 0x80},
                                   {20, 0, 0, 0, 0, 0, 0, 0},
                                   {0xFF, 0x7F, 0x01, 0x80, 0x00, 0x00}});
    EXPECT_EQ(bytes, expected);

    std::vector<ArPoint> padIn(pad.size());
    ArPoint mIn;
    Load(bytes, [&](CArchive &ar) {
        for (const ArPoint &p : padIn)
            ar.MapObject(&p);
        ar.MapObject(&mIn);
        CObject *m1, *a1, *a2, *b1, *b2;
        ar >> m1 >> a1 >> a2 >> b1 >> b2;
        EXPECT_EQ(m1, &mIn);
        EXPECT_EQ(a1, a2);
        EXPECT_EQ(b1, b2);
        EXPECT_NE(a1, b1);
        EXPECT_EQ(static_cast<ArPoint *>(a1)->m_x, 10);
        EXPECT_EQ(static_cast<ArPoint *>(b1)->m_x, 20);
        EXPECT_EQ(ar.GetLoadedObjects().size(), 2u);
    });
}

TEST(CArchiveObjects, SharedAndCyclicGraphsComeBackAsOneObjectEach)
{
    ArNode root, c1, c2;
    root.m_children = {&c1, &c2};
    c2.m_children = {&c1}; // c1 has two parents
    c1.m_pLink = &c1;      // itself
    c2.m_pLink = &root;    // an ancestor
    root.m_pLink = &c2;
    c1.m_value = 1;
    c2.m_value = 2;
    root.m_value = 3;
    const Bytes bytes = Store([&](CArchive &ar) { ar << &root; });

    Load(bytes, [](CArchive &ar) {
        ArNode *r;
        ar >> r;
        ASSERT_EQ(ar.GetLoadedObjects().size(), 3u);
        ASSERT_EQ(r->m_children.size(), 2u);
        ArNode *a = r->m_children[0], *b = r->m_children[1];
        EXPECT_EQ(a->m_value, 1);
        EXPECT_EQ(b->m_value, 2);
        EXPECT_EQ(r->m_value, 3);
        ASSERT_EQ(b->m_children.size(), 1u);
        EXPECT_EQ(b->m_children[0], a);
        EXPECT_EQ(a->m_pLink, a);
        EXPECT_EQ(b->m_pLink, r);
        EXPECT_EQ(r->m_pLink, b);
    });
}

TEST(CArchiveObjects, ARootSavedByItsOwnSerializeIsReferencedNotWrittenAgain)
{
    ArNode root, child;
    root.m_children = {&child};
    child.m_pLink = &root;
    const Bytes bytes = Store([&](CArchive &ar) {
        ar.MapObject(&root);
        root.Serialize(ar);
    });
    // count, child (class 2, object 3, no children, link to root as index 1, value), root's link, value
    const Bytes expected = Concat({{0x01, 0x00},
                                   ClassRecord(1, "ArNode"),
                                   {0x00, 0x00, 0x01, 0x00, 0, 0, 0, 0},
                                   {0x00, 0x00, 0, 0, 0, 0}});
    EXPECT_EQ(bytes, expected);

    ArNode loadedRoot;
    Load(bytes, [&](CArchive &ar) {
        ar.MapObject(&loadedRoot);
        loadedRoot.Serialize(ar);
        ASSERT_EQ(loadedRoot.m_children.size(), 1u);
        EXPECT_EQ(loadedRoot.m_children[0]->m_pLink, &loadedRoot);
        EXPECT_EQ(ar.GetLoadedObjects(), (std::vector<CObject *>{loadedRoot.m_children[0]}));
    });
}

TEST(CArchiveObjects, AVersionableClassLoadsAnOlderSchemaAndHandsItToTheRecord)
{
    // Two objects stored by an older writer (schema 1: m_a only); the second
    // refers to the class, and still gets schema 1.
    const Bytes old = Concat({ClassRecord(1, "ArVersioned"), {0x11, 0x00}, {0x01, 0x80, 0x22, 0x00}});
    Load(old, [](CArchive &ar) {
        ArVersioned *a, *b;
        ar >> a >> b;
        EXPECT_EQ(a->m_loadedSchema, 1u);
        EXPECT_EQ(a->m_a, 0x11);
        EXPECT_EQ(a->m_b, 0xBBBB);
        EXPECT_EQ(b->m_loadedSchema, 1u);
        EXPECT_EQ(b->m_a, 0x22);
        // The schema can be asked once per record.
        EXPECT_EQ(a->m_secondAsk, (UINT)-1);
        EXPECT_EQ(ar.GetBytesRemaining(), 0u);
    });

    ArVersioned v;
    v.m_a = 5;
    v.m_b = 6;
    const Bytes current = Store([&](CArchive &ar) { ar << &v; });
    EXPECT_EQ(current, Concat({ClassRecord(3, "ArVersioned"), {5, 0, 6, 0}}));
    Load(current, [](CArchive &ar) {
        ArVersioned *a;
        ar >> a;
        EXPECT_EQ(a->m_loadedSchema, 3u);
        EXPECT_EQ(a->m_b, 6);
    });
}

TEST(CArchiveObjects, WriteClassAndReadClassRoundTripWithSchema)
{
    const Bytes bytes = Store([](CArchive &ar) {
        ar.WriteClass(RUNTIME_CLASS(ArVersioned));
        ar.WriteClass(RUNTIME_CLASS(ArVersioned));
        ar.SerializeClass(RUNTIME_CLASS(ArPoint));
    });
    EXPECT_EQ(bytes, Concat({ClassRecord(3, "ArVersioned"), {0x01, 0x80}, ClassRecord(1, "ArPoint")}));
    Load(bytes, [](CArchive &ar) {
        UINT schema = 0;
        EXPECT_EQ(ar.ReadClass(nullptr, &schema), RUNTIME_CLASS(ArVersioned));
        EXPECT_EQ(schema, 3u);
        EXPECT_EQ(ar.ReadClass(RUNTIME_CLASS(ArVersioned)), RUNTIME_CLASS(ArVersioned));
        EXPECT_EQ(ar.GetObjectSchema(), 3u);
        ar.SerializeClass(RUNTIME_CLASS(ArPoint));
    });
}

// ---- Failures ---------------------------------------------------------------------------

TEST(CArchiveObjects, EachKindOfBadStreamOrMisuseRaisesItsCause)
{
    const Bytes point = Concat({ClassRecord(1, "ArPoint"), Bytes(8, 0)}); // class 1, object 2
    auto readAs = [](const CRuntimeClass *pClass, int n = 1) {
        return [=](CArchive &ar) {
            for (int i = 0; i < n; ++i)
                ar.ReadObject(pClass);
        };
    };
    auto readWide = [](CArchive &ar) { ReadOne<CString>(ar); };
    auto readNarrow = [](CArchive &ar) { ReadOne<CStringA>(ar); };
    auto readCount = [](CArchive &ar) { ar.ReadCount(); };
    // A count followed by two bytes where more are needed.
    auto countOverTwoBytes = [](DWORD_PTR n) {
        return Concat({Store([=](CArchive &ar) { ar.WriteCount(n); }), {0, 0}});
    };
    struct Case
    {
        const char *fault;
        Bytes bytes; // loaded; ignored when storing
        std::function<void(CArchive &)> use;
        int cause;
        bool storing = false;
    };
    const Case cases[] = {
        {"unknown class name", Concat({ClassRecord(1, "ArNoSuch"), Bytes(8, 0)}), readAs(nullptr),
         CArchiveException::badClass},
        {"class of another branch", point, readAs(RUNTIME_CLASS(ArOther)), CArchiveException::badClass},
        {"base where a derived class is expected", point, readAs(RUNTIME_CLASS(ArLabel)), CArchiveException::badClass},
        {"back reference to an object of another class",
         Concat({ClassRecord(1, "ArOther"), {0x02, 0x00}}),
         [](CArchive &ar) {
             ar.ReadObject(RUNTIME_CLASS(ArOther));
             ar.ReadObject(RUNTIME_CLASS(ArPoint));
         },
         CArchiveException::badClass},
        {"class that can't be created", ClassRecord(0xFFFF, "ArAbstract"), readAs(nullptr), CArchiveException::badClass},
        {"class that is not serializable", ClassRecord(0xFFFF, "ArDynamic"), readAs(nullptr),
         CArchiveException::badClass},
        {"the root class by name", ClassRecord(0xFFFF, "CObject"), readAs(nullptr), CArchiveException::badClass},
        {"class name longer than the format allows", Concat({{0xFF, 0xFF, 1, 0, 64, 0}, Bytes(64, 'A')}),
         readAs(nullptr), CArchiveException::badClass},
        {"class name with a NUL inside", Concat({{0xFF, 0xFF, 1, 0, 8, 0}, Text("ArPoint"), {0}}), readAs(nullptr),
         CArchiveException::badClass},
        {"schema mismatch of a fixed class", Concat({ClassRecord(2, "ArPoint"), Bytes(8, 0)}), readAs(nullptr),
         CArchiveException::badSchema},
        {"reference to an object not read yet", {0x05, 0x00}, readAs(nullptr), CArchiveException::badIndex},
        {"big reference to an object not read yet", {0xFF, 0x7F, 0x00, 0x00, 0x01, 0x00}, readAs(nullptr),
         CArchiveException::badIndex},
        {"class reference to index 0", {0x00, 0x80}, readAs(nullptr), CArchiveException::badIndex},
        {"class reference to nothing", {0x07, 0x80}, readAs(nullptr), CArchiveException::badIndex},
        {"big class reference to nothing", {0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0xFF}, readAs(nullptr),
         CArchiveException::badIndex},
        {"class reference to an object", Concat({point, {0x02, 0x80}}), readAs(nullptr, 2),
         CArchiveException::badIndex},
        {"object reference to a class", Concat({point, {0x01, 0x00}}), readAs(nullptr, 2),
         CArchiveException::badIndex},
        {"object where only a class may stand", point,
         [](CArchive &ar) {
             ar.ReadClass();
             ar.ReadObject(nullptr); // fields of the point as a tag: 0 is null, fine
             ar.ReadClass();         // 0x0000 again: an object tag
         },
         CArchiveException::badIndex},
        {"stream ends inside a tag", {0xFF}, readAs(nullptr), CArchiveException::endOfFile},
        {"stream ends inside a class name", Bytes(point.begin(), point.begin() + 9), readAs(nullptr),
         CArchiveException::endOfFile},
        {"stream ends inside the fields", Bytes(point.begin(), point.end() - 1), readAs(nullptr),
         CArchiveException::endOfFile},
        // Counts and lengths beyond the bytes left fail before anyone allocates.
        {"count 3", countOverTwoBytes(3), readCount, CArchiveException::endOfFile},
        {"count 0xFFFF", countOverTwoBytes(0xFFFF), readCount, CArchiveException::endOfFile},
        {"count 0xFFFFFFFF", countOverTwoBytes(0xFFFFFFFF), readCount, CArchiveException::endOfFile},
        {"64-bit count", countOverTwoBytes(0x7FFFFFFFFFFFFFFFull), readCount, CArchiveException::endOfFile},
        {"wide length beyond the bytes", {0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 0},
         readWide, CArchiveException::endOfFile},
        {"narrow length beyond the bytes", {0x05, 'a', 'b'}, readNarrow, CArchiveException::endOfFile},
        {"64-bit length beyond what a string can hold",
         {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0x80, 0, 0, 0, 0}, readWide,
         CArchiveException::genericException},
        // Misuse of the archive.
        {"write to a loading archive", {0, 0}, [](CArchive &ar) { ar << DWORD(1); }, CArchiveException::readOnly},
        {"object to a loading archive", {0, 0},
         [](CArchive &ar) {
             ArPoint p;
             ar << &p;
         },
         CArchiveException::readOnly},
        {"read from an archive that stores", {}, [](CArchive &ar) { ReadOne<BYTE>(ar); }, CArchiveException::writeOnly,
         true},
        {"write after Close", {},
         [](CArchive &ar) {
             ar << BYTE(1);
             ar.Close();
             ar << BYTE(2);
         },
         CArchiveException::genericException, true},
        {"object of a class without a schema", {},
         [](CArchive &ar) {
             ArDynamic d;
             ar << &d;
         },
         kNotSupported, true},
        {"class that can't be created", {}, [](CArchive &ar) { ar.WriteClass(RUNTIME_CLASS(ArAbstract)); },
         kNotSupported, true},
        {"class name too long to write", {},
         [](CArchive &ar) {
             ArClassWithANameThatIsFarTooLongForTheArchiveFormatToCarryAtAllReally longName;
             ar << &longName;
         },
         CArchiveException::badClass, true},
    };
    for (const Case &c : cases)
    {
        const int cause = CauseOf([&] { c.storing ? (void)Store(c.use) : Load(c.bytes, c.use); });
        EXPECT_EQ(cause, c.cause) << c.fault << ": got " << CArchiveException::CauseName(cause);
    }
}

TEST(CArchiveObjects, AFailedLoadListsEveryObjectItCreatedInOrder)
{
    ArNode root;
    ArNode first;
    ArThrower bad;
    ArNode never;
    root.m_children = {&first, &bad, &never};
    const Bytes bytes = Store([&](CArchive &ar) { ar << &root; });

    CMemFile mem(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&mem, CArchive::load);
    try
    {
        ar.ReadObject(RUNTIME_CLASS(ArNode));
        ADD_FAILURE() << "the thrower's record should have failed the load";
    }
    catch (const CArchiveException &e)
    {
        EXPECT_EQ(e.m_cause, CArchiveException::genericException);
    }
    const std::vector<CObject *> &made = ar.GetLoadedObjects();
    ASSERT_EQ(made.size(), 3u);
    EXPECT_EQ(made[0]->GetRuntimeClass(), RUNTIME_CLASS(ArNode));
    EXPECT_EQ(made[1]->GetRuntimeClass(), RUNTIME_CLASS(ArNode));
    EXPECT_EQ(made[2]->GetRuntimeClass(), RUNTIME_CLASS(ArThrower));
    EXPECT_EQ(static_cast<ArNode *>(made[0])->m_children, (std::vector<ArNode *>{static_cast<ArNode *>(made[1])}));
    for (CObject *p : made)
        delete p;
}

TEST(CArchiveObjects, NestingBeyondTheDepthLimitFailsCleanlyInsteadOfOverflowingTheStack)
{
    // Each node holds one child: count 1, then the child's tag. 5000 levels.
    Bytes bytes = Concat({ClassRecord(1, "ArNode"), {0x01, 0x00}});
    for (int i = 0; i < 5000; ++i)
        bytes.insert(bytes.end(), {0x01, 0x80, 0x01, 0x00});
    EXPECT_EQ(CauseOf([&] { Load(bytes, [](CArchive &ar) { ar.ReadObject(nullptr); }); }),
              CArchiveException::genericException);

    // The limit is the caller's to raise or lower.
    Bytes shallow = Concat({ClassRecord(1, "ArNode"), {0x01, 0x00, 0x01, 0x80, 0x00, 0x00}, Bytes(6, 0), Bytes(6, 0)});
    Load(shallow, [](CArchive &ar) {
        ar.SetMaxObjectDepth(2);
        EXPECT_NE(ar.ReadObject(nullptr), nullptr);
    });
    EXPECT_EQ(CauseOf([&] {
                  Load(shallow, [](CArchive &ar) {
                      ar.SetMaxObjectDepth(1);
                      ar.ReadObject(nullptr);
                  });
              }),
              CArchiveException::genericException);
}

// ---- Files and buffering --------------------------------------------------------------------

TEST(CArchiveFiles, ALoadingArchiveGivesBackUnreadBytesWhenClosed)
{
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store);
        ar << DWORD(1) << DWORD(2) << DWORD(3);
    }
    mem.SeekToBegin();
    {
        CArchive ar(&mem, CArchive::load);
        DWORD a;
        ar >> a;
        EXPECT_EQ(a, 1u);
        EXPECT_EQ(ar.GetBytesRemaining(), 8u);
    }
    EXPECT_EQ(mem.GetPosition(), 4u);
    CArchive ar(&mem, CArchive::load);
    DWORD b, c;
    ar >> b >> c;
    EXPECT_EQ(b, 2u);
    EXPECT_EQ(c, 3u);
}

TEST(CArchiveFiles, TheDestructorFlushesUnlessToldNotToAndAbortWritesNothing)
{
    const std::tuple<UINT, bool, ULONGLONG> cases[] = {
        {CArchive::store, false, 4}, {CArchive::store | CArchive::bNoFlushOnDelete, false, 0}, {CArchive::store, true, 0}};
    for (const auto &[mode, abort, length] : cases)
    {
        CMemFile mem;
        {
            CArchive ar(&mem, mode);
            ar << DWORD(7);
            if (abort)
                ar.Abort();
        }
        EXPECT_EQ(mem.GetLength(), length) << "mode " << mode << (abort ? ", aborted" : "");
    }
}

TEST(CArchiveFiles, ALentBufferIsUsedAndATooSmallOneIsRefused)
{
    BYTE buffer[256];
    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store, sizeof buffer, buffer);
        ar << DWORD(0xA1B2C3D4);
        EXPECT_EQ(buffer[0], 0xD4);
    }
    EXPECT_EQ(mem.GetLength(), 4u);
    EXPECT_THROW((void)CArchive(&mem, CArchive::store, 16, buffer), CInvalidArgException);
    EXPECT_THROW((void)CArchive(nullptr, CArchive::store), CInvalidArgException);
}
