// BOOLEAN (X.690 8.2).
#include "sbuf/asn-bool.h"

AsnLen BEncAsnBoolContent(SBuf* b, AsnBool* data) {
    SBufPushByte(b, *data ? 0xFF : 0x00);
    return 1;
}

AsnLen BEncAsnBool(SBuf* b, AsnBool* data) {
    AsnLen length = BEncAsnBoolContent(b, data);
    length += BEncDefLen(b, length);
    SBufPushByte(b, 0x01);
    return length + 1;
}

void BDecAsnBoolContent(SBuf* b, AsnTag, AsnLen len, AsnBool* result, AsnLen* bytesDecoded, jmp_buf env) {
    zyn::takeBool(b, len, result, *bytesDecoded, env);
}

void BDecAsnBool(SBuf* b, AsnBool* result, AsnLen* bytesDecoded, jmp_buf env) {
    const AsnTag tag = BDecTag(b, bytesDecoded, env);
    if (tag != 0x01000000) zyn::raise(env, ZYN_E_WRONG_TAG, "BDecAsnBool: ERROR - wrong tag on BOOLEAN.\n");
    const AsnLen len = BDecLen(b, bytesDecoded, env);
    BDecAsnBoolContent(b, tag, len, result, bytesDecoded, env);
}
