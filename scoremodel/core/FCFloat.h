// FCFloat: a typed field holding a float, with its arithmetic and comparisons.
// Arithmetic is that of float, but dividing by zero leaves the value as it was.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCFloat : public FCBase
{
    FC_DECLARE_VALUE(FCFloat, float, float, 0.0f)

    FC_DECLARE_ARITHMETIC(FCFloat, float)
    FC_DECLARE_COMPARISONS(FCFloat, float)
};
