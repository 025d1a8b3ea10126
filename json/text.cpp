#include "json/text.h"

#include <charconv>
#include <cmath>
#include <iterator>

namespace zyn::json {

// The table of well-formed sequences in the Unicode Standard: the second octet's range keeps out forms that are longer
// than needed, surrogates, and what lies behind U+10FFFF.
unsigned characterLength(const uint8_t* p, const uint8_t* end) {
    const uint8_t first = *p;
    if (first < 0x80) return 1;
    unsigned length = 0;
    uint8_t low = 0x80, high = 0xBF;
    if (first >= 0xC2 && first <= 0xDF) {
        length = 2;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3;
        if (first == 0xE0) low = 0xA0;
        if (first == 0xED) high = 0x9F;
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 4;
        if (first == 0xF0) low = 0x90;
        if (first == 0xF4) high = 0x8F;
    }
    if (length == 0 || static_cast<std::size_t>(end - p) < length || p[1] < low || p[1] > high) return 0;
    for (unsigned i = 2; i < length; ++i) {
        if ((p[i] & 0xC0) != 0x80) return 0;
    }
    return length;
}

std::size_t utf8Prefix(const uint8_t* octets, std::size_t count) {
    const uint8_t* const end = octets + count;
    const uint8_t* p = octets;
    while (p < end) {
        uint64_t words[4];
        while (static_cast<std::size_t>(end - p) >= sizeof words) {
            std::memcpy(words, p, sizeof words);
            if (((words[0] | words[1] | words[2] | words[3]) & 0x8080808080808080) != 0) break;
            p += sizeof words;
        }
        // What is left, or in the way, octet by octet.
        for (const uint8_t* const piece = p; p < end && static_cast<std::size_t>(p - piece) < sizeof words;) {
            const unsigned length = characterLength(p, end);
            if (length == 0) return static_cast<std::size_t>(p - octets);
            p += length;
        }
    }
    return count;
}

bool isText(const uint8_t* octets, std::size_t count) {
    const uint8_t* const end = octets + count;
    for (const uint8_t* p = octets; p < end;) {
        const unsigned length = characterLength(p, end);
        if (length == 0 || *p < 0x20 || *p == 0x7F || (*p == 0xC2 && p[1] < 0xA0)) return false;
        p += length;
    }
    return true;
}

namespace {

// Writes a value that has at most 15 digits, of which at most 6 are decimal places, as people write it; null: it is
// none. whole and the power of ten are exact and the quotient is the value, so that the decimal reads back to it; and
// since no two decimals of 15 digits are the same double, the first one found is the shortest.
char* writeDecimal(char* to, double value) {
    constexpr double powers[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
    for (unsigned places = 0; places < std::size(powers); ++places) {
        const double scaled = value * powers[places];
        if (scaled >= 1e15) return nullptr;
        const auto whole = static_cast<uint64_t>(scaled + 0.5); // NOLINT(bugprone-incorrect-roundings): compared below
        if (static_cast<double>(whole) / powers[places] != value) continue;
        const auto unit = static_cast<uint64_t>(powers[places]);
        to = std::to_chars(to, to + 16, whole / unit).ptr;
        if (places == 0) return to;
        *to = '.';
        uint64_t fraction = whole % unit;
        for (unsigned i = places; i > 0; --i, fraction /= 10) to[i] = static_cast<char>('0' + fraction % 10);
        return to + places + 1;
    }
    return nullptr;
}

} // namespace

char* writeReal(char* to, double value) {
    if (std::signbit(value)) *to++ = '-';
    const double magnitude = std::fabs(value);
    if (char* const end = writeDecimal(to, magnitude)) return end;
    return std::to_chars(to, to + 31, magnitude).ptr;
}

} // namespace zyn::json
