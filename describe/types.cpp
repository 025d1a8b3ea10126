// The descriptions of all types: what the rows say, in the form of the public header, laid out at compile time.
#include <algorithm>
#include <string_view>

#include "records/exact.h"
#include "records/members.h"
#include "records/tables.h"
#include "zyn/describe.h"
#include "zyn/records/Main.h"

namespace zyn {
namespace {

// Descriptions refer to each other by address, which is known before they are: the address of an element of a plain
// array, since a call of an operator on an object that is not yet there is no constant expression.
struct Descriptions {
    ZynType of[typeCount];
};

extern const Descriptions described;

constexpr const ZynType* descriptionOf(TypeId id) { return &described.of[static_cast<std::size_t>(id)]; }

constexpr ZynKind kindOf(const Type& type) {
    switch (type.shape) {
    case Shape::Sequence: return ZYN_KIND_SEQUENCE;
    case Shape::SetOf: return ZYN_KIND_SET_OF;
    case Shape::Choice: return ZYN_KIND_CHOICE;
    case Shape::Primitive: break;
    }
    switch (type.id) {
    case TypeId::AsnInt: return ZYN_KIND_INTEGER;
    case TypeId::AsnEnum: return ZYN_KIND_ENUMERATED;
    case TypeId::AsnBool: return ZYN_KIND_BOOLEAN;
    case TypeId::AsnReal: return ZYN_KIND_REAL;
    case TypeId::AsnOcts: return ZYN_KIND_OCTET_STRING;
    case TypeId::AsnBits: return ZYN_KIND_BIT_STRING;
    default: throw "a primitive type without a kind";
    }
}

constexpr uint8_t octetsOf(AsnTag tag) { return tag == 0 ? 0 : static_cast<uint8_t>(tagOctets(tag)); }

// The fields of all types, and the alternatives, one type behind the other.
template <auto rows> consteval std::size_t countOf() {
    std::size_t count = 0;
    for (const Type& type : types) count += (type.*rows).size();
    return count;
}

constexpr auto fields = [] {
    std::array<ZynField, countOf<&Type::fields>()> all{};
    auto next = all.begin();
    for (const Type& type : types) {
        for (const Field& row : type.fields) {
            *next++ = {.name = row.name,
                       .type = descriptionOf(row.type),
                       .tag = row.tag,
                       .offset = row.offset,
                       .tagOctets = octetsOf(row.tag),
                       .optional = row.optional,
                       .explicitTag = row.wrapped,
                       .pointer = row.pointer};
        }
    }
    return all;
}();

constexpr auto alternatives = [] {
    std::array<ZynAlternative, countOf<&Type::alternatives>()> all{};
    auto next = all.begin();
    for (const Type& type : types) {
        for (const Alternative& row : type.alternatives) {
            *next++ = {.name = row.name,
                       .type = descriptionOf(row.type),
                       .number = row.number,
                       .tag = row.tag,
                       .tagOctets = octetsOf(row.tag),
                       .explicitTag = row.kind == Kind::Choice,
                       .pointer = row.kind != Kind::Int};
        }
    }
    return all;
}();

template <TypeId id> AsnLen encodeAny(SBuf* b, void* v) { return encodeContent(b, id, v); }

template <TypeId id> void decodeAny(SBuf* b, AsnTag tagId, AsnLen elmtLen, void* v, AsnLen* bytesDecoded, jmp_buf env) {
    decodeContent(b, id, tagId, elmtLen, v, bytesDecoded, env);
}

template <TypeId id> void printAny(FILE* f, void* v, unsigned short indent) { print(f, id, v, indent); }

void freeNothing(void*) {}

template <TypeId id> consteval ZynOperations operationsOf() {
    if (typeOf(id).shape == Shape::Primitive) return {};
    return {encodeAny<id>, decodeAny<id>, printAny<id>, freeNothing};
}

constexpr auto operations = []<std::size_t... i>(std::index_sequence<i...>) {
    return std::array<ZynOperations, typeCount>{operationsOf<static_cast<TypeId>(i)>()...};
}
(std::make_index_sequence<typeCount>());

constexpr Descriptions described = [] {
    Descriptions all{};
    const ZynField* nextField = fields.data();
    const ZynAlternative* nextAlternative = alternatives.data();
    for (const Type& type : types) {
        const auto number = static_cast<std::size_t>(type.id);
        ZynType& to = all.of[number];
        to = {.name = type.name,
              .module = type.module,
              .fields = nullptr,
              .alternatives = nullptr,
              .element = nullptr,
              .operations = operations[number],
              .number = static_cast<uint32_t>(number),
              .kind = kindOf(type),
              .size = type.size,
              .alignment = type.alignment,
              .fieldCount = static_cast<uint16_t>(type.fields.size()),
              .alternativeCount = static_cast<uint16_t>(type.alternatives.size()),
              .slotOffset = 0,
              .firstCode = type.firstCode,
              .codes = 0,
              .message = type.message};
        if (!type.fields.empty()) to.fields = nextField;
        nextField += type.fields.size();
        if (!type.alternatives.empty()) {
            to.alternatives = nextAlternative;
            to.slotOffset = offsetof(ChoiceRecord, slot);
        }
        nextAlternative += type.alternatives.size();
        if (type.shape == Shape::SetOf) to.element = descriptionOf(type.element);
        if (type.shape != Shape::Primitive) to.codes = static_cast<uint16_t>(type.firstCode - type.lastCode + 1);
    }
    return all;
}();

// The numbers of all types in the order of their names.
constexpr auto byName = [] {
    std::array<uint16_t, typeCount> index{};
    for (std::size_t i = 0; i < typeCount; ++i) index[i] = static_cast<uint16_t>(i);
    std::ranges::sort(index, {}, [](uint16_t i) { return std::string_view(types[i].name); });
    return index;
}();

template <typename Row> const Row* named(const Row* rows, std::size_t count, std::string_view name) {
    const Row* found = std::find_if(rows, rows + count, [&](const Row& row) { return row.name == name; });
    return found == rows + count ? nullptr : found;
}

} // namespace
} // namespace zyn

uint32_t ZynTypeCount(void) { return zyn::typeCount; }

const ZynType* ZynTypeByNumber(uint32_t number) {
    return number < zyn::typeCount ? &zyn::described.of[number] : nullptr;
}

const ZynType* ZynTypeByName(const char* name) {
    const std::string_view wanted = name;
    const auto nameOf = [](uint16_t i) { return std::string_view(zyn::types[i].name); };
    const auto found = std::ranges::lower_bound(zyn::byName, wanted, {}, nameOf);
    return found != zyn::byName.end() && nameOf(*found) == wanted ? &zyn::described.of[*found] : nullptr;
}

uint32_t ZynModuleCount(void) { return std::size(zyn::modules); }

const char* ZynModuleName(uint32_t number) {
    return number < std::size(zyn::modules) ? zyn::modules[number].name : nullptr;
}

const ZynType* ZynEnvelopeType(ZynChannel channel) {
    const auto number = static_cast<unsigned>(channel);
    return number < ZYN_CHANNELS ? zyn::descriptionOf(zyn::envelopes[number]) : nullptr;
}

const ZynType* ZynMessageChoice(ZynChannel channel) {
    const ZynType* envelope = ZynEnvelopeType(channel);
    return !envelope || envelope->kind == ZYN_KIND_CHOICE ? envelope : envelope->fields[1].type;
}

const ZynAlternative* ZynAlternativeByNumber(const ZynType* choice, uint32_t number) {
    const zyn::Type& type = zyn::types[choice->number];
    const zyn::Alternative* row = zyn::alternativeOf(type, number);
    return row ? &choice->alternatives[row - type.alternatives.data()] : nullptr;
}

const ZynAlternative* ZynAlternativeByName(const ZynType* choice, const char* name) {
    return zyn::named(choice->alternatives, choice->alternativeCount, name);
}

const ZynField* ZynFieldByName(const ZynType* sequence, const char* name) {
    return zyn::named(sequence->fields, sequence->fieldCount, name);
}
