#include "where.h"

#include <charconv>

#include "options.h"
#include "records.h"

namespace zyn::tool {
namespace {

std::optional<double> numberOf(std::string_view text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

bool isBit(const AsnBits& bits, std::size_t i) { return (bits.bits[i / 8] >> (7 - i % 8) & 1) != 0; }

} // namespace

Condition::Condition(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) throw WrongUse("--where " + text + ": PATH=VALUE is needed");
    value = text.substr(equals + 1);
    number = numberOf(value);
    std::string_view path = std::string_view(text).substr(0, equals);
    while (!path.empty()) {
        std::size_t end = std::min(path.find_first_of(".[", 1), path.size());
        if (path[0] == '[') {
            end = path.find(']');
            if (end == std::string_view::npos) throw WrongUse("--where " + text + ": a bracket is not closed");
            const std::string_view digits = path.substr(1, end - 1);
            Step step{.name = {}, .isIndex = true, .index = std::nullopt};
            if (!digits.empty()) {
                uint32_t index = 0;
                const auto [last, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
                if (error != std::errc() || last != digits.data() + digits.size()) {
                    throw WrongUse("--where " + text + ": an element has a number, counted from 0");
                }
                step.index = index;
            }
            steps.push_back(step);
            ++end;
        } else {
            if (path[0] == '.') throw WrongUse("--where " + text + ": a name is missing in the path");
            steps.push_back({.name = std::string(path.substr(0, end)), .isIndex = false, .index = std::nullopt});
        }
        path.remove_prefix(end);
        if (path.size() == 1 && path[0] == '.') throw WrongUse("--where " + text + ": a name is missing in the path");
        if (!path.empty() && path[0] == '.') path.remove_prefix(1);
    }
    for (int channel = 0; channel < ZYN_CHANNELS; ++channel) {
        if (canMatch(*ZynEnvelopeType(static_cast<ZynChannel>(channel)), 0)) return;
    }
    throw WrongUse("--where " + text + ": no message has such a path");
}

template <typename Visit> bool Condition::enter(const char* name, std::size_t step, Visit visit) const {
    if (step >= steps.size() || steps[step].isIndex) return false;
    const std::string& wanted = steps[step].name;
    if (wanted == "**") return enter(name, step + 1, visit) || visit(step);
    return (wanted == "*" || wanted == name) && visit(step + 1);
}

bool Condition::matches(const ZynType& type, const void* record, std::size_t step) const {
    switch (type.kind) {
    case ZYN_KIND_SEQUENCE:
        for (const ZynField* field = type.fields; field != type.fields + type.fieldCount; ++field) {
            const void* member = valueOf(*field, record);
            if (!member) continue;
            if (enter(field->name, step, [&](std::size_t next) { return matches(*field->type, member, next); }))
                return true;
        }
        return false;
    case ZYN_KIND_CHOICE: {
        const ZynAlternative* alternative = alternativeOf(type, record);
        const void* held = alternative ? valueOf(type, *alternative, record) : nullptr;
        return held && enter(alternative->name, step,
                             [&](std::size_t next) { return matches(*alternative->type, held, next); });
    }
    case ZYN_KIND_SET_OF: return matchesElements(type, record, step);
    case ZYN_KIND_OCTET_STRING: return matchesText(*static_cast<const AsnOcts*>(record), step);
    case ZYN_KIND_BIT_STRING: return matchesBits(*static_cast<const AsnBits*>(record), step);
    default: return step == steps.size() && matchesEnd(type, record);
    }
}

bool Condition::matchesElements(const ZynType& type, const void* list, std::size_t step) const {
    const bool indexed = step < steps.size() && steps[step].isIndex;
    uint32_t index = 0;
    for (const AsnListNode* node = static_cast<const AsnList*>(list)->first; node; node = node->next, ++index) {
        if (indexed && steps[step].index && *steps[step].index != index) continue;
        if (matches(*type.element, node->data, indexed ? step + 1 : step)) return true;
    }
    return false;
}

bool Condition::matchesText(const AsnOcts& text, std::size_t step) const {
    const std::string_view octets(reinterpret_cast<const char*>(text.octs), text.octetLen);
    if (step == steps.size()) return octets == value;
    if (step + 1 != steps.size() || steps[step].name != "hex" || value.size() != 2 * octets.size()) return false;
    for (std::size_t i = 0; i < octets.size(); ++i) {
        uint8_t octet = 0;
        const char* digits = value.data() + 2 * i;
        if (std::from_chars(digits, digits + 2, octet, 16).ptr != digits + 2 || octet != text.octs[i]) return false;
    }
    return true;
}

bool Condition::matchesBits(const AsnBits& bits, std::size_t step) const {
    const bool atEnd = step == steps.size() || (step + 1 == steps.size() && steps[step].name == "bits");
    if (!atEnd || bits.bitLen < 0 || static_cast<std::size_t>(bits.bitLen) != value.size()) return false;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != (isBit(bits, i) ? '1' : '0')) return false;
    }
    return true;
}

bool Condition::matchesEnd(const ZynType& type, const void* place) const {
    if (type.kind == ZYN_KIND_BOOLEAN) return value == (*static_cast<const AsnBool*>(place) ? "true" : "false");
    if (!number) return false;
    const double there =
        type.kind == ZYN_KIND_REAL ? *static_cast<const AsnReal*>(place) : *static_cast<const AsnInt*>(place);
    return there == *number || (there != there && *number != *number);
}

// The same walk over the descriptions alone.
bool Condition::canMatch(const ZynType& type, std::size_t step) const {
    switch (type.kind) {
    case ZYN_KIND_SEQUENCE:
        for (const ZynField* field = type.fields; field != type.fields + type.fieldCount; ++field) {
            if (enter(field->name, step, [&](std::size_t next) { return canMatch(*field->type, next); })) return true;
        }
        return false;
    case ZYN_KIND_CHOICE:
        for (const ZynAlternative* one = type.alternatives; one != type.alternatives + type.alternativeCount; ++one) {
            if (enter(one->name, step, [&](std::size_t next) { return canMatch(*one->type, next); })) return true;
        }
        return false;
    case ZYN_KIND_SET_OF: return canMatch(*type.element, step < steps.size() && steps[step].isIndex ? step + 1 : step);
    case ZYN_KIND_OCTET_STRING: return step == steps.size() || (step + 1 == steps.size() && steps[step].name == "hex");
    case ZYN_KIND_BIT_STRING: return step == steps.size() || (step + 1 == steps.size() && steps[step].name == "bits");
    default: return step == steps.size();
    }
}

} // namespace zyn::tool
