// FCTime: a typed field holding an MCTime, compared with MCTime's own rules
// (see MCTime.h: modes 0 and 3 are not told apart, bar/pulse/tick times
// compare field by field).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCBase.h>
#include <scoremodel/core/MCTime.h>

class SCOREMODEL_API FCTime : public FCBase
{
    FC_DECLARE_VALUE(FCTime, MCTime, const MCTime &, MCTime())

    FC_DECLARE_COMPARISONS(FCTime, const MCTime &)
};
