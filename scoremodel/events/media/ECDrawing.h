// ECDrawing: a drawing on the conductor staff: a line, a rectangle or an
// ellipse the user drew over the score, in the views' coordinates.
//
// A line runs from the top-left to the bottom-right corner of its bounds,
// so it may point any way (the bounds need not be normal); a rectangle and
// an ellipse fill their bounds. A new drawing is a line of empty bounds.
// operator= copies the shape and the bounds; ECBase's operator== is
// identity, so compare GetShape and GetBounds.
//
// Archive record (schema 3): that of ECBase, then the shape (1 byte) and
// left, top, right and bottom (4 bytes each). Records of schema 2 end after
// the ECBase part; a shape beyond ShapeLast reads as ShapeLine.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/platform/CGeometry.h>

class SCOREMODEL_API ECDrawing : public ECBase
{
    DECLARE_SERIAL(ECDrawing)

public:
    enum Shape : int
    {
        ShapeLine = 0,
        ShapeRectangle = 1,
        ShapeEllipse = 2,
        ShapeLast = ShapeEllipse
    };

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 77.
    int GetEventId() const override;
    // ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    int GetShape() const { return m_nShape; }
    // A shape outside ShapeLine..ShapeLast changes nothing.
    void SetShape(int shape);
    const CRect &GetBounds() const { return m_bounds; }
    void SetBounds(const CRect &bounds) { m_bounds = bounds; }

    ECDrawing &operator=(const ECDrawing &other)
    {
        ECBase::operator=(other);
        m_nShape = other.m_nShape;
        m_bounds = other.m_bounds;
        return *this;
    }
    int operator==(const ECDrawing &other) const { return ECBase::operator==(other); }
    int operator!=(const ECDrawing &other) const { return !(*this == other); }

protected:
    ~ECDrawing() override;

    int m_nShape = ShapeLine;
    CRect m_bounds;
};
