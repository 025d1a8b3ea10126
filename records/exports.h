// The exported operations of one record type, all of them calls of the walkers.
#pragma once

#include "records/exact.h"
#include "records/generated/type-ids.h"

#define ZYN_EXPORT_RECORD(T)                                                                                           \
    AsnLen BEnc##T##Content(SBuf* b, T* v) { return zyn::encodeContent(b, zyn::TypeId::T, v); }                        \
    void BDec##T##Content(SBuf* b, AsnTag tagId, AsnLen elmtLen, T* v, AsnLen* bytesDecoded, jmp_buf env) {            \
        zyn::decodeContent(b, zyn::TypeId::T, tagId, elmtLen, v, bytesDecoded, env);                                   \
    }                                                                                                                  \
    void Print##T(FILE* f, T* v, unsigned short indent) { zyn::print(f, zyn::TypeId::T, v, indent); }                  \
    void Free##T(T*) {}

#define ZYN_EXPORT_MESSAGE(T)                                                                                          \
    ZYN_EXPORT_RECORD(T)                                                                                               \
    AsnLen BEnc##T(SBuf* b, T* v) { return zyn::encodeMessage(b, zyn::TypeId::T, v); }                                 \
    void BDec##T(SBuf* b, T* v, AsnLen* bytesDecoded, jmp_buf env) {                                                   \
        zyn::decodeMessage(b, zyn::TypeId::T, v, bytesDecoded, env);                                                   \
    }
