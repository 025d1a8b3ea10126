// The neutral form of a value: one line for each leaf, "path value", in which the sides are compared.
//
//   orderRep.seqContext.seqNum 17           INTEGER, ENUMERATED: decimal
//   orderRep.price.value 2409p-1            REAL: an odd mantissa and the exponent of 2 (1204.5); 0p0, -0p0, inf, -inf, nan
//   orderRep.isMarketMaker true             BOOLEAN
//   orderRep.orderId.orderNo '3137'H        OCTET STRING
//   orderRep.orderMethods '101'B            BIT STRING, bits behind the last one left out; 'A0'H if it has whole octets
//   orderRep.legs [2]                       SET OF: how many elements; theirs follow as orderRep.legs.0 and so on
//   orderRep.seqContext {}                  SEQUENCE in which nothing is present
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace zyn::interop {

inline std::string hexOf(const uint8_t* octets, std::size_t count) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += digits[octets[i] >> 4];
        text += digits[octets[i] & 15];
    }
    return text;
}

inline std::string octetsText(const uint8_t* octets, std::size_t count) { return "'" + hexOf(octets, count) + "'H"; }

inline std::string bitsText(const uint8_t* octets, std::size_t bits) {
    if (bits % 8 == 0) return octetsText(octets, bits / 8);
    std::string text = "'";
    for (std::size_t i = 0; i < bits; ++i) text += octets[i / 8] >> (7 - i % 8) & 1 ? '1' : '0';
    return text + "'B";
}

inline std::string realText(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
    if (value == 0) return std::signbit(value) ? "-0p0" : "0p0";
    int exponent;
    auto mantissa = static_cast<int64_t>(std::ldexp(std::frexp(value, &exponent), 53));
    exponent -= 53;
    for (; mantissa % 2 == 0; mantissa /= 2) ++exponent;
    return std::to_string(mantissa) + "p" + std::to_string(exponent);
}

} // namespace zyn::interop
