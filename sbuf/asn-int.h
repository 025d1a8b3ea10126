#pragma once

#include <bit>
#include <csetjmp>
#include <cstdint>

#include "sbuf/failure.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

namespace zyn {

// The octets that a value takes in two's complement, 1 to 4 (X.690 8.3.2).
inline unsigned signedOctets(int32_t value) {
    // The bits that differ from the sign, with room for it, and never 0, which has no highest bit.
    const uint32_t bits = static_cast<uint32_t>(value ^ (value >> 31)) * 2 + 1;
    return (31 ^ static_cast<unsigned>(std::countl_zero(bits))) / 8 + 1;
}

// BDecAsnIntContent, for the walker to have it in place.
inline void takeInt(SBuf* b, AsnLen len, AsnInt* result, AsnLen& count, jmp_buf env) {
    if (len > 4) raise(env, ZYN_E_INT_LENGTH, "BDecAsnIntContent: ERROR - integer to big to decode.\n");
    if (len == 0) raise(env, ZYN_E_INT_EMPTY, "BDecAsnIntContent: ERROR - INTEGER without content\n");
    AsnLen taken = len;
    const uint8_t* octets = SBufTakeSeg(b, &taken);
    if (taken < len) b->readError = 1;
    if (b->readError) raise(env, ZYN_E_INT_CUT, "BDecAsnIntContent: ERROR - decoded past end of data \n");
    uint32_t value = static_cast<uint32_t>(static_cast<int8_t>(octets[0]));
    for (AsnLen i = 1; i < len; ++i) value = value << 8 | octets[i];
    count += len;
    *result = static_cast<AsnInt>(value);
}

} // namespace zyn
