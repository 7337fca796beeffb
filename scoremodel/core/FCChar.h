// FCChar: a typed field holding a wide character, with its arithmetic and comparisons.
// Integer arithmetic wraps; dividing by zero leaves the value as it was.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCChar : public FCBase
{
    FC_DECLARE_VALUE(FCChar, wchar_t, wchar_t, 0)

    FC_DECLARE_ARITHMETIC(FCChar, wchar_t)
    FC_DECLARE_REMAINDER(FCChar, wchar_t)
    FC_DECLARE_COMPARISONS(FCChar, wchar_t)
};
