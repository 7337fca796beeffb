// FCColor: a typed field holding a colour as an unsigned long (0x00BBGGRR, as
// RGB makes it). Colours compare as numbers.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>

class SCOREMODEL_API FCColor : public FCBase
{
    FC_DECLARE_VALUE(FCColor, unsigned long, unsigned long, 0)

    FC_DECLARE_COMPARISONS(FCColor, unsigned long)
};
