// Octets as people write them: hexadecimal pairs with blanks between.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

inline std::vector<uint8_t> hex(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::vector<uint8_t> octets;
    unsigned value = 0, count = 0;
    for (const char c : text) {
        if (c == ' ' || c == '\n') continue;
        const auto digit = digits.find(c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c);
        if (digit == digits.npos) throw std::invalid_argument("no hexadecimal digit: " + std::string(text));
        value = value << 4 | static_cast<unsigned>(digit);
        if (++count % 2 == 0) octets.push_back(static_cast<uint8_t>(value));
    }
    if (count % 2 != 0) throw std::invalid_argument("half an octet: " + std::string(text));
    return octets;
}

inline std::string toHex(const uint8_t* octets, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        constexpr char digits[] = "0123456789ABCDEF";
        if (i > 0) text += ' ';
        text += digits[octets[i] >> 4];
        text += digits[octets[i] & 0x0F];
    }
    return text;
}

inline std::string toHex(const std::vector<uint8_t>& octets) { return toHex(octets.data(), octets.size()); }
