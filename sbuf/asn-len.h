#pragma once

#include <csetjmp>

#include "zyn/asn.h"

namespace zyn {

// Reads the second octet of an end-of-contents marker (X.690 8.1.5) whose first one was read as a tag of 0. -28.
void eocSecondOctet(SBuf* b, jmp_buf env);

// BDecTag and BDecLen for the walkers: what takes one octet, as most tags and lengths do, is read without a call. A length
// follows its tag, which has not been read from a buffer that has failed. The address of count goes nowhere, so that it may
// stay in a register.
inline AsnTag nextTag(SBuf* b, AsnLen& count, jmp_buf env) {
    if (b->readLoc != b->dataEnd && !b->readError) [[likely]] {
        const uint8_t octet = *b->readLoc;
        if ((octet & 0x1F) != 0x1F) [[likely]] {
            ++b->readLoc;
            ++count;
            return AsnTag{octet} << 24;
        }
    }
    AsnLen octets = 0;
    const AsnTag tag = BDecTag(b, &octets, env);
    count += octets;
    return tag;
}

inline AsnLen nextLength(SBuf* b, AsnLen& count, jmp_buf env) {
    if (b->readLoc != b->dataEnd) [[likely]] {
        const uint8_t octet = *b->readLoc;
        if (octet <= 0x80) [[likely]] {
            ++b->readLoc;
            ++count;
            return octet < 0x80 ? octet : IndefiniteLen;
        }
    }
    AsnLen octets = 0;
    const AsnLen length = BDecLen(b, &octets, env);
    count += octets;
    return length;
}

} // namespace zyn
