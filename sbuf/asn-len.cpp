// Length octets (X.690 8.1.3) and the end-of-contents marker (8.1.5).
#include "sbuf/asn-len.h"

#include "sbuf/failure.h"
#include "zyn/codes.h"

namespace {

constexpr unsigned mostLengthOctets = 4; // beyond the first
constexpr const char* pastEnd = "BDecLen: ERROR - decoded past end of data\n";

// The long form, lowest octet first, as the buffer fills backwards.
AsnLen pushLongForm(SBuf* b, uint32_t len) {
    AsnLen octets = 0;
    for (; len > 0; len >>= 8, ++octets) SBufPushByte(b, static_cast<uint8_t>(len));
    SBufPushByte(b, static_cast<uint8_t>(0x80 | octets));
    return octets + 1;
}

} // namespace

AsnLen BEncDefLen(SBuf* b, AsnLen len) {
    if (len >= 0x80) return pushLongForm(b, len);
    SBufPushByte(b, static_cast<uint8_t>(len));
    return 1;
}

AsnLen BEncDefLen2(SBuf* b, int32_t len) {
    if (len >= 0x80) return pushLongForm(b, static_cast<uint32_t>(len));
    SBufPushByte(b, static_cast<uint8_t>(len));
    return 1;
}

AsnLen BDecLen(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    const uint8_t first = SBufNextByte(b);
    if (b->readError) zyn::raise(env, ZYN_E_LENGTH_MISSING, pastEnd);
    ++*bytesDecoded;
    if (first < 0x80) return first;
    if (first == 0x80) return IndefiniteLen;
    const unsigned octets = first & 0x7F;
    if (octets > mostLengthOctets) zyn::raise(env, ZYN_E_LENGTH_TOO_LONG, "BDecLen: ERROR - length overflow\n");
    *bytesDecoded += octets;
    AsnLen len = 0;
    for (unsigned i = 0; i < octets; ++i) len = len << 8 | SBufNextByte(b);
    if (b->readError) zyn::raise(env, ZYN_E_LENGTH_CUT, pastEnd);
    return len;
}

void BDecEoc(SBuf* b, AsnLen* bytesDecoded, jmp_buf env) {
    if (SBufNextByte(b) != 0 || SBufNextByte(b) != 0 || b->readError) {
        zyn::raise(env, ZYN_E_EOC, "BDecEoc: ERROR - non zero byte in EOC or end of data reached\n");
    }
    *bytesDecoded += 2;
}

void zyn::eocSecondOctet(SBuf* b, jmp_buf env) {
    if (SBufNextByte(b) != 0) { // behind the data are no 0 octets
        raise(env, ZYN_E_EOC_SECOND_OCTET, "ERROR - second octet of EOC not zero\n");
    }
}
