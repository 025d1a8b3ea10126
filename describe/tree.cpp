// Copies and comparisons of record trees, by the descriptions alone. Types do not contain themselves, so the depth of a
// tree is that of the schema; only lists have any length.
#include <bit>
#include <cmath>
#include <cstring>

#include "zyn/describe.h"

namespace zyn {
namespace {

template <typename Value> Value read(const void* from) {
    Value value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

void write(void* to, const void* pointer) { std::memcpy(to, &pointer, sizeof pointer); }

const void* at(const void* record, std::size_t offset) { return static_cast<const char*>(record) + offset; }
void* at(void* record, std::size_t offset) { return record ? static_cast<char*>(record) + offset : nullptr; }

// An alternative that a record may be in; null: none of that number.
const ZynAlternative* alternativeOf(const ZynType& choice, const void* record) {
    return ZynAlternativeByNumber(&choice, read<uint32_t>(record));
}

// What a null list and one without elements have in common: no first node.
const AsnListNode* firstOf(const AsnList* list) { return list && list->count != 0 ? list->first : nullptr; }

std::size_t octetsOf(const AsnBits& bits) {
    return bits.bitLen > 0 ? (static_cast<std::size_t>(bits.bitLen) + 7) / 8 : 0;
}

// The block that a copy is put into, a piece behind the other. Without memory, or when that is used up, it goes on counting
// and gives null; whoever copies then writes nothing and goes on, so that the same walk tells the size.
struct Block {
    char* memory;
    std::size_t size;
    std::size_t used = 0;

    void* take(std::size_t bytes, std::size_t alignment) {
        const std::size_t start = (used + alignment - 1) & ~(alignment - 1);
        used = start + bytes;
        return memory && used <= size ? memory + start : nullptr;
    }
};

void copyBelow(Block& block, const ZynType& type, const void* from, void* to);

// A copy of a whole value; null for none.
void* copyOf(Block& block, const ZynType& type, const void* from) {
    if (!from) return nullptr;
    void* to = block.take(type.size, type.alignment);
    if (to) std::memcpy(to, from, type.size);
    copyBelow(block, type, from, to);
    return to;
}

// Octets with a 0 byte behind them; null for none.
void* copyOctets(Block& block, const uint8_t* from, std::size_t count) {
    if (!from) return nullptr;
    auto* to = static_cast<uint8_t*>(block.take(count + 1, 1));
    if (to) {
        if (count > 0) std::memcpy(to, from, count);
        to[count] = 0;
    }
    return to;
}

void copyList(Block& block, const ZynType& element, const AsnList& from, AsnList* to) {
    if (to) to->first = to->last = to->curr = nullptr;
    for (const AsnListNode* node = firstOf(&from); node; node = node->next) {
        auto* copy = static_cast<AsnListNode*>(block.take(sizeof(AsnListNode), alignof(AsnListNode)));
        void* data = copyOf(block, element, node->data);
        if (!copy || !to) continue;
        *copy = {to->last, nullptr, data};
        (to->last ? to->last->next : to->first) = copy;
        to->last = copy;
        if (node == from.curr) to->curr = copy;
    }
}

void copyChoice(Block& block, const ZynType& type, const void* from, void* to) {
    const ZynAlternative* alternative = alternativeOf(type, from);
    const void* slot = at(from, type.slotOffset);
    if (alternative && !alternative->pointer)
        return copyBelow(block, *alternative->type, slot, at(to, type.slotOffset));
    // What a number that is no alternative stands for cannot be told, and so not be copied.
    const void* copy = alternative ? copyOf(block, *alternative->type, read<const void*>(slot)) : nullptr;
    if (to) write(at(to, type.slotOffset), copy);
}

// What a value refers to. *to is a plain copy of *from, or null if there is no room for it.
void copyBelow(Block& block, const ZynType& type, const void* from, void* to) {
    switch (type.kind) {
    case ZYN_KIND_SEQUENCE:
        for (const ZynField* field = type.fields; field != type.fields + type.fieldCount; ++field) {
            const void* member = at(from, field->offset);
            void* target = at(to, field->offset);
            if (!field->pointer) {
                copyBelow(block, *field->type, member, target);
            } else {
                const void* copy = copyOf(block, *field->type, read<const void*>(member));
                if (target) write(target, copy);
            }
        }
        break;
    case ZYN_KIND_OCTET_STRING: {
        const auto text = read<AsnOcts>(from);
        void* copy = copyOctets(block, text.octs, text.octetLen);
        if (to) static_cast<AsnOcts*>(to)->octs = static_cast<uint8_t*>(copy);
        break;
    }
    case ZYN_KIND_BIT_STRING: {
        const auto bits = read<AsnBits>(from);
        void* copy = copyOctets(block, bits.bits, octetsOf(bits));
        if (to) static_cast<AsnBits*>(to)->bits = static_cast<uint8_t*>(copy);
        break;
    }
    case ZYN_KIND_SET_OF:
        return copyList(block, *type.element, *static_cast<const AsnList*>(from), static_cast<AsnList*>(to));
    case ZYN_KIND_CHOICE: return copyChoice(block, type, from, to);
    default: break; // the value is all there is
    }
}

bool equal(const ZynType& type, const void* one, const void* other);

// Two values of which either may be absent.
bool equalWhereThere(const ZynType& type, const void* one, const void* other) {
    return one && other ? equal(type, one, other) : one == other;
}

bool equalReals(AsnReal one, AsnReal other) {
    return std::bit_cast<uint64_t>(one) == std::bit_cast<uint64_t>(other) || (std::isnan(one) && std::isnan(other));
}

bool equalTexts(const AsnOcts& one, const AsnOcts& other) {
    if (!one.octs || !other.octs) return one.octs == other.octs;
    return one.octetLen == other.octetLen &&
           (one.octetLen == 0 || std::memcmp(one.octs, other.octs, one.octetLen) == 0);
}

bool equalBits(AsnBits one, AsnBits other) {
    if (!one.bits || !other.bits) return one.bits == other.bits;
    return AsnBitsEquiv(&one, &other);
}

bool equalLists(const ZynType& element, const AsnList* one, const AsnList* other) {
    const AsnListNode *a = firstOf(one), *b = firstOf(other);
    for (; a && b; a = a->next, b = b->next) {
        if (!equalWhereThere(element, a->data, b->data)) return false;
    }
    return !a && !b;
}

bool equalSequences(const ZynType& type, const void* one, const void* other) {
    for (const ZynField* field = type.fields; field != type.fields + type.fieldCount; ++field) {
        const void *a = at(one, field->offset), *b = at(other, field->offset);
        if (field->pointer) a = read<const void*>(a), b = read<const void*>(b);
        // A null list is an empty one.
        const bool same =
            field->type->kind == ZYN_KIND_SET_OF ? equal(*field->type, a, b) : equalWhereThere(*field->type, a, b);
        if (!same) return false;
    }
    return true;
}

bool equalChoices(const ZynType& type, const void* one, const void* other) {
    const ZynAlternative* alternative = alternativeOf(type, one);
    if (read<uint32_t>(one) != read<uint32_t>(other)) return false;
    if (!alternative) return true;
    const void *a = at(one, type.slotOffset), *b = at(other, type.slotOffset);
    if (!alternative->pointer) return equal(*alternative->type, a, b);
    const bool empty = alternative->type->kind == ZYN_KIND_SEQUENCE && alternative->type->fieldCount == 0;
    return empty || equalWhereThere(*alternative->type, read<const void*>(a), read<const void*>(b));
}

bool equal(const ZynType& type, const void* one, const void* other) {
    switch (type.kind) {
    case ZYN_KIND_INTEGER:
    case ZYN_KIND_ENUMERATED: return read<AsnInt>(one) == read<AsnInt>(other);
    case ZYN_KIND_BOOLEAN: return !read<AsnBool>(one) == !read<AsnBool>(other);
    case ZYN_KIND_REAL: return equalReals(read<AsnReal>(one), read<AsnReal>(other));
    case ZYN_KIND_OCTET_STRING: return equalTexts(read<AsnOcts>(one), read<AsnOcts>(other));
    case ZYN_KIND_BIT_STRING: return equalBits(read<AsnBits>(one), read<AsnBits>(other));
    case ZYN_KIND_SEQUENCE: return equalSequences(type, one, other);
    case ZYN_KIND_SET_OF:
        return equalLists(*type.element, static_cast<const AsnList*>(one), static_cast<const AsnList*>(other));
    case ZYN_KIND_CHOICE: return equalChoices(type, one, other);
    }
    return false;
}

} // namespace
} // namespace zyn

size_t ZynTreeSize(const ZynType* type, const void* record) {
    zyn::Block nowhere{nullptr, 0};
    zyn::copyOf(nowhere, *type, record);
    return nowhere.used;
}

void* ZynTreeCopy(const ZynType* type, const void* record, void* block, size_t size) {
    zyn::Block target{static_cast<char*>(block), size};
    void* copy = zyn::copyOf(target, *type, record);
    return target.used <= size ? copy : nullptr;
}

int ZynTreeEqual(const ZynType* type, const void* one, const void* other) { return zyn::equal(*type, one, other); }
