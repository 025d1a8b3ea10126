#include "tests/support/sample.h"

#include <cmath>
#include <limits>

namespace zyn::test {

void* Sampler::make(TypeId type) {
    void* value = memory.take(typeOf(type).size);
    fill(type, value);
    return value;
}

ChoiceRecord* Sampler::make(TypeId choice, const Alternative& alternative) {
    auto* record = static_cast<ChoiceRecord*>(memory.take(typeOf(choice).size));
    fillChoice(alternative, record);
    return record;
}

void Sampler::fill(TypeId id, void* value) {
    const Type& type = typeOf(id);
    switch (type.shape) {
    case Shape::Sequence: return fillSequence(type, value);
    case Shape::SetOf: return fillList(type, *static_cast<AsnList*>(value));
    case Shape::Choice: {
        const auto& alternative = type.alternatives[below(random, type.alternatives.size())];
        return fillChoice(alternative, static_cast<ChoiceRecord*>(value));
    }
    case Shape::Primitive: break;
    }
    switch (id) {
    case TypeId::AsnInt:
    case TypeId::AsnEnum: *static_cast<AsnInt*>(value) = integer(); break;
    case TypeId::AsnBool:
        *static_cast<AsnBool*>(value) = static_cast<AsnBool>(chance(50) ? 0 : 1 + below(random, 255));
        break;
    case TypeId::AsnReal: *static_cast<AsnReal*>(value) = real(); break;
    case TypeId::AsnOcts: fillText(*static_cast<AsnOcts*>(value), textLength()); break;
    default: fillBits(*static_cast<AsnBits*>(value)); break;
    }
}

void Sampler::fillSequence(const Type& type, void* record) {
    for (const Field& field : type.fields) {
        if (field.optional && !chance(taste.presentPercent)) continue;
        void* member = memberOf(record, field);
        if (!field.optional && chance(5) && (field.kind == Kind::SetOf || field.kind == Kind::Octs)) continue;
        if (!field.pointer) {
            fill(field.type, member);
            continue;
        }
        void* value = make(field.type);
        std::memcpy(member, &value, sizeof value);
    }
}

void Sampler::fillChoice(const Alternative& alternative, ChoiceRecord* choice) {
    choice->choiceId = alternative.number;
    const Type& type = typeOf(alternative.type);
    const bool empty = type.shape == Shape::Sequence && type.fields.empty();
    if (alternative.kind == Kind::Int) choice->number = integer();
    else if (!empty || chance(50)) choice->slot = make(alternative.type);
}

void Sampler::fillText(AsnOcts& text, std::size_t length) {
    text.octetLen = static_cast<uint32_t>(length);
    text.octs = static_cast<uint8_t*>(memory.take(length));
    for (std::size_t i = 0; i < length; ++i) {
        text.octs[i] = static_cast<uint8_t>(chance(90) ? ' ' + below(random, 95) : below(random, 256));
    }
}

std::size_t Sampler::textLength() {
    constexpr std::size_t edges[] = {0, 7, 8, 9, 15, 16, 17, 63, 64, 65, 127, 128, 255, 256, 300};
    const std::size_t length = chance(20) ? edges[below(random, std::size(edges))] : below(random, 13);
    return std::min<std::size_t>(length, taste.longestText);
}

void Sampler::fillBits(AsnBits& bits) {
    bits.bitLen = static_cast<int32_t>(below(random, 41));
    const std::size_t octets = (static_cast<std::size_t>(bits.bitLen) + 7) / 8;
    bits.bits = static_cast<uint8_t*>(memory.take(octets));
    for (std::size_t i = 0; i < octets; ++i) bits.bits[i] = static_cast<uint8_t>(random());
}

void Sampler::fillList(const Type& type, AsnList& list) {
    list.dataSize = sizeof(void*);
    for (uint32_t n = below(random, taste.longestList + 1); n > 0; --n) {
        auto* node = static_cast<AsnListNode*>(memory.take(sizeof(AsnListNode)));
        node->data = make(type.element);
        node->prev = list.last;
        (list.last ? list.last->next : list.first) = node;
        list.last = node;
        ++list.count;
    }
    list.curr = list.first;
}

AsnInt Sampler::integer() {
    if (chance(50)) return static_cast<AsnInt>(random()) >> below(random, 32);
    // The lowest and highest values of each number of octets, and their neighbours.
    const int64_t limit = int64_t{1} << (8 * (1 + below(random, 4)) - 1);
    const int64_t edges[] = {0, -1, limit - 1, -limit, limit, -limit - 1};
    const int64_t value = edges[below(random, std::size(edges))];
    return value >= INT32_MIN && value <= INT32_MAX ? static_cast<AsnInt>(value) : AsnInt{0};
}

// Values that survive the wire: its exponent, that of a whole mantissa, must be one that a double can have.
AsnReal Sampler::real() {
    if (chance(10)) return chance(50) && taste.zeroReals ? 0.0 : std::numeric_limits<double>::max();
    if (chance(40)) return (static_cast<double>(below(random, 2'000'000)) - 1'000'000) / 100;
    const uint32_t octets = 1 + below(random, 7);
    uint64_t mantissa = uint64_t{random()} << 32 | random();
    mantissa = (mantissa >> (64 - 8 * octets)) | uint64_t{1} << (8 * octets - 1);
    mantissa &= octets == 7 ? ~uint64_t{7} : ~uint64_t{0}; // 53 bits in all
    const int lowest = -1074;
    const int highest = 1023 - 8 * static_cast<int>(octets);
    const int edges[] = {lowest, lowest + 1, -1022, -129, -128, 0, 127, 128, highest};
    const int exponent = chance(30)
                             ? edges[below(random, std::size(edges))]
                             : lowest + static_cast<int>(below(random, static_cast<uint32_t>(highest - lowest + 1)));
    return std::ldexp(static_cast<double>(mantissa), exponent) * (chance(50) ? 1 : -1);
}

} // namespace zyn::test
