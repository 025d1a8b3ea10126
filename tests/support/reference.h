// A second encoder, written for clearness and apart from the library's: what the octets of a record tree have
// to be, in the form that encoders write or in any other that BER allows. And the comparison of two trees.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/sample.h"

namespace zyn::test {

using Octets = std::vector<uint8_t>;
using Pieces = std::vector<Octets>; // whole elements, with tag and length

// How often the other forms are chosen, in percent.
struct Forms {
    uint32_t indefinite = 0;  // lengths of constructed elements (X.690 8.1.3.6)
    uint32_t longLength = 0;  // lengths of more octets than needed (8.1.3.5)
    uint32_t cutStrings = 0;  // strings in pieces, nested and empty ones too (8.6.4, 8.7.3)
    uint32_t looseValues = 0; // TRUE other than FF (8.2.2), REAL in other bases and forms (8.5.7)
    uint32_t damage = 0;      // contents that lack an element, have it twice, or have one that no record knows
};

class Writer {
public:
    Writer() : Writer(Forms{}, 0) {} // the form that encoders write
    Writer(Forms how, uint32_t seed) : forms(how), random(seed) {}

    Octets content(TypeId type, const void* value);
    Octets message(TypeId type, const void* value);
    // The elements that the content of a SEQUENCE or SET OF is made of.
    Pieces pieces(const Type& type, const void* value);
    Octets element(AsnTag tag, const Octets& content);

private:
    Octets fieldElement(const Field& field, const void* value);
    Octets choiceElement(const Type& type, const ChoiceRecord* choice);
    Octets valueElement(Kind kind, TypeId type, AsnTag tag, const void* value);
    Octets stringElement(Kind kind, AsnTag tag, const Octets& octets, unsigned unusedBits);
    Octets stringPieces(Kind kind, const Octets& octets, unsigned unusedBits, bool last, int depth);
    Octets realContent(AsnReal value);
    bool chance(uint32_t percent) { return percent > 0 && below(random, 100) < percent; }

    Forms forms;
    Random random;
};

void append(Octets& to, const Octets& more);
Octets joined(const Pieces& pieces);
Octets tagOctetsOf(AsnTag tag);

// The path to the first thing in which a decoded tree is not the one that was sent, and what it is; empty:
// there is none. Decoded lists must also have what appending gives, and decoded text its closing 0 byte.
std::string difference(TypeId type, const void* sent, const void* decoded);

} // namespace zyn::test
