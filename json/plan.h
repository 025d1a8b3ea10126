// What is made of the descriptions once, for both directions: keys as they are written, and members by name.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "zyn/describe.h"

namespace zyn::json {

struct Plan;

// The storage of a key is a multiple of this long, so that most are copied as one piece of fixed size.
inline constexpr std::size_t keyPiece = 32;

// A field of a SEQUENCE or an alternative of a CHOICE.
struct Member {
    const char* key; // ,"name":
    std::uint16_t keyLength;
    std::uint16_t offset; // of the member, or of the slot
    bool optional;
    bool pointer;     // the value lies where the member points
    const Plan* plan; // of its type

    std::string_view name() const { return {key + 2, keyLength - std::size_t{4}}; }
};

// A type.
struct Plan {
    const ZynType* type;
    ZynKind kind;
    std::span<const Member> members;         // fields or alternatives, in the order of the schema
    const Plan* element;                     // of a SET OF, otherwise null
    std::span<const std::uint16_t> byName;   // indexes of the members, sorted by their names
    std::span<const std::uint64_t> required; // a bit for each field, set in those that must be there
    unsigned depth;                          // how many objects and arrays may be open at once in its text
};

// The plan of a type, alike for all threads. Throws std::bad_alloc, if ever, at its first call.
const Plan& planOf(const ZynType* type);

// The index of the member of that name, or -1.
int memberByName(const Plan& plan, std::string_view name);

inline const void* pointerIn(const void* member) {
    const void* value;
    std::memcpy(&value, member, sizeof value);
    return value;
}

} // namespace zyn::json
