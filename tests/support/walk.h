// Goes through a record tree.
#pragma once

#include "records/members.h"
#include "records/tables.h"

namespace zyn::test {

// visit(type, value) is called for value and for every value below it, the outer ones first. Elements of lists are taken as
// encoders take them: from the last one on, up to a node without data.
template <typename Visit> void forEachValue(TypeId id, void* value, Visit&& visit) {
    if (!value) return;
    const Type& type = typeOf(id);
    visit(id, value);
    for (const Field& field : type.fields) forEachValue(field.type, const_cast<void*>(valueOf(value, field)), visit);
    if (type.shape == Shape::SetOf) {
        for (AsnListNode* n = static_cast<AsnList*>(value)->last; n && n->data; n = n->prev) {
            forEachValue(type.element, n->data, visit);
        }
    } else if (type.shape == Shape::Choice) {
        auto* choice = static_cast<ChoiceRecord*>(value);
        const Alternative* row = alternativeOf(type, choice->choiceId);
        if (row && row->kind != Kind::Int) forEachValue(row->type, choice->slot, visit);
    }
}

} // namespace zyn::test
