#include "bench/tree.h"

#include <algorithm>
#include <cstring>

#include "records/members.h"

namespace zyn::bench {
namespace {

constexpr std::size_t usualBlockWords = 8192;

template <typename String> std::size_t octetsOf(const String& value);
template <> std::size_t octetsOf(const AsnOcts& value) { return value.octetLen; }
template <> std::size_t octetsOf(const AsnBits& value) { return (static_cast<std::size_t>(value.bitLen) + 7) / 8; }

uint8_t* copyOctets(const uint8_t* from, std::size_t size, TreeMemory& memory) {
    auto* to = static_cast<uint8_t*>(memory.take(size + 1));
    if (size > 0) std::memcpy(to, from, size);
    return to;
}

void copySequence(const Type& type, const void* from, void* to, TreeMemory& memory) {
    for (const Field& field : type.fields) {
        const void* value = valueOf(from, field);
        if (value) copyTree(field.type, value, makeValue(to, field, memory), memory);
    }
}

void copyChoice(const Type& type, const void* from, void* to, TreeMemory& memory) {
    const auto* source = static_cast<const ChoiceRecord*>(from);
    auto* target = static_cast<ChoiceRecord*>(to);
    const Alternative* alternative = alternativeOf(type, source->choiceId);
    target->choiceId = source->choiceId;
    if (!alternative) return;
    if (alternative->kind == Kind::Int) {
        target->number = source->number;
        return;
    }
    target->slot = memory.take(typeOf(alternative->type).size);
    if (source->slot) copyTree(alternative->type, source->slot, target->slot, memory);
}

bool sameSequence(const Type& type, const void* a, const void* b, ListOrder order) {
    return std::all_of(type.fields.begin(), type.fields.end(), [&](const Field& field) {
        const void* one = valueOf(a, field);
        const void* other = valueOf(b, field);
        return (one && other) ? sameTree(field.type, one, other, order) : one == other;
    });
}

bool sameList(const Type& type, const AsnList* a, const AsnList* b, ListOrder order) {
    std::vector<const void*> rest;
    for (const AsnListNode* node = b->first; node; node = node->next) rest.push_back(node->data);
    for (const AsnListNode* node = a->first; node; node = node->next) {
        const auto matches = [&](const void* other) { return sameTree(type.element, node->data, other, order); };
        const auto end = order == ListOrder::any || rest.empty() ? rest.end() : rest.begin() + 1;
        const auto found = std::find_if(rest.begin(), end, matches);
        if (found == end) return false;
        rest.erase(found);
    }
    return rest.empty() && a->count == b->count;
}

bool sameChoice(const Type& type, const ChoiceRecord* a, const ChoiceRecord* b, ListOrder order) {
    if (a->choiceId != b->choiceId) return false;
    const Alternative* alternative = alternativeOf(type, a->choiceId);
    if (!alternative) return true;
    if (alternative->kind == Kind::Int) return a->number == b->number;
    return sameTree(alternative->type, a->slot, b->slot, order);
}

std::size_t below(std::mt19937& random, std::size_t limit) { return random() % limit; }

void randomPrimitive(TypeId type, void* to, std::mt19937& random, TreeMemory& memory) {
    switch (type) {
    case TypeId::AsnInt: *static_cast<AsnInt*>(to) = static_cast<AsnInt>(random() >> below(random, 31)); break;
    case TypeId::AsnEnum: *static_cast<AsnInt*>(to) = static_cast<AsnInt>(below(random, 12)); break;
    case TypeId::AsnBool: *static_cast<AsnBool*>(to) = random() & 1; break;
    case TypeId::AsnReal: *static_cast<AsnReal*>(to) = static_cast<double>(below(random, 10'000'000)) / 100; break;
    case TypeId::AsnOcts: {
        auto* text = static_cast<AsnOcts*>(to);
        text->octetLen = static_cast<uint32_t>(1 + below(random, 16));
        text->octs = static_cast<uint8_t*>(memory.take(text->octetLen + 1));
        for (uint32_t i = 0; i < text->octetLen; ++i) text->octs[i] = static_cast<uint8_t>('A' + below(random, 26));
        break;
    }
    default: {
        auto* bits = static_cast<AsnBits*>(to);
        bits->bitLen = 8;
        bits->bits = static_cast<uint8_t*>(memory.take(1));
        *bits->bits = static_cast<uint8_t>(random());
    }
    }
}

} // namespace

void* TreeMemory::take(std::size_t size) {
    const std::size_t words = size == 0 ? 1 : (size + 7) / 8;
    if (blockWords - usedWords < words) {
        blockWords = std::max(words, usualBlockWords);
        blocks.push_back(std::make_unique<uint64_t[]>(blockWords));
        usedWords = 0;
    }
    void* memory = blocks.back().get() + usedWords;
    usedWords += words;
    return memory;
}

void* makeValue(void* record, const Field& field, TreeMemory& memory) {
    void* member = memberOf(record, field);
    if (!field.pointer) return member;
    void* value = memory.take(typeOf(field.type).size);
    std::memcpy(member, &value, sizeof value);
    return value;
}

void* appendElement(AsnList* list, std::size_t size, TreeMemory& memory) {
    auto* node = static_cast<AsnListNode*>(memory.take(sizeof(AsnListNode)));
    node->data = memory.take(size);
    node->prev = list->last;
    (list->last ? list->last->next : list->first) = node;
    list->last = list->curr = node;
    list->dataSize = sizeof(void*);
    ++list->count;
    return node->data;
}

void copyTree(TypeId id, const void* from, void* to, TreeMemory& memory) {
    const Type& type = typeOf(id);
    if (id == TypeId::AsnOcts) {
        const auto* source = static_cast<const AsnOcts*>(from);
        *static_cast<AsnOcts*>(to) = {source->octetLen, copyOctets(source->octs, octetsOf(*source), memory)};
    } else if (id == TypeId::AsnBits) {
        const auto* source = static_cast<const AsnBits*>(from);
        *static_cast<AsnBits*>(to) = {source->bitLen, copyOctets(source->bits, octetsOf(*source), memory)};
    } else if (type.shape == Shape::Primitive) {
        std::memcpy(to, from, type.size);
    } else if (type.shape == Shape::Sequence) {
        copySequence(type, from, to, memory);
    } else if (type.shape == Shape::Choice) {
        copyChoice(type, from, to, memory);
    } else {
        for (const AsnListNode* node = static_cast<const AsnList*>(from)->first; node; node = node->next) {
            void* element = appendElement(static_cast<AsnList*>(to), typeOf(type.element).size, memory);
            copyTree(type.element, node->data, element, memory);
        }
    }
}

bool sameTree(TypeId id, const void* a, const void* b, ListOrder order) {
    const Type& type = typeOf(id);
    const auto sameString = [](const auto& one, const auto& other, const uint8_t* octets, const uint8_t* others) {
        return octetsOf(one) == octetsOf(other) && std::memcmp(octets, others, octetsOf(one)) == 0;
    };
    if (id == TypeId::AsnOcts) {
        const auto *one = static_cast<const AsnOcts*>(a), *other = static_cast<const AsnOcts*>(b);
        return sameString(*one, *other, one->octs, other->octs);
    }
    if (id == TypeId::AsnBits) {
        const auto *one = static_cast<const AsnBits*>(a), *other = static_cast<const AsnBits*>(b);
        return one->bitLen == other->bitLen && sameString(*one, *other, one->bits, other->bits);
    }
    switch (type.shape) {
    case Shape::Primitive: return std::memcmp(a, b, type.size) == 0;
    case Shape::Sequence: return sameSequence(type, a, b, order);
    case Shape::SetOf: return sameList(type, static_cast<const AsnList*>(a), static_cast<const AsnList*>(b), order);
    case Shape::Choice: break;
    }
    return sameChoice(type, static_cast<const ChoiceRecord*>(a), static_cast<const ChoiceRecord*>(b), order);
}

void randomTree(TypeId id, void* to, std::mt19937& random, TreeMemory& memory) {
    const Type& type = typeOf(id);
    if (type.shape == Shape::Primitive) {
        randomPrimitive(id, to, random, memory);
    } else if (type.shape == Shape::Sequence) {
        for (const Field& field : type.fields) {
            if (field.optional && random() % 2 == 0) continue;
            randomTree(field.type, makeValue(to, field, memory), random, memory);
        }
    } else if (type.shape == Shape::SetOf) {
        for (std::size_t n = below(random, 4); n > 0; --n) {
            auto* list = static_cast<AsnList*>(to);
            randomTree(type.element, appendElement(list, typeOf(type.element).size, memory), random, memory);
        }
    } else {
        auto* choice = static_cast<ChoiceRecord*>(to);
        const Alternative& alternative = type.alternatives[below(random, type.alternatives.size())];
        choice->choiceId = alternative.number;
        if (alternative.kind == Kind::Int) {
            choice->number = static_cast<AsnInt>(below(random, 1000));
            return;
        }
        choice->slot = memory.take(typeOf(alternative.type).size);
        randomTree(alternative.type, choice->slot, random, memory);
    }
}

} // namespace zyn::bench
