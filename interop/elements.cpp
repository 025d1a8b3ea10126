#include "interop/elements.h"

namespace zyn::interop {

uint8_t ElementReader::next(std::size_t& at, std::size_t limit) {
    if (at >= limit) throw shortOf(limit);
    return octets[at++];
}

Element ElementReader::first() {
    std::size_t at = 0;
    Element whole = element(at, octets.size());
    if (at < octets.size()) note(Trait::OctetsBehind);
    return whole;
}

Element ElementReader::element(std::size_t& at, std::size_t limit) {
    Element result;
    result.begin = at;
    const uint8_t lead = next(at, limit);
    result.leading = lead & 0xE0;
    result.number = lead & 0x1F;
    if (result.number == 0x1F) {
        result.number = 0;
        uint8_t octet = next(at, limit);
        const bool isPadded = octet == 0x80;
        for (;; octet = next(at, limit)) {
            result.number = result.number << 7 | (octet & 0x7F);
            if (!(octet & 0x80)) break;
        }
        const bool isLong = at - result.begin > 3;
        if (isLong || isPadded) note(isLong ? Trait::TagOver3Octets : Trait::TagPadded, result);
        else if (result.number < 0x1F) note(Trait::TagHighForm, result);
    }
    result.tagSize = at - result.begin;
    const uint8_t length = next(at, limit);
    std::size_t size = length;
    if (length == 0xFF) throw Stop{Trait::LengthForm};
    if (length == 0x80 && !result.isConstructed()) {
        note(Trait::PrimitiveIndefinite, result);
        result.content = result.end = at;
        return result;
    }
    result.indefinite = length == 0x80;
    if (length > 0x80) {
        size = 0;
        if (length > 0x84) note(Trait::LengthOver4Octets, result);
        for (uint8_t count = length & 0x7F; count > 0; --count) {
            if (size >> 56 != 0) throw shortOf(limit);
            size = size << 8 | next(at, limit);
        }
    }
    result.content = at;
    const bool tooLong = !result.indefinite && size > limit - at;
    if (tooLong && !result.isConstructed()) {
        const bool isReal = result.leading == 0 && result.number == 9 && limit == octets.size();
        missing = size - (limit - at);
        throw isReal ? Stop{Trait::RealCut} : shortOf(limit);
    }
    result.end = tooLong || result.indefinite ? limit : at + size;
    if (result.isConstructed()) parts(result, at, result.end);
    else at = result.end;
    if (tooLong) throw shortOf(limit); // the parts seem sound: the cut is between them
    return result;
}

void ElementReader::parts(Element& whole, std::size_t& at, std::size_t limit) {
    while (whole.indefinite || at < limit) {
        if (whole.indefinite && at == limit) throw Stop{limit == octets.size() ? Trait::Cut : Trait::NoEnd};
        if (whole.indefinite && octets[at] == 0) {
            whole.end = at++;
            if (next(at, limit) != 0) throw Stop{Trait::NoEnd};
            return;
        }
        whole.parts.push_back(element(at, limit));
    }
}

test::Octets elementOf(test::Octets tag, const test::Octets& content, std::size_t lengthOctets) {
    test::Octets octets = std::move(tag);
    test::Octets length;
    for (std::size_t rest = content.size(); rest != 0 || length.size() < lengthOctets; rest >>= 8) {
        length.insert(length.begin(), static_cast<uint8_t>(rest));
    }
    const bool oneOctet = lengthOctets == 0 && content.size() < 0x80;
    octets.push_back(static_cast<uint8_t>(oneOctet ? content.size() : 0x80 | length.size()));
    if (!oneOctet) test::append(octets, length);
    test::append(octets, content);
    return octets;
}

test::Octets rewritten(const test::Octets& message, const Element& element, const Change& change) {
    if (const std::optional<test::Octets> changed = change(element)) return *changed;
    const auto at = [&](std::size_t offset) { return message.begin() + static_cast<std::ptrdiff_t>(offset); };
    if (!element.isConstructed()) return test::Octets(at(element.begin), at(element.end));
    test::Octets content;
    for (const Element& part : element.parts) test::append(content, rewritten(message, part, change));
    test::Octets tag(at(element.begin), at(element.begin + element.tagSize));
    if (!element.indefinite) return elementOf(tag, content, element.content - element.begin - element.tagSize - 1);
    tag.push_back(0x80);
    test::append(tag, content);
    tag.insert(tag.end(), 2, 0);
    return tag;
}

} // namespace zyn::interop
