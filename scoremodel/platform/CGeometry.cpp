#include <scoremodel/platform/CGeometry.h>

#include <algorithm>
#include <utility>

CPoint CRect::CenterPoint() const
{
    // In 64 bits so that the sum of two far coordinates cannot wrap.
    return CPoint(static_cast<LONG>((static_cast<LONGLONG>(left) + right) / 2),
                  static_cast<LONG>((static_cast<LONGLONG>(top) + bottom) / 2));
}

void CRect::OffsetRect(int x, int y)
{
    left = GeoAdd(left, x);
    right = GeoAdd(right, x);
    top = GeoAdd(top, y);
    bottom = GeoAdd(bottom, y);
}

void CRect::InflateRect(int l, int t, int r, int b)
{
    left = GeoSub(left, l);
    top = GeoSub(top, t);
    right = GeoAdd(right, r);
    bottom = GeoAdd(bottom, b);
}

void CRect::DeflateRect(int l, int t, int r, int b)
{
    left = GeoAdd(left, l);
    top = GeoAdd(top, t);
    right = GeoSub(right, r);
    bottom = GeoSub(bottom, b);
}

void CRect::NormalizeRect()
{
    if (left > right)
        std::swap(left, right);
    if (top > bottom)
        std::swap(top, bottom);
}

void CRect::SwapLeftRight()
{
    std::swap(left, right);
}

bool CRect::IntersectRect(LPCRECT r1, LPCRECT r2)
{
    // Read both before writing: either may be this rectangle.
    const CRect a(r1), b(r2);
    if (!r1 || !r2 || a.IsRectEmpty() || b.IsRectEmpty())
    {
        SetRectEmpty();
        return false;
    }
    const CRect o(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                  std::min(a.bottom, b.bottom));
    if (o.IsRectEmpty())
    {
        SetRectEmpty();
        return false;
    }
    *this = o;
    return true;
}

bool CRect::UnionRect(LPCRECT r1, LPCRECT r2)
{
    const CRect a(r1), b(r2);
    const bool aEmpty = !r1 || a.IsRectEmpty();
    const bool bEmpty = !r2 || b.IsRectEmpty();
    if (aEmpty && bEmpty)
        SetRectEmpty();
    else if (aEmpty)
        *this = b;
    else if (bEmpty)
        *this = a;
    else
        SetRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                std::max(a.bottom, b.bottom));
    return !IsRectEmpty();
}
