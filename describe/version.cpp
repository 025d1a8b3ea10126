#include "zyn/describe.h"

const char* ZynVersion(void) { return ZYN_VERSION; }
