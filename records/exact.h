// The exact way: one walker over the tables for each of encode, decode and print. It follows the codec rules octet by
// octet and is what the exported operations of all records call. The rules stand in encode.cpp, decode.cpp, print.cpp.
#pragma once

#include <csetjmp>
#include <cstdio>

#include "records/generated/type-ids.h"
#include "sbuf/failure.h"
#include "zyn/asn.h"

namespace zyn {

AsnLen encodeContent(SBuf* b, TypeId type, const void* value);
AsnLen encodeMessage(SBuf* b, TypeId type, const void* value);

// Keeps, as the last failure, why the Encode of a value did not succeed: it was to have length octets, and room is that of
// the block.
void explainEncode(TypeId type, const void* value, AsnLen length, uint32_t room);

void decodeContent(SBuf* b, TypeId type, AsnTag tag, AsnLen length, void* value, AsnLen* bytesDecoded, jmp_buf env);
void decodeMessage(SBuf* b, TypeId type, void* value, AsnLen* bytesDecoded, jmp_buf env);
// The same along a walk of the caller's, who may have registered it.
void decodeMessage(Walk& walk, TypeId type, void* value, AsnLen* bytesDecoded, jmp_buf env);

// The step that a walk starts from: what is read has not been seen to be of its type yet.
inline Step firstStep(SBuf* b, TypeId type) {
    return {nullptr, b->readLoc, b->readLoc, 0, static_cast<uint16_t>(type), noIndex};
}

void print(FILE* f, TypeId type, const void* value, unsigned short indent);

} // namespace zyn
