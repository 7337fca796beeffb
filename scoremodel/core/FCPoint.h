// FCPoint: a typed field holding a point (CPoint). Only == and != exist, as on
// CPoint itself.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>
#include <scoremodel/platform/CGeometry.h>

class SCOREMODEL_API FCPoint : public FCBase
{
    FC_DECLARE_VALUE(FCPoint, CPoint, const CPoint &, CPoint())

    FC_DECLARE_EQUALITY(FCPoint, const CPoint &)
};
