// The same program as C++.
#include "user.c"
