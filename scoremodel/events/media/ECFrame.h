// ECFrame: a framed area of a page of the performance, in the views'
// coordinates.
//
// A new frame is empty (all four edges 0) and not valid: IsValid asks for a
// width and a height above 0, so a frame dragged to nothing is refused by
// the views. operator= copies the rectangle.
//
// Archive record (schema 3): that of ECWithTime, then left, top, right and
// bottom (4 bytes each). Records of schema 2 end after the ECWithTime part
// and the frame stays empty.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/platform/CGeometry.h>

class SCOREMODEL_API ECFrame : public ECWithTime
{
    DECLARE_SERIAL(ECFrame)

public:
    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 25.
    int GetEventId() const override;
    // ECPerformance.
    int GetParentTypes(CArray<int, int> &types) override;

    const CRect &GetFrame() const { return m_rect; }
    // Stores the rectangle as given; IsValid judges it.
    void SetFrame(const CRect &rect) { m_rect = rect; }
    // 1 when the frame has a width and a height above 0.
    int IsValid() const;

    ECFrame &operator=(const ECFrame &other);
    int operator==(const ECFrame &other) const;
    int operator!=(const ECFrame &other) const { return !(*this == other); }

protected:
    ~ECFrame() override;

    CRect m_rect;
};
