// FCPoint: a typed field holding a point (CPoint). Only == and != exist, as on
// CPoint itself.
#pragma once

#include <scoremodel/core/FCBase.h>
#include <scoremodel/platform/CGeometry.h>

class FCPoint : public FCBase
{
    FC_DECLARE_VALUE(FCPoint, CPoint, const CPoint &, CPoint())

    FC_DECLARE_EQUALITY(FCPoint, const CPoint &)
};
