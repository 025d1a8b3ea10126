// The rules by which every record is printed, as ASN.1 value notation (X.680 17.5, 27, 29).
//
// Nothing is written in front of the first character or behind the last one: whoever called has placed the cursor.
#include "records/exact.h"
#include "records/members.h"
#include "records/tables.h"
#include "sbuf/state.h"
#include "sbuf/text-out.h"

namespace zyn {
namespace {

void printType(TextOut& out, const Type& type, const void* value, unsigned short indent);

void printValue(TextOut& out, Kind kind, TypeId type, const void* value, unsigned short indent) {
    switch (kind) {
    case Kind::Int: return printInt(out, *static_cast<const AsnInt*>(value));
    case Kind::Bool: return printBool(out, *static_cast<const AsnBool*>(value));
    case Kind::Real: return printReal(out, *static_cast<const AsnReal*>(value));
    case Kind::Octs: return printOcts(out, *static_cast<const AsnOcts*>(value));
    case Kind::Bits: return printBits(out, *static_cast<const AsnBits*>(value));
    default: return printType(out, typeOf(type), value, indent);
    }
}

// Levels add up in 16 bits, as the argument of the printers has them.
unsigned short deeper(unsigned short indent) { return static_cast<unsigned short>(indent + currentIndent()); }

void closeBrace(TextOut& out, unsigned short indent) {
    out.spaces(indent);
    out.put('}');
}

void printSequence(TextOut& out, const Type& type, const void* record, unsigned short indent) {
    out.put("{ -- SEQUENCE --\n");
    if (type.fields.empty()) return closeBrace(out, indent);
    bool first = true;
    for (const Field& field : type.fields) {
        const void* value = valueOf(record, field);
        if (!value && field.optional) continue;
        if (!first) out.put(",\n");
        first = false;
        out.spaces(deeper(indent));
        out.put(field.name);
        out.put(' ');
        // A required pointer that was never set shows as a name without a value.
        if (value) printValue(out, field.kind, field.type, value, deeper(indent));
    }
    out.put('\n');
    closeBrace(out, indent);
}

void printSetOf(TextOut& out, const Type& type, AsnList* list, unsigned short indent) {
    out.put("{ -- SET OF -- \n");
    const Type& element = typeOf(type.element);
    for (list->curr = list->first; list->curr && list->curr->data; list->curr = list->curr->next) {
        out.spaces(deeper(indent));
        printType(out, element, list->curr->data, deeper(indent));
        if (list->curr != list->last) out.put(",\n");
    }
    out.put('\n');
    closeBrace(out, indent);
}

void printChoice(TextOut& out, const Type& type, const ChoiceRecord* choice, unsigned short indent) {
    const Alternative* alternative = alternativeOf(type, choice->choiceId);
    if (!alternative) return;
    out.put(alternative->name);
    out.put(' ');
    const bool inSlot = alternative->kind == Kind::Int;
    const void* value = inSlot ? static_cast<const void*>(&choice->number) : choice->slot;
    if (value) printValue(out, alternative->kind, alternative->type, value, deeper(indent));
}

void printType(TextOut& out, const Type& type, const void* value, unsigned short indent) {
    switch (type.shape) {
    case Shape::Sequence: return printSequence(out, type, value, indent);
    case Shape::SetOf: return printSetOf(out, type, static_cast<AsnList*>(const_cast<void*>(value)), indent);
    default: return printChoice(out, type, static_cast<const ChoiceRecord*>(value), indent);
    }
}

} // namespace

void print(FILE* f, TypeId type, const void* value, unsigned short indent) {
    if (!value) return;
    TextOut out(f);
    printType(out, typeOf(type), value, indent);
    out.flush();
}

} // namespace zyn
