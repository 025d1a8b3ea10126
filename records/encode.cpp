// The rules by which every record is encoded.
//
// All writing goes backwards: a value is put in front of what is already in the buffer, then its length, then its tag, the
// last field first. So each length is the number of octets just written, and nothing is measured ahead. Every function
// returns the octets that it put in front, whether or not they fitted: a full buffer sets writeError and the walk goes on.
#include "records/exact.h"
#include "records/members.h"
#include "records/tables.h"

namespace zyn {
namespace {

AsnLen encodeTag(SBuf* b, AsnTag tag) {
    const unsigned octets = tagOctets(tag);
    for (unsigned i = octets; i-- > 0;) SBufPushByte(b, static_cast<uint8_t>(tag >> (24 - 8 * i)));
    return octets;
}

// A length of one octet, for values that are always shorter than 128 octets.
AsnLen encodeShortLength(SBuf* b, AsnLen length) {
    SBufPushByte(b, static_cast<uint8_t>(length));
    return 1;
}

AsnLen encodeType(SBuf* b, const Type& type, const void* value);

// A value with its length, and without its tag.
AsnLen encodeValue(SBuf* b, Kind kind, TypeId type, const void* value) {
    AsnLen length;
    switch (kind) {
    case Kind::Int:
        length = BEncAsnIntContent(b, static_cast<AsnInt*>(const_cast<void*>(value)));
        return length + encodeShortLength(b, length);
    case Kind::Bool:
        length = BEncAsnBoolContent(b, static_cast<AsnBool*>(const_cast<void*>(value)));
        return length + encodeShortLength(b, length);
    case Kind::Real:
        length = BEncAsnRealContent(b, static_cast<AsnReal*>(const_cast<void*>(value)));
        return length + encodeShortLength(b, length);
    case Kind::Octs: length = BEncAsnOctsContent(b, static_cast<AsnOcts*>(const_cast<void*>(value))); break;
    case Kind::Bits: length = BEncAsnBitsContent(b, static_cast<AsnBits*>(const_cast<void*>(value))); break;
    default: length = encodeType(b, typeOf(type), value); break;
    }
    return length + BEncDefLen(b, length);
}

AsnLen encodeField(SBuf* b, const Field& field, const void* value) {
    // A CHOICE brings its own tag and length.
    if (field.kind == Kind::Choice) return encodeType(b, typeOf(field.type), value);
    AsnLen length = encodeValue(b, field.kind, field.type, value);
    if (field.wrapped) {
        length += encodeTag(b, integerTag);
        length += BEncDefLen(b, length);
    }
    return length + encodeTag(b, field.tag);
}

AsnLen encodeSequence(SBuf* b, const Type& type, const void* record) {
    AsnLen total = 0;
    for (std::size_t i = type.fields.size(); i-- > 0;) {
        const Field& field = type.fields[i];
        const void* value = valueOf(record, field);
        if (value || field.kind == Kind::SetOf) {
            total += encodeField(b, field, value); // a null list is an empty one
        } else if (!mayBeNull(field)) {
            b->writeError = 1; // the caller left a required pointer unset: nothing that could be sent
        }
    }
    return total;
}

// The elements in list order, which is not sorted (X.690 11.6 asks that of DER only). A null data word ends the walk.
AsnLen encodeSetOf(SBuf* b, const Type& type, AsnList* list) {
    if (!list || list->count == 0) return 0;
    const Type& element = typeOf(type.element);
    AsnLen total = 0;
    for (list->curr = list->last; list->curr && list->curr->data; list->curr = list->curr->prev) {
        AsnLen length = encodeType(b, element, list->curr->data);
        length += BEncDefLen(b, length);
        total += length + encodeTag(b, sequenceTag);
    }
    return total;
}

// The alternative's value under its tag. A number that is no alternative writes nothing.
AsnLen encodeChoice(SBuf* b, const Type& type, const ChoiceRecord* choice) {
    const Alternative* alternative = alternativeOf(type, choice->choiceId);
    if (!alternative) return 0;
    AsnLen length = 0;
    if (alternative->kind == Kind::Int) {
        length = encodeValue(b, Kind::Int, alternative->type, &choice->number);
    } else if (choice->slot) {
        length = encodeValue(b, alternative->kind, alternative->type, choice->slot);
    } else {
        // The slot of an empty record is not read; any other null is an alternative that the caller left unset.
        if (!isEmpty(*alternative)) b->writeError = 1;
        length = BEncDefLen(b, 0);
    }
    return length + encodeTag(b, alternative->tag);
}

AsnLen encodeType(SBuf* b, const Type& type, const void* value) {
    switch (type.shape) {
    case Shape::Sequence: return encodeSequence(b, type, value);
    case Shape::SetOf: return encodeSetOf(b, type, static_cast<AsnList*>(const_cast<void*>(value)));
    default: return encodeChoice(b, type, static_cast<const ChoiceRecord*>(value));
    }
}

} // namespace

AsnLen encodeContent(SBuf* b, TypeId type, const void* value) { return encodeType(b, typeOf(type), value); }

AsnLen encodeMessage(SBuf* b, TypeId id, const void* value) {
    const Type& type = typeOf(id);
    AsnLen length = encodeType(b, type, value);
    if (type.shape == Shape::Choice) return length; // the alternative's tag and length are there already
    length += BEncDefLen(b, length);
    return length + encodeTag(b, sequenceTag);
}

} // namespace zyn
