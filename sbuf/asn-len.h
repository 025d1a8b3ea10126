#pragma once

#include <csetjmp>

#include "zyn/asn.h"

namespace zyn {

// Reads the second octet of an end-of-contents marker (X.690 8.1.5) whose first one was read as a tag of 0. -28.
void eocSecondOctet(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

// BDecTag and BDecLen for the walkers: what takes one octet, as most tags and lengths do, is read without a call. A length
// follows its tag, which has not been read from a buffer that has failed.
inline AsnTag nextTag(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    if (b->readLoc == b->dataEnd || (*b->readLoc & 0x1F) == 0x1F || b->readError) return BDecTag(b, bytesDecoded, env);
    ++*bytesDecoded;
    return static_cast<AsnTag>(*b->readLoc++) << 24;
}

inline AsnLen nextLength(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    if (b->readLoc == b->dataEnd || *b->readLoc >= 0x80) return BDecLen(b, bytesDecoded, env);
    ++*bytesDecoded;
    return *b->readLoc++;
}

} // namespace zyn
