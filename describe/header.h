// Tag and length of an element, read from octets that may end anywhere.
#pragma once

#include <cstddef>

#include "records/rows.h"
#include "zyn/codes.h"

namespace zyn {

// Octets that are at hand.
struct Octets {
    const uint8_t* start;
    std::size_t count;

    Octets behind(std::size_t octets) const { return {start + octets, count - octets}; }
};

// What stands in front of an element's content.
struct Header {
    AsnTag tag;
    uint64_t length; // of the content, if it is definite
    bool indefinite;
    unsigned octets; // of the header itself; if it is not all there, the least that it must have
};

// Reads the tag at the start of octets: 1, or 0 if more octets are needed, or a code.
inline int readTag(Octets octets, Header& header) {
    header = {.tag = 0, .length = 0, .indefinite = false, .octets = 0};
    for (unsigned shift = 24;; shift -= 8) {
        if (header.octets == octets.count) {
            ++header.octets;
            return 0;
        }
        const uint8_t octet = octets.start[header.octets++];
        header.tag |= AsnTag{octet} << shift;
        const bool more = shift == 24 ? (octet & 0x1F) == 0x1F : (octet & 0x80) != 0;
        if (!more) return 1;
        if (shift == 8) return ZYN_E_TAG_TOO_LONG;
    }
}

// Reads tag and length in the same way.
inline int readHeader(Octets octets, Header& header) {
    const int tagRead = readTag(octets, header);
    if (tagRead < 0) return tagRead;
    if (header.octets++ >= octets.count) return 0;
    const uint8_t first = octets.start[header.octets - 1];
    header.length = first;
    if (first < 0x80) return 1;
    header.length = 0;
    header.indefinite = first == 0x80;
    if (header.indefinite) return header.tag & constructedBit ? 1 : ZYN_E_LENGTH_PRIMITIVE;
    const unsigned lengthOctets = first & 0x7F;
    if (lengthOctets > sizeof(AsnLen)) return ZYN_E_LENGTH_TOO_LONG;
    const unsigned begin = header.octets;
    header.octets += lengthOctets;
    if (header.octets > octets.count) return 0;
    for (unsigned i = begin; i < header.octets; ++i) header.length = header.length << 8 | octets.start[i];
    return 1;
}

} // namespace zyn
