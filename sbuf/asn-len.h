#pragma once

#include <csetjmp>

#include "zyn/asn.h"

namespace zyn {

// Reads the second octet of an end-of-contents marker (X.690 8.1.5) whose first one was read as a tag of 0. -28.
void eocSecondOctet(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

} // namespace zyn
