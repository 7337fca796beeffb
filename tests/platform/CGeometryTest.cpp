#include <scoremodel/platform/CGeometry.h>

#include <gtest/gtest.h>

#include <climits>
#include <ostream>

// Readable failures: a rectangle prints as its four coordinates.
static std::ostream &operator<<(std::ostream &os, const CRect &r)
{
    return os << "(" << r.left << "," << r.top << "," << r.right << "," << r.bottom << ")";
}

namespace
{

TEST(CRectSetOps, IntersectionIsTheOverlapOrEmpty)
{
    struct Case
    {
        const char *what;
        CRect a, b, expected;
        bool overlaps;
    };
    const Case cases[] = {
        {"partial overlap", {0, 0, 10, 10}, {5, 5, 20, 20}, {5, 5, 10, 10}, true},
        {"contained", {0, 0, 10, 10}, {2, 3, 4, 5}, {2, 3, 4, 5}, true},
        {"shared right edge only", {0, 0, 10, 10}, {10, 0, 20, 10}, {0, 0, 0, 0}, false},
        {"empty operand", {0, 0, 10, 10}, {3, 3, 3, 8}, {0, 0, 0, 0}, false},
        {"inverted operand", {0, 0, 10, 10}, {8, 8, 2, 2}, {0, 0, 0, 0}, false},
        {"negative coordinates", {-10, -10, 0, 0}, {-5, -20, 5, -5}, {-5, -10, 0, -5}, true},
    };
    for (const Case &c : cases)
    {
        CRect r(99, 99, 100, 100);
        EXPECT_EQ(c.overlaps, r.IntersectRect(&c.a, &c.b)) << c.what;
        EXPECT_EQ(c.expected, r) << c.what;
        EXPECT_EQ(c.expected, c.a & c.b) << c.what;
        EXPECT_EQ(c.expected, c.b & c.a) << c.what << " (swapped)";
    }
}

TEST(CRectSetOps, UnionIgnoresEmptyRectangles)
{
    struct Case
    {
        const char *what;
        CRect a, b, expected;
        bool nonEmpty;
    };
    const Case cases[] = {
        {"two boxes", {0, 0, 2, 2}, {5, 6, 7, 8}, {0, 0, 7, 8}, true},
        {"empty far away does not stretch", {0, 0, 2, 2}, {100, 100, 100, 200}, {0, 0, 2, 2}, true},
        {"empty first", {-50, -50, -50, -50}, {1, 1, 2, 2}, {1, 1, 2, 2}, true},
        {"both empty", {1, 1, 1, 1}, {5, 5, 4, 4}, {0, 0, 0, 0}, false},
    };
    for (const Case &c : cases)
    {
        CRect r;
        EXPECT_EQ(c.nonEmpty, r.UnionRect(&c.a, &c.b)) << c.what;
        EXPECT_EQ(c.expected, r) << c.what;
        EXPECT_EQ(c.expected, c.b | c.a) << c.what << " (swapped)";
    }
}

TEST(CRectSetOps, InPlaceOperationsMayNameThemselves)
{
    CRect r(0, 0, 10, 10);
    const CRect other(5, 5, 15, 15);
    EXPECT_TRUE(r.IntersectRect(&r, &other));
    EXPECT_EQ(CRect(5, 5, 10, 10), r);
    r.UnionRect(&r, &other);
    EXPECT_EQ(CRect(5, 5, 15, 15), r);
}

TEST(CRectShape, NormalizeSwapsInvertedCorners)
{
    struct Case
    {
        CRect in, expected;
    };
    const Case cases[] = {
        {{10, 20, 0, 0}, {0, 0, 10, 20}},
        {{10, 0, 0, 20}, {0, 0, 10, 20}},
        {{0, 20, 10, 0}, {0, 0, 10, 20}},
    };
    for (const Case &c : cases)
    {
        CRect r = c.in;
        r.NormalizeRect();
        EXPECT_EQ(c.expected, r) << c.in;
    }
}

TEST(CRectShape, PointsOnTheRightAndBottomEdgesAreOutside)
{
    const CRect r(0, 0, 10, 5);
    struct Case
    {
        CPoint p;
        bool inside;
    };
    const Case cases[] = {
        {{0, 0}, true},  {{9, 4}, true},   {{10, 0}, false}, {{0, 5}, false},
        {{-1, 2}, false}, {{5, -1}, false}, {{10, 5}, false},
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.inside, r.PtInRect(c.p)) << c.p.x << "," << c.p.y;
    EXPECT_FALSE(CRect(3, 3, 3, 9).PtInRect(CPoint(3, 4))) << "an empty rectangle contains nothing";
}

TEST(CRectShape, OverDeflatingInvertsAndAnInvertedRectangleIsEmpty)
{
    CRect r(10, 20, 30, 40);
    const RECT sides{1, 2, 3, 4};
    r.InflateRect(&sides);
    EXPECT_EQ(CRect(9, 18, 33, 44), r) << "each side grows by its own amount";
    r.DeflateRect(CSize(15, 15));
    EXPECT_EQ(CRect(24, 33, 18, 29), r);
    EXPECT_TRUE(r.IsRectEmpty());
    EXPECT_FALSE(CRect(5, 5, 5, 10).IsRectNull());
}

TEST(CRectShape, FarCoordinatesDoNotOverflow)
{
    const CRect r(INT_MAX - 10, INT_MAX - 10, INT_MAX, INT_MAX);
    EXPECT_EQ(CPoint(INT_MAX - 5, INT_MAX - 5), r.CenterPoint());
    EXPECT_EQ(10, r.Width());
    const CRect wide(INT_MIN, 0, INT_MAX, 1);
    EXPECT_EQ(CPoint(0, 0), wide.CenterPoint());
}

TEST(CPointArithmetic, PackedPointKeepsSignedWords)
{
    EXPECT_EQ(CPoint(-1, 2), CPoint(DWORD(0x0002FFFF)));
    EXPECT_EQ(CPoint(100, -300), CPoint(static_cast<DWORD>(MAKELONG(100, -300))));
}

} // namespace
