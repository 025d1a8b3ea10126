#pragma once

#include <csetjmp>

#include "zyn/asn.h"

namespace zyn {

// Reads the second octet of an end-of-contents marker (X.690 8.1.5) whose first one was read as a tag of 0. -28.
void eocSecondOctet(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

// BDecTag and BDecLen for the walkers: what takes one octet, as most tags and lengths do, is read without a call. A length
// follows its tag, which has not been read from a buffer that has failed.
inline AsnTag nextTag(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    const uint8_t* const at = b->readLoc;
    if (at == b->dataEnd || b->readError) return BDecTag(b, bytesDecoded, env);
    const uint8_t octet = *at;
    if ((octet & 0x1F) == 0x1F) return BDecTag(b, bytesDecoded, env);
    b->readLoc += 1;
    ++*bytesDecoded;
    return AsnTag{octet} << 24;
}

inline AsnLen nextLength(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    const uint8_t* const at = b->readLoc;
    if (at == b->dataEnd) return BDecLen(b, bytesDecoded, env);
    const uint8_t octet = *at;
    if (octet > 0x80) return BDecLen(b, bytesDecoded, env);
    b->readLoc += 1;
    ++*bytesDecoded;
    return octet < 0x80 ? octet : IndefiniteLen;
}

} // namespace zyn
