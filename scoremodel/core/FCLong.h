// FCLong: a typed field holding a long, with its arithmetic and comparisons.
// Integer arithmetic wraps; dividing by zero leaves the value as it was.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCLong : public FCBase
{
    FC_DECLARE_VALUE(FCLong, long, long, 0)

    FC_DECLARE_ARITHMETIC(FCLong, long)
    FC_DECLARE_REMAINDER(FCLong, long)
    FC_DECLARE_COMPARISONS(FCLong, long)
};
