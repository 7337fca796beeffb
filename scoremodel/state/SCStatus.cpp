#include <scoremodel/state/SCStatus.h>

int SCStatus::s_actionCount = 0;
