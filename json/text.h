// Characters and digits: what is text, and how octets, bits and numbers are spelled.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zyn::json {

// How many octets the UTF-8 character at p has; 0: there is none, or not all of it in front of end.
unsigned characterLength(const uint8_t* p, const uint8_t* end);

// How many of the octets, from the first on, are whole characters of UTF-8.
std::size_t utf8Prefix(const uint8_t* octets, std::size_t count);

// Whether the octets are UTF-8 without control characters (U+0000 to U+001F, U+007F to U+009F).
bool isText(const uint8_t* octets, std::size_t count);

// The value of a hexadecimal digit, or -1.
constexpr int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Writes the finite value in decimal, at most 32 characters, and gives the place behind. The text reads back to the
// same bits and has no more digits than that takes.
char* writeReal(char* to, double value);

// Whether all bytes of the word are printable ASCII that needs no escape in JSON: neither " nor \.
template <typename Word> constexpr bool isPlain(Word word) {
    constexpr Word ones = static_cast<Word>(~Word{0}) / 0xFF, highs = ones * 0x80;
    // Each term has a high bit set if some byte is the one looked for (or, beside such a one, by a borrow).
    const Word control = word - ones * 0x20;
    const Word quote = (word ^ ones * '"') - ones;
    const Word escape = (word ^ ones * '\\') - ones;
    const Word del = word + ones;
    return ((word | control | quote | escape | del) & highs) == 0;
}

namespace text_detail {
template <typename Word> bool copyWord(char* to, const uint8_t* from) {
    Word word;
    std::memcpy(&word, from, sizeof word);
    std::memcpy(to, &word, sizeof word);
    return isPlain(word);
}
} // namespace text_detail

// Copies the octets as long as all are plain; tells whether they were. to has room for all of them.
inline bool copyPlain(char* to, const uint8_t* from, std::size_t count) {
    using text_detail::copyWord;
    // Two words that may overlap cover any count from one word's size up to two.
    if (count >= 8) {
        std::size_t i = 0;
        for (; i + 8 < count; i += 8) {
            if (!copyWord<uint64_t>(to + i, from + i)) return false;
        }
        return copyWord<uint64_t>(to + count - 8, from + count - 8);
    }
    if (count >= 4) return copyWord<uint32_t>(to, from) & copyWord<uint32_t>(to + count - 4, from + count - 4);
    for (std::size_t i = 0; i < count; ++i) {
        if (from[i] < 0x20 || from[i] > 0x7E || from[i] == '"' || from[i] == '\\') return false;
        to[i] = static_cast<char>(from[i]);
    }
    return true;
}

// The first byte from p on that ends a run of characters inside a string of JSON: " or \ or one below 0x20, of which
// there has to be one. Up to 7 bytes behind it are read.
inline const char* plainEnd(const char* p) {
    while (std::endian::native == std::endian::little) {
        uint64_t word;
        std::memcpy(&word, p, sizeof word);
        constexpr uint64_t ones = ~uint64_t{0} / 0xFF, highs = ones * 0x80;
        const uint64_t quote = word ^ ones * '"', escape = word ^ ones * '\\';
        // Bytes above the first one found may be marked as well, by a borrow.
        const uint64_t found =
            (((word - ones * 0x20) & ~word) | ((quote - ones) & ~quote) | ((escape - ones) & ~escape)) & highs;
        if (found != 0) return p + std::countr_zero(found) / 8;
        p += sizeof word;
    }
    while (static_cast<uint8_t>(*p) >= 0x20 && *p != '"' && *p != '\\') ++p;
    return p;
}

// Whether two names are the same; most are, and short.
inline bool sameName(std::string_view a, std::string_view b) {
    const std::size_t count = a.size();
    if (count != b.size()) return false;
    const auto differ = [&]<typename Word>(std::size_t at, Word) {
        Word one, other;
        std::memcpy(&one, a.data() + at, sizeof one);
        std::memcpy(&other, b.data() + at, sizeof other);
        return one ^ other;
    };
    if (count > 16) return a == b;
    if (count >= 8) return (differ(0, uint64_t{}) | differ(count - 8, uint64_t{})) == 0;
    if (count >= 4) return (differ(0, uint32_t{}) | differ(count - 4, uint32_t{})) == 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (a[i] != b[i]) return false;
    }
    return true;
}

} // namespace zyn::json
