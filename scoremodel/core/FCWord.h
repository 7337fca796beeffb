// FCWord: a typed field holding a 16-bit word, with its arithmetic and comparisons.
// Integer arithmetic wraps; dividing by zero leaves the value as it was.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCWord : public FCBase
{
    FC_DECLARE_VALUE(FCWord, WORD, WORD, 0)

    FC_DECLARE_ARITHMETIC(FCWord, WORD)
    FC_DECLARE_REMAINDER(FCWord, WORD)
    FC_DECLARE_COMPARISONS(FCWord, WORD)
};
