// OCTET STRING (X.690 8.7).
#include <cstring>

#include "sbuf/failure.h"
#include "sbuf/nibble-alloc.h"
#include "sbuf/state.h"
#include "sbuf/str-stk.h"
#include "sbuf/wire-form.h"
#include "zyn/asn.h"
#include "zyn/codes.h"

namespace {

constexpr AsnTag primitiveTag = 0x04000000;
constexpr AsnTag constructedTag = 0x24000000;
constexpr AsnTag constructedBit = 0x20000000;

constexpr zyn::ComponentRules components = {
    .primitive = primitiveTag,
    .nested = constructedTag,
    .countsUnusedBits = false,
    .wrongTagCode = ZYN_E_OCTS_COMPONENT_TAG,
    .wrongTag = "BDecConsOctetString: ERROR - decoded non-OCTET STRING tag inside a constructed OCTET STRING\n",
    .cutCode = ZYN_E_OCTS_COMPONENT_CUT,
    .cut = "BDecConsOctetString: ERROR - attempt to decode past end of data\n",
};

// Room for the octets and the 0 byte that follows them, so that text can be used as a terminated string; the arena's memory
// is all 0.
inline uint8_t* allocateOctets(uint32_t length, jmp_buf env) {
    return static_cast<uint8_t*>(zyn::allocate(length + 1, env)); // length is below IndefiniteLen
}

void decodeConstructed(SBuf* b, AsnLen len, AsnOcts* result, AsnLen* bytesDecoded, jmp_buf env) {
    zyn::gatherPieces(b, len, components, bytesDecoded, env);
    result->octetLen = zyn::currentStrStk().totalByteLen;
    result->octs = allocateOctets(result->octetLen, env);
    zyn::copyPieces(result->octs);
}

} // namespace

AsnLen BEncAsnOctsContent(SBuf* b, AsnOcts* o) {
    if (!zyn::hasWireForm(*o)) {
        b->writeError = 1;
        return 0;
    }
    SBufPushSeg(b, o->octs, o->octetLen);
    return o->octetLen;
}

AsnLen BEncAsnOcts(SBuf* b, AsnOcts* data) {
    AsnLen length = BEncAsnOctsContent(b, data);
    length += BEncDefLen(b, length);
    SBufPushByte(b, 0x04);
    return length + 1;
}

void BDecAsnOctsContent(SBuf* b, AsnTag tagId, AsnLen len, AsnOcts* result, AsnLen* bytesDecoded, jmp_buf env) {
    if (tagId & constructedBit) return decodeConstructed(b, len, result, bytesDecoded, env);
    result->octetLen = len;
    // What is not there is neither allocated nor copied. IndefiniteLen is no length of a primitive string.
    if (len == IndefiniteLen || size_t(b->dataEnd - b->readLoc) < len) {
        b->readLoc = b->dataEnd;
        b->readError = 1;
    }
    if (b->readError) zyn::raise(env, ZYN_E_OCTS_CUT, "BDecOctetString: ERROR - decoded past end of data\n");
    result->octs = allocateOctets(len, env);
    const uint8_t* octets = SBufTakeSeg(b, &len); // all of them, as has been seen
    if (len > 0) std::memcpy(result->octs, octets, len);
    *bytesDecoded += len;
}

void BDecAsnOcts(SBuf* b, AsnOcts* result, AsnLen* bytesDecoded, jmp_buf env) {
    const AsnTag tag = BDecTag(b, bytesDecoded, env);
    if (tag != primitiveTag && tag != constructedTag) {
        zyn::raise(env, ZYN_E_WRONG_TAG, "BDecAsnOcts: ERROR - wrong tag on OCTET STRING.\n");
    }
    const AsnLen len = BDecLen(b, bytesDecoded, env);
    BDecAsnOctsContent(b, tag, len, result, bytesDecoded, env);
}

void FreeAsnOcts(AsnOcts*) {}

int AsnOctsEquiv(AsnOcts* o1, AsnOcts* o2) {
    return o1->octetLen == o2->octetLen && (o1->octetLen == 0 || std::memcmp(o1->octs, o2->octs, o1->octetLen) == 0);
}
