// The bit work of REAL (X.690 8.5): what frexp and pow would give, without them.
#pragma once

#include <bit>
#include <cstdint>
#include <limits>

namespace zyn {

static_assert(std::numeric_limits<double>::is_iec559, "an AsnReal is an IEEE 754 double");

inline constexpr int significandBits = 52; // stored ones
inline constexpr int exponentBias = 1023;

// 2 to the power of e as a double: 0 below the smallest one, infinite above the largest.
inline double powerOfTwo(int64_t e) {
    if (e >= 1 - exponentBias && e <= exponentBias) [[likely]] {
        return std::bit_cast<double>(static_cast<uint64_t>(e + exponentBias) << significandBits);
    }
    if (e > exponentBias) return std::numeric_limits<double>::infinity();
    const int64_t smallest = 1 - exponentBias - significandBits;
    return e < smallest ? 0.0 : std::bit_cast<double>(uint64_t{1} << (e - smallest));
}

// A finite value other than 0 without its sign, as mantissa times 2 to the power of exponent: octets whole octets of
// mantissa, the first one at least 0x80 and the last one not 0.
struct RealParts {
    uint64_t mantissa;
    unsigned octets;
    int32_t exponent;
};

// The parts of a normal value from its bits and its stored exponent.
inline RealParts splitNormal(uint64_t bits, int32_t stored) {
    const uint64_t mantissa = bits << (63 - significandBits) | uint64_t{1} << 63;
    const int excess = std::countr_zero(mantissa) & ~7; // bits of the octets that are 0
    return {mantissa >> excess, 8 - static_cast<unsigned>(excess) / 8, stored - exponentBias - 63 + excess};
}

inline RealParts splitReal(double value) {
    const uint64_t bits = std::bit_cast<uint64_t>(value);
    const auto stored = static_cast<int32_t>(bits >> significandBits & 0x7FF);
    if (stored != 0) [[likely]]
        return splitNormal(bits, stored);
    // Subnormal: as a normal value whose exponent is lower by as much as the significand is moved up.
    const uint64_t significand = bits & ((uint64_t{1} << significandBits) - 1);
    const int shift = std::countl_zero(significand) - (63 - significandBits);
    return splitNormal(significand << shift, 1 - shift);
}

} // namespace zyn
