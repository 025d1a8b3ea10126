#include "output/element.h"

#include <algorithm>
#include <charconv>

#include "output/out.h"

namespace zyn::tool {
namespace {

constexpr AsnTag constructedBit = 0x20000000;

bool isString(const ZynType& type) { return type.kind == ZYN_KIND_OCTET_STRING || type.kind == ZYN_KIND_BIT_STRING; }

// Strings come in both forms.
bool takes(const ZynType& type, AsnTag own, AsnTag tag) {
    return own == tag || (isString(type) && own == (tag & ~constructedBit));
}

const ZynAlternative* alternativeWith(const ZynType& choice, AsnTag tag) {
    const auto* end = choice.alternatives + choice.alternativeCount;
    const auto* found = std::find_if(choice.alternatives, end,
                                     [&](const ZynAlternative& one) { return takes(*one.type, one.tag, tag); });
    return found == end ? nullptr : found;
}

Place placeOf(const std::string& prefix, const ZynAlternative& alternative) {
    return {prefix + alternative.name, alternative.type, alternative.explicitTag != 0};
}

std::string bitsText(const uint8_t* content, std::size_t length) {
    if (length == 0 || content[0] > 7 || (length == 1 && content[0] > 0)) return {};
    std::string text;
    for (std::size_t i = 0; i < 8 * (length - 1) - content[0]; ++i)
        text += content[1 + i / 8] >> (7 - i % 8) & 1 ? '1' : '0';
    return text;
}

// Nothing in this frame lives on after a jump.
bool readReal(const uint8_t* content, std::size_t length, double& value) {
    auto* start = const_cast<uint8_t*>(content);
    SBuf b = {.dataStart = start,
              .dataEnd = start + length,
              .blkStart = start,
              .blkEnd = start + length,
              .readLoc = start,
              .writeError = 1,
              .readError = 0};
    AsnLen count = 0;
    jmp_buf env;
    if (setjmp(env)) return false;
    BDecAsnRealContent(&b, 0x09000000, static_cast<AsnLen>(length), &value, &count, env);
    return b.readError == 0;
}

std::string realText(const uint8_t* content, std::size_t length) {
    double value = 0;
    if (!readReal(content, length, value)) return {};
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

} // namespace

Header readHeader(const uint8_t* octets, std::size_t count) {
    Header header;
    std::size_t n = 0;
    unsigned shift = 24;
    bool more = false;
    do {
        if (n == count || n == 3) return header;
        header.tag |= static_cast<AsnTag>(octets[n]) << shift;
        more = n == 0 ? (octets[n] & 0x1F) == 0x1F : (octets[n] & 0x80) != 0;
        header.octets = ++n;
        shift -= 8;
    } while (more);
    if (n == count) return header;
    const uint8_t first = octets[n++];
    header.octets = n;
    header.indefinite = first == 0x80;
    if (first <= 0x80) {
        header.length = header.indefinite ? 0 : first;
        header.complete = true;
        return header;
    }
    for (unsigned i = first & 0x7F; i > 0; --i) {
        if (n == count || (first & 0x7F) > 4) return header;
        header.length = header.length << 8 | octets[n++];
        header.octets = n;
    }
    header.complete = true;
    return header;
}

std::string tagTitle(AsnTag tag) {
    const unsigned first = tag >> 24;
    unsigned number = first & 0x1F;
    if (number == 0x1F) {
        number = tag >> 16 & 0x7F;
        if (tag & 0x00800000) number = number << 7 | (tag >> 8 & 0x7F);
    }
    if (first >> 6 == 0) {
        switch (number) {
        case 0: return "end";
        case 1: return "BOOLEAN";
        case 2: return "INTEGER";
        case 3: return "BIT STRING";
        case 4: return "OCTET STRING";
        case 9: return "REAL";
        case 10: return "ENUMERATED";
        case 16: return "SEQUENCE";
        case 17: return "SET";
        default: break;
        }
    }
    constexpr const char* classes[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    return std::string("[") + classes[first >> 6] + std::to_string(number) + "]";
}

Place outermost(ZynChannel channel, AsnTag tag) {
    const ZynType& envelope = *ZynEnvelopeType(channel);
    if (envelope.kind != ZYN_KIND_CHOICE) return {envelope.name, &envelope};
    const ZynAlternative* alternative = alternativeWith(envelope, tag);
    return alternative ? placeOf("", *alternative) : Place{};
}

Place Children::fieldWith(AsnTag tag) {
    for (unsigned i = count; i < type->fieldCount; ++i) {
        const ZynField& field = type->fields[i];
        const bool bare = field.type->kind == ZYN_KIND_CHOICE && field.tag == 0;
        const ZynAlternative* alternative = bare ? alternativeWith(*field.type, tag) : nullptr;
        if (!alternative && (bare || !takes(*field.type, field.tag, tag))) continue;
        count = i + 1;
        if (alternative) return placeOf(std::string(field.name) + ".", *alternative);
        return {field.name, field.type, field.explicitTag != 0};
    }
    return {};
}

Place Children::place(AsnTag tag) {
    if (!type) return {};
    if (insideWrapper && type->kind == ZYN_KIND_CHOICE) {
        const ZynAlternative* alternative = alternativeWith(*type, tag);
        return alternative ? placeOf("", *alternative) : Place{};
    }
    if (insideWrapper) return {"", type};
    switch (type->kind) {
    case ZYN_KIND_SEQUENCE: return fieldWith(tag);
    case ZYN_KIND_SET_OF: return {"[" + std::to_string(count++) + "]", type->element};
    case ZYN_KIND_OCTET_STRING:
    case ZYN_KIND_BIT_STRING: return {"", type}; // a piece of a constructed string
    default: return {};
    }
}

std::string valueText(const ZynType& type, const uint8_t* content, std::size_t length) {
    switch (type.kind) {
    case ZYN_KIND_INTEGER:
    case ZYN_KIND_ENUMERATED: {
        if (length == 0 || length > 4) return {};
        uint32_t value = content[0] & 0x80 ? UINT32_MAX : 0;
        for (std::size_t i = 0; i < length; ++i) value = value << 8 | content[i];
        return std::to_string(static_cast<int32_t>(value));
    }
    case ZYN_KIND_BOOLEAN: return length != 1 ? "" : content[0] ? "TRUE" : "FALSE";
    case ZYN_KIND_REAL: return realText(content, length);
    case ZYN_KIND_BIT_STRING: return bitsText(content, length);
    case ZYN_KIND_OCTET_STRING: {
        std::string text = "\"";
        putPrintable(text, content, length);
        return text + '"';
    }
    default: return {};
    }
}

} // namespace zyn::tool
