// BER elements (X.690 8.1), sound or not, as trees that can be changed and written out again.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "tests/support/reference.h"

namespace zyn::test {

struct Element;
using Elements = std::vector<Element>;

struct Element {
    Octets tag;     // none: octets that are no element, which stand in content
    Octets content; // of a primitive element
    Elements parts; // of a constructed one; the end-of-contents marker of an indefinite one is the last of them
    bool constructed = false;
    bool indefinite = false;
    unsigned lengthOctets = 0;       // beyond the first, at least
    std::optional<uint32_t> claimed; // stands in place of the right length
};

// Takes everything: what cannot be read as elements becomes octets without a tag. What is parsed and written again is the
// same, but for lengths that are told in more octets than 5.
Elements parse(std::span<const uint8_t> octets);

// Lengths are those of what there is, unless they are claimed to be others.
Octets written(const Elements& elements);

} // namespace zyn::test
