// The platform's integer geometry: `CPoint`, `CSize` and `CRect` over the
// plain structs `POINT`, `SIZE` and `RECT`.
//
// They are plain values with LONG (32-bit) fields, so the archive stores them
// field by field. A rectangle is half open: it contains its left and top edges
// but not its right and bottom ones, so `PtInRect` is false on the right and
// bottom edges and a rectangle with right == left is empty. Nothing here
// normalizes by itself; call `NormalizeRect` when the corners may be swapped.
// Arithmetic wraps at 32 bits instead of overflowing, as on the platform.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

struct SCOREMODEL_API POINT
{
    LONG x;
    LONG y;
};

struct SCOREMODEL_API SIZE
{
    LONG cx;
    LONG cy;
};

struct SCOREMODEL_API RECT
{
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

typedef POINT *LPPOINT;
typedef SIZE *LPSIZE;
typedef RECT *LPRECT;
typedef const RECT *LPCRECT;

// 32-bit wrapping arithmetic; signed overflow would be undefined.
inline LONG GeoAdd(LONG a, LONG b) { return static_cast<LONG>(static_cast<DWORD>(a) + static_cast<DWORD>(b)); }
inline LONG GeoSub(LONG a, LONG b) { return static_cast<LONG>(static_cast<DWORD>(a) - static_cast<DWORD>(b)); }

class CPoint;
class CSize;
class CRect;

// An extent: a width and a height, which may be negative.
class SCOREMODEL_API CSize : public SIZE
{
public:
    CSize() : SIZE{0, 0} {}
    CSize(int initCX, int initCY) : SIZE{initCX, initCY} {}
    CSize(SIZE s) : SIZE(s) {}
    explicit CSize(POINT p) : SIZE{p.x, p.y} {}

    void SetSize(int newCX, int newCY) { cx = newCX; cy = newCY; }

    bool operator==(SIZE s) const { return cx == s.cx && cy == s.cy; }
    bool operator!=(SIZE s) const { return !(*this == s); }
    // Exact matches, so that C++20's reversed candidates leave no doubt.
    bool operator==(const CSize &s) const { return *this == static_cast<const SIZE &>(s); }
    bool operator!=(const CSize &s) const { return !(*this == s); }

    CSize &operator+=(SIZE s) { cx = GeoAdd(cx, s.cx); cy = GeoAdd(cy, s.cy); return *this; }
    CSize &operator-=(SIZE s) { cx = GeoSub(cx, s.cx); cy = GeoSub(cy, s.cy); return *this; }
    CSize operator+(SIZE s) const { CSize r(*this); r += s; return r; }
    CSize operator-(SIZE s) const { CSize r(*this); r -= s; return r; }
    CSize operator-() const { return CSize(GeoSub(0, cx), GeoSub(0, cy)); }
    // A size plus a point is the point moved by the size.
    CPoint operator+(POINT p) const;
    CPoint operator-(POINT p) const;
    CRect operator+(const RECT &r) const;
    CRect operator-(const RECT &r) const;
};

// A position in a plane of LONG coordinates.
class SCOREMODEL_API CPoint : public POINT
{
public:
    CPoint() : POINT{0, 0} {}
    CPoint(int initX, int initY) : POINT{initX, initY} {}
    CPoint(POINT p) : POINT(p) {}
    explicit CPoint(SIZE s) : POINT{s.cx, s.cy} {}
    // A packed point as in a message parameter: x in the low word, y in the
    // high word, both signed 16-bit.
    explicit CPoint(DWORD dwPoint)
        : POINT{static_cast<short>(LOWORD(dwPoint)), static_cast<short>(HIWORD(dwPoint))}
    {
    }

    void SetPoint(int newX, int newY) { x = newX; y = newY; }
    void Offset(int dx, int dy) { x = GeoAdd(x, dx); y = GeoAdd(y, dy); }
    void Offset(POINT p) { Offset(p.x, p.y); }
    void Offset(SIZE s) { Offset(s.cx, s.cy); }

    bool operator==(POINT p) const { return x == p.x && y == p.y; }
    bool operator!=(POINT p) const { return !(*this == p); }
    bool operator==(const CPoint &p) const { return *this == static_cast<const POINT &>(p); }
    bool operator!=(const CPoint &p) const { return !(*this == p); }

    CPoint &operator+=(SIZE s) { Offset(s); return *this; }
    CPoint &operator-=(SIZE s) { Offset(GeoSub(0, s.cx), GeoSub(0, s.cy)); return *this; }
    CPoint &operator+=(POINT p) { Offset(p); return *this; }
    CPoint &operator-=(POINT p) { Offset(GeoSub(0, p.x), GeoSub(0, p.y)); return *this; }
    CPoint operator+(SIZE s) const { CPoint r(*this); r += s; return r; }
    CPoint operator-(SIZE s) const { CPoint r(*this); r -= s; return r; }
    CPoint operator+(POINT p) const { CPoint r(*this); r += p; return r; }
    // The difference of two points is the size between them.
    CSize operator-(POINT p) const { return CSize(GeoSub(x, p.x), GeoSub(y, p.y)); }
    CPoint operator-() const { return CPoint(GeoSub(0, x), GeoSub(0, y)); }
    // The rectangle moved by this point.
    CRect operator+(const RECT &r) const;
    CRect operator-(const RECT &r) const;
};

// A half-open rectangle (see the header comment).
class SCOREMODEL_API CRect : public RECT
{
public:
    CRect() : RECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    CRect(const RECT &r) : RECT(r) {}
    CRect(LPCRECT r) : RECT(r ? *r : RECT{0, 0, 0, 0}) {}
    CRect(POINT topLeft, SIZE size) : RECT{topLeft.x, topLeft.y, GeoAdd(topLeft.x, size.cx), GeoAdd(topLeft.y, size.cy)} {}
    CRect(POINT topLeft, POINT bottomRight) : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    operator LPRECT() { return this; }
    operator LPCRECT() const { return this; }

    // ---- Measures -------------------------------------------------------------

    // right - left and bottom - top; negative when the rectangle is not normal.
    int Width() const { return GeoSub(right, left); }
    int Height() const { return GeoSub(bottom, top); }
    CSize Size() const { return CSize(Width(), Height()); }
    // Copies, not references into the rectangle: set corners with SetRect.
    CPoint TopLeft() const { return CPoint(left, top); }
    CPoint BottomRight() const { return CPoint(right, bottom); }
    // The middle, rounded toward zero.
    CPoint CenterPoint() const;

    // True when the width or height is zero or negative.
    bool IsRectEmpty() const { return right <= left || bottom <= top; }
    // True when all four coordinates are zero.
    bool IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    // Left and top edges are inside, right and bottom edges outside.
    bool PtInRect(POINT p) const { return p.x >= left && p.x < right && p.y >= top && p.y < bottom; }
    bool EqualRect(LPCRECT r) const { return r && left == r->left && top == r->top && right == r->right && bottom == r->bottom; }

    // ---- Changing ---------------------------------------------------------------

    void SetRect(int x1, int y1, int x2, int y2) { left = x1; top = y1; right = x2; bottom = y2; }
    void SetRect(POINT topLeft, POINT bottomRight) { SetRect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y); }
    void SetRectEmpty() { SetRect(0, 0, 0, 0); }
    void CopyRect(LPCRECT r) { if (r) *static_cast<RECT *>(this) = *r; }

    void OffsetRect(int x, int y);
    void OffsetRect(POINT p) { OffsetRect(p.x, p.y); }
    void OffsetRect(SIZE s) { OffsetRect(s.cx, s.cy); }
    void MoveToX(int x) { right = GeoAdd(x, Width()); left = x; }
    void MoveToY(int y) { bottom = GeoAdd(y, Height()); top = y; }
    void MoveToXY(int x, int y) { MoveToX(x); MoveToY(y); }
    void MoveToXY(POINT p) { MoveToXY(p.x, p.y); }

    // Grows each side outward by the amount (x from left and right, y from top
    // and bottom); a RECT gives each side its own amount.
    void InflateRect(int x, int y) { InflateRect(x, y, x, y); }
    void InflateRect(SIZE s) { InflateRect(s.cx, s.cy); }
    void InflateRect(LPCRECT r) { if (r) InflateRect(r->left, r->top, r->right, r->bottom); }
    void InflateRect(int l, int t, int r, int b);
    // The inverse of InflateRect.
    void DeflateRect(int x, int y) { DeflateRect(x, y, x, y); }
    void DeflateRect(SIZE s) { DeflateRect(s.cx, s.cy); }
    void DeflateRect(LPCRECT r) { if (r) DeflateRect(r->left, r->top, r->right, r->bottom); }
    void DeflateRect(int l, int t, int r, int b);

    // Swaps left with right and top with bottom where needed so that both
    // extents are non-negative.
    void NormalizeRect();
    void SwapLeftRight();

    // Sets this to the overlap of r1 and r2 and returns true; when they do not
    // overlap (or either is empty) sets this to (0,0,0,0) and returns false.
    bool IntersectRect(LPCRECT r1, LPCRECT r2);
    // Sets this to the smallest rectangle holding both. An empty one is
    // ignored; with both empty this becomes (0,0,0,0). Returns !IsRectEmpty().
    bool UnionRect(LPCRECT r1, LPCRECT r2);

    // ---- Operators --------------------------------------------------------------

    bool operator==(const RECT &r) const { return EqualRect(&r); }
    bool operator!=(const RECT &r) const { return !EqualRect(&r); }
    bool operator==(const CRect &r) const { return EqualRect(&r); }
    bool operator!=(const CRect &r) const { return !EqualRect(&r); }
    CRect &operator+=(POINT p) { OffsetRect(p); return *this; }
    CRect &operator+=(SIZE s) { OffsetRect(s); return *this; }
    CRect &operator+=(LPCRECT r) { InflateRect(r); return *this; }
    CRect &operator-=(POINT p) { OffsetRect(GeoSub(0, p.x), GeoSub(0, p.y)); return *this; }
    CRect &operator-=(SIZE s) { OffsetRect(GeoSub(0, s.cx), GeoSub(0, s.cy)); return *this; }
    CRect &operator-=(LPCRECT r) { DeflateRect(r); return *this; }
    // Intersection and union.
    CRect &operator&=(const RECT &r) { CRect a(*this); IntersectRect(&a, &r); return *this; }
    CRect &operator|=(const RECT &r) { CRect a(*this); UnionRect(&a, &r); return *this; }
    CRect operator+(POINT p) const { CRect r(*this); r += p; return r; }
    CRect operator+(SIZE s) const { CRect r(*this); r += s; return r; }
    CRect operator+(LPCRECT o) const { CRect r(*this); r += o; return r; }
    CRect operator-(POINT p) const { CRect r(*this); r -= p; return r; }
    CRect operator-(SIZE s) const { CRect r(*this); r -= s; return r; }
    CRect operator-(LPCRECT o) const { CRect r(*this); r -= o; return r; }
    CRect operator&(const RECT &o) const { CRect r; r.IntersectRect(this, &o); return r; }
    CRect operator|(const RECT &o) const { CRect r; r.UnionRect(this, &o); return r; }
};

inline CPoint CSize::operator+(POINT p) const { return CPoint(GeoAdd(cx, p.x), GeoAdd(cy, p.y)); }
inline CPoint CSize::operator-(POINT p) const { return CPoint(GeoSub(cx, p.x), GeoSub(cy, p.y)); }
inline CRect CSize::operator+(const RECT &r) const { CRect o(r); o.OffsetRect(*this); return o; }
inline CRect CSize::operator-(const RECT &r) const { CRect o(r); o.OffsetRect(GeoSub(0, cx), GeoSub(0, cy)); return o; }
inline CRect CPoint::operator+(const RECT &r) const { CRect o(r); o.OffsetRect(*this); return o; }
inline CRect CPoint::operator-(const RECT &r) const { CRect o(r); o.OffsetRect(GeoSub(0, x), GeoSub(0, y)); return o; }
