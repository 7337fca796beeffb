// FCSize: a typed field holding an extent (CSize). Only == and != exist, as on
// CSize itself.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>
#include <scoremodel/platform/CGeometry.h>

class SCOREMODEL_API FCSize : public FCBase
{
    FC_DECLARE_VALUE(FCSize, CSize, const CSize &, CSize())

    FC_DECLARE_EQUALITY(FCSize, const CSize &)
};
