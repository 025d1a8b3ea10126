// Why an Encode did not succeed, found out afterwards: the encoder itself only tells that it did not.
#include "records/exact.h"
#include "records/members.h"
#include "records/tables.h"
#include "sbuf/state.h"
#include "sbuf/wire-form.h"
#include "zyn/codes.h"

namespace zyn {
namespace {

bool isUnsendable(Failure& failure, Kind kind, TypeId id, const void* value);

// Whether what stands at a step cannot be sent; the path then leads there.
bool isUnsendable(Failure& failure, const Type& at, std::size_t index, Kind kind, TypeId id, const void* value) {
    failure.path[failure.pathLength++] = {static_cast<uint16_t>(at.id), static_cast<uint32_t>(index)};
    if (isUnsendable(failure, kind, id, value)) return true;
    --failure.pathLength;
    return false;
}

bool inSequence(Failure& failure, const Type& type, const void* record) {
    for (std::size_t i = 0; i < type.fields.size(); ++i) {
        const Field& field = type.fields[i];
        const void* value = valueOf(record, field);
        if (!value && mayBeNull(field)) continue;
        if (isUnsendable(failure, type, i, field.kind, field.type, value)) return true;
    }
    return false;
}

// The elements that are sent are those from the last one back to a null data word, or to the first one.
bool inList(Failure& failure, const Type& type, const AsnList* list) {
    if (list->count == 0) return false;
    const AsnListNode* node = nullptr;
    for (const AsnListNode* n = list->last; n && n->data; n = n->prev) node = n;
    for (std::size_t i = 0; node; node = node->next, ++i) {
        if (isUnsendable(failure, type, i, Kind::Sequence, type.element, node->data)) return true;
        if (node == list->last) break;
    }
    return false;
}

bool inChoice(Failure& failure, const Type& type, const ChoiceRecord* choice) {
    const Alternative* alternative = alternativeOf(type, choice->choiceId);
    if (!alternative || alternative->kind == Kind::Int || isEmpty(*alternative)) return false;
    const auto index = static_cast<std::size_t>(alternative - type.alternatives.data());
    return isUnsendable(failure, type, index, alternative->kind, alternative->type, choice->slot);
}

bool isUnsendable(Failure& failure, Kind kind, TypeId id, const void* value) {
    if (!value) return true; // whoever may be null does not come here
    switch (kind) {
    case Kind::Int:
    case Kind::Bool: return false;
    case Kind::Real: return !hasWireForm(*static_cast<const AsnReal*>(value));
    case Kind::Octs: return !hasWireForm(*static_cast<const AsnOcts*>(value));
    case Kind::Bits: return !hasWireForm(*static_cast<const AsnBits*>(value));
    case Kind::Sequence: return inSequence(failure, typeOf(id), value);
    case Kind::SetOf: return inList(failure, typeOf(id), static_cast<const AsnList*>(value));
    default: return inChoice(failure, typeOf(id), static_cast<const ChoiceRecord*>(value));
    }
}

// Of what travels on its own: messages, and texts.
Kind kindOf(const Type& type) {
    if (type.shape == Shape::Primitive) return Kind::Octs;
    return type.shape == Shape::Sequence ? Kind::Sequence : Kind::Choice;
}

} // namespace

void explainEncode(TypeId id, const void* value, AsnLen length, uint32_t room) {
    Failure& failure = startFailure(ZYN_E_NO_ROOM);
    failure.offset = length;
    failure.needed = length;
    failure.room = room;
    // Only a number that is no alternative gives a message without any octets.
    if (length == 0) {
        failure.code = ZYN_E_NO_ALTERNATIVE;
        failure.choiceId = static_cast<const ChoiceRecord*>(value)->choiceId;
    } else if (isUnsendable(failure, kindOf(typeOf(id)), id, value)) {
        failure.code = ZYN_E_NO_WIRE_FORM;
    }
    if (failure.code != ZYN_E_NO_ROOM) failure.offset = 0;
    if (failure.pathLength == 0) failure.path[failure.pathLength++] = {static_cast<uint16_t>(id), noIndex};
}

} // namespace zyn
