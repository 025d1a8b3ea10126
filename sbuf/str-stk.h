// The pieces of the constructed string under decoding. Nothing is copied while they are gathered: the stack refers to them
// in the message, so that one arena block of the right size is enough in the end.
#pragma once

#include <csetjmp>

#include "zyn/asn.h"

namespace zyn {

// What the components of one kind of string look like, and the failures of their walk.
struct ComponentRules {
    AsnTag primitive;
    AsnTag nested;
    bool countsUnusedBits; // a component starts with an octet that counts its unused bits
    int32_t wrongTagCode;
    const char* wrongTag;
    int32_t cutCode;
    const char* cut;
};

// Empties the stack and gathers the pieces of one constructed string whose tag and length have been read. Returns the count
// of unused bits of the last component.
unsigned gatherPieces(SBuf* b, AsnLen length, const ComponentRules& rules, AsnLen* bytesDecoded, jmp_buf env);

// Copies the pieces, in wire order, to target.
void copyPieces(uint8_t* target);

void releaseStrStk();

} // namespace zyn
