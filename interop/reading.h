// A reader that takes a message by the letter of X.690 and of the schema, and says what is wrong with it first. It is
// how messages that the sides judge differently are told apart, and how two encodings of one value are compared.
#pragma once

#include <optional>
#include <string>

#include "interop/elements.h"

namespace zyn::interop {

// What of an encoding is written in a form of its own in Reading::text, so that encodings that differ in nothing else
// give the same text.
struct Normal {
    bool reals = false; // a REAL by its value
    bool lists = false; // the elements of a SET OF in an order of their own
    bool bits = false;  // the unused bits of a BIT STRING as 0
};

struct Reading {
    Traits traits;
    std::optional<Element>
        whole;               // with traits at each element that has some; none where not all elements could be told
    std::size_t missing = 0; // of RealCut: octets
    std::string text;        // tags and contents; of no use where reading has ended early
};

Reading read(TypeId type, const test::Octets& octets, Normal normal = {});

} // namespace zyn::interop
