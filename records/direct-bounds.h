// Small records: SEQUENCEs that hold only what has a fixed size, such as prices and times. The direct way proves the room
// for such a record once, wherever it begins, and takes it only with a length of one octet.
#pragma once

#include "records/tables.h"

namespace zyn::direct {

// The most octets that a length takes.
inline constexpr std::size_t longestLength = 5;

constexpr std::size_t smallOctets(TypeId id);

// The most octets of a field that do not depend on the size of what it holds: tags, lengths, small values and small
// records.
constexpr std::size_t fixedOctets(const Field& row) {
    const std::size_t header = tagOctets(row.tag) + 1;
    switch (row.kind) {
    case Kind::Int: return header + 4 + (row.wrapped ? 2 : 0);
    case Kind::Bool: return header + 1;
    case Kind::Real: return header + 10;
    case Kind::Choice: return 0;
    case Kind::Sequence:
        if (smallOctets(row.type) > 0) return header + smallOctets(row.type);
        [[fallthrough]];
    default: return tagOctets(row.tag) + longestLength + 1;
    }
}

// The most octets that encoders write for the content of a small record; 0: it is none.
constexpr std::size_t smallOctets(TypeId id) {
    std::size_t octets = 0;
    for (const Field& row : typeOf(id).fields) {
        if (isString(row.kind) || row.kind == Kind::SetOf || row.kind == Kind::Choice) return 0;
        if (row.kind == Kind::Sequence && smallOctets(row.type) == 0) return 0;
        octets += fixedOctets(row);
    }
    return octets < 0x80 ? octets : 0;
}

constexpr bool isSmall(TypeId id) { return smallOctets(id) > 0; }

// What NibbleAlloc makes of a size.
constexpr std::size_t roundedUp(std::size_t size) { return (size + 7) & ~std::size_t{7}; }

// The most arena that a small record takes, itself included.
constexpr std::size_t smallArena(TypeId id) {
    std::size_t bytes = roundedUp(typeOf(id).size);
    for (const Field& row : typeOf(id).fields) {
        if (row.pointer) bytes += row.kind == Kind::Sequence ? smallArena(row.type) : roundedUp(typeOf(row.type).size);
    }
    return bytes;
}

} // namespace zyn::direct
