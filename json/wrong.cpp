#include "json/wrong.h"

#include <algorithm>

namespace zyn::json {

std::string looksOf(const ZynType& type) {
    switch (type.kind) {
    case ZYN_KIND_INTEGER: return "an integer";
    case ZYN_KIND_ENUMERATED: return "an integer";
    case ZYN_KIND_BOOLEAN: return "true or false";
    case ZYN_KIND_REAL: return "a number, \"NaN\", \"Infinity\" or \"-Infinity\"";
    case ZYN_KIND_OCTET_STRING: return "a string or {\"hex\": \"...\"}";
    case ZYN_KIND_BIT_STRING: return "{\"bits\": \"...\"}";
    case ZYN_KIND_SEQUENCE: return std::string("an object with the fields of ") + type.name;
    case ZYN_KIND_SET_OF: return "an array";
    case ZYN_KIND_CHOICE: break;
    }
    return std::string("an object with one alternative of ") + type.name;
}

std::string quoted(std::string_view part) {
    constexpr std::size_t longest = 40;
    std::string result = "\"";
    for (const char c : part.substr(0, longest)) result += c >= 0x20 && c < 0x7F ? c : '?';
    result += part.size() > longest ? "...\"" : "\"";
    return result;
}

std::string foundAt(std::string_view text, std::size_t offset) {
    if (offset >= text.size()) return "the end of the text";
    const char c = text[offset];
    if (c > 0x20 && c < 0x7F) return std::string{'\'', c, '\''};
    constexpr char digits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    return std::string("byte 0x") + digits[byte >> 4] + digits[byte & 0x0F];
}

Place placeOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, offset);
    const auto lines = std::ranges::count(before, '\n');
    const std::size_t feed = before.rfind('\n');
    const std::size_t column = feed == before.npos ? before.size() : before.size() - feed - 1;
    return {static_cast<uint32_t>(lines + 1), static_cast<uint32_t>(column + 1)};
}

} // namespace zyn::json
