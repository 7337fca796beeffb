// SCLayout: asks the host to lay the document out again. The code says what
// changed; the record carries nothing else.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/state/SCBase.h>

class SCOREMODEL_API SCLayout : public SCBase
{
public:
    SCLayout() = default;
    explicit SCLayout(unsigned int code) : SCBase(code) {}
};
