// FCDWord: a typed field holding an unsigned long, with its arithmetic and comparisons.
// Integer arithmetic wraps; dividing by zero leaves the value as it was.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCDWord : public FCBase
{
    FC_DECLARE_VALUE(FCDWord, unsigned long, unsigned long, 0)

    FC_DECLARE_ARITHMETIC(FCDWord, unsigned long)
    FC_DECLARE_REMAINDER(FCDWord, unsigned long)
    FC_DECLARE_COMPARISONS(FCDWord, unsigned long)
};
