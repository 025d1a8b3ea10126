// INTEGER (X.690 8.3); ENUMERATED values are coded the same way (8.4).
#include "sbuf/asn-int.h"

#include "sbuf/failure.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

namespace {

constexpr uint8_t integerTag = 0x02;

AsnLen pushOctets(SBuf* b, uint32_t value, unsigned octets) {
    for (unsigned i = 0; i < octets; ++i, value >>= 8) SBufPushByte(b, static_cast<uint8_t>(value));
    return octets;
}

} // namespace

AsnLen BEncAsnIntContent(SBuf* b, AsnInt* data) {
    return pushOctets(b, static_cast<uint32_t>(*data), zyn::signedOctets(*data));
}

AsnLen BEncAsnInt(SBuf* b, AsnInt* data) {
    AsnLen length = BEncAsnIntContent(b, data);
    length += BEncDefLen(b, length);
    SBufPushByte(b, integerTag);
    return length + 1;
}

void BDecAsnIntContent(SBuf* b, AsnTag, AsnLen len, AsnInt* result, AsnLen* bytesDecoded, jmp_buf env) {
    zyn::takeInt(b, len, result, *bytesDecoded, env);
}

void BDecAsnInt(SBuf* b, AsnInt* result, AsnLen* bytesDecoded, jmp_buf env) {
    const AsnTag tag = BDecTag(b, bytesDecoded, env);
    if (tag != 0x02000000) zyn::raise(env, ZYN_E_WRONG_TAG, "BDecAsnInt: ERROR wrong tag on INTEGER.\n");
    const AsnLen len = BDecLen(b, bytesDecoded, env);
    BDecAsnIntContent(b, tag, len, result, bytesDecoded, env);
}

AsnLen BEncUAsnIntContent(SBuf* b, UAsnInt* data) {
    if (*data <= INT32_MAX) return pushOctets(b, *data, zyn::signedOctets(static_cast<int32_t>(*data)));
    const AsnLen length = pushOctets(b, *data, 4);
    SBufPushByte(b, 0); // keeps the value positive on the wire
    return length + 1;
}

AsnLen BEncUAsnInt(SBuf* b, UAsnInt* data) {
    AsnLen length = BEncUAsnIntContent(b, data);
    length += BEncDefLen(b, length);
    SBufPushByte(b, integerTag);
    return length + 1;
}

// The first octet is read ahead of all tests, so the read cursor moves even when they fail.
void BDecUAsnIntContent(SBuf* b, AsnTag, AsnLen len, UAsnInt* result, AsnLen* bytesDecoded, jmp_buf env) {
    if (len == 0) zyn::raise(env, ZYN_E_INT_EMPTY, "BDecUAsnIntContent: ERROR - INTEGER without content\n");
    const uint8_t first = SBufNextByte(b);
    if (len > 5) zyn::raise(env, ZYN_E_UINT_LENGTH, "BDecUAsnIntContent: ERROR - integer to big to decode.\n");
    if (first & 0x80) zyn::raise(env, ZYN_E_UINT_NEGATIVE, "BDecUAsnIntContent: ERROR - integer is negative.\n");
    if (len == 5 && first != 0) {
        zyn::raise(env, ZYN_E_UINT_TOO_BIG, "BDecUAsnIntContent: ERROR - integer is negative.\n");
    }
    UAsnInt value = first;
    for (AsnLen i = 1; i < len; ++i) value = value << 8 | SBufNextByte(b);
    if (b->readError) zyn::raise(env, ZYN_E_UINT_CUT, "BDecUIntegerContent: ERROR - decoded past end of data\n");
    *bytesDecoded += len;
    *result = value;
}

void BDecUAsnInt(SBuf* b, UAsnInt* result, AsnLen* bytesDecoded, jmp_buf env) {
    const AsnTag tag = BDecTag(b, bytesDecoded, env);
    if (tag != 0x02000000) zyn::raise(env, ZYN_E_WRONG_TAG, "BDecAsnInt: ERROR wrong tag on INTGER.\n");
    const AsnLen len = BDecLen(b, bytesDecoded, env);
    BDecUAsnIntContent(b, tag, len, result, bytesDecoded, env);
}
