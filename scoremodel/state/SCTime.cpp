#include <scoremodel/state/SCTime.h>

int SCTime::s_actionCount = 0;
