#include "random.h"

#include <algorithm>
#include <cstring>

#include "records.h"

namespace zyn::tool {
namespace {

constexpr std::size_t blockSize = 64 * 1024; // above the largest record, list or text by far

} // namespace

void RandomRecords::clear() { block = used = 0; }

// Zero-filled, so that what is not set is absent.
void* RandomRecords::take(std::size_t size) {
    size = (size + alignof(std::max_align_t) - 1) / alignof(std::max_align_t) * alignof(std::max_align_t);
    if (used + size > blockSize) {
        ++block;
        used = 0;
    }
    if (block == blocks.size()) blocks.emplace_back(new std::byte[blockSize]);
    void* place = blocks[block].get() + used;
    used += size;
    return std::memset(place, 0, size);
}

void* RandomRecords::make(const ZynType& type) {
    void* record = take(type.size);
    fill(type, record);
    return record;
}

void* RandomRecords::make(const ZynType& choice, const ZynAlternative& alternative) {
    void* record = take(choice.size);
    fillChoice(choice, alternative, record);
    return record;
}

void RandomRecords::fill(const ZynType& type, void* record) {
    switch (type.kind) {
    case ZYN_KIND_INTEGER: *static_cast<AsnInt*>(record) = integer(); break;
    case ZYN_KIND_ENUMERATED: *static_cast<AsnInt*>(record) = static_cast<AsnInt>(below(8)); break;
    case ZYN_KIND_BOOLEAN: *static_cast<AsnBool*>(record) = static_cast<AsnBool>(below(2)); break;
    case ZYN_KIND_REAL: *static_cast<AsnReal*>(record) = static_cast<double>(below(2'000'000)) / 100; break;
    case ZYN_KIND_OCTET_STRING: fillText(*static_cast<AsnOcts*>(record)); break;
    case ZYN_KIND_BIT_STRING: fillBits(*static_cast<AsnBits*>(record)); break;
    case ZYN_KIND_SET_OF: fillList(type, *static_cast<AsnList*>(record)); break;
    case ZYN_KIND_CHOICE: fillChoice(type, type.alternatives[below(type.alternativeCount)], record); break;
    case ZYN_KIND_SEQUENCE:
        for (const ZynField* field = type.fields; field != type.fields + type.fieldCount; ++field) {
            if (field->optional && below(2) == 0) continue;
            void* place = static_cast<char*>(record) + field->offset;
            if (!field->pointer) {
                fill(*field->type, place);
                continue;
            }
            void* value = make(*field->type);
            std::memcpy(place, &value, sizeof value);
        }
        break;
    }
}

void RandomRecords::fillChoice(const ZynType& choice, const ZynAlternative& alternative, void* record) {
    std::memcpy(record, &alternative.number, sizeof alternative.number);
    void* slot = static_cast<char*>(record) + choice.slotOffset;
    if (!alternative.pointer) return fill(*alternative.type, slot);
    void* value = make(*alternative.type);
    std::memcpy(slot, &value, sizeof value);
}

void RandomRecords::fillList(const ZynType& type, AsnList& list) {
    AsnListInit(&list, sizeof(void*));
    for (uint64_t n = below(5); n > 0; --n) {
        auto* node = static_cast<AsnListNode*>(take(sizeof(AsnListNode)));
        node->data = make(*type.element);
        node->prev = list.last;
        (list.last ? list.last->next : list.first) = node;
        list.last = node;
        ++list.count;
    }
}

void RandomRecords::fillText(AsnOcts& text) {
    constexpr char letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 -./";
    text.octetLen = static_cast<uint32_t>(below(20) == 0 ? below(200) : below(13));
    text.octs = static_cast<uint8_t*>(take(text.octetLen + 1));
    for (uint32_t i = 0; i < text.octetLen; ++i)
        text.octs[i] = static_cast<uint8_t>(letters[below(sizeof letters - 1)]);
}

void RandomRecords::fillBits(AsnBits& bits) {
    bits.bitLen = static_cast<int32_t>(below(33));
    const std::size_t octets = (static_cast<std::size_t>(bits.bitLen) + 7) / 8;
    bits.bits = static_cast<uint8_t*>(take(octets + 1));
    for (std::size_t i = 0; i < octets; ++i) bits.bits[i] = static_cast<uint8_t>(below(256));
    if (bits.bitLen % 8 != 0) bits.bits[octets - 1] &= static_cast<uint8_t>(0xFF00 >> (bits.bitLen % 8));
}

// Small numbers more often than large ones, as in traffic; a negative one now and then.
int32_t RandomRecords::integer() {
    const auto value = static_cast<int32_t>(random() >> (33 + below(31)));
    return below(16) == 0 ? -value : value;
}

} // namespace zyn::tool
