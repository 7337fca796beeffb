// SCLayout: asks the host to lay the document out again. The code says what
// changed; the record carries nothing else.
#pragma once

#include <scoremodel/state/SCBase.h>

class SCLayout : public SCBase
{
public:
    SCLayout() = default;
    explicit SCLayout(unsigned int code) : SCBase(code) {}
};
