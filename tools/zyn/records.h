// Where the parts of a record lie, by its description.
#pragma once

#include <cstring>

#include "zyn/describe.h"

namespace zyn::tool {

inline const void* placeOf(const void* record, std::size_t offset) { return static_cast<const char*>(record) + offset; }

inline const void* pointerAt(const void* place) {
    const void* pointer = nullptr;
    std::memcpy(&pointer, place, sizeof pointer);
    return pointer;
}

// The value of a field, or null if it is absent.
inline const void* valueOf(const ZynField& field, const void* record) {
    const void* place = placeOf(record, field.offset);
    if (field.pointer) return pointerAt(place);
    if (field.type->kind == ZYN_KIND_OCTET_STRING && !static_cast<const AsnOcts*>(place)->octs) return nullptr;
    if (field.type->kind == ZYN_KIND_BIT_STRING && !static_cast<const AsnBits*>(place)->bits) return nullptr;
    return place;
}

// The value in a CHOICE's slot, null if there is none.
inline const void* valueOf(const ZynType& choice, const ZynAlternative& alternative, const void* record) {
    const void* place = placeOf(record, choice.slotOffset);
    return alternative.pointer ? pointerAt(place) : place;
}

// The alternative that a CHOICE holds, or null.
inline const ZynAlternative* alternativeOf(const ZynType& choice, const void* record) {
    uint32_t number = 0;
    std::memcpy(&number, record, sizeof number);
    return ZynAlternativeByNumber(&choice, number);
}

inline bool isPrimitive(const ZynType& type) { return type.kind < ZYN_KIND_SEQUENCE; }

} // namespace zyn::tool
