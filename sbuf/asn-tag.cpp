// Identifier octets (X.690 8.1.2).
#include "sbuf/failure.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

AsnTag BDecTag(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    AsnTag tag = static_cast<AsnTag>(SBufNextByte(b)) << 24;
    ++*bytesDecoded;
    if ((tag & 0x1F000000) == 0x1F000000) {
        tag |= static_cast<AsnTag>(SBufNextByte(b)) << 16;
        ++*bytesDecoded;
        if (tag & 0x00800000) {
            tag |= static_cast<AsnTag>(SBufNextByte(b)) << 8;
            ++*bytesDecoded;
            if (tag & 0x00008000) zyn::raise(env, ZYN_E_TAG_TOO_LONG, "BDecTag: ERROR - tag value overflow\n");
        }
    }
    if (b->readError) zyn::raise(env, ZYN_E_TAG_MISSING, "BDecTag: ERROR - decoded past the end of data\n");
    return tag;
}
