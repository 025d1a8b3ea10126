// The floor: what a careful programmer writes by hand for exactly one message, with nothing general about it.
//
// Decoders take the canonical form of their one record type, every OPTIONAL field included, and return false for
// all else. Reads are bounded; an INTEGER or a REAL is read in one word that ends with its last octet, which lies
// inside the message because more than 8 octets of frame stand in front. Records and strings, these with their
// closing 0, come from a bump arena whose bytes are 0 when handed out. Encoders write backwards and move the result
// to the start of the block once; they want room for the longest fixed part, and return 0 without it.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "zyn/zyn.h"

namespace zyn::bench::floor {

bool decodeOrder(const uint8_t* octets, std::size_t size, ZynTransReq* request);
uint32_t encodeOrder(const char* userId, const ZynOrder* order, uint8_t* buffer, uint32_t size);
bool decodeBook(const uint8_t* octets, std::size_t size, ZynQueryRep* reply);
uint32_t encodeBook(const ZynOrderbookByPriceRep* book, uint8_t* buffer, uint32_t size);

// One block; handed out in multiples of 8 bytes, cleared as far as it was used.
struct Arena {
    void reset() {
        std::memset(block, 0, static_cast<std::size_t>(next - block));
        next = block;
    }

    alignas(8) uint8_t block[8192] = {};
    uint8_t* next = block;
};

extern Arena arena;

template <typename Word> inline Word loadWord(const uint8_t* p) {
    Word word;
    std::memcpy(&word, p, sizeof word);
    if constexpr (std::endian::native == std::endian::big) return word;
    else if constexpr (sizeof word == 8) return __builtin_bswap64(word);
    else return __builtin_bswap32(word);
}

template <typename Word> inline void storeWord(uint8_t* p, Word word) {
    if constexpr (std::endian::native == std::endian::little) {
        if constexpr (sizeof word == 8) word = __builtin_bswap64(word);
        else word = __builtin_bswap32(word);
    }
    std::memcpy(p, &word, sizeof word);
}

// Copies up to 16 octets, the usual case, without a call.
[[gnu::always_inline]] inline void copyShort(uint8_t* to, const uint8_t* from, std::size_t size) {
    if (size > 16) {
        std::memcpy(to, from, size);
    } else if (size >= 8) {
        std::memcpy(to, from, 8);
        std::memcpy(to + size - 8, from + size - 8, 8);
    } else if (size >= 4) {
        std::memcpy(to, from, 4);
        std::memcpy(to + size - 4, from + size - 4, 4);
    } else {
        for (std::size_t i = 0; i < size; ++i) to[i] = from[i];
    }
}

// The arena's memory during one decode, in registers. Whoever ends a decode calls finish, so that the next reset
// clears all.
struct Bump {
    uint8_t* next = arena.block;

    [[gnu::always_inline]] void* take(std::size_t size) {
        const std::size_t rounded = (size + 7) & ~std::size_t{7};
        if (static_cast<std::size_t>(arena.block + sizeof arena.block - next) < rounded) return nullptr;
        void* memory = next;
        next += rounded;
        return memory;
    }
    template <typename T> [[gnu::always_inline]] T* make() { return static_cast<T*>(take(sizeof(T))); }
    bool finish(bool result) const {
        arena.next = next;
        return result;
    }
};

// Reading. Each function returns false when the octets are not those of the one message.
struct Reader {
    const uint8_t* p;
    const uint8_t* end;

    std::size_t rest() const { return static_cast<std::size_t>(end - p); }
    bool at(uint8_t tag) const { return p != end && *p == tag; }

    // A length of more than one octet, from p on.
    [[gnu::noinline]] static const uint8_t* longLength(const uint8_t* p, const uint8_t* end, std::size_t& size) {
        const std::size_t octets = *p++ & 0x7F;
        if (octets == 0 || octets > 4 || static_cast<std::size_t>(end - p) < octets) return nullptr;
        size = 0;
        for (std::size_t i = 0; i < octets; ++i) size = size << 8 | *p++;
        return p;
    }

    // Tag and length; afterwards p is at the value, which ends inside end.
    [[gnu::always_inline]] bool head(uint8_t tag, std::size_t& size) {
        if (rest() < 2 || p[0] != tag) return false;
        if (p[1] < 0x80) [[likely]] {
            size = p[1];
            p += 2;
        } else {
            p = longLength(p + 1, end, size);
            if (!p) return false;
        }
        return size <= rest();
    }

    // Tag and length of a record; inner reads its content, and p moves behind it.
    [[gnu::always_inline]] bool open(uint8_t tag, Reader& inner) {
        std::size_t size;
        if (!head(tag, size)) return false;
        inner = {p, p + size};
        p += size;
        return true;
    }

    [[gnu::always_inline]] bool integer(uint8_t tag, AsnInt& value) {
        if (rest() < 3 || p[0] != tag || p[1] - 1u > 3 || rest() - 2 < p[1]) return false;
        const unsigned excess = 32 - 8 * p[1];
        p += 2 + p[1];
        value = static_cast<AsnInt>(loadWord<uint32_t>(p - 4) << excess) >> excess;
        return true;
    }

    [[gnu::always_inline]] bool boolean(uint8_t tag, AsnBool& value) {
        if (rest() < 3 || p[0] != tag || p[1] != 1) return false;
        value = p[2] != 0;
        p += 3;
        return true;
    }

    [[gnu::always_inline]] bool text(uint8_t tag, AsnOcts& member, Bump& bump) {
        std::size_t size;
        if (!head(tag, size)) return false;
        auto* octets = static_cast<uint8_t*>(bump.take(size + 1));
        if (!octets) return false;
        copyShort(octets, p, size);
        member = {static_cast<uint32_t>(size), octets};
        p += size;
        return true;
    }

    // Base 2, a mantissa of up to 7 octets (X.690 8.5.7).
    [[gnu::always_inline]] bool real(AsnReal& value) {
        if (rest() < 2 || p[0] != 0x09 || p[1] > 10 || rest() - 2 < p[1]) return false;
        const unsigned size = p[1];
        const uint8_t* content = p + 2;
        p = content + size;
        if (size == 0) return true; // 0.0, which the member holds already
        const unsigned exponentOctets = (content[0] & 1) + 1u;
        const unsigned mantissaOctets = size - 1 - exponentOctets;
        if ((content[0] & 0xBE) != 0x80 || mantissaOctets - 1 > 6) return false;
        int exponent = static_cast<int8_t>(content[1]);
        if (exponentOctets == 2) exponent = exponent * 256 + content[2];
        if (exponent < -1022 || exponent > 1023) return false; // no price
        const uint64_t mantissa = loadWord<uint64_t>(p - 8) & ~uint64_t{0} >> (64 - 8 * mantissaOctets);
        const double scale = std::bit_cast<double>(static_cast<uint64_t>(exponent + 1023) << 52);
        const double magnitude = static_cast<double>(static_cast<int64_t>(mantissa)) * scale;
        value = (content[0] & 0x40) ? -magnitude : magnitude;
        return true;
    }

    [[gnu::always_inline]] bool price(uint8_t tag, AsnFixedReal*& member, Bump& bump) {
        Reader inner;
        if (!open(tag, inner)) return false;
        member = bump.make<AsnFixedReal>();
        return member && inner.real(member->value) && inner.optional(0x02, member->decimals, bump) &&
               inner.p == inner.end;
    }

    // OPTIONAL fields: nothing happens when another tag is there.
    [[gnu::always_inline]] bool optional(uint8_t tag, AsnInt*& member, Bump& bump) {
        if (!at(tag)) return true;
        member = bump.make<AsnInt>();
        return member && integer(tag, *member);
    }
    [[gnu::always_inline]] bool optional(uint8_t tag, AsnBool*& member, Bump& bump) {
        if (!at(tag)) return true;
        member = bump.make<AsnBool>();
        return member && boolean(tag, *member);
    }
    [[gnu::always_inline]] bool optional(uint8_t tag, AsnOcts& member, Bump& bump) {
        return !at(tag) || text(tag, member, bump);
    }
    [[gnu::always_inline]] bool optional(uint8_t tag, AsnFixedReal*& member, Bump& bump) {
        return !at(tag) || price(tag, member, bump);
    }
};

// Writing, backwards from w, where room has been proved.
struct Writer {
    uint8_t* w;

    [[gnu::always_inline]] void head(uint8_t tag, std::size_t size) {
        if (size >= 0x80) {
            uint8_t octets = 0;
            for (std::size_t rest = size; rest > 0; rest >>= 8, ++octets) *--w = static_cast<uint8_t>(rest);
            *--w = 0x80 | octets;
        } else {
            *--w = static_cast<uint8_t>(size);
        }
        *--w = tag;
    }
    [[gnu::always_inline]] void close(uint8_t tag, const uint8_t* end) { head(tag, static_cast<std::size_t>(end - w)); }

    [[gnu::always_inline]] void integer(uint8_t tag, AsnInt value) {
        const auto magnitude = static_cast<uint32_t>(value ^ (value >> 31));
        const unsigned octets = (32 - static_cast<unsigned>(std::countl_zero(magnitude))) / 8 + 1;
        storeWord(w - 4, static_cast<uint32_t>(value));
        w -= octets;
        *--w = static_cast<uint8_t>(octets);
        *--w = tag;
    }
    [[gnu::always_inline]] void boolean(uint8_t tag, AsnBool value) {
        w -= 3;
        w[0] = tag;
        w[1] = 1;
        w[2] = value ? 0xFF : 0;
    }
    [[gnu::always_inline]] void text(uint8_t tag, const AsnOcts& value) {
        w -= value.octetLen;
        copyShort(w, value.octs, value.octetLen);
        head(tag, value.octetLen);
    }
    [[gnu::always_inline]] void optional(uint8_t tag, const AsnInt* value) {
        if (value) integer(tag, *value);
    }
    [[gnu::always_inline]] void optional(uint8_t tag, const AsnBool* value) {
        if (value) boolean(tag, *value);
    }
    [[gnu::always_inline]] void optional(uint8_t tag, const AsnOcts& value) {
        if (value.octs) text(tag, value);
    }
    [[gnu::always_inline]] void optional(uint8_t tag, const AsnFixedReal* value) {
        if (value) price(tag, *value);
    }
    [[gnu::always_inline]] void real(AsnReal value);
    [[gnu::always_inline]] void price(uint8_t tag, const AsnFixedReal& value) {
        const uint8_t* end = w;
        optional(0x02, value.decimals);
        real(value.value);
        w -= 2;
        w[0] = tag;
        w[1] = static_cast<uint8_t>(end - w - 2);
    }
};

// A finite number that is not subnormal, as all prices are. The mantissa stands left-justified in whole octets.
[[gnu::always_inline]] inline void Writer::real(AsnReal value) {
    const uint8_t* end = w;
    if (value != 0) {
        const auto bits = std::bit_cast<uint64_t>(value);
        const uint64_t mantissa = (bits << 11) | uint64_t{1} << 63;
        const int octets = 8 - std::countr_zero(mantissa) / 8;
        const int exponent = static_cast<int>(bits >> 52 & 0x7FF) - 1023 + 1 - 8 * octets;
        storeWord(w - 8, mantissa >> (64 - 8 * octets));
        w -= octets;
        *--w = static_cast<uint8_t>(exponent);
        const bool wide = exponent != static_cast<int8_t>(exponent);
        if (wide) *--w = static_cast<uint8_t>(exponent >> 8);
        *--w = static_cast<uint8_t>((value < 0 ? 0xC0 : 0x80) | wide);
    }
    w -= 2;
    w[0] = 0x09;
    w[1] = static_cast<uint8_t>(end - w - 2);
}

// Hands the message, which ends at end, to the caller at the start of buffer.
inline uint32_t finish(uint8_t* buffer, const uint8_t* start, const uint8_t* end) {
    const auto size = static_cast<uint32_t>(end - start);
    std::memmove(buffer, start, size);
    arena.reset();
    return size;
}

} // namespace zyn::bench::floor
