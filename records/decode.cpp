// The rules by which every record is decoded.
//
// Reading goes forwards, an element at a time, holding one tag that has been read and not yet used. Each function counts the
// octets that it consumes and returns the count; a record under a definite length is checked by that count alone. A failure
// leaves all functions at once by a jump to env, so none of them may hold an object with a destructor; the steps on the
// stack, from the message down to what is being read, tell where that was. The end of the data is the run-time's business:
// every tag, length and value read is bounded.
#include <algorithm>

#include "records/exact.h"
#include "records/members.h"
#include "records/tables.h"
#include "sbuf/asn-bool.h"
#include "sbuf/asn-int.h"
#include "sbuf/asn-len.h"
#include "sbuf/failure.h"
#include "sbuf/nibble-alloc.h"
#include "zyn/codes.h"

namespace zyn {
namespace {

// What one decode passes on unchanged from function to function.
struct Decoder {
    SBuf* b;
    std::remove_extent_t<jmp_buf>* env;
    Walk& walk;
};

// The content of a record, list or choice begins here; and it has been read.
void enter(Decoder& d, Step& step, const Type& type, AsnLen length) {
    Step* outer = d.walk.top;
    step = {outer, d.b->readLoc, outer->element, length, static_cast<uint16_t>(type.id), noIndex};
    d.walk.top = &step;
}

void leave(Decoder& d, const Step& step) { d.walk.top = step.outer; }

// An element of step's record is about to be read whose tag comes next.
void startElement(Decoder& d, Step& step) { step.element = d.b->readLoc; }

// The same, for field, alternative or list element index.
void startElement(Decoder& d, Step& step, std::size_t index) {
    startElement(d, step);
    step.index = static_cast<uint32_t>(index);
}

// The end-of-contents marker of a wrapper, and that of a record.
AsnLen decodeEnd(Decoder& d, Step& step) {
    startElement(d, step);
    AsnLen count = 0;
    BDecEoc(d.b, &count, d.env);
    return count;
}

AsnLen decodeRecordEnd(Decoder& d, Step& step) {
    step.index = noIndex;
    return decodeEnd(d, step);
}

[[noreturn]] void refuseTag(Decoder& d, Step& step, const Type& type, std::size_t field) {
    step.index = static_cast<uint32_t>(field);
    raise(d.env, siteCode(type, Site::FieldTag, field), nullptr);
}

// The last field is behind the end that the record's length gives it, or before it.
[[noreturn]] void refuseLength(Decoder& d, Step& step, const Type& type, AsnLen length) {
    step.element = step.content + std::min(std::size_t{length}, std::size_t(d.b->dataEnd - step.content));
    step.index = noIndex;
    raise(d.env, siteCode(type, Site::Length), nullptr);
}

AsnLen decodeSequence(Decoder& d, const Type& type, AsnLen length, void* record);
AsnLen decodeSetOf(Decoder& d, const Type& type, AsnLen length, AsnList* list);
AsnLen decodeChoice(Decoder& d, const Type& type, AsnTag tag, AsnLen length, ChoiceRecord* choice);

// Memory for a value that a member points to; a list starts out made for elements of one pointer each.
[[gnu::always_inline]] inline void* allocateValue(Decoder& d, const Field& field) {
    if (field.kind != Kind::SetOf) return allocate(typeOf(field.type).size, d.env);
    AsnList* list = AsnListNew(sizeof(void*));
    if (!list) raise(d.env, ZYN_E_NO_MEMORY, nullptr);
    return list;
}

// The number is taken out of the tag only to find the row; what counts is that the whole tag is the row's.
const Alternative* alternativeByTag(const Type& type, AsnTag tag) {
    const Alternative* alternative = alternativeOf(type, tagNumber(tag));
    if (!alternative) return nullptr;
    const bool constructedString = alternative->kind == Kind::Octs && tag == (alternative->tag | constructedBit);
    return tag == alternative->tag || constructedString ? alternative : nullptr;
}

bool accepts(const Field& field, AsnTag tag) {
    if ((tag & field.mask) != field.tag) return false;
    return field.kind != Kind::Choice || alternativeByTag(typeOf(field.type), tag);
}

// The count that a value's decoder adds to is one of its own, so that no element has to wait for the count of those before
// it to come through memory.
[[gnu::always_inline]] inline AsnLen decodeValue(Decoder& d, Kind kind, TypeId type, AsnTag tag, AsnLen length,
                                                 void* value) {
    AsnLen count = 0;
    switch (kind) {
    case Kind::Int: takeInt(d.b, length, static_cast<AsnInt*>(value), count, d.env); break;
    case Kind::Bool: takeBool(d.b, length, static_cast<AsnBool*>(value), count, d.env); break;
    case Kind::Real: BDecAsnRealContent(d.b, tag, length, static_cast<AsnReal*>(value), &count, d.env); break;
    case Kind::Octs: BDecAsnOctsContent(d.b, tag, length, static_cast<AsnOcts*>(value), &count, d.env); break;
    case Kind::Bits: BDecAsnBitsContent(d.b, tag, length, static_cast<AsnBits*>(value), &count, d.env); break;
    case Kind::Sequence: return decodeSequence(d, typeOf(type), length, value);
    case Kind::SetOf: return decodeSetOf(d, typeOf(type), length, static_cast<AsnList*>(value));
    default: return decodeChoice(d, typeOf(type), tag, length, static_cast<ChoiceRecord*>(value));
    }
    return count;
}

[[gnu::always_inline]] inline AsnLen decodeMember(Decoder& d, const Field& field, AsnTag tag, AsnLen length,
                                                  void* record) {
    void* value = memberOf(record, field);
    if (field.pointer) {
        void* allocated = allocateValue(d, field);
        std::memcpy(value, &allocated, sizeof allocated);
        value = allocated;
    }
    return decodeValue(d, field.kind, field.type, tag, length, value);
}

// A field whose tag is a wrapper round the value's own. A wrapper of definite length is not compared with what it held.
[[gnu::cold]] AsnLen decodeWrapped(Decoder& d, Step& step, const Type& type, std::size_t index, AsnLen outerLength,
                                   void* record) {
    AsnLen count = 0;
    startElement(d, step);
    d.walk.inWrapper = true;
    const AsnTag tag = nextTag(d.b, count, d.env);
    if (tag != integerTag) raise(d.env, siteCode(type, Site::InnerTag, index), "Unexpected Tag\n");
    const AsnLen length = nextLength(d.b, count, d.env);
    count += decodeMember(d, type.fields[index], tag, length, record);
    if (outerLength == IndefiniteLen) count += decodeEnd(d, step);
    d.walk.inWrapper = false;
    return count;
}

// A tag where a record of indefinite length may end: true if it was the first octet of the end-of-contents marker
// (X.690 8.1.5), whose second octet has then been read as well. Elsewhere 0 is a tag like any other.
bool atEndOfContents(Decoder& d, Step& step, AsnTag tag, AsnLen length, AsnLen& count) {
    if (tag != 0 || length != IndefiniteLen) return false;
    step.index = noIndex;
    eocSecondOctet(d.b, d.env);
    ++count;
    return true;
}

// The fields in table order. A tag that an OPTIONAL field does not accept is held for the next field; there is no way
// back and no skipping of what is unknown. The end of the record is looked for only where it may stand: behind a field
// that only OPTIONAL ones follow.
[[gnu::always_inline]] inline AsnLen decodeFields(Decoder& d, Step& step, const Type& type, AsnLen length,
                                                  void* record) {
    AsnLen count = 0;
    const std::size_t fields = type.fields.size();
    if (fields == 0) {
        if (length == IndefiniteLen) return decodeRecordEnd(d, step);
        if (length != 0) raise(d.env, siteCode(type, Site::Only), "Expected an empty SEQUENCE\n");
        return 0;
    }
    if (type.tail == 0 && length == 0) return 0;
    startElement(d, step, 0);
    AsnTag tag = nextTag(d.b, count, d.env);
    if (type.tail == 0 && atEndOfContents(d, step, tag, length, count)) return count;
    const Field* field = type.fields.data();
    for (std::size_t i = 0; i < fields; ++i, ++field) {
        if (!accepts(*field, tag)) {
            if (!field->optional) refuseTag(d, step, type, i);
            continue;
        }
        step.index = static_cast<uint32_t>(i);
        const AsnLen fieldLength = nextLength(d.b, count, d.env);
        count += field->wrapped ? decodeWrapped(d, step, type, i, fieldLength, record)
                                : decodeMember(d, *field, tag, fieldLength, record);
        const bool mayEnd = i + 1 >= type.tail;
        if (mayEnd) {
            const bool last = i + 1 == fields;
            if (last && length == IndefiniteLen) return count + decodeRecordEnd(d, step);
            if (length != IndefiniteLen && count == length) return count;
            if (last) refuseLength(d, step, type, length);
        }
        startElement(d, step, i + 1);
        tag = nextTag(d.b, count, d.env);
        if (mayEnd && atEndOfContents(d, step, tag, length, count)) return count;
    }
    step.index = noIndex;
    raise(d.env, type.lastCode, nullptr);
}

AsnLen decodeSequence(Decoder& d, const Type& type, AsnLen length, void* record) {
    Step step;
    enter(d, step, type, length);
    const AsnLen count = decodeFields(d, step, type, length, record);
    leave(d, step);
    return count;
}

AsnLen decodeSetOf(Decoder& d, const Type& type, AsnLen length, AsnList* list) {
    Step step;
    enter(d, step, type, length);
    const Type& element = typeOf(type.element);
    AsnLen count = 0;
    while (length == IndefiniteLen || count < length) {
        startElement(d, step, static_cast<std::size_t>(list->count));
        const AsnTag tag = nextTag(d.b, count, d.env);
        if (atEndOfContents(d, step, tag, length, count)) break;
        if (tag != sequenceTag) raise(d.env, siteCode(type, Site::Only), "Unexpected Tag\n");
        const AsnLen elementLength = nextLength(d.b, count, d.env);
        void* node = AsnListAppend(list);
        if (!node) raise(d.env, ZYN_E_NO_MEMORY, nullptr);
        void* value = allocate(element.size, d.env);
        std::memcpy(node, &value, sizeof value);
        count += decodeSequence(d, element, elementLength, value);
    }
    leave(d, step);
    return count;
}

AsnLen decodeChoice(Decoder& d, const Type& type, AsnTag tag, AsnLen length, ChoiceRecord* choice) {
    Step step;
    enter(d, step, type, length);
    const Alternative* alternative = alternativeByTag(type, tag);
    if (!alternative) raise(d.env, siteCode(type, Site::Only), "ERROR - unexpected tag in CHOICE\n");
    choice->choiceId = alternative->number;
    step.index = static_cast<uint32_t>(alternative - type.alternatives.data());
    void* value = &choice->number;
    if (alternative->kind != Kind::Int) choice->slot = value = allocate(typeOf(alternative->type).size, d.env);
    AsnLen count = 0;
    if (alternative->kind != Kind::Choice) {
        count = decodeValue(d, alternative->kind, alternative->type, tag, length, value);
    } else {
        // The alternative's tag is a wrapper round the inner alternative. Its end is looked for only under an indefinite
        // length; a definite one is not compared with anything.
        startElement(d, step);
        const AsnTag innerTag = nextTag(d.b, count, d.env);
        const AsnLen innerLength = nextLength(d.b, count, d.env);
        count += decodeChoice(d, typeOf(alternative->type), innerTag, innerLength, static_cast<ChoiceRecord*>(value));
        if (length == IndefiniteLen) count += decodeEnd(d, step);
    }
    leave(d, step);
    return count;
}

AsnLen decodeType(Decoder& d, const Type& type, AsnTag tag, AsnLen length, void* value) {
    switch (type.shape) {
    case Shape::Sequence: return decodeSequence(d, type, length, value);
    case Shape::SetOf: return decodeSetOf(d, type, length, static_cast<AsnList*>(value));
    default: return decodeChoice(d, type, tag, length, static_cast<ChoiceRecord*>(value));
    }
}

} // namespace

void decodeContent(SBuf* b, TypeId type, AsnTag tag, AsnLen length, void* value, AsnLen* bytesDecoded, jmp_buf env) {
    Step first = firstStep(b, type);
    Walk walk{b, &first};
    Decoder d{b, env, walk};
    *bytesDecoded += decodeType(d, typeOf(type), tag, length, value);
}

void decodeMessage(SBuf* b, TypeId id, void* value, AsnLen* bytesDecoded, jmp_buf env) {
    Walk walk{b, nullptr};
    decodeMessage(walk, id, value, bytesDecoded, env);
}

void decodeMessage(Walk& walk, TypeId id, void* value, AsnLen* bytesDecoded, jmp_buf env) {
    Step first = firstStep(walk.b, id);
    walk.top = &first;
    Decoder d{walk.b, env, walk};
    const Type& type = typeOf(id);
    const AsnTag tag = BDecTag(d.b, bytesDecoded, env);
    if (type.shape == Shape::Sequence && tag != sequenceTag) {
        raise(env, siteCode(type, Site::OuterTag),
              id == TypeId::ZynTransReq ? "BDecZynTransReq: ERROR - wrong tag\n"
                                        : "BDecZynQueryReq: ERROR - wrong tag\n");
    }
    const AsnLen length = BDecLen(d.b, bytesDecoded, env);
    *bytesDecoded += decodeType(d, type, tag, length, value);
    walk.top = nullptr;
}

} // namespace zyn
