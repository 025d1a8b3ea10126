// How the walkers reach what a record's members hold.
#pragma once

#include <cstring>

#include "records/rows.h"

namespace zyn {

inline const void* memberOf(const void* record, const Field& field) {
    return static_cast<const char*>(record) + field.offset;
}

inline void* memberOf(void* record, const Field& field) { return static_cast<char*>(record) + field.offset; }

inline const void* pointerIn(const void* member) {
    const void* value;
    std::memcpy(&value, member, sizeof value);
    return value;
}

// The value of a field, wherever it stands: in the member or where the member points. Null: an absent OPTIONAL field, or
// a required pointer that was never set.
inline const void* valueOf(const void* record, const Field& field) {
    const void* member = memberOf(record, field);
    if (field.pointer) return pointerIn(member);
    if (!field.optional) return member;
    // Only strings are held in place when OPTIONAL; absent is a null octs or bits.
    if (field.kind == Kind::Octs) return static_cast<const AsnOcts*>(member)->octs ? member : nullptr;
    return static_cast<const AsnBits*>(member)->bits ? member : nullptr;
}

// Whether null is no fault of the caller's: a null list is an empty one, anything else must be OPTIONAL.
inline bool mayBeNull(const Field& field) { return field.optional || field.kind == Kind::SetOf; }

// The two members that every CHOICE record has, whatever its alternatives are.
struct ChoiceRecord {
    uint32_t choiceId;
    union {
        AsnInt number; // an alternative of type INTEGER stands in the slot itself
        void* slot;
    };
};

inline const Alternative* alternativeOf(const Type& type, uint32_t choiceId) {
    if (choiceId >= type.byNumber.size() || type.byNumber[choiceId] < 0) return nullptr;
    return &type.alternatives[static_cast<std::size_t>(type.byNumber[choiceId])];
}

} // namespace zyn
