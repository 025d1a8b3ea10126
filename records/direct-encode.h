// The templates behind direct::encode. What they take and give is told in direct.h; the rules are those of encode.cpp.
//
// A pointer moves down from the end of the caller's block; all functions get it and give it back, null: gave up. What lies
// from it on upwards is finished, what lies below it is room. Room for several fields of fixed size is proved at once,
// together with slack for one wide store, which may touch room below what it writes, but no octet outside the block.
#pragma once

#include <bit>
#include <utility>

#include "records/direct-bounds.h"
#include "records/direct.h"
#include "records/members.h"
#include "records/octets.h"
#include "sbuf/asn-int.h"
#include "sbuf/asn-real.h"

namespace zyn::direct {

// The widest store. Behind the fields of a record that is not small it is there still, room enough for the record's header
// if its tag has one octet.
inline constexpr std::size_t slack = 8;
static_assert(slack >= 1 + longestLength);

// Room is proved for the fields of a group at once, so that records with many OPTIONAL fields do not ask for much more
// than they need.
inline constexpr std::size_t groupSize = 8;

// The octets needed for field index and those in front of it in its group.
constexpr std::size_t fixedOctetsFrom(const Type& type, std::size_t index) {
    std::size_t octets = slack;
    for (std::size_t i = index + 1; i-- > index / groupSize * groupSize;) octets += fixedOctets(type.fields[i]);
    return octets;
}

inline bool hasRoom(const uint8_t* w, const uint8_t* begin, std::size_t octets) {
    return std::size_t(w - begin) >= octets;
}

// A length of 128 octets and more.
[[gnu::noinline]] inline uint8_t* pushLongLength(uint8_t* w, std::size_t length) {
    unsigned octets = 0;
    for (; length > 0; length >>= 8, ++octets) *--w = static_cast<uint8_t>(length);
    *--w = static_cast<uint8_t>(0x80 | octets);
    return w;
}

// Tag and length in front of w, for which room is there.
template <AsnTag tag> [[gnu::always_inline]] inline uint8_t* pushHeader(uint8_t* w, std::size_t length) {
    constexpr unsigned octets = tagOctets(tag);
    if (length < 0x80) [[likely]]
        *--w = static_cast<uint8_t>(length);
    else w = pushLongLength(w, length);
    if constexpr (octets == 3) *--w = static_cast<uint8_t>(tag >> 8);
    if constexpr (octets >= 2) *--w = static_cast<uint8_t>(tag >> 16);
    *--w = static_cast<uint8_t>(tag >> 24);
    return w;
}

// Tag and length in front of a value of less than 128 octets.
template <AsnTag tag> [[gnu::always_inline]] inline uint8_t* pushShortHeader(uint8_t* w, std::size_t length) {
    if constexpr (tagOctets(tag) == 1) {
        store(w - 2, littleEndian(static_cast<uint16_t>(tag >> 24 | length << 8)));
        return w - 2;
    } else {
        return pushHeader<tag>(w, length & 0x7F);
    }
}

// A string with its length and a tag of one octet. Null: no room for it and for what else is needed in front of it.
// Up to 16 octets go in two moves that overlap.
[[gnu::always_inline]] inline uint8_t* pushString(uint8_t* w, uint8_t* begin, const AsnOcts& text, std::size_t needed,
                                                  uint8_t tag) {
    const std::size_t length = text.octetLen;
    const uint8_t* from = text.octs;
    if (!hasRoom(w, begin, needed + length)) [[unlikely]]
        return nullptr;
    w -= length;
    if (length >= 8) {
        if (length <= 16) {
            const auto head = load<uint64_t>(from);
            const auto tail = load<uint64_t>(from + length - 8);
            store(w, head);
            store(w + length - 8, tail);
        } else {
            std::memcpy(w, from, length);
        }
    } else if (length >= 4) {
        const auto head = load<uint32_t>(from);
        const auto tail = load<uint32_t>(from + length - 4);
        store(w, head);
        store(w + length - 4, tail);
    } else if (length > 0) {
        w[0] = from[0];
        w[length / 2] = from[length / 2];
        w[length - 1] = from[length - 1];
    }
    if (length < 0x80) [[likely]]
        *--w = static_cast<uint8_t>(length);
    else w = pushLongLength(w, length);
    *--w = tag;
    return w;
}

[[gnu::always_inline]] inline uint8_t* pushInteger(uint8_t* w, AsnInt value) {
    store(w - 4, bigEndian(static_cast<uint32_t>(value)));
    return w - signedOctets(value);
}

// A value of one octet with its length and a tag.
template <AsnTag tag> [[gnu::always_inline]] inline uint8_t* pushOctet(uint8_t* w, uint8_t value) {
    if constexpr (tagOctets(tag) == 1) {
        store(w - 4, littleEndian(tag >> 24 << 8 | 1 << 16 | uint32_t{value} << 24));
        return w - 3;
    } else {
        *--w = value;
        return pushShortHeader<tag>(w, 1);
    }
}

// A REAL whose exponent takes two octets, as that of all subnormal ones does. Null: none that is finite, which is the exact
// way's business.
[[gnu::noinline, gnu::cold]] inline uint8_t* pushRareReal(uint8_t* w, uint64_t bits, uint8_t tag) {
    const auto value = std::bit_cast<double>(bits);
    if (value - value != 0.0) return nullptr;
    uint8_t* const after = w;
    const RealParts parts = splitReal(value);
    store(w - 8, bigEndian(parts.mantissa));
    w -= parts.octets;
    store(w - 2, bigEndian(static_cast<uint16_t>(parts.exponent)));
    w -= 2;
    *--w = value < 0 ? 0xC1 : 0x81;
    const auto length = static_cast<uint8_t>(after - w);
    *--w = length;
    *--w = tag;
    return w;
}

// A REAL, given as its bits, with its length and a tag of one octet: whole octets of mantissa, the last one not 0, and most
// often an exponent of one octet. Null: gave up.
[[gnu::always_inline]] inline uint8_t* pushReal(uint8_t* w, uint64_t bits, uint8_t tag) {
    if (bits << 1 == 0) {
        *--w = 0;
        *--w = tag;
        return w;
    }
    const auto stored = static_cast<int32_t>(bits >> significandBits & 0x7FF);
    const RealParts parts = splitNormal(bits, stored);
    if (parts.exponent != static_cast<int8_t>(parts.exponent)) [[unlikely]]
        return pushRareReal(w, bits, tag);
    store(w - 8, bigEndian(parts.mantissa));
    w -= parts.octets;
    const uint32_t sign = static_cast<uint32_t>(bits >> 57) & 0x40, exponent = static_cast<uint32_t>(parts.exponent);
    store(w - 4, littleEndian(tag | (parts.octets + 2) << 8 | (0x80 | sign) << 16 | exponent << 24));
    return w - 4;
}

// An infinity that a caller made stand for another value is the exact way's business.
inline bool infinitiesAreUsual() {
    const auto plus = std::bit_cast<uint64_t>(PLUS_INFINITY), minus = std::bit_cast<uint64_t>(MINUS_INFINITY);
    constexpr uint64_t sign = uint64_t{1} << 63, infinity = uint64_t{0x7FF} << significandBits;
    return (plus | minus) == 0 || (plus == infinity && minus == (infinity | sign));
}

template <TypeId id> uint8_t* sequence(const void* record, uint8_t* w, uint8_t* begin);
template <TypeId id> uint8_t* choice(const ChoiceRecord* record, uint8_t* w, uint8_t* begin);

template <TypeId id> uint8_t* setOf(AsnList* list, uint8_t* w, uint8_t* begin) {
    if (!list || list->count == 0) return w;
    constexpr TypeId element = typeOf(id).element;
    AsnListNode* node = list->last;
    for (; node && node->data; node = node->prev) {
        uint8_t* after = w;
        if constexpr (isSmall(element)) {
            constexpr std::size_t needed = smallOctets(element) + 2 + slack;
            if (!hasRoom(w, begin, needed)) return nullptr;
            w = sequence<element>(node->data, w, begin);
            if (!w) return nullptr;
            w = pushShortHeader<sequenceTag>(w, std::size_t(after - w));
        } else {
            static_assert(!typeOf(element).fields.empty());
            w = sequence<element>(node->data, w, begin);
            if (!w) return nullptr;
            w = pushHeader<sequenceTag>(w, std::size_t(after - w));
        }
    }
    list->curr = node;
    return w;
}

// One field, which is there. Room for its fixed octets has been proved, and is proved again for the rest of the group
// behind what has no fixed size.
template <TypeId id, std::size_t index>
[[gnu::always_inline]] inline uint8_t* field(const void* record, uint8_t* w, uint8_t* begin) {
    constexpr const Field& row = typeOf(id).fields[index];
    constexpr std::size_t needed = fixedOctetsFrom(typeOf(id), index);
    const void* value = static_cast<const char*>(record) + row.offset;
    if constexpr (row.pointer) value = pointerIn(value);
    uint8_t* const after = w;

    if constexpr (row.kind == Kind::Int) {
        if constexpr (row.optional) {
            if (!value) return w;
        }
        const AsnInt number = *static_cast<const AsnInt*>(value);
        // Most are one octet long. To guess that lets the next field begin before this one's length is known.
        if (number == static_cast<int8_t>(number)) [[likely]] {
            w = pushOctet < row.wrapped ? integerTag : row.tag > (w, static_cast<uint8_t>(number));
            if constexpr (row.wrapped) w = pushShortHeader<row.tag>(w, 3);
            return w;
        }
        w = pushInteger(w, number);
        if constexpr (row.wrapped) w = pushShortHeader<integerTag>(w, std::size_t(after - w));
        return pushShortHeader<row.tag>(w, std::size_t(after - w));
    } else if constexpr (row.kind == Kind::Bool) {
        if constexpr (row.optional) {
            if (!value) return w;
        }
        return pushOctet<row.tag>(w, *static_cast<const AsnBool*>(value) ? 0xFF : 0);
    } else if constexpr (row.kind == Kind::Real) {
        static_assert(tagOctets(row.tag) == 1);
        return pushReal(w, std::bit_cast<uint64_t>(*static_cast<const AsnReal*>(value)), row.tag >> 24);
    } else if constexpr (row.kind == Kind::Octs) {
        const auto* text = static_cast<const AsnOcts*>(value);
        if (!text->octs) {
            if (row.optional) return w;
            return text->octetLen == 0 ? pushHeader<row.tag>(w, 0) : nullptr;
        }
        static_assert(tagOctets(row.tag) == 1);
        return pushString(w, begin, *text, needed, row.tag >> 24);
    } else if constexpr (row.kind == Kind::Bits) {
        const auto* bits = static_cast<const AsnBits*>(value);
        if (!bits->bits) {
            if (row.optional) return w;
            return nullptr;
        }
        if (bits->bitLen < 0) return nullptr;
        const std::size_t length = (std::size_t(bits->bitLen) + 7) / 8;
        if (!hasRoom(w, begin, needed + length)) return nullptr;
        w -= length;
        if (length > 0) std::memcpy(w, bits->bits, length);
        *--w = static_cast<uint8_t>(8 * length - std::size_t(bits->bitLen));
        return pushHeader<row.tag>(w, length + 1);
    } else {
        if constexpr (row.kind == Kind::SetOf) {
            w = setOf<row.type>(static_cast<AsnList*>(const_cast<void*>(value)), w, begin);
        } else {
            if (!value) return row.optional ? w : nullptr;
            if constexpr (row.kind == Kind::Choice)
                w = choice<row.type>(static_cast<const ChoiceRecord*>(value), w, begin);
            else w = sequence<row.type>(value, w, begin);
        }
        if (!w) return nullptr;
        if constexpr (isSmall(row.type)) {
            return pushShortHeader<row.tag>(w, std::size_t(after - w));
        } else {
            if (!hasRoom(w, begin, needed)) return nullptr;
            if constexpr (row.kind == Kind::Choice) return w;
            else return pushHeader<row.tag>(w, std::size_t(after - w));
        }
    }
}

// One field in turn; the first of a group that is written proves the room for all of it.
template <TypeId id, std::size_t index>
[[gnu::always_inline]] inline uint8_t* step(const void* record, uint8_t* w, uint8_t* begin) {
    if constexpr (!isSmall(id) && (index + 1 == typeOf(id).fields.size() || (index + 1) % groupSize == 0)) {
        constexpr std::size_t needed = fixedOctetsFrom(typeOf(id), index);
        if (!hasRoom(w, begin, needed)) return nullptr;
    }
    return field<id, index>(record, w, begin);
}

template <TypeId id, std::size_t... i>
[[gnu::always_inline]] inline uint8_t* steps(const void* record, uint8_t* w, uint8_t* begin,
                                             std::index_sequence<i...>) {
    static_cast<void>(((w = step<id, sizeof...(i) - 1 - i>(record, w, begin)) && ...));
    return w;
}

template <TypeId id> uint8_t* sequence(const void* record, uint8_t* w, uint8_t* begin) {
    return steps<id>(record, w, begin, std::make_index_sequence<typeOf(id).fields.size()>());
}

// One alternative with its length and tag.
template <TypeId id, std::size_t index> uint8_t* alternative(const ChoiceRecord* record, uint8_t* w, uint8_t* begin) {
    constexpr const Alternative& row = typeOf(id).alternatives[index];
    // A number finds the slack that was proved in front of the field that holds the choice.
    static_assert(!typeOf(id).message || (row.kind != Kind::Int && row.kind != Kind::Choice));
    uint8_t* const after = w;
    if constexpr (row.kind == Kind::Int) {
        w = pushInteger(w, record->number);
    } else if constexpr (row.kind == Kind::Octs) {
        const auto* text = static_cast<const AsnOcts*>(record->slot);
        if (!text || !text->octs) return nullptr;
        return pushString(w, begin, *text, 1 + longestLength, row.tag >> 24);
    } else if constexpr (row.kind == Kind::Choice) {
        if (!record->slot) return nullptr;
        w = choice<row.type>(static_cast<const ChoiceRecord*>(record->slot), w, begin);
    } else if constexpr (!typeOf(row.type).fields.empty()) {
        if (!record->slot) return nullptr;
        if constexpr (isSmall(row.type)) {
            constexpr std::size_t needed = smallOctets(row.type) + slack;
            if (!hasRoom(w, begin, needed)) return nullptr;
        }
        w = sequence<row.type>(record->slot, w, begin);
    }
    if (!w || !hasRoom(w, begin, 3 + longestLength)) return nullptr;
    return pushHeader<row.tag>(w, std::size_t(after - w));
}

using AlternativeEncoder = uint8_t* (*)(const ChoiceRecord* record, uint8_t* w, uint8_t* begin);

// By number; null in a hole.
template <TypeId id>
inline constexpr auto alternativeEncoders = []<std::size_t... index>(std::index_sequence<index...>) {
    std::array<AlternativeEncoder, typeOf(id).byNumber.size()> table{};
    ((table[typeOf(id).alternatives[index].number] = alternative<id, index>), ...);
    return table;
}
(std::make_index_sequence<typeOf(id).alternatives.size()>());

template <TypeId id> uint8_t* choice(const ChoiceRecord* record, uint8_t* w, uint8_t* begin) {
    constexpr auto& table = alternativeEncoders<id>;
    if (record->choiceId >= table.size() || !table[record->choiceId]) return nullptr;
    return table[record->choiceId](record, w, begin);
}

template <TypeId id> uint8_t* encode(const void* message, uint8_t* begin, uint8_t* end) {
    if (!infinitiesAreUsual()) [[unlikely]]
        return nullptr;
    if constexpr (typeOf(id).shape == Shape::Choice) {
        return choice<id>(static_cast<const ChoiceRecord*>(message), end, begin);
    } else {
        static_assert(!isSmall(id) && !typeOf(id).fields.empty());
        uint8_t* w = sequence<id>(message, end, begin);
        if (!w) return nullptr;
        return pushHeader<sequenceTag>(w, std::size_t(end - w));
    }
}

} // namespace zyn::direct
