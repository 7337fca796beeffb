#include "events/base/EventTestSupport.h"

IMPLEMENT_SERIAL(TestNode, ECWithTimeChild, VERSIONABLE_SCHEMA | 2)
IMPLEMENT_SERIAL(TestLeaf, ECWithTime, VERSIONABLE_SCHEMA | 2)
IMPLEMENT_SERIAL(DCArchived, DCBase, VERSIONABLE_SCHEMA | 2)

int TestNode::s_alive = 0;
int TestLeaf::s_alive = 0;
