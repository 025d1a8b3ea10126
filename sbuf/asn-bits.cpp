// BIT STRING (X.690 8.6).
#include <cstring>

#include "sbuf/failure.h"
#include "sbuf/nibble-alloc.h"
#include "sbuf/state.h"
#include "sbuf/str-stk.h"
#include "sbuf/wire-form.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

namespace {

constexpr AsnTag primitiveTag = 0x03000000;
constexpr AsnTag constructedTag = 0x23000000;
constexpr AsnTag constructedBit = 0x20000000;

constexpr zyn::ComponentRules components = {
    .primitive = primitiveTag,
    .nested = constructedTag,
    .countsUnusedBits = true,
    .wrongTagCode = ZYN_E_BITS_COMPONENT_TAG,
    .wrongTag = "FillBitStringStk: ERROR - decoded non-BIT STRING tag inside a constructed BIT STRING\n",
    .cutCode = ZYN_E_BITS_COMPONENT_CUT,
    .cut = "FillBitStringStk: ERROR - expecting more data\n",
};

// The number of bits of a string, which octets and the count of unused bits must give.
int32_t bitLength(uint32_t octets, unsigned unused, jmp_buf env) {
    const uint64_t bits = uint64_t{octets} * 8;
    if (unused > 7 || unused > bits) {
        zyn::raise(env, ZYN_E_BITS_UNUSED, "BDecAsnBitsContent: ERROR - impossible count of unused bits\n");
    }
    if (bits - unused > INT32_MAX) {
        zyn::raise(env, ZYN_E_BITS_TOO_MANY, "BDecAsnBitsContent: ERROR - too many bits to decode\n");
    }
    return static_cast<int32_t>(bits - unused);
}

void decodeConstructed(SBuf* b, AsnLen len, AsnBits* result, AsnLen* bytesDecoded, jmp_buf env) {
    unsigned unused = zyn::gatherPieces(b, len, components, bytesDecoded, env);
    const uint32_t octets = zyn::currentStrStk().totalByteLen;
    if (b->readError && octets == 0) unused = 0; // the data ended before the count; what is read next fails
    result->bitLen = bitLength(octets, unused, env);
    result->bits = static_cast<uint8_t*>(zyn::allocate(octets, env));
    zyn::copyPieces(result->bits);
}

size_t octetsOf(int32_t bitLen) { return (static_cast<size_t>(bitLen) + 7) / 8; }

bool isInside(const AsnBits* b, uint32_t bit) { return b->bitLen > 0 && bit < static_cast<uint32_t>(b->bitLen); }

uint8_t maskOf(uint32_t bit) { return static_cast<uint8_t>(0x80 >> (bit % 8)); }

} // namespace

AsnLen BEncAsnBitsContent(SBuf* b, AsnBits* bits) {
    if (!zyn::hasWireForm(*bits)) {
        b->writeError = 1;
        return 0;
    }
    const auto octets = static_cast<AsnLen>(octetsOf(bits->bitLen));
    SBufPushSeg(b, bits->bits, octets);
    SBufPushByte(b, static_cast<uint8_t>(octets * 8 - static_cast<uint32_t>(bits->bitLen)));
    return octets + 1;
}

AsnLen BEncAsnBits(SBuf* b, AsnBits* data) {
    AsnLen length = BEncAsnBitsContent(b, data);
    length += BEncDefLen(b, length);
    SBufPushByte(b, 0x03);
    return length + 1;
}

void BDecAsnBitsContent(SBuf* b, AsnTag tagId, AsnLen len, AsnBits* result, AsnLen* bytesDecoded, jmp_buf env) {
    if (tagId & constructedBit) return decodeConstructed(b, len, result, bytesDecoded, env);
    if (len == 0) zyn::raise(env, ZYN_E_BITS_EMPTY, "BDecAsnBitsContent: ERROR - BIT STRING without content\n");
    *bytesDecoded += len;
    const uint8_t unused = SBufNextByte(b);
    const uint32_t octets = len - 1;
    // What is not there is neither allocated nor copied. IndefiniteLen is no length of a primitive string.
    if (len == IndefiniteLen || size_t(b->dataEnd - b->readLoc) < octets) {
        b->readLoc = b->dataEnd;
        b->readError = 1;
    }
    if (b->readError) zyn::raise(env, ZYN_E_BITS_CUT, "BDecAsnBitsContent: ERROR - decoded past end of data\n");
    result->bitLen = bitLength(octets, unused, env);
    result->bits = static_cast<uint8_t*>(zyn::allocate(octets, env));
    SBufCopySeg(b, result->bits, octets);
}

void BDecAsnBits(SBuf* b, AsnBits* result, AsnLen* bytesDecoded, jmp_buf env) {
    const AsnTag tag = BDecTag(b, bytesDecoded, env);
    if (tag != primitiveTag && tag != constructedTag) {
        zyn::raise(env, ZYN_E_WRONG_TAG, "BDecAsnBits: ERROR - wrong tag on BIT STRING.\n");
    }
    const AsnLen len = BDecLen(b, bytesDecoded, env);
    BDecAsnBitsContent(b, tag, len, result, bytesDecoded, env);
}

void FreeAsnBits(AsnBits*) {}

int AsnBitsEquiv(AsnBits* b1, AsnBits* b2) {
    if (b1->bitLen != b2->bitLen) return 0;
    if (b1->bitLen <= 0) return 1;
    const auto whole = static_cast<size_t>(b1->bitLen) / 8;
    if (std::memcmp(b1->bits, b2->bits, whole) != 0) return 0;
    const unsigned rest = static_cast<unsigned>(b1->bitLen) % 8;
    return rest == 0 || ((b1->bits[whole] ^ b2->bits[whole]) >> (8 - rest)) == 0;
}

void SetAsnBit(AsnBits* b1, uint32_t bit) {
    if (isInside(b1, bit)) b1->bits[bit / 8] |= maskOf(bit);
}

void ClrAsnBit(AsnBits* b1, uint32_t bit) {
    if (isInside(b1, bit)) b1->bits[bit / 8] &= static_cast<uint8_t>(~maskOf(bit));
}

int GetAsnBit(AsnBits* b1, uint32_t bit) { return isInside(b1, bit) ? b1->bits[bit / 8] & maskOf(bit) : 0; }
