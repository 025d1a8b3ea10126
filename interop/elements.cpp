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
        if (octet == 0x80) note(Trait::TagPadded);
        for (;; octet = next(at, limit)) {
            result.number = result.number << 7 | (octet & 0x7F);
            if (!(octet & 0x80)) break;
        }
        if (result.number < 0x1F) note(Trait::TagHighForm);
    }
    result.tagSize = at - result.begin;
    if (result.tagSize > 3) note(Trait::TagOver3Octets);
    const uint8_t length = next(at, limit);
    std::size_t size = length;
    if (length == 0xFF || (length == 0x80 && !result.isConstructed())) throw Stop{Trait::LengthForm};
    result.indefinite = length == 0x80;
    if (length > 0x80) {
        size = 0;
        if (length > 0x84) note(Trait::LengthOver4Octets);
        for (uint8_t count = length & 0x7F; count > 0; --count) {
            if (size >> 56 != 0) throw shortOf(limit);
            size = size << 8 | next(at, limit);
        }
    }
    result.content = at;
    const bool tooLong = !result.indefinite && size > limit - at;
    if (tooLong && !result.isConstructed()) {
        const bool isReal = result.leading == 0 && result.number == 9 && limit == octets.size();
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

} // namespace zyn::interop
