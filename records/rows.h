// The rows that describe every record: what the generated tables are made of.
//
// A row names a member, so that its place comes from offsetof and its form in memory from its C type; what the
// type does not tell (tag, presence, ENUMERATED) the schema says. A row whose member does not have the form that the
// schema asks for does not compile.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

#include "records/generated/type-ids.h"
#include "zyn/asn.h"

namespace zyn {

// An ENUMERATED value is an INTEGER under another universal tag; the rows name it by this type.
using AsnEnum = AsnInt;

// How a value is coded and what its member holds.
enum class Kind : uint8_t { Int, Bool, Real, Octs, Bits, Sequence, SetOf, Choice };

enum class Presence : uint8_t { required, optional };

// A tag as the schema says it. An implicit tag takes the place of the type's own, an explicit one wraps it.
struct SchemaTag {
    enum class Form : uint8_t { Universal, Implicit, Explicit } form;
    uint16_t number;
};
inline constexpr SchemaTag universal{SchemaTag::Form::Universal, 0};
constexpr SchemaTag context(uint16_t number) { return {SchemaTag::Form::Implicit, number}; }
constexpr SchemaTag explicitly(uint16_t number) { return {SchemaTag::Form::Explicit, number}; }

inline constexpr AsnTag constructedBit = 0x20000000;
inline constexpr AsnTag integerTag = 0x02000000;
inline constexpr AsnTag sequenceTag = 0x30000000;

// A context-specific tag as it stands on the wire, left-justified (X.690 8.1.2).
constexpr AsnTag contextTag(uint32_t number, bool constructed) {
    const AsnTag first = 0x80000000 | (constructed ? constructedBit : 0);
    if (number < 31) return first | number << 24;
    if (number < 128) return first | 0x1F000000 | number << 16;
    return first | 0x1F000000 | (0x80 | number >> 7) << 16 | (number & 0x7F) << 8;
}

// The number in a tag.
constexpr uint32_t tagNumber(AsnTag tag) {
    const uint32_t number = tag >> 24 & 0x1F;
    if (number < 31) return number;
    return tag & 0x00800000 ? (tag >> 16 & 0x7F) << 7 | (tag >> 8 & 0x7F) : tag >> 16 & 0x7F;
}

// How many octets of an AsnTag travel: those up to the last one that is not 0, or, in the high-tag form, up to the
// first without a continuation bit (X.690 8.1.2.4).
constexpr unsigned tagOctets(AsnTag tag) {
    if ((tag & 0x1F000000) != 0x1F000000) return 1;
    return (tag & 0x00800000) == 0 ? 2 : 3;
}

constexpr AsnTag universalTag(TypeId type, Kind kind) {
    switch (kind) {
    case Kind::Int: return type == TypeId::AsnEnum ? 0x0A000000 : integerTag;
    case Kind::Bool: return 0x01000000;
    case Kind::Real: return 0x09000000;
    case Kind::Octs: return 0x04000000;
    case Kind::Bits: return 0x03000000;
    case Kind::Sequence: return sequenceTag;
    case Kind::SetOf: return 0x31000000;
    case Kind::Choice: return 0; // has the tag of the alternative in force
    }
    return 0;
}

constexpr bool isConstructed(Kind kind) { return kind >= Kind::Sequence; }
constexpr bool isString(Kind kind) { return kind == Kind::Octs || kind == Kind::Bits; }

// The kind of a value from its C type.
template <typename Value> consteval Kind kindOf() {
    if constexpr (std::is_same_v<Value, AsnInt>) return Kind::Int;
    else if constexpr (std::is_same_v<Value, AsnBool>) return Kind::Bool;
    else if constexpr (std::is_same_v<Value, AsnReal>) return Kind::Real;
    else if constexpr (std::is_same_v<Value, AsnOcts>) return Kind::Octs;
    else if constexpr (std::is_same_v<Value, AsnBits>) return Kind::Bits;
    else if constexpr (std::is_same_v<Value, AsnList>) return Kind::SetOf;
    else if constexpr (requires { &Value::choiceId; }) return Kind::Choice;
    else return Kind::Sequence;
}

// One field of a SEQUENCE.
struct Field {
    const char* name;
    AsnTag tag;  // as it stands on the wire, in primitive form for strings; 0 for a CHOICE
    AsnTag mask; // of what a tag on the wire has to have in common with it: a string may be constructed; 0 for a CHOICE
    TypeId type;
    uint16_t offset; // of the member in the record
    Kind kind;
    bool optional;
    bool wrapped; // an explicit tag stands round the value
    bool pointer; // the member holds a pointer to the value
};

// One alternative of a CHOICE; its number is the choiceId and the context tag number at once.
struct Alternative {
    const char* name;
    AsnTag tag;
    uint16_t number;
    TypeId type;
    Kind kind; // a Choice stands inside a wrapper with the alternative's tag
};

enum class Shape : uint8_t { Primitive, Sequence, SetOf, Choice };

// One type. A Sequence without fields is an empty record.
struct Type {
    const char* name = nullptr;
    const char* module = nullptr;
    std::span<const Field> fields = {};
    std::span<const Alternative> alternatives = {};
    std::span<const int16_t> byNumber = {}; // of a Choice: number to row, -1 in a hole and behind the last number
    TypeId id = {};
    TypeId element = {};   // of a SetOf
    uint16_t size = 0;     // of the structure, in bytes
    int16_t firstCode = 0; // of the type's places of failure
    int16_t lastCode = 0;  // with fields: that of no field matched, which so needs no counting
    uint16_t tail = 0;     // index of the first field from which on all are OPTIONAL
    uint8_t alignment = 0; // of the structure, in bytes
    Shape shape = Shape::Primitive;
    bool message = false; // travels on its own, with tag and length
};

struct Module {
    const char* name;
    std::span<const Type> types;
};

// What the macros below call: they refuse a member whose form does not fit its row.
template <typename Member, typename Named>
consteval Field field(const char* name, std::size_t offset, SchemaTag tag, TypeId type, Presence presence) {
    using Value = std::remove_pointer_t<Member>;
    static_assert(std::is_same_v<Value, Named>, "the member is not of the type that its row names");
    constexpr Kind kind = kindOf<Value>();
    constexpr bool pointer = std::is_pointer_v<Member>;
    const bool optional = presence == Presence::optional;
    if (pointer != (!isString(kind) && (optional || isConstructed(kind)))) throw "pointer or not, against the row";
    const bool wrapped = tag.form == SchemaTag::Form::Explicit;
    const AsnTag wire = tag.form == SchemaTag::Form::Universal ? universalTag(type, kind)
                                                               : contextTag(tag.number, wrapped || isConstructed(kind));
    const AsnTag mask = kind == Kind::Choice ? 0 : isString(kind) ? ~constructedBit : ~AsnTag{0};
    return {name, wire, mask, type, static_cast<uint16_t>(offset), kind, optional, wrapped, pointer};
}

template <typename Member, typename Named>
consteval Alternative alternative(const char* name, uint16_t number, TypeId type) {
    using Value = std::remove_pointer_t<Member>;
    static_assert(std::is_same_v<Value, Named>, "the slot is not of the type that its row names");
    constexpr Kind kind = kindOf<Value>();
    static_assert(std::is_pointer_v<Member> == (kind != Kind::Int), "only an INTEGER stands in the slot itself");
    return {name, contextTag(number, isConstructed(kind)), number, type, kind};
}

consteval uint16_t tailOf(std::span<const Field> fields) {
    std::size_t tail = fields.size();
    while (tail > 0 && fields[tail - 1].optional) --tail;
    return static_cast<uint16_t>(tail);
}

template <typename Record>
consteval Type sequence(const char* name, TypeId id, std::span<const Field> fields, bool message) {
    static_assert(std::is_standard_layout_v<Record>);
    return {.name = name,
            .fields = fields,
            .id = id,
            .size = sizeof(Record),
            .tail = tailOf(fields),
            .alignment = alignof(Record),
            .shape = Shape::Sequence,
            .message = message};
}

template <typename Record>
consteval Type choice(const char* name, TypeId id, std::span<const Alternative> alternatives,
                      std::span<const int16_t> byNumber, bool message) {
    static_assert(offsetof(Record, slot) == alignof(void*));
    return {.name = name,
            .alternatives = alternatives,
            .byNumber = byNumber,
            .id = id,
            .size = sizeof(Record),
            .alignment = alignof(Record),
            .shape = Shape::Choice,
            .message = message};
}

// The rows of a CHOICE by number, so that dispatch takes constant time.
template <auto& rows>
inline constexpr auto numberIndex = [] {
    constexpr std::size_t highest = std::max_element(std::begin(rows), std::end(rows), [](auto& a, auto& b) {
                                        return a.number < b.number;
                                    })->number;
    std::array<int16_t, highest + 1> index{};
    index.fill(-1);
    for (std::size_t i = 0; i < std::size(rows); ++i) index[rows[i].number] = static_cast<int16_t>(i);
    return index;
}();

#define ZYN_FIELD(record, member, tag, type, presence)                                                                 \
    field<decltype(record::member), type>(#member, offsetof(record, member), tag, TypeId::type, Presence::presence)
#define ZYN_ALTERNATIVE(record, member, number, type)                                                                  \
    alternative<decltype(record::member), type>(#member, number, TypeId::type)
#define ZYN_SEQUENCE(record) sequence<record>(#record, TypeId::record, record##Fields, false)
#define ZYN_EMPTY(record) sequence<record>(#record, TypeId::record, {}, false)
#define ZYN_CHOICE(record)                                                                                             \
    choice<record>(#record, TypeId::record, record##Alternatives, numberIndex<record##Alternatives>, false)
#define ZYN_SET_OF(list, of)                                                                                           \
    Type {                                                                                                             \
        .name = #list, .id = TypeId::list, .element = TypeId::of, .size = sizeof(AsnList),                             \
        .alignment = alignof(AsnList), .shape = Shape::SetOf                                                           \
    }
#define ZYN_MESSAGE_SEQUENCE(record) sequence<record>(#record, TypeId::record, record##Fields, true)
#define ZYN_MESSAGE_CHOICE(record)                                                                                     \
    choice<record>(#record, TypeId::record, record##Alternatives, numberIndex<record##Alternatives>, true)

} // namespace zyn
