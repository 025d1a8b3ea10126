// The particulars of the last failure in words: its place, and a sentence.
#include <algorithm>
#include <span>

#include "describe/words.h"
#include "records/tables.h"
#include "sbuf/state.h"
#include "zyn/failure.h"

namespace zyn {
namespace {

constexpr AsnTag octetStringTag = universalTag(TypeId::AsnOcts, Kind::Octs);
constexpr AsnTag bitStringTag = universalTag(TypeId::AsnBits, Kind::Bits);

// How deep a type goes, and how long the longest path through it is, in characters.
struct Extent {
    std::size_t steps;
    std::size_t characters;
};

constexpr Extent extentOf(const Type& type) {
    Extent most{0, 0};
    const auto through = [&](TypeId inner, std::size_t name) {
        const Extent below = extentOf(typeOf(inner));
        most.steps = std::max(most.steps, below.steps);
        most.characters = std::max(most.characters, below.characters + name);
    };
    for (const Field& field : type.fields) through(field.type, std::string_view(field.name).size() + 1);
    for (const Alternative& row : type.alternatives) through(row.type, std::string_view(row.name).size() + 1);
    if (type.shape == Shape::SetOf) through(type.element, std::string_view("[4294967295]").size());
    return {most.steps + (type.shape != Shape::Primitive), most.characters};
}

template <TypeId... envelopes> consteval bool pathsFit() {
    // A walk has one step more, at its start.
    return ((extentOf(typeOf(envelopes)).steps < std::size(Failure{}.path)) && ...) &&
           ((extentOf(typeOf(envelopes)).characters < sizeof Failure::pathText) && ...);
}
static_assert(pathsFit<TypeId::ZynTransReq, TypeId::ZynTransRep, TypeId::ZynQueryReq, TypeId::ZynQueryRep>());

const ZynType& typeAt(const PathStep& step) { return *ZynTypeByNumber(step.type); }

// The field or alternative that a step leads to; empty: none.
const char* nameAt(const PathStep& step) {
    const ZynType& type = typeAt(step);
    if (step.index == noIndex || type.kind == ZYN_KIND_SET_OF) return "";
    return type.kind == ZYN_KIND_CHOICE ? type.alternatives[step.index].name : type.fields[step.index].name;
}

// The type of what a step leads to; its own where that is nothing in particular.
const ZynType* valueAt(const PathStep& step) {
    const ZynType& type = typeAt(step);
    if (step.index == noIndex) return &type;
    if (type.kind == ZYN_KIND_SET_OF) return type.element;
    return type.kind == ZYN_KIND_CHOICE ? type.alternatives[step.index].type : type.fields[step.index].type;
}

std::span<const PathStep> pathOf(const Failure& failure) { return {failure.path, failure.pathLength}; }

void putPath(Words& words, std::span<const PathStep> path) {
    for (const PathStep& step : path) {
        if (step.index == noIndex) continue;
        if (typeAt(step).kind == ZYN_KIND_SET_OF) words << "[" << step.index << "]";
        else words << (words.length() > 0 ? "." : "") << nameAt(step);
    }
}

// The step that names record and field; null: none does.
const PathStep* placeOf(const Failure& failure) {
    if (failure.pathLength == 0 || failure.code == ZYN_E_NO_ROOM) return nullptr;
    const PathStep* step = failure.path + failure.pathLength - 1;
    // A list has failure codes of its own, but it is no record.
    while (failure.code > firstSiteCode && typeAt(*step).kind == ZYN_KIND_SET_OF) --step;
    return typeAt(*step).module ? step : nullptr;
}

// What a person would call the thing that could not be read: the end of its path.
std::string_view labelOf(const Failure& failure) {
    const std::string_view path = failure.pathText;
    if (path.empty()) return placeOf(failure) ? typeAt(*placeOf(failure)).name : "";
    return path.substr(path.rfind('.') + 1);
}

void putFound(Words& words, const Failure& failure) {
    words << ", found ";
    if (failure.headOctets == 0) {
        words << "the end of the data";
        return;
    }
    putElement(words, {failure.head, failure.headOctets});
    if (failure.atEnd) words << ", then the end of the data";
}

void putExpectedFor(Words& words, const Failure& failure, const ZynType& type, AsnTag tag,
                    const char* preposition = "for") {
    putExpected(words << "expected ", type, tag);
    const std::string_view label = labelOf(failure);
    if (label.empty() || (type.kind == ZYN_KIND_CHOICE && label == type.name)) return;
    words << " " << preposition << " " << label;
}

bool endsWhereFound(const Failure& failure) {
    return failure.length != IndefiniteLen && failure.element >= uint64_t{failure.content} + failure.length;
}

// A code of -100 and below.
void putPlace(Words& words, const Failure& failure, const ZynPlace& place) {
    switch (place.kind) {
    case ZYN_PLACE_MESSAGE_TAG: putExpectedFor(words, failure, *place.type, sequenceTag); break;
    case ZYN_PLACE_INNER_TAG: putExpectedFor(words, failure, *place.field->type, integerTag, "inside"); break;
    case ZYN_PLACE_FIELD_TAG:
        putExpectedFor(words, failure, *place.field->type, place.field->tag);
        if (!endsWhereFound(failure)) break;
        words << ", found the end of " << place.type->name;
        return;
    case ZYN_PLACE_LENGTH: {
        const uint64_t taken = failure.position - failure.content;
        words << "expected the fields of " << place.type->name << " to take " << failure.length
              << " octets, as its length says, found ";
        if (taken == failure.length) words << "that they do not add up to that";
        else words << taken;
        return;
    }
    case ZYN_PLACE_STRAY: words << "expected another field of " << place.type->name << " or its end"; break;
    case ZYN_PLACE_ONLY:
        if (place.type->kind == ZYN_KIND_SEQUENCE) {
            words << "expected no content in " << place.type->name << ", found " << failure.length
                  << (failure.length == 1 ? " octet" : " octets");
            return;
        }
        if (place.type->kind == ZYN_KIND_CHOICE) words << "expected an alternative of " << place.type->name;
        else putExpectedFor(words, failure, *place.type->element, sequenceTag);
        break;
    }
    putFound(words, failure);
}

// What was to be read when a code of the run-time came up.
void putExpectation(Words& words, const Failure& failure) {
    const PathStep& step = failure.path[failure.pathLength - 1];
    const ZynType& type = typeAt(step);
    const bool atStart = failure.pathLength == 1; // in front of the message's content
    const ZynType* value = valueAt(step);
    if (failure.code == ZYN_E_EOC || failure.code == ZYN_E_EOC_SECOND_OCTET) {
        putTag(words << "expected ", 0);
        words << " of ";
        if (step.index == noIndex && !failure.inComponent) words << type.name;
        else words << labelOf(failure);
    } else if (failure.inComponent) {
        putExpectedFor(words, failure, *value, value->kind == ZYN_KIND_BIT_STRING ? bitStringTag : octetStringTag,
                       "in");
    } else if (atStart) {
        putExpectedFor(words, failure, type, type.kind == ZYN_KIND_OCTET_STRING ? octetStringTag : sequenceTag);
    } else if (type.kind == ZYN_KIND_SET_OF) {
        putExpectedFor(words, failure, *value, sequenceTag);
    } else if (type.kind == ZYN_KIND_CHOICE) {
        putExpectedFor(words, failure, *value, type.alternatives[step.index].tag);
    } else {
        const ZynField& field = type.fields[step.index];
        putExpectedFor(words, failure, *value, failure.inWrapper ? integerTag : field.tag);
        const bool atTag = failure.code == ZYN_E_TAG_MISSING || failure.code == ZYN_E_TAG_TOO_LONG;
        if (atTag && field.optional && !failure.inWrapper) words << " or what may follow it";
    }
}

void putReasonNotSent(Words& words, const Failure& failure) {
    const PathStep& step = failure.path[failure.pathLength - 1];
    const std::string_view label = labelOf(failure);
    words << (label.empty() ? "the text" : label) << " has no form on the wire: ";
    switch (valueAt(step)->kind) {
    case ZYN_KIND_OCTET_STRING: words << "its octs are null and its octetLen is not 0"; break;
    case ZYN_KIND_BIT_STRING: words << "its bitLen is negative, or its bits are null and that is not 0"; break;
    case ZYN_KIND_REAL: words << "it is a NaN, or an infinity without InitAsnInfinity"; break;
    default: words << "the pointer to it is null"; break;
    }
}

void putSentence(Words& words, const Failure& failure) {
    ZynPlace place;
    if (failure.code <= firstSiteCode) {
        if (ZynFailurePlace(typeAt(*placeOf(failure)).module, failure.code, &place)) putPlace(words, failure, place);
        return;
    }
    switch (failure.code) {
    case ZYN_E_NO_ROOM:
        words << "the message needs " << failure.needed << " octets, but the block has " << failure.room;
        return;
    case ZYN_E_NO_ALTERNATIVE:
        if (failure.pathLength == 0) words << "there is no such channel";
        else words << typeAt(failure.path[0]).name << " has no alternative " << failure.choiceId;
        return;
    case ZYN_E_NO_WIRE_FORM: return putReasonNotSent(words, failure);
    }
    words << ZynFailureText(nullptr, failure.code);
    if (failure.pathLength == 0) return;
    if (failure.code == ZYN_E_NO_MEMORY) {
        if (!labelOf(failure).empty()) words << " for " << labelOf(failure);
        return;
    }
    putExpectation(words << ": ", failure);
    putFound(words, failure);
}

} // namespace
} // namespace zyn

int ZynLastFailure(ZynFailure* out) {
    using namespace zyn;
    Failure& failure = currentFailure();
    if (failure.code == 0) return 0;
    Words path(failure.pathText);
    putPath(path, pathOf(failure));
    const PathStep* place = placeOf(failure);
    Words text(failure.text);
    putSentence(text, failure);
    *out = {failure.code, "", "", "", failure.pathText, failure.offset, failure.text};
    if (place) {
        out->module = typeAt(*place).module;
        out->record = typeAt(*place).name;
        out->field = nameAt(*place);
    }
    return 1;
}
