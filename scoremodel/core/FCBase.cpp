#include <scoremodel/core/FCBase.h>

// Out of line so that the family's virtual table lives in the library once.
FCBase::~FCBase() = default;
