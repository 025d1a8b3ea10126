// The templates behind direct::decode. What they take and give is told in direct.h; the rules are those of decode.cpp.
//
// Everything travels in registers: a cursor into the message and one into the arena go in and come back as a Cursor, whose
// p is null when the code gave up. Each function is told how many octets it may read, which lie inside those of its
// caller; a record has succeeded when it has read all of them.
// Words are loaded so that they end with the value they hold. An INTEGER's last octet is never among the first 4 octets of
// a message, nor a REAL's among the first 8: the tags and lengths of the frame stand there.
#pragma once

#include <algorithm>
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
    bool refused = false; // memory was
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
    source.refused = !memory;
    return {memory, block->curr};
}

// Whether the room in the arena's current block has been proved for all that a record takes, or each piece is tested.
enum class Room { tested, proved };

// What holds for a field's record of a type: room that has been proved is proved for small records alone.
constexpr Room roomOf(TypeId id, Room room) { return isSmall(id) ? room : Room::tested; }

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

// A length of more than one octet (X.690 8.1.3.5), in the first of rest octets at p. The indefinite form is refused, and so
// is what has more than 4 octets or is cut off, in the length itself or in its value.
[[gnu::noinline]] inline Measured longLength(const uint8_t* p, std::size_t rest) {
    const std::size_t octets = *p & 0x7F;
    if (octets == 0 || octets > 4 || rest <= octets) return {0, 0};
    std::size_t length = 0;
    for (std::size_t i = 1; i <= octets; ++i) length = length << 8 | p[i];
    if (length > rest - 1 - octets) return {0, 0};
    return {length, 1 + octets};
}

// The length in the first of rest octets at p. False: refused. Whether the value of a length of one octet is there is for
// the caller to see.
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

// The octets of a string, followed by a 0 byte.
[[gnu::noinline]] inline Cursor copyString(Cursor at, std::size_t length, AsnOcts* text, Source& source) {
    uint8_t* octs;
    if (!take(octs, at.free, length + 1, source)) return giveUp(at);
    std::memcpy(octs, at.p, length);
    text->octetLen = static_cast<uint32_t>(length);
    text->octs = octs;
    at.p += length;
    return at;
}

// A string from its length on, in the first of rest octets at at.p, with all that can be rare about it.
[[gnu::noinline]] inline Cursor rareString(Cursor at, std::size_t rest, AsnOcts* text, Source& source) {
    Measured measured;
    if (!readLength(at.p, rest, measured) || measured.length > rest - measured.octets) return giveUp(at);
    at.p += measured.octets;
    return copyString(at, measured.length, text, source);
}

// The same for what is usual, without a call and, up to 23 octets, without a branch that depends on the length. The octets
// go in whole words; the last one is masked, so that it holds the closing 0 and leaves the arena's zeros behind it.
[[gnu::noinline]] inline Cursor string(Cursor at, std::size_t rest, AsnOcts* text, Source& source) {
    const std::size_t length = *at.p, stored = roundedUp(length + 1);
    const uint8_t *from = at.p + 1, *end = from + length;
    if (length < 8 || length > 64 || length >= rest || std::size_t(source.blockEnd - at.free) < 24 + stored)
        [[unlikely]] {
        return rareString(at, rest, text, source);
    }
    text->octetLen = static_cast<uint32_t>(length);
    text->octs = at.free;
    uint8_t* to = at.free;
    if (length >= 24) {
        uint8_t* const last = to + stored - 8;
        for (; to != last; from += 8, to += 8) store(to, load<uint64_t>(from));
        store(last, lastOctets(end, length % 8));
        return {end, at.free + stored};
    }
    const std::size_t second = std::min<std::size_t>(length - 8, 8), missing = 8 - second;
    store(to, load<uint64_t>(from));
    store(to + 8, littleEndian(littleEndian(load<uint64_t>(from + second)) >> 4 * missing >> 4 * missing));
    store(to + 16, length < 16 ? 0 : lastOctets(end, length % 8));
    return {end, at.free + stored};
}

// A BIT STRING from its length on, in the first of rest octets at at.p.
[[gnu::noinline]] inline Cursor bits(Cursor at, std::size_t rest, AsnBits* bitString, Source& source) {
    Measured measured;
    if (!readLength(at.p, rest, measured) || measured.length > rest - measured.octets) return giveUp(at);
    at.p += measured.octets;
    const std::size_t length = measured.length;
    if (length == 0) return giveUp(at);
    const uint8_t unused = at.p[0];
    const std::size_t count = (length - 1) * 8;
    if (unused > 7 || unused > count || count > INT32_MAX) return giveUp(at);
    uint8_t* octets;
    if (!take(octets, at.free, length - 1, source)) return giveUp(at);
    if (length > 1) std::memcpy(octets, at.p + 1, length - 1);
    bitString->bitLen = static_cast<int32_t>(count - unused);
    bitString->bits = octets;
    at.p += length;
    return at;
}

// The content octets of an INTEGER, 1 to 4 of them before end.
[[gnu::always_inline]] inline AsnInt integerBefore(const uint8_t* end, std::size_t length) {
    const unsigned excess = 32 - 8 * static_cast<unsigned>(length);
    return static_cast<AsnInt>(bigEndian(load<uint32_t>(end - 4)) << excess) >> excess;
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
    if (length - 3 > 6u || (p[0] & 0xBF) != 0x80) [[unlikely]]
        return rareRealAt(p, length, value);
    const auto exponent = static_cast<uint64_t>(exponentBias + static_cast<int8_t>(p[1]));
    const uint64_t power = exponent << significandBits | static_cast<uint64_t>(p[0] & 0x40) << 57;
    *value = mantissaAt(p + length, length - 2) * std::bit_cast<double>(power);
    return true;
}

// A record from its length on, in the first of rest octets at at.p; place gets the pointer to it, as does a member of that
// type.
template <TypeId id, Room room = Room::tested> Cursor record(Cursor at, std::size_t rest, void* place, Source& source);
// A CHOICE from its alternative's tag on, inside the first of rest octets; it may end before them.
template <TypeId id> Cursor choice(Cursor at, std::size_t rest, ChoiceRecord* record, Source& source);

// A SET OF, as record.
template <TypeId id> Cursor setOf(Cursor at, std::size_t rest, void* place, Source& source) {
    constexpr TypeId element = typeOf(id).element;
    Measured measured;
    if (!readLength(at.p, rest, measured) || measured.length > rest - measured.octets) return giveUp(at);
    at.p += measured.octets;
    const uint8_t* const end = at.p + measured.length;
    uint8_t* memory;
    if (!take(memory, at.free, sizeof(AsnList), source)) return giveUp(at);
    store(place, memory);
    auto* list = reinterpret_cast<AsnList*>(memory);
    list->dataSize = sizeof(void*);
    AsnListNode* last = nullptr;
    int32_t count = 0;
    while (at.p != end) {
        const std::size_t left = std::size_t(end - at.p);
        if (left < 2 || *at.p != 0x30) return giveUp(at);
        if (!take(memory, at.free, sizeof(AsnListNode) + sizeof(void*), source)) return giveUp(at);
        auto* node = reinterpret_cast<AsnListNode*>(memory);
        node->prev = last;
        (last ? last->next : list->first) = node;
        last = node;
        ++count;
        at = record<element>({at.p + 1, at.free}, left - 1, &node->data, source);
        if (!at.p) return at;
    }
    list->last = list->curr = last;
    list->count = count;
    return at;
}

// The state of one SEQUENCE under decoding. Octets are counted from the end of the record: left is below 0 by as many as
// are still to be read; above 0, more were read than there are. head holds the next two octets of the message, the first
// one in the low octet: the tag and, behind a tag of one octet, the length.
struct Walk {
    const uint8_t* end;
    std::ptrdiff_t left;
    uint8_t* free; // next free byte of the arena's current block
    Source& source;
    uint32_t head = 0;

    [[gnu::always_inline]] const uint8_t* p() const { return end + left; }
    [[gnu::always_inline]] std::size_t rest() const { return static_cast<std::size_t>(-left); }
    [[gnu::always_inline]] Cursor at() const { return {p(), free}; }
    [[gnu::always_inline]] bool failed() {
        left = 1;
        return false;
    }
    // On behind octets that are there, or that are found missing.
    [[gnu::always_inline]] bool consume(std::size_t octets) {
        left += static_cast<std::ptrdiff_t>(octets);
        return left <= 0;
    }
    // On to where something has read to.
    [[gnu::always_inline]] bool moveTo(Cursor to) {
        free = to.free;
        if (!to.p) return failed();
        left = to.p - end;
        return true;
    }
    [[gnu::always_inline]] void readHead() { head = littleEndian(load<uint16_t>(p())); }
};

// Whether a word that ends with a value of field index may begin before the message. What stands in front of the value has
// two octets at least, a tag and a length: the record, each required field before this one, and this one.
constexpr bool mayStandFirst(TypeId id, std::size_t index) {
    std::size_t octets = 2 + 2;
    for (std::size_t i = 0; i < index; ++i) {
        if (!typeOf(id).fields[i].optional) octets += 2;
    }
    return octets < 8;
}

// A string behind its tag. Most are so short that one word holds them with their 0.
template <TypeId id, std::size_t index> [[gnu::always_inline]] inline bool stringField(Walk& walk, AsnOcts* text) {
    constexpr std::size_t word = 8;
    const std::size_t length = walk.head >> 8;
    const uint8_t* end = walk.p() + 2 + length;
    constexpr bool mayBeNear = mayStandFirst(id, index);
    const bool near = mayBeNear && std::size_t(end - walk.source.begin) < word;
    if (length >= word || near || std::size_t(walk.source.blockEnd - walk.free) < word) [[unlikely]] {
        return walk.moveTo(string({walk.p() + 1, walk.free}, walk.rest() - 1, text, walk.source));
    }
    if (!walk.consume(2 + length)) return false;
    text->octetLen = static_cast<uint32_t>(length);
    text->octs = walk.free;
    store(walk.free, lastOctets(end, length));
    walk.free += word;
    return true;
}

// The value of one field, whose tag and length have been read: the length octets before walk.p().
template <TypeId id, std::size_t index, Room room>
[[gnu::always_inline]] inline bool value(Walk& walk, std::size_t length, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    void* place = static_cast<char*>(record) + row.offset;
    const uint8_t* octets = walk.p() - length;
    if constexpr (row.pointer) {
        uint8_t* memory;
        if (!take<room>(memory, walk.free, typeOf(row.type).size, walk.source)) return walk.failed();
        store(place, memory);
        place = memory;
    }
    if constexpr (row.kind == Kind::Int) {
        if (length - 1 > 3u) return walk.failed();
        *static_cast<AsnInt*>(place) = length == 1 ? static_cast<int8_t>(*octets) : integerBefore(walk.p(), length);
        return true;
    } else if constexpr (row.kind == Kind::Bool) {
        if (length != 1) return walk.failed();
        *static_cast<AsnBool*>(place) = *octets != 0;
        return true;
    } else {
        static_assert(row.kind == Kind::Real);
        return realAt(octets, length, static_cast<AsnReal*>(place)) ? true : walk.failed();
    }
}

// A field of one octet or a few, as all numbers have.
template <TypeId id, std::size_t index, Room room>
[[gnu::always_inline]] inline bool numberField(Walk& walk, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    std::size_t length;
    if constexpr (tagOctets(row.tag) == 1) {
        length = walk.head >> 8;
        // Most are one octet long. To guess that lets the next field begin before this one's length is known.
        constexpr bool mayBeOne = !row.wrapped && (row.kind == Kind::Int || row.kind == Kind::Bool);
        if (mayBeOne && length == 1) [[likely]] {
            return walk.consume(3) && value<id, index, room>(walk, 1, record);
        }
        if (row.kind == Kind::Bool) return walk.failed();
        if (!walk.consume(2 + length)) return false;
    } else {
        if (walk.left > -3) return walk.failed();
        length = walk.p()[2];
        if (!walk.consume(3 + length)) return false;
    }
    if constexpr (row.wrapped) {
        // A wrapper that does not end with its INTEGER is the exact way's business.
        const uint8_t* octets = walk.p() - length;
        if (length - 3 > 3u || octets[0] != 0x02 || octets[1] != length - 2) return walk.failed();
        length -= 2;
    }
    return value<id, index, room>(walk, length, record);
}

// A field of CHOICE type, which brings its own tag.
template <TypeId id, std::size_t index> [[gnu::always_inline]] inline bool choiceField(Walk& walk, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    uint8_t* memory;
    if (!take(memory, walk.free, typeOf(row.type).size, walk.source)) return walk.failed();
    store(static_cast<char*>(record) + row.offset, memory);
    return walk.moveTo(choice<row.type>(walk.at(), walk.rest(), reinterpret_cast<ChoiceRecord*>(memory), walk.source));
}

// Behind a field: on to the next tag, or to the end, if it may stand here and nothing is left.
template <TypeId id, std::size_t index> [[gnu::always_inline]] inline bool next(Walk& walk) {
    if constexpr (index + 1 == typeOf(id).fields.size()) return true;
    if (walk.left > -2) {
        if constexpr (index + 1 >= typeOf(id).tail) return false;
        else return walk.failed();
    }
    walk.readHead();
    return true;
}

// A field with a tag of its own. The tag of another one leaves an OPTIONAL field absent, and so does that of a constructed
// string, which no other field has: that gives up at the latest at the end of the record.
template <TypeId id, std::size_t index, Room room>
[[gnu::always_inline]] inline bool taggedField(Walk& walk, void* record) {
    constexpr const Field& row = typeOf(id).fields[index];
    constexpr bool longTag = tagOctets(row.tag) == 2;
    constexpr uint32_t tag = row.tag >> 24 | (longTag ? row.tag >> 8 & 0xFF00 : 0);
    if ((walk.head & (longTag ? 0xFFFF : 0xFF)) != tag) {
        if constexpr (row.optional) return true;
        else return walk.failed();
    }
    void* place = static_cast<char*>(record) + row.offset;
    bool taken;
    if constexpr (row.kind == Kind::Octs) {
        static_assert(!longTag);
        taken = stringField<id, index>(walk, static_cast<AsnOcts*>(place));
    } else if constexpr (row.kind == Kind::Bits || isConstructed(row.kind)) {
        const std::size_t rest = walk.rest() - tagOctets(row.tag);
        if (longTag && rest == 0) return walk.failed();
        const Cursor at{walk.p() + tagOctets(row.tag), walk.free};
        if constexpr (row.kind == Kind::Bits)
            taken = walk.moveTo(bits(at, rest, static_cast<AsnBits*>(place), walk.source));
        else if constexpr (row.kind == Kind::SetOf) taken = walk.moveTo(setOf<row.type>(at, rest, place, walk.source));
        else taken = walk.moveTo(direct::record<row.type, roomOf(row.type, room)>(at, rest, place, walk.source));
    } else {
        taken = numberField<id, index, room>(walk, record);
    }
    return taken && next<id, index>(walk);
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

// The content of a SEQUENCE.
template <TypeId id, Room room>
[[gnu::always_inline]] inline Cursor sequence(Cursor at, std::size_t length, void* record, Source& source) {
    constexpr std::size_t count = typeOf(id).fields.size();
    if constexpr (count > 0) {
        constexpr bool mayBeEmpty = typeOf(id).tail == 0;
        if (length < 2) return mayBeEmpty && length == 0 ? at : giveUp(at);
        Walk walk{at.p + length, -static_cast<std::ptrdiff_t>(length), at.free, source};
        walk.readHead();
        fields<id, room>(walk, record, std::make_index_sequence<count>());
        return {walk.left == 0 ? walk.end : nullptr, walk.free};
    }
    return length == 0 ? at : giveUp(at);
}

// A small record that may not fit into the arena's current block.
template <TypeId id> [[gnu::noinline, gnu::cold]] Cursor smallRecordAcross(Cursor at, void* place, Source& source) {
    uint8_t* memory;
    if (!take(memory, at.free, typeOf(id).size, source)) return giveUp(at);
    store(place, memory);
    return sequence<id, Room::tested>({at.p + 1, at.free}, *at.p, memory, source);
}

template <TypeId id, Room room> Cursor record(Cursor at, std::size_t rest, void* place, Source& source) {
    uint8_t* memory;
    if constexpr (isSmall(id)) {
        constexpr std::size_t needed = smallArena(id);
        const std::size_t length = *at.p;
        if (length >= 0x80 || length >= rest) return giveUp(at);
        if (room == Room::tested && std::size_t(source.blockEnd - at.free) < needed) [[unlikely]] {
            return smallRecordAcross<id>(at, place, source);
        }
        take<Room::proved>(memory, at.free, typeOf(id).size, source);
        store(place, memory);
        return sequence<id, Room::proved>({at.p + 1, at.free}, length, memory, source);
    } else {
        Measured measured;
        if (!readLength(at.p, rest, measured) || measured.length > rest - measured.octets) return giveUp(at);
        if (!take(memory, at.free, typeOf(id).size, source)) return giveUp(at);
        store(place, memory);
        return sequence<id, Room::tested>({at.p + measured.octets, at.free}, measured.length, memory, source);
    }
}

// Reads what stands behind the tag of an alternative, in the first of rest octets, into the slot of a CHOICE.
using AlternativeDecoder = Cursor (*)(Cursor at, std::size_t rest, void* slot, Source& source);

inline Cursor integerAlternative(Cursor at, std::size_t rest, void* slot, Source&) {
    const std::size_t length = *at.p;
    if (length - 1 > 3u || length >= rest) return giveUp(at);
    at.p += 1 + length;
    store(slot, integerBefore(at.p, length));
    return at;
}

inline Cursor stringAlternative(Cursor at, std::size_t rest, void* slot, Source& source) {
    uint8_t* memory;
    if (!take(memory, at.free, sizeof(AsnOcts), source)) return giveUp(at);
    store(slot, memory);
    return string(at, rest, reinterpret_cast<AsnOcts*>(memory), source);
}

// The wrapper's own length bounds the inner alternative and is not compared with it.
template <TypeId id> Cursor wrappedChoice(Cursor at, std::size_t rest, void* slot, Source& source) {
    uint8_t* memory;
    if (!take(memory, at.free, typeOf(id).size, source)) return giveUp(at);
    store(slot, memory);
    Measured measured;
    if (!readLength(at.p, rest, measured) || measured.length > rest - measured.octets) return giveUp(at);
    at.p += measured.octets;
    return choice<id>(at, measured.length, reinterpret_cast<ChoiceRecord*>(memory), source);
}

template <TypeId id, Kind kind> constexpr AlternativeDecoder alternativeDecoder() {
    if constexpr (kind == Kind::Int) return integerAlternative;
    else if constexpr (kind == Kind::Octs) return stringAlternative;
    else if constexpr (kind == Kind::Choice) return wrappedChoice<id>;
    else return record<id>;
}

// All that has to be known of an alternative in one place, by its number; a hole has no decoder.
struct NumberedAlternative {
    AlternativeDecoder decoder = nullptr;
    AsnTag tag = 0;
};
using Alternatives = std::span<const NumberedAlternative>;

template <TypeId id> using AlternativeTable = std::array<NumberedAlternative, typeOf(id).byNumber.size()>;

// Those of the four channels; each is defined where its decoders are instantiated.
extern const AlternativeTable<TypeId::ZynTransReqChoice> transactionRequests;
extern const AlternativeTable<TypeId::ZynTransRep> transactionReplies;
extern const AlternativeTable<TypeId::ZynQueryReqChoice> queryRequests;
extern const AlternativeTable<TypeId::ZynQueryRep> queryReplies;

template <TypeId id>
inline constexpr auto alternativesByNumber = []<std::size_t... index>(std::index_sequence<index...>) {
    constexpr std::span<const Alternative> rows = typeOf(id).alternatives;
    static_assert(std::ranges::none_of(rows, [](auto& row) { return tagOctets(row.tag) == 2; }));
    AlternativeTable<id> table{};
    ((table[rows[index].number] = {alternativeDecoder<rows[index].type, rows[index].kind>(), rows[index].tag}), ...);
    return table;
}
(std::make_index_sequence<typeOf(id).alternatives.size()>());

// The alternative that a tag chooses.
struct Chosen {
    AlternativeDecoder decoder; // null: the tag chooses none
    uint32_t number;
    std::size_t octets; // of the tag
};

// Looks at the first of rest octets at p. No CHOICE has tags of two octets.
[[gnu::always_inline]] inline Chosen choose(Alternatives alternatives, const uint8_t* p, std::size_t rest) {
    if (rest < 4 && (rest < 2 || (*p & 0x1F) == 0x1F)) return {};
    AsnTag tag = AsnTag{p[0]} << 24;
    uint32_t number = p[0] & 0x1F;
    std::size_t octets = 1;
    if (number == 0x1F) {
        tag |= AsnTag{p[1]} << 16 | AsnTag{p[2]} << 8;
        number = static_cast<uint32_t>(p[1] & 0x7F) << 7 | (p[2] & 0x7F);
        octets = 3;
    }
    if (number >= alternatives.size() || alternatives[number].tag != tag) return {};
    return {alternatives[number].decoder, number, octets};
}

// Reads the one that was chosen, from its tag on.
[[gnu::always_inline]] inline Cursor decodeChosen(const Chosen& chosen, Cursor at, std::size_t rest,
                                                  ChoiceRecord* record, Source& source) {
    record->choiceId = chosen.number;
    return chosen.decoder({at.p + chosen.octets, at.free}, rest - chosen.octets, &record->slot, source);
}

template <TypeId id> Cursor choice(Cursor at, std::size_t rest, ChoiceRecord* record, Source& source) {
    const Chosen chosen = choose(alternativesByNumber<id>, at.p, rest);
    return chosen.decoder ? decodeChosen(chosen, at, rest, record, source) : giveUp(at);
}

} // namespace zyn::direct
