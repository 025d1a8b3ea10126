#pragma once

#include <csetjmp>

#include "zyn/asn.h"

namespace zyn {

// Reads the second octet of an end-of-contents marker (X.690 8.1.5) whose first one was read as a tag of 0. -28.
void eocSecondOctet(SBuf* b, AsnLen* bytesDecoded, jmp_buf env);

// BDecTag and BDecLen for the walkers: what takes one octet, as most tags and lengths do, is read without a call. A length
// follows its tag, which has not been read from a buffer that has failed. The address of count goes nowhere, so that it may
// stay in a register.
inline AsnTag nextTag(SBuf* b, AsnLen& count, jmp_buf env) {
    const uint8_t* const at = b->readLoc;
    if (at == b->dataEnd || b->readError || (*at & 0x1F) == 0x1F) {
        AsnLen octets = 0;
        const AsnTag tag = BDecTag(b, &octets, env);
        count += octets;
        return tag;
    }
    b->readLoc += 1;
    ++count;
    return AsnTag{*at} << 24;
}

inline AsnLen nextLength(SBuf* b, AsnLen& count, jmp_buf env) {
    const uint8_t* const at = b->readLoc;
    if (at == b->dataEnd || *at > 0x80) {
        AsnLen octets = 0;
        const AsnLen length = BDecLen(b, &octets, env);
        count += octets;
        return length;
    }
    b->readLoc += 1;
    ++count;
    return *at < 0x80 ? *at : IndefiniteLen;
}

} // namespace zyn
