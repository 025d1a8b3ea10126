#include "describe/words.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace zyn {
namespace {

constexpr const char* kindNames[] = {"INTEGER",    "ENUMERATED", "BOOLEAN", "REAL",  "OCTET STRING",
                                     "BIT STRING", "SEQUENCE",   "SET OF",  "CHOICE"};

// The universal tags that a person is likely to meet (X.680 8.4).
constexpr struct {
    uint8_t number;
    const char* name;
} universalNames[] = {{1, "BOOLEAN"}, {2, "INTEGER"},     {3, "BIT STRING"},  {4, "OCTET STRING"}, {5, "NULL"},
                      {9, "REAL"},    {10, "ENUMERATED"}, {12, "UTF8String"}, {16, "SEQUENCE"},    {17, "SET"}};

constexpr char digits[] = "0123456789ABCDEF";

Words& putHex(Words& words, uint8_t octet) {
    const char pair[] = {digits[octet >> 4], digits[octet & 0x0F]};
    return words << std::string_view(pair, 2);
}

Words& putTagName(Words& words, AsnTag tag) {
    if (tag == 0) return words << "an end of contents";
    const uint32_t number = tagNumber(tag);
    switch (tag >> 30) {
    case 0: {
        const auto* name = std::ranges::find(universalNames, number, [](auto& row) { return row.number; });
        if (name != std::end(universalNames)) return words << name->name;
        words << "[UNIVERSAL ";
        break;
    }
    case 1: words << "[APPLICATION "; break;
    case 2: words << "["; break;
    default: words << "[PRIVATE "; break;
    }
    return words << number << "]";
}

} // namespace

Words& Words::operator<<(std::string_view text) {
    const std::size_t taken = std::min(text.size(), size - 1 - used);
    std::memcpy(buffer + used, text.data(), taken);
    used += taken;
    buffer[used] = 0;
    return *this;
}

Words& Words::operator<<(uint64_t number) {
    char text[20];
    return *this << std::string_view(text, std::to_chars(text, text + sizeof text, number).ptr);
}

Words& putTagOctets(Words& words, AsnTag tag) {
    for (unsigned i = 0; i < tagOctets(tag); ++i) putHex(words, static_cast<uint8_t>(tag >> (24 - 8 * i)));
    return words;
}

Words& putTag(Words& words, AsnTag tag) {
    putTagName(words, tag) << " (";
    return putTagOctets(words, tag) << ")";
}

Words& putExpected(Words& words, const ZynType& type, AsnTag tag) {
    if (type.kind == ZYN_KIND_CHOICE) return words << "an alternative of " << type.name;
    words << kindNames[type.kind] << " (";
    return putTagOctets(words, tag) << ")";
}

Words& putElement(Words& words, Octets head) {
    if (head.count == 0) return words << "nothing";
    Header header;
    if (readTag(head, header) != 1) {
        words << "octets";
        for (std::size_t i = 0; i < std::min<std::size_t>(head.count, 3); ++i) putHex(words << " ", head.start[i]);
        return words;
    }
    putTag(words, header.tag);
    if (header.tag == 0) return words;
    const int read = readHeader(head, header);
    if (read == ZYN_E_LENGTH_TOO_LONG) return words << " with an overlong length";
    if (read == 0) return words;
    if (read != 1 || header.indefinite) return words << " of indefinite length";
    return words << " of " << header.length << (header.length == 1 ? " octet" : " octets");
}

} // namespace zyn
