// FCRect: a typed field holding a rectangle (CRect). Only == and != exist, as on
// CRect itself.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>
#include <scoremodel/platform/CGeometry.h>

class SCOREMODEL_API FCRect : public FCBase
{
    FC_DECLARE_VALUE(FCRect, CRect, const CRect &, CRect())

    FC_DECLARE_EQUALITY(FCRect, const CRect &)
};
