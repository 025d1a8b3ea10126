// The templates behind direct::decode. What they take and give is told in direct.h; the rules are those of decode.cpp.
//
// Everything travels in registers: a cursor into the message and one into the arena go in and come back as a Cursor, whose
// p is null when the code gave up. Each function is told how many octets it may read, which lie inside those of its
// caller; a record has succeeded when it has read all of them.
// Words are loaded so that they end with the value they hold. An INTEGER's last octet is never among the first 4 octets of
// a message, nor a REAL's among the first 8: the tags and lengths of the frame stand there.
#pragma once

#include <utility>

#include "records/direct-bounds.h"
#include "records/direct.h"
#include "records/members.h"
#include "records/octets.h"
#include "sbuf/asn-real.h"
#include "sbuf/state.h"

namespace zyn::direct {

struct Cursor {
    const uint8_t* p; // next octet of the message; null: gave up
    uint8_t* free;    // next free byte of the arena's current block
};

// What one decode has only once; touched off the usual path.
struct Source {
    const uint8_t* begin; // of the message
    uint8_t* blockEnd;    // of the arena's current block
};

inline Cursor giveUp(Cursor at) { return {nullptr, at.free}; }

// Arena memory and the free byte behind it. All of this goes by value, so that cursors stay in registers.
struct Taken {
    uint8_t* memory; // null when the allocator refuses
    uint8_t* free;
};

// Arena memory beyond the current block, or its last bytes.
[[gnu::noinline, gnu::cold]] inline Taken takeFromNextBlock(uint8_t* free, uint32_t size, Source& source) {
    currentArena()->currNibbleBuf->curr = free;
    auto* memory = static_cast<uint8_t*>(NibbleAlloc(size));
    const NibbleBuf* block = currentArena()->currNibbleBuf;
    source.blockEnd = block->end;
    return {memory, block->curr};
}

// Whether the room in the arena's current block has been proved for all that a record takes, or each piece is tested.
enum class Room { tested, proved };

// Takes memory as NibbleAlloc gives it: rounded up to 8 bytes, zero-filled. False when the allocator refuses.
template <Room room = Room::tested>
[[gnu::always_inline]] inline bool take(uint8_t*& memory, uint8_t*& free, std::size_t size, Source& source) {
    const std::size_t rounded = roundedUp(size);
    if (room == Room::tested && std::size_t(source.blockEnd - free) < rounded) [[unlikely]] {
        const Taken taken = takeFromNextBlock(free, static_cast<uint32_t>(size), source);
        memory = taken.memory;
        free = taken.free;
        return memory != nullptr;
    }
    memory = free;
    free += rounded;
    return true;
}

// A length and how many octets it takes itself; 0 of them: no length that could be taken.
struct Measured {
    std::size_t length;
    std::size_t octets;
};

// A length of more than one octet (X.690 8.1.3.5), in the first of rest octets at p. The indefinite form, and what is
// overlong or cut off, is refused.
[[gnu::noinline]] inline Measured longLength(const uint8_t* p, std::size_t rest) {
    const std::size_t octets = *p & 0x7F;
    if (octets == 0 || octets > 4 || rest <= octets) return {0, 0};
    std::size_t length = 0;
    for (std::size_t i = 1; i <= octets; ++i) length = length << 8 | p[i];
    return {length, 1 + octets};
}

// The length in the first of rest octets at p. False: refused. Whether the value is there is for the caller to see.
[[gnu::always_inline]] inline bool readLength(const uint8_t* p, std::size_t rest, Measured& measured) {
    measured = {*p, 1};
    if (measured.length >= 0x80) [[unlikely]] {
        measured = longLength(p, rest);
        if (measured.octets == 0) return false;
    }
    return true;
}

// The last length octets, 0 to 7 of them, of the word that ends at end, as a word whose other octets are 0.
[[gnu::always_inline]] inline uint64_t lastOctets(const uint8_t* end, std::size_t length) {
    return littleEndian(littleEndian(load<uint64_t>(end - 8)) >> 8 >> (56 - 8 * length));
}

// The octets of a string of more than one word, or so early in the message that a word would begin before it.
[[gnu::noinline]] inline void copyLongString(uint8_t* to, const uint8_t* from, std::size_t length, const uint8_t* begin) {
    if (length > 64 || std::size_t(from - begin) < 8) {
        std::memcpy(to, from, length);
        return;
    }
    const uint8_t* end = from + length;
    for (; length >= 8; length -= 8, from += 8, to += 8) store(to, load<uint64_t>(from));
    store(to, lastOctets(end, length));
}

// The octets of a primitive string with their closing 0 byte, in whole words: the last word is masked, so that it holds
// the 0 and leaves the arena's zeros behind it.
[[gnu::always_inline]] inline Cursor copyString(Cursor at, std::size_t length, AsnOcts* text, Source& source) {
    uint8_t* octs;
    if (!take(octs, at.free, length + 1, source)) return giveUp(at);
    text->octetLen = static_cast<uint32_t>(length);
    text->octs = octs;
    const uint8_t* from = at.p;
    at.p += length;
    if (length < 8 && std::size_t(from - source.begin) >= 8) [[likely]] store(octs, lastOctets(at.p, length));
    else copyLongString(octs, from, length, source.begin);
    return at;
}

[[gnu::noinline]] inline Cursor copyBits(Cursor at, std::size_t length, AsnBits* bits, Source& source) {
    if (length == 0) return giveUp(at);
    const uint8_t unused = at.p[0];
    const std::size_t count = (length - 1) * 8;
    if (unused > 7 || unused > count || count > INT32_MAX) return giveUp(at);
    uint8_t* octets;
    if (!take(octets, at.free, length - 1, source)) return giveUp(at);
    if (length > 1) std::memcpy(octets, at.p + 1, length - 1);
    bits->bitLen = static_cast<int32_t>(count - unused);
    bits->bits = octets;
    at.p += length;
    return at;
}

// The content octets of an INTEGER, 1 to 4 of them.
[[gnu::always_inline]] inline AsnInt integerAt(const uint8_t* p, std::size_t length) {
    const unsigned excess = 32 - 8 * static_cast<unsigned>(length);
    return static_cast<AsnInt>(bigEndian(load<uint32_t>(p + length - 4)) << excess) >> excess;
}

// The mantissa of a REAL: its last octets, 1 to 7 of them.
[[gnu::always_inline]] inline double mantissaAt(const uint8_t* end, std::size_t octets) {
    const std::size_t excess = 64 - 8 * octets;
    return static_cast<double>(static_cast<int64_t>(bigEndian(load<uint64_t>(end - 8)) << excess >> excess));
}

// A REAL with an exponent of two octets, or the empty one.
[[gnu::always_inline]] inline bool rareRealAt(const uint8_t* p, std::size_t length, AsnReal* value) {
    if (length == 0) {
        *value = 0.0;
        return true;
    }
    if ((p[0] & 0xBF) != 0x81 || length - 4 > 6u) return false;
    const double magnitude = mantissaAt(p + length, length - 3) * powerOfTwo(static_cast<int8_t>(p[1]) * 256 + p[2]);
    *value = (p[0] & 0x40) ? -magnitude : magnitude;
    return true;
}

// A REAL in the form that encoders write: base 2, no scaling, a mantissa of 1 to 7 octets. With an exponent of one octet,
// which most have, its power of two is normal and takes the sign along.
[[gnu::always_inline]] inline bool realAt(const uint8_t* p, std::size_t length, AsnReal* value) {
    if (length - 3 > 6u || (p[0] & 0xBF) != 0x80) [[unlikely]] return rareRealAt(p, length, value);
    const auto exponent = static_cast<uint64_t>(exponentBias + static_cast<int8_t>(p[1]));
    const uint64_t power = exponent << significandBits | static_cast<uint64_t>(p[0] & 0x40) << 57;
    *value = mantissaAt(p + length, length - 2) * std::bit_cast<double>(power);
    return true;
}

template <TypeId id, Room room = Room::tested>
Cursor sequence(Cursor at, std::size_t length, void* record, Source& source);
template <TypeId id> Cursor choice(Cursor at, std::size_t rest, ChoiceRecord* record, Source& source);

// The memory of a record and then its content. place gets the pointer to it, and has the type void* in the arena.
template <TypeId id> [[gnu::always_inline]] inline Cursor record(Cursor at, std::size_t length, void* place, Source& source) {
    uint8_t* memory;
    if (!take(memory, at.free, typeOf(id).size, source)) return giveUp(at);
    store(place, memory);
    return sequence<id>(at, length, memory, source);
}

// The same for a small record that may not fit into the arena's current block.
template <TypeId id>
[[gnu::noinline, gnu::cold]] Cursor smallRecordAcross(Cursor at, std::size_t length, void* place, Source& source) {
    return record<id>(at, length, place, source);
}

template <TypeId id, Room room>
[[gnu::always_inline]] inline Cursor smallRecord(Cursor at, std::size_t length, void* place, Source& source) {
    if (room == Room::tested && std::size_t(source.blockEnd - at.free) < smallArena(id)) [[unlikely]] {
        return smallRecordAcross<id>(at, length, place, source);
    }
    uint8_t* memory;
    take<Room::proved>(memory, at.free, typeOf(id).size, source);
    store(place, memory);
    return sequence<id, Room::proved>(at, length, memory, source);
}

template <TypeId id> Cursor setOf(Cursor at, std::size_t rest, AsnList* list, Source& source) {
    constexpr TypeId element = typeOf(id).element;
    list->dataSize = sizeof(void*);
    AsnListNode* last = nullptr;
    int32_t count = 0;
    while (rest > 0) {
        Measured measured;
        if (rest < 2 || *at.p != 0x30 || !readLength(at.p + 1, rest - 1, measured)) return giveUp(at);
        at.p += 1 + measured.octets;
        rest -= 1 + measured.octets;
        if (measured.length > rest) return giveUp(at);
        rest -= measured.length;
        uint8_t* memory;
        if (!take(memory, at.free, sizeof(AsnListNode) + sizeof(void*), source)) return giveUp(at);
        auto* node = reinterpret_cast<AsnListNode*>(memory);
        node->prev = last;
        (last ? last->next : list->first) = node;
        last = node;
        ++count;
        if constexpr (isSmall(element)) at = smallRecord<element, Room::tested>(at, measured.length, &node->data, source);
        else at = record<element>(at, measured.length, &node->data, source);
        if (!at.p) return at;
    }
    list->last = list->curr = last;
    list->count = count;
    return at;
}

// The state of one SEQUENCE under decoding. head holds the next two octets of the message, the first one in the low
// octet: the tag and, behind a tag of one octet, the length.
struct Walk {
    Cursor at;
    std::ptrdiff_t rest; // octets of the record that are still to be read; below 0: more were read than there are
    Source& source;
    uint32_t head = 0;

    [[gnu::always_inline]] bool failed() {
        at.p = nullptr;
        return false;
    }
    [[gnu::always_inline]] bool consume(std::size_t octets) {
        rest -= static_cast<std::ptrdiff_t>(octets);
        return rest >= 0 ? true : failed();
    }
    [[gnu::always_inline]] void readHead() { head = littleEndian(load<uint16_t>(at.p)); }
};

// The value of one field, whose tag and length have been read and whose octets are there.
template <TypeId id, std::size_t index, Room room>
[[gnu::always_inline]] inline bool value(Walk& walk, std::size_t length, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    void* place = static_cast<char*>(record) + row.offset;
    Cursor& at = walk.at;
    if constexpr (row.kind == Kind::Sequence) {
        if constexpr (isSmall(row.type)) at = smallRecord<row.type, room>(at, length, place, walk.source);
        else at = direct::record<row.type>(at, length, place, walk.source);
        return at.p != nullptr;
    }
    if constexpr (row.pointer) {
        uint8_t* memory;
        if (!take<room>(memory, at.free, typeOf(row.type).size, walk.source)) return walk.failed();
        store(place, memory);
        place = memory;
    }
    if constexpr (row.kind == Kind::Int) {
        // Most are one octet long. To guess that lets the next field begin before this one's length is known.
        if (length == 1) [[likely]] {
            *static_cast<AsnInt*>(place) = static_cast<int8_t>(*at.p++);
        } else {
            if (length - 1 > 3u) return walk.failed();
            *static_cast<AsnInt*>(place) = integerAt(at.p, length);
            at.p += length;
        }
    } else if constexpr (row.kind == Kind::Bool) {
        *static_cast<AsnBool*>(place) = *at.p++ != 0;
    } else if constexpr (row.kind == Kind::Real) {
        if (!realAt(at.p, length, static_cast<AsnReal*>(place))) return walk.failed();
        at.p += length;
    } else if constexpr (row.kind == Kind::Octs) {
        at = copyString(at, length, static_cast<AsnOcts*>(place), walk.source);
    } else if constexpr (row.kind == Kind::Bits) {
        at = copyBits(at, length, static_cast<AsnBits*>(place), walk.source);
    } else if constexpr (row.kind == Kind::SetOf) {
        at = setOf<row.type>(at, length, static_cast<AsnList*>(place), walk.source);
    }
    return at.p != nullptr;
}

// A field of CHOICE type, which brings its own tag.
template <TypeId id, std::size_t index> [[gnu::always_inline]] inline bool choiceField(Walk& walk, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    uint8_t* memory;
    if (!take(memory, walk.at.free, typeOf(row.type).size, walk.source)) return walk.failed();
    store(static_cast<char*>(record) + row.offset, memory);
    const uint8_t* start = walk.at.p;
    walk.at = choice<row.type>(walk.at, static_cast<std::size_t>(walk.rest), reinterpret_cast<ChoiceRecord*>(memory), walk.source);
    if (!walk.at.p) return false;
    return walk.consume(static_cast<std::size_t>(walk.at.p - start));
}

// Behind a field: on to the next tag, or to the end, if it may stand here and nothing is left.
template <TypeId id, std::size_t index> [[gnu::always_inline]] inline bool next(Walk& walk) {
    if constexpr (index + 1 == typeOf(id).fields.size()) return true;
    if (walk.rest < 2) {
        if constexpr (index + 1 >= typeOf(id).tail) return false;
        else return walk.failed();
    }
    walk.readHead();
    return true;
}

// A field with a tag of its own. The tag of another one leaves an OPTIONAL field absent.
template <TypeId id, std::size_t index, Room room>
[[gnu::always_inline]] inline bool taggedField(Walk& walk, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    constexpr std::size_t tagLength = tagOctets(row.tag);
    constexpr uint32_t tag = row.tag >> 24 | (tagLength == 2 ? row.tag >> 8 & 0xFF00 : 0);
    // The constructed form of a string matches as well; it is the exact way's business.
    static_assert(!isString(row.kind) || tagLength == 1);
    constexpr uint32_t mask = tagLength == 2 ? 0xFFFF : isString(row.kind) ? 0xDF : 0xFF;
    if ((walk.head & mask) != tag) {
        if constexpr (row.optional) return true;
        else return walk.failed();
    }
    if constexpr (isString(row.kind)) {
        if (walk.head & 0x20) [[unlikely]] return walk.failed();
    }

    std::size_t length;
    if constexpr (tagLength == 1 && row.kind == Kind::Sequence && isSmall(row.type)) {
        length = walk.head >> 8;
        if (length >= 0x80) return walk.failed();
        walk.at.p += 2;
        if (!walk.consume(2 + length)) return false;
    } else if constexpr (isConstructed(row.kind) || isString(row.kind) || tagLength == 2) {
        Measured measured;
        if (tagLength == 2 && walk.rest < 3) return walk.failed();
        const auto behindTag = static_cast<std::size_t>(walk.rest) - tagLength;
        if (!readLength(walk.at.p + tagLength, behindTag, measured)) return walk.failed();
        walk.at.p += tagLength + measured.octets;
        length = measured.length;
        if (!walk.consume(tagLength + measured.octets + length)) return false;
    } else {
        length = walk.head >> 8;
        walk.at.p += 2;
        if (!walk.consume(2 + length)) return false;
    }
    if constexpr (row.kind == Kind::Bool) {
        if (length != 1) return walk.failed();
    }
    if constexpr (row.wrapped) {
        // A wrapper that does not end with its INTEGER is the exact way's business.
        if (length - 3 > 3u || walk.at.p[0] != 0x02 || walk.at.p[1] != length - 2) return walk.failed();
        walk.at.p += 2;
        length -= 2;
    }
    return value<id, index, room>(walk, length, record) && next<id, index>(walk);
}

// One field. False ends the walk: the record may be complete, or the code gave up.
template <TypeId id, std::size_t index, Room room> [[gnu::always_inline]] inline bool field(Walk& walk, void* record) {
    if constexpr (typeOf(id).fields[index].kind == Kind::Choice) {
        return choiceField<id, index>(walk, record) && next<id, index>(walk);
    } else {
        return taggedField<id, index, room>(walk, record);
    }
}

template <TypeId id, Room room, std::size_t... index>
[[gnu::always_inline]] inline void fields(Walk& walk, void* record, std::index_sequence<index...>) {
    static_cast<void>((field<id, index, room>(walk, record) && ...));
}

template <TypeId id, Room room> Cursor sequence(Cursor at, std::size_t length, void* record, Source& source) {
    constexpr std::size_t count = typeOf(id).fields.size();
    if constexpr (count > 0) {
        if (length < 2) return typeOf(id).tail == 0 && length == 0 ? at : giveUp(at);
        Walk walk{at, static_cast<std::ptrdiff_t>(length), source};
        walk.readHead();
        fields<id, room>(walk, record, std::make_index_sequence<count>());
        return walk.rest == 0 ? walk.at : giveUp(walk.at);
    }
    return length == 0 ? at : giveUp(at);
}

// One alternative, whose tag and length have been read.
template <TypeId id, std::size_t index>
Cursor alternative(Cursor at, std::size_t length, ChoiceRecord* record, Source& source) {
    constexpr const Alternative& row = typeOf(id).alternatives[index];
    record->choiceId = row.number;
    if constexpr (row.kind == Kind::Int) {
        if (length - 1 > 3u) return giveUp(at);
        record->number = integerAt(at.p, length);
        return {at.p + length, at.free};
    } else {
        uint8_t* memory;
        if (!take(memory, at.free, typeOf(row.type).size, source)) return giveUp(at);
        record->slot = memory;
        if constexpr (row.kind == Kind::Octs) {
            return copyString(at, length, reinterpret_cast<AsnOcts*>(memory), source);
        } else if constexpr (row.kind == Kind::Choice) {
            // The wrapper's own length bounds the inner alternative and is not compared with it.
            return choice<row.type>(at, length, reinterpret_cast<ChoiceRecord*>(memory), source);
        } else {
            return sequence<row.type>(at, length, memory, source);
        }
    }
}

using AlternativeDecoder = Cursor (*)(Cursor at, std::size_t length, ChoiceRecord* record, Source& source);

template <TypeId id>
inline constexpr auto alternativeDecoders = []<std::size_t... index>(std::index_sequence<index...>) {
    return std::array<AlternativeDecoder, sizeof...(index)>{alternative<id, index>...};
}(std::make_index_sequence<typeOf(id).alternatives.size()>());

// A CHOICE from its alternative's tag on, inside the next rest octets; it may end before them.
template <TypeId id> Cursor choice(Cursor at, std::size_t rest, ChoiceRecord* record, Source& source) {
    if (rest < 4 && (rest < 2 || (*at.p & 0x1F) == 0x1F)) return giveUp(at);
    AsnTag tag = AsnTag{at.p[0]} << 24;
    uint32_t number = at.p[0] & 0x1F;
    if (number == 0x1F) {
        tag |= AsnTag{at.p[1]} << 16;
        number = at.p[1] & 0x7F;
        if (at.p[1] & 0x80) {
            tag |= AsnTag{at.p[2]} << 8;
            number = number << 7 | (at.p[2] & 0x7F);
        }
    }
    constexpr std::span<const int16_t> byNumber = typeOf(id).byNumber;
    if (number >= byNumber.size() || byNumber[number] < 0) return giveUp(at);
    const auto index = static_cast<std::size_t>(byNumber[number]);
    if (typeOf(id).alternatives[index].tag != tag) return giveUp(at);
    const std::size_t octets = tagOctets(tag);
    Measured measured;
    if (!readLength(at.p + octets, rest - octets, measured)) return giveUp(at);
    if (measured.length > rest - octets - measured.octets) return giveUp(at);
    at.p += octets + measured.octets;
    return alternativeDecoders<id>[index](at, measured.length, record, source);
}

template <TypeId id> bool decode(const uint8_t* buffer, std::size_t length, void* message) {
    NibbleBuf* block = currentArena()->currNibbleBuf;
    Source source{buffer, block->end};
    Cursor at{buffer, block->curr};
    // The caller's record is written when everything has succeeded.
    alignas(void*) unsigned char record[typeOf(id).size] = {};
    if constexpr (typeOf(id).shape == Shape::Sequence) {
        Measured measured;
        if (length < 2 || *buffer != 0x30 || !readLength(buffer + 1, length - 1, measured)) return false;
        if (measured.length > length - 1 - measured.octets) return false;
        at.p += 1 + measured.octets;
        at = sequence<id>(at, measured.length, record, source);
    } else {
        at = choice<id>(at, length, reinterpret_cast<ChoiceRecord*>(record), source);
    }
    currentArena()->currNibbleBuf->curr = at.free;
    if (!at.p) return false;
    std::memcpy(message, record, sizeof record);
    return true;
}

} // namespace zyn::direct
