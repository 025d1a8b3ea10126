#pragma once

#include <csetjmp>

#include "sbuf/failure.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

namespace zyn {

// BDecAsnBoolContent, for the walker to have it in place.
inline void takeBool(SBuf* b, AsnLen len, AsnBool* result, AsnLen& count, jmp_buf env) {
    if (len != 1) raise(env, ZYN_E_BOOL_LENGTH, "BDecAsnBoolContent: ERROR - BOOLEAN length must be 1\n");
    ++count;
    *result = SBufNextByte(b) != 0;
    if (b->readError) raise(env, ZYN_E_BOOL_CUT, "BDecAsnBoolContent: ERROR - decoded past end of data\n");
}

} // namespace zyn
