#pragma once

#include <bit>
#include <cstdint>

namespace zyn {

// The octets that a value takes in two's complement, 1 to 4 (X.690 8.3.2).
inline unsigned signedOctets(int32_t value) {
    const auto magnitude = static_cast<uint32_t>(value ^ (value >> 31)) | 1; // no 0, which has no highest bit
    return (32 - static_cast<unsigned>(std::countl_zero(magnitude))) / 8 + 1;
}

} // namespace zyn
