// The exact way: one walker over the tables for each of encode, decode and print. It follows the codec rules octet by
// octet and is what the exported operations of all records call. The rules stand in encode.cpp, decode.cpp, print.cpp.
#pragma once

#include <csetjmp>
#include <cstdio>

#include "records/generated/type-ids.h"
#include "zyn/asn.h"

namespace zyn {

AsnLen encodeContent(SBuf* b, TypeId type, const void* value);
AsnLen encodeMessage(SBuf* b, TypeId type, const void* value);

void decodeContent(SBuf* b, TypeId type, AsnTag tag, AsnLen length, void* value, AsnLen* bytesDecoded, jmp_buf env);
void decodeMessage(SBuf* b, TypeId type, void* value, AsnLen* bytesDecoded, jmp_buf env);

void print(FILE* f, TypeId type, const void* value, unsigned short indent);

} // namespace zyn
