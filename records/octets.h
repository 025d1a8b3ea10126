// Loads and stores of several octets at once, in network order and in wire order, for the direct way.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace zyn {

template <typename Word> inline Word load(const uint8_t* p) {
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

template <typename Word> inline void store(void* p, Word word) { std::memcpy(p, &word, sizeof word); }

template <typename Word> constexpr Word swapped(Word word) {
    if constexpr (sizeof(Word) == 8) return __builtin_bswap64(word);
    else if constexpr (sizeof(Word) == 4) return __builtin_bswap32(word);
    else return __builtin_bswap16(word);
}

// The word as its octets stand on the wire, the first octet in the highest bits.
template <typename Word> constexpr Word bigEndian(Word word) {
    return std::endian::native == std::endian::big ? word : swapped(word);
}

// The word as its octets stand in memory, the first octet in the lowest bits.
template <typename Word> constexpr Word littleEndian(Word word) {
    return std::endian::native == std::endian::little ? word : swapped(word);
}

} // namespace zyn
