#include <cstring>
#include "sbuf/str-stk.h"

#include <cstdlib>

#include "sbuf/asn-len.h"
#include "sbuf/failure.h"
#include "sbuf/state.h"
#include "zyn/codes.h"

StrStk strStkG = {nullptr, 128, 0, 64, 0, 0};

namespace zyn {
namespace {

// A constructed string whose end has not been reached: its length and the octets counted in it so far. Strings may be nested
// to any depth, so the open ones stand in a table and not on the stack.
struct OpenString {
    AsnLen length;
    AsnLen count;
};

OpenString* openStrings = nullptr;
std::size_t openCapacity = 0;
std::size_t pieceCapacity = 0; // entries behind strStkG.stk; grows faster than numElmts tells, so that time stays linear

// Makes room for one more entry by doubling the table.
template <typename Entry> void grow(Entry*& table, std::size_t& capacity, std::size_t needed, jmp_buf env) {
    std::size_t larger = capacity * 2 > needed ? capacity * 2 : needed;
    auto* block = static_cast<Entry*>(std::realloc(table, larger * sizeof(Entry)));
    if (!block) raise(env, ZYN_E_NO_MEMORY, nullptr);
    table = block;
    capacity = larger;
}

void resetStack(jmp_buf env) {
    StrStk& s = currentStrStk();
    s.nextFreeElmt = 0;
    s.totalByteLen = 0;
    if (s.stk) return;
    pieceCapacity = 0;
    grow(s.stk, pieceCapacity, s.initialNumElmts, env);
    s.numElmts = s.initialNumElmts;
}

void pushPiece(uint8_t* str, uint32_t len, jmp_buf env) {
    StrStk& s = currentStrStk();
    if (s.nextFreeElmt >= s.numElmts) {
        const std::size_t needed = std::size_t{s.numElmts} + s.growElmts;
        if (needed > pieceCapacity) grow(s.stk, pieceCapacity, needed, env);
        s.numElmts = static_cast<uint32_t>(needed);
    }
    s.totalByteLen += len;
    s.stk[s.nextFreeElmt++] = {str, len};
}

// The octets of one primitive component, by reference.
void takeComponent(SBuf* b, AsnLen length, const ComponentRules& rules, unsigned& unusedBits, jmp_buf env) {
    if (rules.countsUnusedBits) {
        if (unusedBits != 0) {
            raise(env, ZYN_E_BITS_NOT_LAST,
                  "FillBitStringStk: ERROR - a component of a constructed BIT STRING that is not the last has non-zero "
                  "unused bits\n");
        }
        if (length == 0) return; // has no octet of count and contributes nothing
        unusedBits = SBufNextByte(b);
        --length;
    }
    AsnLen taken = length;
    uint8_t* piece = SBufTakeSeg(b, &taken);
    pushPiece(piece, taken, env);
    if (taken < length) raise(env, rules.cutCode, rules.cut);
}

} // namespace

// The end of a definite string is only tested for being reached: components that run over it end the walk, and the excess
// shows in the count that the enclosing record checks.
unsigned gatherPieces(SBuf* b, AsnLen length, const ComponentRules& rules, AsnLen* bytesDecoded, jmp_buf env) {
    resetStack(env);
    unsigned unusedBits = 0;
    if (length == 0) return unusedBits;
    AsnLen count = 0;
    std::size_t depth = 0;
    for (;;) {
        const AsnTag tag = BDecTag(b, &count, env);
        bool ended = false;
        if (tag == 0 && length == IndefiniteLen) {
            eocSecondOctet(b, &count, env);
            ended = true;
        } else {
            const AsnLen componentLength = BDecLen(b, &count, env);
            if (tag == rules.primitive) {
                takeComponent(b, componentLength, rules, unusedBits, env);
                count += componentLength;
            } else if (tag != rules.nested) {
                raise(env, rules.wrongTagCode, rules.wrongTag);
            } else if (componentLength != 0) {
                if (depth == openCapacity) grow(openStrings, openCapacity, 16, env);
                openStrings[depth++] = {length, count};
                length = componentLength;
                count = 0;
                continue;
            }
            ended = length != IndefiniteLen && count >= length;
        }
        while (ended) {
            if (depth == 0) {
                *bytesDecoded += count;
                return unusedBits;
            }
            const OpenString& outer = openStrings[--depth];
            length = outer.length;
            count += outer.count;
            ended = length != IndefiniteLen && count >= length;
        }
    }
}

void copyPieces(uint8_t* target) {
    const StrStk& s = currentStrStk();
    for (uint32_t i = 0; i < s.nextFreeElmt; ++i) {
        if (s.stk[i].len > 0) std::memcpy(target, s.stk[i].str, s.stk[i].len);
        target += s.stk[i].len;
    }
}

void releaseStrStk() {
    StrStk& s = currentStrStk();
    std::free(s.stk);
    std::free(openStrings);
    s.stk = nullptr;
    s.numElmts = s.nextFreeElmt = s.totalByteLen = 0;
    openStrings = nullptr;
    openCapacity = pieceCapacity = 0;
}

} // namespace zyn
