// A message as BER alone tells it, without a schema: elements within elements.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "interop/traits.h"
#include "tests/support/reference.h"

namespace zyn::interop {

struct Element {
    uint8_t leading = 0;     // class and constructed bit; the number's bits are 0
    uint64_t number = 0;     // of the tag
    std::size_t tagSize = 0; // octets
    std::size_t begin = 0;   // where it stands in the message
    std::size_t content = 0; // where its content begins
    std::size_t end = 0;     // and ends, ahead of an end-of-contents
    bool indefinite = false;
    std::vector<Element> parts; // if it is constructed
    Traits traits;              // its own, not those of its parts

    bool isConstructed() const { return leading & 0x20; }
    bool isSameTag(const Element& other) const {
        return (leading ^ other.leading) < 0x40 && number == other.number; // but for the constructed bit
    }
};

// The element of a message in octets, with changes inside: change gives the octets of an element that is to be another,
// and nothing for one that stays. Elements around it keep their form of length.
using Change = std::function<std::optional<test::Octets>(const Element&)>;
test::Octets rewritten(const test::Octets& message, const Element& element, const Change& change);

// An element's octets: tag and content, and the length in at least so many octets beyond the first.
test::Octets elementOf(test::Octets tag, const test::Octets& content, std::size_t lengthOctets = 0);

// Thrown where reading cannot go on.
struct Stop {
    Trait trait;
};

// Finds the elements of a message and notes what is wrong with their tags and lengths.
class ElementReader {
public:
    explicit ElementReader(const test::Octets& message) : octets(message) {}

    // The element at the beginning of the message. Throws Stop.
    Element first();

    Traits traits;           // of what it could read over
    std::size_t missing = 0; // octets, where it has stopped with RealCut

    void note(Trait found) { traits.set(static_cast<std::size_t>(found)); }
    void note(Trait found, Element& element) {
        note(found);
        element.traits.set(static_cast<std::size_t>(found));
    }

private:
    Element element(std::size_t& at, std::size_t limit);
    uint8_t next(std::size_t& at, std::size_t limit);
    Stop shortOf(std::size_t limit) const { return {limit == octets.size() ? Trait::Cut : Trait::Overrun}; }
    void parts(Element& whole, std::size_t& at, std::size_t limit);

    const test::Octets& octets;
};

} // namespace zyn::interop
