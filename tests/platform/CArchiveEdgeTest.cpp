// The archive at its edges: the smallest lent buffer, narrow strings from a
// source without a length across the edge of a read piece, sizing hints given
// half-way, and an object entered in the map twice.
#include "ArchiveBytes.h"

#include <gtest/gtest.h>

#include <string>

using namespace archive_bytes;

class ArEdgePoint : public CObject
{
    DECLARE_SERIAL(ArEdgePoint)
public:
    LONG m_x = 0;
    void Serialize(CArchive &ar) override
    {
        if (ar.IsStoring())
            ar << m_x;
        else
            ar >> m_x;
    }
};
IMPLEMENT_SERIAL(ArEdgePoint, CObject, 1)

namespace
{
// Bytes that are not all alike, high ones included, so a piece read twice or
// skipped shows.
std::string Pattern(size_t n)
{
    std::string s(n, '\0');
    for (size_t i = 0; i < n; ++i)
        s[i] = static_cast<char>(0x20 + (i * 7 + i / 251) % 0xE0);
    return s;
}
} // namespace

TEST(CArchiveEdges, ALentBufferOfExactly128BytesIsTakenAndCarriesBothDirections)
{
    BYTE buffer[128];
    EXPECT_THROW((void)CArchive(nullptr, CArchive::store, 128, buffer), CInvalidArgException);
    CMemFile refused;
    EXPECT_THROW((void)CArchive(&refused, CArchive::store, 127, buffer), CInvalidArgException);

    CMemFile mem;
    {
        CArchive ar(&mem, CArchive::store, 128, buffer);
        for (DWORD i = 0; i < 100; ++i)
            ar << i; // 400 bytes through a 128-byte buffer
        ar << CStringA(std::string_view(Pattern(300)));
    }
    mem.SeekToBegin();
    BYTE loadBuffer[128];
    CArchive ar(&mem, CArchive::load, 128, loadBuffer);
    for (DWORD i = 0; i < 100; ++i)
    {
        DWORD v = 0;
        ar >> v;
        ASSERT_EQ(v, i);
    }
    CStringA s;
    ar >> s;
    EXPECT_EQ(s.Str(), Pattern(300));
}

TEST(CArchiveEdges, NarrowStringsFromASourceWithoutALengthCrossTheReadPieceEdge)
{
    for (size_t n : {16383u, 16384u, 16385u, 32768u, 40000u})
    {
        SCOPED_TRACE(n);
        const std::string text = Pattern(n);
        const Bytes bytes = Store([&](CArchive &ar) { ar << CStringA(std::string_view(text)) << DWORD(0xC0FFEE); });

        CStringA narrow;
        DWORD after = 0;
        Load(bytes, [&](CArchive &ar) { ar >> narrow >> after; }, 4096, false);
        EXPECT_EQ(narrow.Str(), text);
        EXPECT_EQ(after, 0xC0FFEEu) << "the string must end exactly at its length";

        // The same bytes into a wide string: one character per byte, and the
        // bytes 0x80 to 0x9F as their Windows-1252 characters.
        CString wide;
        Load(bytes, [&](CArchive &ar) { ar >> wide; }, 4096, false);
        ASSERT_EQ(static_cast<size_t>(wide.GetLength()), n);
        for (size_t i : {size_t(0), size_t(16383), size_t(16384) % n, n - 1})
        {
            const BYTE b = static_cast<BYTE>(text[i]);
            if (b < 0x80 || b >= 0xA0)
            {
                EXPECT_EQ(static_cast<DWORD>(wide.Str()[i]), b) << "at " << i;
            }
        }

        // Cut one byte short: the end of the stream, not a short string.
        Bytes cut(bytes.begin(), bytes.end() - 5);
        EXPECT_EQ(CauseOf([&] { Load(cut, [&](CArchive &ar) { ar >> narrow; }, 4096, false); }),
                  CArchiveException::endOfFile);
    }
}

TEST(CArchiveEdges, SizingHintsGivenHalfWayKeepTheObjectsAlreadyMapped)
{
    std::vector<ArEdgePoint> points(300);
    for (size_t i = 0; i < points.size(); ++i)
        points[i].m_x = static_cast<LONG>(i);

    // Half the objects, then a hint far above what is mapped, then back
    // references to the first half: they must still be references.
    const Bytes withHint = Store([&](CArchive &ar) {
        for (size_t i = 0; i < 150; ++i)
            ar << &points[i];
        ar.SetStoreParams(100000);
        ar.SetLoadParams(10); // a loading hint on a storing archive does nothing
        for (size_t i = 150; i < 300; ++i)
            ar << &points[i];
        for (size_t i = 0; i < 300; ++i)
            ar << &points[i];
    });
    const Bytes plain = Store([&](CArchive &ar) {
        for (size_t i = 0; i < 300; ++i)
            ar << &points[i];
        for (size_t i = 0; i < 300; ++i)
            ar << &points[i];
    });
    EXPECT_EQ(withHint, plain);

    Load(plain, [&](CArchive &ar) {
        ar.SetStoreParams(5); // a storing hint on a loading archive does nothing
        std::vector<CObject *> first;
        for (size_t i = 0; i < 300; ++i)
        {
            if (i == 150)
                ar.SetLoadParams(100000);
            CObject *p = nullptr;
            ar >> p;
            first.push_back(p);
        }
        for (size_t i = 0; i < 300; ++i)
        {
            CObject *p = nullptr;
            ar >> p;
            ASSERT_EQ(p, first[i]) << i;
            ASSERT_EQ(static_cast<ArEdgePoint *>(p)->m_x, static_cast<LONG>(i));
        }
    });
}

TEST(CArchiveEdges, MappingAnObjectTwiceTakesTwoIndicesAndReferencesTheLater)
{
    ArEdgePoint root, other;
    const Bytes bytes = Store([&](CArchive &ar) {
        ar.MapObject(&root);
        ar.MapObject(nullptr); // takes no index
        ar.MapObject(&root);
        ar << &root << &other << &other;
    });
    // root: indices 1 and 2; the class: 3; other: 4.
    const Bytes expected = Concat({{0x02, 0x00, 0xFF, 0xFF, 0x01, 0x00, 0x0B, 0x00},
                                   Bytes{'A', 'r', 'E', 'd', 'g', 'e', 'P', 'o', 'i', 'n', 't'},
                                   {0x00, 0x00, 0x00, 0x00, 0x04, 0x00}});
    EXPECT_EQ(bytes, expected);

    // A reader that maps the same way finds the root under both indices.
    const Bytes refs = Concat({bytes, {0x01, 0x00}});
    Load(refs, [&](CArchive &ar) {
        ar.MapObject(&root);
        ar.MapObject(&root);
        CObject *a = nullptr, *b = nullptr, *c = nullptr, *d = nullptr;
        ar >> a >> b >> c >> d;
        EXPECT_EQ(a, &root);
        ASSERT_NE(b, nullptr);
        EXPECT_EQ(c, b);
        EXPECT_EQ(d, &root);
    });
}

TEST(CArchiveEdges, MisuseAfterCloseAndNullBuffersAreRefusedClearly)
{
    CMemFile mem;
    CArchive ar(&mem, CArchive::store);
    ar << DWORD(1);
    ar.Close();
    ar.Close(); // twice: nothing
    ar.Flush(); // closed: nothing
    EXPECT_EQ(CauseOf([&] { ar << DWORD(2); }), CArchiveException::genericException);
    EXPECT_EQ(mem.GetLength(), 4u);

    CMemFile other;
    CArchive store(&other, CArchive::store);
    EXPECT_THROW(store.Write(nullptr, 4), CInvalidArgException);
    store.Write(nullptr, 0); // nothing to write: no buffer needed
    EXPECT_EQ(CauseOf([&] { store.WriteClass(nullptr); }), CArchiveException::badClass);
    store.Abort();

    // A 64-bit length that fits is read as it is; a null reference through
    // the const form reads as null.
    const Bytes bytes = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 3, 0, 0, 0, 0, 0, 0, 0, 'a', 'b', 'c', 0x00, 0x00};
    Load(bytes, [](CArchive &in) {
        CStringA s;
        in >> s;
        EXPECT_EQ(s.Str(), "abc");
        ArEdgePoint sentinel;
        const CObject *p = &sentinel;
        in >> p;
        EXPECT_EQ(p, nullptr);
        EXPECT_THROW(in.Read(nullptr, 1), CInvalidArgException);
        EXPECT_EQ(in.Read(nullptr, 0), 0u);
        in.ForgetLoadedObjects(5); // more than were loaded: nothing
        EXPECT_TRUE(in.GetLoadedObjects().empty());
    });
}
