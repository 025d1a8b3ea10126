#include "tests/support/elements.h"

#include <algorithm>

namespace zyn::test {
namespace {

using Span = std::span<const uint8_t>;

constexpr int deepest = 100; // levels that are taken apart; what lies below stays as it is

Octets copyOf(Span octets) { return Octets(octets.begin(), octets.end()); }

Element rawOctets(Span octets) {
    Element element;
    element.content = copyOf(octets);
    return element;
}

std::size_t tagOctetsAt(Span rest) {
    if ((rest[0] & 0x1F) != 0x1F) return 1;
    std::size_t count = 2;
    while (count < 3 && count <= rest.size() && (rest[count - 1] & 0x80)) ++count;
    return count;
}

Elements parseSome(Span& rest, bool untilMarker, int depth);

// One element from the front of rest; false: there is none.
bool parseOne(Span& rest, Element& element, int depth) {
    const std::size_t tagOctets = tagOctetsAt(rest);
    if (rest.size() <= tagOctets) return false;
    const uint8_t first = rest[tagOctets];
    const std::size_t more = first > 0x80 ? first & 0x7F : 0;
    if (more > 4 || rest.size() <= tagOctets + more) return false;
    element.tag = copyOf(rest.first(tagOctets));
    element.constructed = (element.tag[0] & 0x20) != 0;
    element.indefinite = first == 0x80 && element.constructed;
    element.lengthOctets = static_cast<unsigned>(more);
    uint32_t length = first == 0x80 ? UINT32_MAX : first;
    if (more > 0) length = 0;
    for (std::size_t i = 1; i <= more; ++i) length = length << 8 | rest[tagOctets + i];
    rest = rest.subspan(tagOctets + 1 + more);
    if (element.indefinite) {
        element.parts = parseSome(rest, true, depth + 1);
        return true;
    }
    const std::size_t there = std::min<std::size_t>(length, rest.size());
    if (length > there) element.claimed = length;
    Span inside = rest.first(there);
    rest = rest.subspan(there);
    if (element.constructed) element.parts = parseSome(inside, false, depth + 1);
    else element.content = copyOf(inside);
    return true;
}

Elements parseSome(Span& rest, bool untilMarker, int depth) {
    Elements elements;
    while (!rest.empty()) {
        Element element;
        if (depth >= deepest || !parseOne(rest, element, depth)) {
            elements.push_back(rawOctets(rest));
            rest = {};
            break;
        }
        const bool marker = element.tag == Octets{0} && element.content.empty();
        elements.push_back(std::move(element));
        if (marker && untilMarker) break;
    }
    return elements;
}

void write(const Element& element, Octets& out) {
    const Octets content = element.constructed ? written(element.parts) : element.content;
    if (!element.tag.empty()) {
        append(out, element.tag);
        const uint32_t length = element.claimed.value_or(static_cast<uint32_t>(content.size()));
        unsigned octets = element.lengthOctets;
        while (octets < 4 && (octets > 0 || length >= 0x80) && uint64_t{length} >> (8 * octets) != 0) ++octets;
        if (element.indefinite) {
            out.push_back(0x80);
        } else if (octets == 0) {
            out.push_back(static_cast<uint8_t>(length));
        } else {
            out.push_back(static_cast<uint8_t>(0x80 | octets));
            while (octets-- > 0) out.push_back(static_cast<uint8_t>(length >> (8 * octets)));
        }
    }
    append(out, content);
}

} // namespace

Elements parse(Span octets) { return parseSome(octets, false, 0); }

Octets written(const Elements& elements) {
    Octets out;
    for (const Element& element : elements) write(element, out);
    return out;
}

} // namespace zyn::test
