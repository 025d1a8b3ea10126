// REAL (X.690 8.5).
#include "sbuf/asn-real.h"

#include <algorithm>
#include <cmath>

#include "sbuf/asn-int.h"
#include "sbuf/failure.h"
#include "sbuf/wire-form.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

AsnReal PLUS_INFINITY = 0.0;
AsnReal MINUS_INFINITY = 0.0;

namespace {

constexpr uint8_t plusInfinityOctet = 0x40;
constexpr uint8_t minusInfinityOctet = 0x41;
constexpr uint8_t binaryForm = 0x80;
constexpr uint8_t negative = 0x40;

// The exponent octets as the first octet tells them, and how many of the content's octets they were.
struct Exponent {
    int32_t value;
    uint32_t counted;
    bool empty; // said to have no octets
};

Exponent readExponent(SBuf* b, uint8_t first) {
    const uint8_t octet = SBufNextByte(b);
    const unsigned form = first & 0x03;
    uint32_t value = static_cast<uint32_t>(static_cast<int8_t>(octet));
    if (form < 3) {
        for (unsigned i = 0; i < form; ++i) value = value << 8 | SBufNextByte(b);
        return {static_cast<int32_t>(value), form + 1, false};
    }
    // The octet is a count. Octets beyond 32 bits drop out at the top.
    value = static_cast<uint32_t>(static_cast<int8_t>(SBufNextByte(b)));
    for (unsigned i = 1; i < octet; ++i) value = value << 8 | SBufNextByte(b);
    return {static_cast<int32_t>(value), octet + 1u, octet == 0};
}

// The mantissa octets as a double, rounded with each octet; up to seven are rounded once in any case. Those that the data
// lack read as 1; they are not walked for ever, since the value becomes infinite and stays so.
double readMantissa(SBuf* b, uint64_t octets) {
    const uint64_t present = std::min(octets, static_cast<uint64_t>(b->dataEnd - b->readLoc));
    const uint64_t atOnce = std::min(present, uint64_t{7});
    uint64_t head = 0;
    for (uint64_t i = 0; i < atOnce; ++i) head = head << 8 | *b->readLoc++;
    auto mantissa = static_cast<double>(head);
    for (uint64_t i = atOnce; i < present; ++i) mantissa = mantissa * 256.0 + *b->readLoc++;
    for (uint64_t i = present; i < octets; ++i) {
        b->readError = 1;
        mantissa = mantissa * 256.0 + 1.0;
        if (std::isinf(mantissa)) break;
    }
    return mantissa;
}

} // namespace

void InitAsnInfinity(void) {
    PLUS_INFINITY = std::numeric_limits<double>::infinity();
    MINUS_INFINITY = -PLUS_INFINITY;
}

unsigned int SignedIntOctetLen(int32_t val) { return zyn::signedOctets(val); }

AsnLen BEncAsnRealContent(SBuf* b, AsnReal* value) {
    const double v = *value;
    if (v == 0.0) return 0;
    if (v == MINUS_INFINITY || v == PLUS_INFINITY) {
        SBufPushByte(b, v == MINUS_INFINITY ? minusInfinityOctet : plusInfinityOctet);
        return 1;
    }
    if (!zyn::hasWireForm(v)) {
        b->writeError = 1;
        return 0;
    }
    const zyn::RealParts parts = zyn::splitReal(v);
    uint8_t mantissa[8];
    for (unsigned i = 0; i < parts.octets; ++i)
        mantissa[i] = static_cast<uint8_t>(parts.mantissa >> (8 * (parts.octets - 1 - i)));
    SBufPushSeg(b, mantissa, parts.octets);
    const unsigned exponentOctets = zyn::signedOctets(parts.exponent); // 1 or 2 for any double
    int32_t exponent = parts.exponent;
    for (unsigned i = 0; i < exponentOctets; ++i, exponent >>= 8) SBufPushByte(b, static_cast<uint8_t>(exponent));
    SBufPushByte(b, static_cast<uint8_t>(binaryForm | (v < 0 ? negative : 0) | (exponentOctets - 1)));
    return parts.octets + exponentOctets + 1;
}

AsnLen BEncAsnReal(SBuf* b, AsnReal* data) {
    AsnLen length = BEncAsnRealContent(b, data);
    length += BEncDefLen(b, length);
    SBufPushByte(b, 0x09);
    return length + 1;
}

// There is no test of readError here: a REAL cut off by the end of the data gets a value from octets that read as 1, and the
// next tag or length fails.
void BDecAsnRealContent(SBuf* b, AsnTag, AsnLen len, AsnReal* result, AsnLen* bytesDecoded, jmp_buf env) {
    if (len == 0) {
        *result = 0.0;
        return;
    }
    const uint8_t first = SBufNextByte(b);
    if (len == 1) {
        ++*bytesDecoded;
        if (first == plusInfinityOctet) *result = PLUS_INFINITY;
        else if (first == minusInfinityOctet) *result = MINUS_INFINITY;
        else {
            zyn::raise(env, ZYN_E_REAL_SPECIAL,
                       "BDecAsnRealContent: ERROR - unrecognized real number of length 1 octet.\n");
        }
        return;
    }
    if (!(first & binaryForm)) {
        zyn::raise(env, ZYN_E_REAL_DECIMAL,
                   "BDecAsnRealContent: ERROR - decimal REAL form is not currently supported\n");
    }
    const Exponent exponent = readExponent(b, first);
    const int64_t octets = int64_t{len} - 1 - exponent.counted;
    double mantissa = octets > 0 ? readMantissa(b, static_cast<uint64_t>(octets)) : 0.0;
    mantissa *= static_cast<double>(1u << (first >> 2 & 0x03)); // the scaling factor F
    constexpr int64_t bitsOfBase[] = {1, 3, 4};
    const unsigned base = first >> 4 & 0x03;
    if (base == 3) {
        zyn::raise(env, ZYN_E_REAL_BASE, "BDecAsnRealContent: ERROR - unsupported base for a binary real number.\n");
    }
    if (exponent.empty) {
        zyn::raise(env, ZYN_E_REAL_EXPONENT_EMPTY, "BDecAsnRealContent: ERROR - exponent without octets\n");
    }
    const double magnitude = mantissa * zyn::powerOfTwo(bitsOfBase[base] * exponent.value);
    *result = (first & negative) ? -magnitude : magnitude;
    *bytesDecoded += len;
}

void BDecAsnReal(SBuf* b, AsnReal* result, AsnLen* bytesDecoded, jmp_buf env) {
    const AsnTag tag = BDecTag(b, bytesDecoded, env);
    if (tag != 0x09000000) zyn::raise(env, ZYN_E_WRONG_TAG, "BDecAsnReal: ERROR wrong tag on REAL.\n");
    const AsnLen len = BDecLen(b, bytesDecoded, env);
    BDecAsnRealContent(b, tag, len, result, bytesDecoded, env);
}
