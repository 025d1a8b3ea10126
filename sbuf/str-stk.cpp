#include "sbuf/str-stk.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "sbuf/asn-len.h"
#include "sbuf/failure.h"
#include "sbuf/state.h"
#include "zyn/codes.h"

StrStk strStkG = zyn::emptyStrStk;

namespace zyn {

namespace {

// Makes room for one more entry by doubling the table.
template <typename Entry> void grow(Entry*& table, std::size_t& capacity, std::size_t needed, jmp_buf env) {
    std::size_t larger = capacity * 2 > needed ? capacity * 2 : needed;
    auto* block = static_cast<Entry*>(std::realloc(table, larger * sizeof(Entry)));
    if (!block) raise(env, ZYN_E_NO_MEMORY, nullptr);
    table = block;
    capacity = larger;
}

void resetStack(StrStk& s, jmp_buf env) {
    s.nextFreeElmt = 0;
    s.totalByteLen = 0;
    if (s.stk) return;
    std::size_t& capacity = currentStringTables().pieceCapacity;
    capacity = 0;
    grow(s.stk, capacity, std::max(s.initialNumElmts, 1u), env);
    s.numElmts = s.initialNumElmts;
}

void pushPiece(StrStk& s, uint8_t* str, uint32_t len, jmp_buf env) {
    if (s.nextFreeElmt >= s.numElmts) {
        const std::size_t needed = std::size_t{s.numElmts} + std::max(s.growElmts, 1u);
        std::size_t& capacity = currentStringTables().pieceCapacity;
        if (needed > capacity) grow(s.stk, capacity, needed, env);
        s.numElmts = static_cast<uint32_t>(needed);
    }
    // Cannot happen in a message, whose length has 32 bits; but callers may describe more by an SBuf of their own.
    if (len >= UINT32_MAX - s.totalByteLen) raise(env, ZYN_E_NO_MEMORY, nullptr);
    s.totalByteLen += len;
    s.stk[s.nextFreeElmt++] = {str, len};
}

// The octets of one primitive component, by reference.
void takeComponent(StrStk& s, SBuf* b, AsnLen length, const ComponentRules& rules, unsigned& unusedBits, jmp_buf env) {
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
    pushPiece(s, piece, taken, env);
    if (taken < length) raise(env, rules.cutCode, rules.cut);
}

} // namespace

// The end of a definite string is only tested for being reached: components that run over it end the walk, and the
// excess shows in the count that the enclosing record checks.
unsigned gatherPieces(SBuf* b, AsnLen length, const ComponentRules& rules, AsnLen* bytesDecoded, jmp_buf env) {
    StrStk& s = currentStrStk();
    resetStack(s, env);
    unsigned unusedBits = 0;
    if (length == 0) return unusedBits;
    Failure& failure = currentFailure();
    StringTables& tables = currentStringTables();
    AsnLen count = 0;
    std::size_t depth = 0;
    const uint8_t* previous = nullptr; // primitive component
    for (;;) {
        const uint8_t* component = failure.component = b->readLoc;
        const AsnTag tag = nextTag(b, count, env);
        bool ended = true;
        if (tag == 0 && length == IndefiniteLen) {
            eocSecondOctet(b, env);
            ++count;
        } else {
            const AsnLen componentLength = nextLength(b, count, env);
            if (tag == rules.primitive) {
                if (unusedBits != 0) failure.component = previous; // to blame that it is not the last
                previous = component;
                takeComponent(s, b, componentLength, rules, unusedBits, env);
                count += componentLength;
            } else if (tag != rules.nested) {
                raise(env, rules.wrongTagCode, rules.wrongTag);
            } else if (componentLength != 0) {
                if (depth == tables.openCapacity) grow(tables.open, tables.openCapacity, 16, env);
                tables.open[depth++] = {length, count};
                length = componentLength;
                count = 0;
            }
            ended = length != IndefiniteLen && count >= length;
        }
        while (ended) {
            if (depth == 0) {
                failure.component = nullptr;
                *bytesDecoded += count;
                return unusedBits;
            }
            const OpenString& outer = tables.open[--depth];
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
    std::free(currentStrStk().stk);
    std::free(currentStringTables().open);
    currentStrStk() = emptyStrStk;
    currentStringTables() = {};
}

} // namespace zyn
