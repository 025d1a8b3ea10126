// All types in one table, by TypeId, and the numbering of the failure codes.
#pragma once

#include <array>

#include "records/generated/modules.h"
#include "records/rows.h"

namespace zyn {

// Every place where a record decoder can fail has a code of its own within its module. The codes run downwards from
// -100, a step a place, over the module's types in the order in which the module defines them. Within a type the
// places follow each other like this; nothing else decides a code.
//
//   a message that is a SEQUENCE     its outer tag
//   each field of a SEQUENCE         the inner tag, if it is wrapped; the length check, if it is the last field;
//                                    the wrong tag, if it is required
//   behind the last field            no field matched. The step is taken, though never reported, behind a required one
//   an empty record, SET OF, CHOICE  one place
constexpr int16_t firstSiteCode = -100;

enum class Site { OuterTag, InnerTag, Length, FieldTag, Stray, Only, End };

// Calls visit(site, field, code) for the places of a type in order; field is that of an InnerTag or FieldTag, otherwise 0.
// The last one is End, whose code is the first of the module's next type.
template <typename Visit> constexpr void eachPlace(const Type& type, Visit visit) {
    int16_t code = type.firstCode;
    const auto place = [&](Site site, std::size_t field = 0) { visit(site, field, code--); };
    if (type.fields.empty()) {
        place(Site::Only);
    } else {
        if (type.message) place(Site::OuterTag);
        for (std::size_t i = 0; i < type.fields.size(); ++i) {
            if (type.fields[i].wrapped) place(Site::InnerTag, i);
            if (i + 1 == type.fields.size()) place(Site::Length);
            if (!type.fields[i].optional) place(Site::FieldTag, i);
        }
        place(Site::Stray);
    }
    place(Site::End);
}

constexpr int16_t siteCode(const Type& type, Site site, std::size_t field = 0) {
    int16_t result = 0;
    eachPlace(type, [&](Site here, std::size_t itsField, int16_t code) {
        if (here == site && itsField == field) result = code;
    });
    return result;
}

consteval std::array<Type, typeCount> assembleTypes() {
    std::array<Type, typeCount> all{};
    constexpr const char* primitives[] = {"AsnInt", "AsnEnum", "AsnBool", "AsnReal", "AsnOcts", "AsnBits"};
    constexpr uint16_t sizes[] = {sizeof(AsnInt),  sizeof(AsnInt),  sizeof(AsnBool),
                                  sizeof(AsnReal), sizeof(AsnOcts), sizeof(AsnBits)};
    constexpr uint8_t alignments[] = {alignof(AsnInt),  alignof(AsnInt),  alignof(AsnBool),
                                      alignof(AsnReal), alignof(AsnOcts), alignof(AsnBits)};
    std::size_t next = 0;
    for (const char* name : primitives) {
        all[next] = {.name = name, .id = static_cast<TypeId>(next), .size = sizes[next], .alignment = alignments[next]};
        ++next;
    }
    for (const Module& module : modules) {
        int16_t code = firstSiteCode;
        for (const Type& row : module.types) {
            Type& type = all[next];
            type = row;
            if (static_cast<std::size_t>(type.id) != next) throw "TypeId and tables differ in order";
            type.module = module.name;
            type.firstCode = code;
            code = siteCode(type, Site::End);
            type.lastCode = static_cast<int16_t>(code + 1);
            ++next;
        }
    }
    if (next != typeCount) throw "typeCount and tables differ";
    return all;
}

inline constexpr std::array<Type, typeCount> types = assembleTypes();

constexpr const Type& typeOf(TypeId id) { return types[static_cast<std::size_t>(id)]; }

// The envelopes, by ZynChannel.
inline constexpr TypeId envelopes[] = {TypeId::ZynTransReq, TypeId::ZynTransRep, TypeId::ZynQueryReq,
                                       TypeId::ZynQueryRep};

// Whether an alternative's record has no fields, so that its slot is not read.
constexpr bool isEmpty(const Alternative& row) { return row.kind == Kind::Sequence && typeOf(row.type).fields.empty(); }

} // namespace zyn
