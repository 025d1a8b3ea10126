#pragma once

#include <bit>
#include <cstdint>

namespace zyn {

// The octets that a value takes in two's complement, 1 to 4 (X.690 8.3.2).
inline unsigned signedOctets(int32_t value) {
    // The bits that differ from the sign, with room for it, and never 0, which has no highest bit.
    const uint32_t bits = static_cast<uint32_t>(value ^ (value >> 31)) * 2 + 1;
    return (31 ^ static_cast<unsigned>(std::countl_zero(bits))) / 8 + 1;
}

} // namespace zyn
