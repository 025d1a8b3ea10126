// What happens less often, or takes more than a few lines.
#include "json/handler.h"

namespace zyn::json {

bool Handler::alternative(Frame& frame, std::string_view name) {
    if (frame.at != none) {
        return fail(keyOffset(name), "only one alternative can be there, found " + quoted(name) + " as well");
    }
    const int found = memberByName(*frame.plan, name);
    if (found < 0) {
        return fail(keyOffset(name), "unknown alternative " + quoted(name) + " of " + frame.plan->type->name);
    }
    frame.at = static_cast<uint32_t>(found);
    const Member& member = frame.plan->members[frame.at];
    const uint32_t number = frame.plan->type->alternatives[frame.at].number;
    std::memcpy(frame.value, &number, sizeof number); // choiceId stands first in every CHOICE
    aim(frame, member);
    return true;
}

bool Handler::partKey(Frame& frame, std::string_view name) {
    const bool isHex = frame.plan->kind == ZYN_KIND_OCTET_STRING;
    if (isHex ? name != "hex" : name != "bits" && name != "spare") {
        return fail(keyOffset(name),
                    (isHex ? "expected \"hex\", found " : "expected \"bits\" or \"spare\", found ") + quoted(name));
    }
    frame.at = name == "spare" ? 1 : 0;
    if (parts[frame.at].data()) return fail(keyOffset(name), quoted(name) + " stands twice");
    target = nullptr;
    return true;
}

bool Handler::integer(const char* digits, const char* end) {
    AsnInt number;
    const auto [behind, error] = std::from_chars(digits, end, number);
    if (behind != end) {
        return fail(offsetOf(digits), "expected an integer, found " + quoted({digits, end}));
    }
    if (error != std::errc()) return refuseHugeNumber(offsetOf(digits));
    *static_cast<AsnInt*>(open()) = number;
    return true;
}

bool Handler::real(const char* digits, const char* end) {
    AsnReal number;
    if (std::from_chars(digits, end, number).ec != std::errc()) return refuseHugeNumber(offsetOf(digits));
    *static_cast<AsnReal*>(open()) = number;
    return true;
}

bool Handler::namedReal(std::string_view name) {
    using Limits = std::numeric_limits<AsnReal>;
    if (name == "NaN") *static_cast<AsnReal*>(open()) = Limits::quiet_NaN();
    else if (name == "Infinity") *static_cast<AsnReal*>(open()) = Limits::infinity();
    else if (name == "-Infinity") *static_cast<AsnReal*>(open()) = -Limits::infinity();
    else return refuse(offsetOf(name.data()) - 1, quoted(name).c_str());
    return true;
}

// The octets are put where their digits stand, which take twice the room.
bool Handler::octets(AsnOcts& string) {
    const std::span<char> digits = parts[0];
    if (!digits.data()) return failAtEnd("\"hex\" is missing");
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (hexDigit(digits[i]) < 0) {
            return fail(offsetOf(&digits[i]),
                        "expected a hexadecimal digit, found " + foundAt({digits.data(), digits.size()}, i));
        }
    }
    if (digits.size() % 2 != 0) return fail(offsetOf(digits.data()), "an odd number of hexadecimal digits");
    auto* to = reinterpret_cast<uint8_t*>(digits.data());
    for (std::size_t i = 0; i < digits.size() / 2; ++i) {
        to[i] = static_cast<uint8_t>(hexDigit(digits[2 * i]) << 4 | hexDigit(digits[2 * i + 1]));
    }
    to[digits.size() / 2] = 0; // there is room, if only that of the closing quote
    string = {static_cast<uint32_t>(digits.size() / 2), to};
    return true;
}

bool Handler::bits(AsnBits& string) {
    const std::span<char> digits = parts[0], spare = parts[1];
    if (!digits.data()) return failAtEnd("\"bits\" is missing");
    const std::size_t octetCount = (digits.size() + 7) / 8;
    const std::size_t left = 8 * octetCount - digits.size();
    if (spare.data() && spare.size() != left) {
        return fail(offsetOf(spare.data()),
                    "\"spare\" must have the " + std::to_string(left) + " bits that the last octet has left");
    }
    auto* to = static_cast<uint8_t*>(reading.arena.take(octetCount + 1)); // not null, even for no bits
    if (!readBits(digits, to, 0) || !readBits(spare, to, digits.size())) return false;
    string = {static_cast<int32_t>(digits.size()), to};
    return true;
}

bool Handler::readBits(std::span<const char> digits, uint8_t* to, std::size_t first) {
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (digits[i] != '0' && digits[i] != '1') {
            return fail(offsetOf(&digits[i]), "expected 0 or 1, found " + foundAt({digits.data(), digits.size()}, i));
        }
        const std::size_t bit = first + i;
        to[bit / 8] |= static_cast<uint8_t>((digits[i] - '0') << (7 - bit % 8));
    }
    return true;
}

// Escapes can spell half a pair of surrogates, which is no character; the parser lets the second half pass.
bool Handler::isWholeExactly(const char* characters, std::size_t length) {
    const std::size_t start = offsetOf(characters);
    if (start + length > facts.utf8) return fail(facts.utf8, "the string is not UTF-8");
    const auto* octets = reinterpret_cast<const uint8_t*>(characters);
    if (utf8Prefix(octets, length) == length) return true;
    return fail(start - 1, "the string has a \\u escape that is half a surrogate pair");
}

bool Handler::unknownField(std::string_view name) {
    Frame& frame = top();
    frame.at = none;
    return fail(keyOffset(name), "unknown field " + quoted(name) + " in " + frame.plan->type->name);
}

bool Handler::missingField() {
    Frame& frame = top();
    for (uint32_t i = 0; i < frame.plan->members.size(); ++i) {
        const Member& member = frame.plan->members[i];
        if (member.optional || (frame.marks[i / 64] >> i % 64 & 1)) continue;
        frame.at = i;
        return failAtEnd("required field " + quoted(member.name()) + " of " + frame.plan->type->name + " is missing");
    }
    return true;
}

bool Handler::fail(std::size_t offset, std::string sentence) {
    reading.wrong = Wrong{offset, path(), std::move(sentence)};
    return false;
}

bool Handler::refuse(std::size_t offset, const char* found) {
    const bool isElement = target && isOpen() && top().plan->element == target;
    if (isElement) ++top().at; // the one that cannot be added
    return fail(offset, "expected " + (target ? looksOf(*target->type) : "a string") + ", found " + found);
}

bool Handler::refuseHugeNumber(std::size_t offset) {
    const std::string_view number = text.substr(offset, text.find_first_of(", \t\r\n]}", offset) - offset);
    if (isDue(ZYN_KIND_INTEGER) || isDue(ZYN_KIND_ENUMERATED)) {
        return fail(offset, quoted(number) + " does not fit in 32 bits");
    }
    if (isDue(ZYN_KIND_REAL)) return fail(offset, quoted(number) + " lies outside of what a REAL can be");
    return refuse(offset, "a number");
}

std::string Handler::path() const {
    std::string path;
    for (const Frame* open = reading.frames.data(); open != next; ++open) {
        const Frame& frame = *open;
        if (frame.at == none || frame.plan->kind == ZYN_KIND_OCTET_STRING || frame.plan->kind == ZYN_KIND_BIT_STRING)
            continue;
        if (frame.plan->kind == ZYN_KIND_SET_OF) {
            path += '[' + std::to_string(frame.at) + ']';
            continue;
        }
        if (!path.empty()) path += '.';
        path += frame.plan->members[frame.at].name();
    }
    return path;
}

} // namespace zyn::json
